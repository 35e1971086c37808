// load_recording FILE [NAME]: reads all changes of a recording into memory, or those of the signals
// whose names contain a text, and prints the number of events and the most memory that was used.

#include <sys/resource.h>

#include <cstdio>
#include <cstring>
#include <memory>
#include <vector>

#include "corv/stremo/events_stream_read.h"
#include "corv/stremo/streams.h"
#include "stremo/signal_cursor.h"

namespace {

void Collect(stremo::IEventsStreamRead& reader, int handle, std::vector<int>& handles) {
    bool composite = false;
    int members = 0;
    int mode = 0;
    std::int64_t latest = 0;
    CString name;
    reader.GetSignalInfo(handle, composite, members, name, mode, latest);
    for (int i = 0; composite && i < members; ++i) {
        Collect(reader, reader.GetSubSignalHandle(handle, i), handles);
    }
    if (!composite) {
        handles.push_back(handle);
    }
}

}  // namespace

int main(int argc, char** argv) {
    const std::unique_ptr<stremo::IEventsStreamRead> reader(
        stremo::CreateStreamRead(argc > 1 ? argv[1] : ""));
    auto* const own = corv::recording::OwnReader(reader.get());
    if (own == nullptr) {
        std::fprintf(stderr, "%s\n", corv::LastStreamError());
        return 1;
    }
    std::vector<int> handles;
    for (int i = 0; argc > 2 && i < reader->GetSignalCount(); ++i) {
        bool composite = false;
        int number = 0;
        std::int64_t latest = 0;
        CString name;
        const int handle = reader->GetSignalHandle(i);
        reader->GetSignalInfo(handle, composite, number, name, number, latest);
        if (std::strstr(name, argv[2]) != nullptr) {
            Collect(*reader, handle, handles);
        }
    }
    own->SetInterest(handles);
    const auto events = static_cast<unsigned long long>(own->EventCount());
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    std::printf("%llu events, at most %ld MB\n", events, usage.ru_maxrss / 1024);
}
