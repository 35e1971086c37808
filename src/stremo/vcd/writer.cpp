// Writes the events of any recording as a VCD file, in one pass and with little memory: the text is
// flushed as it grows, and per element only the present value is kept.

#include "stremo/vcd/writer.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include "platform/ascii.h"
#include "platform/files.h"
#include "platform/guard.h"
#include "stremo/byte_code.h"
#include "stremo/signal_cursor.h"
#include "stremo/stream_error.h"
#include "stremo/vcd/output.h"

namespace corv::vcd {
namespace {

// Returns the letter of a level in the four-state form.
char FourState(char letter) noexcept {
    // Four-state VCD has x for everything unknown and no strengths, so weak levels become strong
    // ones.
    constexpr std::string_view kNine = "UX01ZWLH-";
    constexpr std::string_view kFour = "xx01zz01x";
    return kFour[kNine.find(letter)];
}

class Writer {
public:
    Writer(stremo::IEventsStreamRead& reader, const std::string& file_name,
           const VcdOptions& options)
        : reader_(reader), file_name_(file_name), options_(options), tree_(reader, options) {}

    bool Write(platform::Files& files);

private:
    enum State : unsigned char { kNoValue, kHasValue, kHasEvent };

    bool WriteAll();
    void TellInterest();
    void TakeCachedValues();
    bool WriteEvents();
    void TakeEvent(int handle, std::uint64_t value);
    void Set(const Use& use, std::uint64_t value, State state);
    void WriteTime(std::int64_t time);
    void WriteChanges();
    void WriteFirst();
    void WriteValue(const OutputVariable& variable);
    void AppendDigits(const OutputVariable& variable, std::string& out) const;
    void AppendText(const OutputVariable& variable, std::string& out) const;
    char Letter(const OutputVariable& variable, std::uint32_t element) const noexcept;
    std::uint64_t ReadValue();
    bool Flush(std::size_t least);
    std::int64_t EndTime() const noexcept;

    stremo::IEventsStreamRead& reader_;
    const std::string file_name_;
    const VcdOptions& options_;
    OutputTree tree_;
    std::unique_ptr<platform::FileOutput> file_;
    std::string text_;
    std::string triggers_;  // events at the first time, which follow the values

