// Any text as a stimulator-info record, as a state text and as hot-key data: what was read is
// written, and what was written reads back as itself.

#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "corv/corv.h"

namespace {

void Require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

void ReadRecord(const char* text) {
    CStiParser record;
    CString written;
    const bool read = record.Init(text);
    Require(record.MergeStimInfo(written) == read);
    int type = 0;
    bool active = false;
    record.GetStimType(&type);
    record.GetActive(&active);
    CStiParser copy;
    copy = record;
    Require(copy.MergeStimInfo(written) == (read && type != -1));
    // a record whose text fields are all there is one that its own text tells in full
    if (copy.MergeStimInfo(written) && *copy.GetDialogID() != '\0' &&
        *copy.GetDialogData() != '\0' && *copy.GetInfoString() != '\0') {
        CStiParser again;
        Require(again.Init(written) && again == copy);
    }
}

std::string Stored(const CStimState& states) {
    std::vector<char> text(states.Store(nullptr, 0) + 1);
    const unsigned length = states.Store(text.data(), static_cast<unsigned>(text.size()));
    Require(length == (*text.data() != '\0' ? std::strlen(text.data()) + 1 : 0));
    return text.data();
}

void ReadStates(const char* text) {
    CStimState states;
    Require(states.Create(text));
    const std::string written = Stored(states);
    CStimState again;
    Require(again.Create(written.c_str()) && Stored(again) == written);
    Require(again.FirstState() == states.FirstState());
}

void ReadHotKey(const char* text) {
    unsigned long key = 0;
    unsigned long key_again = 1;
    CString hot_key;
    CString written;
    if (ParseHotKeyData(text, &key, hot_key)) {
        const CString read = hot_key;
        MergeHotKeyData(key, read, written);
        Require(ParseHotKeyData(written, &key_again, hot_key));
        Require(key_again == key && hot_key == read);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    ReadRecord(text.c_str());
    ReadStates(text.c_str());
    ReadHotKey(text.c_str());
    return 0;
}