    std::vector<std::uint64_t> values_;  // by element
    std::vector<State> states_;          // by element; kHasEvent: not written yet
    std::vector<bool> changed_;          // by variable: it is in changes_
    std::vector<std::uint32_t> changes_;
    std::int64_t time_ = 0;  // of the changes
    std::int64_t written_time_ = -1;
    bool first_ = true;  // the values at the first time have not been written
};

bool Writer::Write(platform::Files& files) {
    auto created = files.Create(file_name_);
    if (created.file == nullptr) {
        recording::SetError(file_name_, created.failure);
        return false;
    }
    file_ = std::move(created.file);
    if (!WriteAll()) {
        return false;
    }
    if (const char* const failure = file_->Close()) {
        recording::SetError(file_name_, failure);
        return false;
    }
    return true;
}

bool Writer::WriteAll() {
    values_.resize(tree_.element_count);
    states_.resize(tree_.element_count, kNoValue);
    changed_.resize(tree_.variables.size());
    text_.swap(tree_.declarations);
    TellInterest();
    time_ = options_.start;
    if (!reader_.Seek(&time_)) {
        if (*LastStreamError() == '\0') {
            recording::SetError(file_name_, "the recording cannot be read");
        }
        return false;
    }
    TakeCachedValues();
    WriteTime(time_);
    text_ += "$dumpvars\n";
    if (!WriteEvents()) {
        return false;
    }
    tree_.AskLatest();  // now that everything has been read
    if (const std::int64_t end = EndTime(); end > time_) {
        WriteTime(end);
    }
    return Flush(0);
}

std::int64_t Writer::EndTime() const noexcept {
    return options_.end >= 0 ? std::min(options_.end, tree_.latest) : tree_.latest;
}

// Tells a reader of this library which signals are written, so that it skips the others. This is
// only worth the time if `takes` leaves some out.
void Writer::TellInterest() {
    recording::SignalReader* const own = recording::OwnReader(&reader_);
    if (own == nullptr || !options_.takes) {
        return;
    }
    std::vector<int> handles;
    for (const auto& [handle, use] : tree_.first_uses) {
        handles.push_back(handle);
    }
    own->SetInterest(handles);
}

// Takes the values at the start, none of which is an event.
void Writer::TakeCachedValues() {
    for (const auto& [handle, first] : tree_.first_uses) {
        unsigned char bytes[16] = {};
        if (!reader_.GetCachedValue(handle, bytes)) {
            continue;
        }
        for (std::uint32_t i = first; i != kNoUse; i = tree_.uses[i].next) {
            if (tree_.variables[tree_.uses[i].variable].form != Form::kEvent) {
                Set(tree_.uses[i], recording::LoadNumber<std::uint64_t>(bytes), kHasValue);
            }
        }
    }
    std::sort(changes_.begin(), changes_.end());
}

bool Writer::WriteEvents() {
    // The text is written in parts of a mebibyte, and the host can cancel every 65,536 events: both
    // often enough, and too seldom to cost time.
    constexpr std::size_t kPart = std::size_t{1} << 20;
    constexpr unsigned kPause = 65'536;
    unsigned events = 0;
    for (int handle; (handle = reader_.Next()) != -1;) {
        const std::int64_t time = *reader_.GetCurrentTime();
        if (options_.end >= 0 && time > options_.end) {
            break;
        }
        if (time > time_) {
            WriteChanges();
            time_ = time;
            if (!Flush(kPart)) {
                return false;
            }
        }
        if (++events % kPause == 0 && options_.progress && !options_.progress(time)) {
            recording::SetError(file_name_, "the writing was cancelled");
            return false;
        }
        TakeEvent(handle, ReadValue());
    }
    WriteChanges();
    return true;
}

std::uint64_t Writer::ReadValue() {
    unsigned char bytes[16] = {};
    reader_.ReadValue(bytes);
    return recording::LoadNumber<std::uint64_t>(bytes);
}

void Writer::TakeEvent(int handle, std::uint64_t value) {
    const auto found = tree_.first_uses.find(handle);
    std::uint32_t i = found != tree_.first_uses.end() ? found->second : kNoUse;
    for (; i != kNoUse; i = tree_.uses[i].next) {
        Set(tree_.uses[i], value, kHasEvent);
    }
}

// Sets the value of an element. A second event of a scalar at one time first writes the previous
// one, so that no event is lost; a vector has one change per time.
void Writer::Set(const Use& use, std::uint64_t value, State state) {
    const OutputVariable& variable = tree_.variables[use.variable];
    const std::uint32_t element = variable.first + use.element;
    if (states_[element] == kHasEvent && !variable.is_vector) {
        WriteTime(time_);
        WriteValue(variable);
    }
    values_[element] = value;
    states_[element] = state;
    if (!changed_[use.variable]) {
        changed_[use.variable] = true;
        changes_.push_back(use.variable);
    }
}

// Writes a time, once.
void Writer::WriteTime(std::int64_t time) {
    if (time != written_time_) {
        text_ += '#' + std::to_string(time) + '\n';
        written_time_ = time;
    }
}

// Writes the changes collected at one time. The first ones are the values at the start, which are
// inside $dumpvars; triggers of events are not values and follow its $end.
void Writer::WriteChanges() {
    if (!changes_.empty()) {
        WriteTime(time_);
    }
    for (const std::uint32_t number : changes_) {
        WriteValue(tree_.variables[number]);
        changed_[number] = false;
    }
    changes_.clear();
    if (first_) {
        text_ += "$end\n" + triggers_;
        first_ = false;
    }
}

void Writer::WriteValue(const OutputVariable& variable) {
    std::string& out = first_ && variable.form == Form::kEvent ? triggers_ : text_;
    const std::uint64_t value = values_[variable.first];
    switch (variable.form) {
        case Form::kBits:
            AppendDigits(variable, out);
            break;
        case Form::kInteger: {
            char digits[32];
            const auto number = static_cast<std::uint32_t>(value);
            char* const end = std::to_chars(digits, digits + sizeof digits, number, 2).ptr;
            out += 'b';
            out.append(digits, end);
            out += ' ';
            break;
        }
        case Form::kReal: {
            char digits[32];
            const auto number = std::bit_cast<double>(value);
            char* const end = std::to_chars(digits, digits + sizeof digits, number).ptr;
            out += 'r';
            // to_chars writes some of them as -nan
            std::isnan(number) ? out += "NaN" : out.append(digits, end);
            out += ' ';
            break;
        }
        case Form::kText:
        case Form::kLiteral:
            AppendText(variable, out);
            break;
        case Form::kEvent:
            out += '1';
            break;
    }
    out += variable.code;
    out += '\n';
    // the events are written now; another one at the same time is a second event
    std::replace(states_.begin() + variable.first,
                 states_.begin() + variable.first + variable.count, kHasEvent, kHasValue);
}

// Returns the letter of an element; one without a value yet is U.
char Writer::Letter(const OutputVariable& variable, std::uint32_t element) const noexcept {
    const std::string& letters = tree_.types[variable.type].letters;
    const std::uint64_t value = values_[element];
    const bool has_value = states_[element] != kNoValue && value < letters.size();
    const char letter = has_value ? letters[value] : 'U';
    return options_.four_state ? FourState(letter) : letter;
}

void Writer::AppendDigits(const OutputVariable& variable, std::string& out) const {
    if (!variable.is_vector) {
        // some tools drop single upper-case letters
        out += platform::Lower(Letter(variable, variable.first));
        return;
    }
    out += 'b';
    for (std::uint32_t i = 0; i < variable.count; ++i) {
        out += Letter(variable, variable.first + i);
    }
    out += ' ';
}

void Writer::AppendText(const OutputVariable& variable, std::string& out) const {
    out += 's';
    if (variable.form == Form::kLiteral) {
        const std::vector<std::string>& literals = tree_.types[variable.type].literals;
        const std::uint64_t value = values_[variable.first];
        out += value < literals.size() ? literals[value] : "?";
    } else {
        std::string characters;
        for (std::uint32_t i = variable.first; i < variable.first + variable.count; ++i) {
            characters += static_cast<char>(states_[i] != kNoValue ? values_[i] : ' ');
        }
        // trailing blanks only fill a VHDL string; one character is kept, since a value cannot be
        // empty
        characters.resize(std::max<std::size_t>(characters.find_last_not_of(' ') + 1, 1));
        out += EscapedText(characters);
    }
    out += ' ';
}

// Writes the text once it has grown to a size.
bool Writer::Flush(std::size_t least) {
    if (text_.size() < least) {
        return true;
    }
    const auto* const bytes = reinterpret_cast<const unsigned char*>(text_.data());
    const char* const failure = file_->Append({bytes, text_.size()});
    text_.clear();
    if (failure != nullptr) {
        recording::SetError(file_name_, failure);
    }
    return failure == nullptr;
}

}  // namespace

bool WriteVcd(stremo::IEventsStreamRead& reader, platform::Files& files,
              const std::string& file_name, const VcdOptions& options) {
    return Writer(reader, file_name, options).Write(files);
}

}  // namespace corv::vcd

namespace corv {

bool WriteVcd(stremo::IEventsStreamRead& reader, const char* file_name,
              const VcdOptions& options) noexcept {
    const char* const name = file_name != nullptr ? file_name : "";
    bool written = false;
    recording::ClearError();
    if (!platform::Done(
            [&] { written = vcd::WriteVcd(reader, platform::SystemFiles(), name, options); })) {
        recording::SetError(name, "out of memory");
        return false;
    }
    return written;
}

}  // namespace corv
