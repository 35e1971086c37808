#include "stremo/ghw/recording.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>
#include <utility>

#include "stremo/ghw/changes.h"
#include "stremo/ghw/hierarchy.h"
#include "stremo/ghw/input.h"
#include "stremo/ghw/strings.h"
#include "stremo/ghw/time.h"
#include "stremo/ghw/type_text.h"
#include "stremo/ghw/types.h"
#include "stremo/notes.h"
#include "stremo/progress.h"
#include "stremo/stream_error.h"

namespace corv::recording {
namespace {

using ghw::Input;

constexpr std::string_view kMark = "GHDLwave\n";
constexpr std::size_t kHeaderSize = 16;

// The sections before the values, in the order in which they need each other. A tag is three
// letters and a zero, followed by four zeros.
enum Section : std::size_t { kStrings, kTypes, kWellKnown, kHierarchy, kSectionCount };
constexpr std::array<std::string_view, kSectionCount> kTags{
    std::string_view("STR\0\0\0\0\0", 8),
    std::string_view("TYP\0\0\0\0\0", 8),
    std::string_view("WKT\0\0\0\0\0", 8),
    std::string_view("HIE\0\0\0\0\0", 8),
};
constexpr std::array<const char*, kSectionCount> kSectionNames{
    "the strings", "the types", "the well-known types", "the hierarchy"};

class GhwRecording final : public Recording {
public:
    // `front` bytes of the file are read as the part before the values.
    GhwRecording(std::string file_name, std::unique_ptr<platform::FileContent> content,
                 std::size_t front)
        : Recording(std::move(file_name)),
          content_(std::move(content)),
          in_(content_->BringPart(0, front)),
          values_end_(content_->bytes().size()) {}

    const char* FormatName() const noexcept override { return kGhwName; }
    std::unique_ptr<BlockStore> OpenBlocks(std::span<const std::uint32_t> leaves) override;

    // Reads the front. Returns false, with the stream error set, on failure.
    bool Open(int time_unit);
    // Returns whether the front ended well, so that the values follow it.
    bool has_values() const noexcept { return changes_ != 0; }
    // Finds the end of the values.
    void Finish();
    // Returns whether everything that was needed could be read; otherwise the stream error says why
    // not.
    bool IsWhole() const {
        const char* const failure = content_->failure();
        if (failure != nullptr) {
            SetError(file_name(), failure);
        }
        return failure == nullptr;
    }
    std::unique_ptr<platform::FileContent> TakeContent() noexcept { return std::move(content_); }

private:
    bool ReadHeader();
    bool ReadSections(int time_unit);
    Section NextSection(const bool (&read)[kSectionCount], const std::string& place);
    Section FindSection(const bool (&read)[kSectionCount]);
    void ReadHierarchy(const ghw::Strings& strings, const ghw::Types& types);
    void FindLastTime();

    ghw::ChangeSource Source() const {
        return {
            *content_,   content_->bytes().first(values_end_),        big_endian_, changes_, nets_,
            time_scale_, [this](platform::Bytes part) { Pass(part); }};
    }
    void Pass(platform::Bytes part) const noexcept {
        content_->Forget(part);
        const platform::Bytes file = content_->bytes();
        TellProgress(static_cast<std::uint64_t>(part.data() + part.size() - file.data()),
                     file.size());
    }
    void TellNotes(const recording::Notes& remarks) {
        notes_ =
            remarks.Sentences([](std::size_t offset) { return "byte " + std::to_string(offset); });
    }
    bool Refuse(std::size_t offset, std::string_view why) const {
        SetError(file_name(), offset, why);
        return false;
    }

    std::unique_ptr<platform::FileContent> content_;
    Input in_;
    bool big_endian_ = false;
    bool has_units_ = true;
    recording::Notes remarks_;
    ghw::Nets nets_;
    ghw::TimeScale time_scale_{0};
    std::size_t changes_ = 0;  // where they begin, 0 if they cannot be read
    std::size_t values_end_;   // where the complete ones end, once this is known
};

// ---- the sections ----

bool GhwRecording::Open(int time_unit) {
    if (!ReadHeader() || !ReadSections(time_unit)) {
        return false;
    }
    if (signals_.size() == 0 && !in_.ok()) {
        return Refuse(in_.offset(), in_.failure());
    }
    return true;
}

void GhwRecording::Finish() {
    content_->Forget(in_.file());
    signals_.Finish();
    FindLastTime();
    TellNotes(remarks_);
}

bool GhwRecording::ReadHeader() {
    enum Place : std::size_t { kLength = 9, kMajor, kMinor, kByteOrder };
    const platform::Bytes file = in_.file();
    if (file.size() < kHeaderSize) {
        return Refuse(file.size(), "the file ends in its header");
    }
    if (file[kMajor] != 0) {
        return Refuse(kMajor, "the version of the format is not known");
    }
    if (file[kLength] != kHeaderSize || file[kMinor] > 1) {
        remarks_.Add(kLength, "the header is not quite as known");
    }
    if (file[kByteOrder] != 1 && file[kByteOrder] != 2) {
        remarks_.Add(kByteOrder, "the byte order is not told; low bytes are taken to be first");
    }
    has_units_ = file[kMinor] > 0;
    big_endian_ = file[kByteOrder] == 2;
    in_.SetBigEndian(big_endian_);
    in_.GoTo(kHeaderSize);
    return true;
}

bool GhwRecording::ReadSections(int time_unit) {
    ghw::Strings strings;
    ghw::Types types(strings, has_units_, remarks_);
    bool read[kSectionCount] = {};
    std::string place;  // where reading has failed
    for (Section section = kStrings; section != kHierarchy;) {
        section = NextSection(read, place);
        if (section == kSectionCount) {
            return Refuse(in_.offset(), place + in_.failure());
        }
        read[section] = true;
        place = kSectionNames[section] + std::string(": ");
        if (section == kStrings) {
            strings.Read(in_, remarks_);
        } else if (section == kTypes) {
            types.Read(in_);
            place = in_.ok() ? place : "type " + std::to_string(types.count() + 1) + ": ";
        } else if (section == kWellKnown) {
            types.ReadWellKnown(in_);
        }
    }
    const bool known = time_unit >= 0 && time_unit < static_cast<int>(util::kTimeUnits.size());
    time_scale_ = known ? ghw::TimeScale(static_cast<unsigned>(time_unit))
                        : ghw::TimeScale::Find(types, remarks_);
    ReadHierarchy(strings, types);
    return true;
}

// Reads the tag of the next section and returns it; kSectionCount if there is none, in which case
// the input has failed. Sections may come in any order, and damaged ones are skipped if a later tag
// can be found.
Section GhwRecording::NextSection(const bool (&read)[kSectionCount], const std::string& place) {
    const std::size_t offset = in_.offset();
    if (!in_.ok()) {
        remarks_.Add(offset, place + in_.failure() + "; this section is read no further");
        return FindSection(read);
    }
    std::size_t next = kSectionCount;
    for (std::size_t i = 0; i < kSectionCount; ++i) {
        if (!read[i] && in_.Skip(kTags[i])) {
            return static_cast<Section>(i);
        }
        next = read[i] ? next : std::min(next, i);
    }
    // after a section that ended well, the next one in the usual order is likely
    if (in_.left() < kTags[0].size()) {
        return FindSection(read);
    }
    remarks_.Add(offset, "the mark of a section is damaged");
    in_.GoTo(offset + kTags[0].size());
    return static_cast<Section>(next);
}

// Goes to the first section found further on. If there is none, the input fails, or keeps its
// failure.
Section GhwRecording::FindSection(const bool (&read)[kSectionCount]) {
    const platform::Bytes rest = in_.file().subspan(in_.offset());
    auto first = rest.end();
    std::size_t section = kSectionCount;
    for (std::size_t i = 0; i < kSectionCount; ++i) {
        const auto found = read[i]
                               ? rest.end()
                               : std::search(rest.begin(), first, kTags[i].begin(), kTags[i].end());
        if (found != rest.end() && found != first) {
            first = found;
            section = i;
        }
    }
    if (section == kSectionCount) {
        in_.Fail("the file ends before its signals");
    } else {
        in_.GoTo(static_cast<std::size_t>(first - in_.file().begin()) + kTags[0].size());
    }
    return static_cast<Section>(section);
}

void GhwRecording::ReadHierarchy(const ghw::Strings& strings, const ghw::Types& types) {
    ghw::TextBudget budget(in_.file().size());
    ghw::TypeTexts texts(types, time_scale_, signals_, budget);
    ghw::Hierarchy hierarchy(strings, types, texts, budget, signals_, remarks_);
    hierarchy.Read(in_);
    nets_ = hierarchy.TakeNets();
    if (!in_.ok()) {
        remarks_.Add(in_.offset(), kSectionNames[kHierarchy] + std::string(": ") + in_.failure() +
                                       "; the signals after it and all values are left out");
    } else if (!hierarchy.nets_known()) {
        remarks_.Add(in_.offset(), "the values cannot be told apart and are left out");
    } else {
        changes_ = in_.offset();
    }
}

// ---- the values ----

void GhwRecording::FindLastTime() {
    std::int64_t latest = -1;
    if (changes_ != 0) {
        const ghw::WholeValues whole = ghw::FindWholeValues(Source(), remarks_);
        latest = whole.latest;
        values_end_ = std::max(whole.end, changes_);
    }
    for (std::uint32_t i = 0; i < signals_.size(); ++i) {
        signals_.SetLatest(i, latest);
    }
}

std::unique_ptr<BlockStore> GhwRecording::OpenBlocks(std::span<const std::uint32_t> leaves) {
    auto blocks = std::make_unique<MemoryBlocks>();
    recording::Notes remarks = remarks_;
    if (changes_ != 0 && !ghw::ReadChanges(Source(), signals_, leaves, *blocks, remarks)) {
        SetError(file_name(), "out of memory");
        return nullptr;
    }
    TellNotes(remarks);
    return IsWhole() ? std::move(blocks) : nullptr;
}

}  // namespace

bool IsGhw(platform::Bytes beginning) noexcept {
    return beginning.size() >= kMark.size() &&
           std::memcmp(beginning.data(), kMark.data(), kMark.size()) == 0;
}

std::unique_ptr<Recording> OpenGhw(const std::string& file_name,
                                   std::unique_ptr<platform::FileContent> content) {
    return OpenGhwIn(file_name, std::move(content), -1);
}

std::unique_ptr<Recording> OpenGhwIn(const std::string& file_name,
                                     std::unique_ptr<platform::FileContent> content,
                                     int time_unit) {
    // The front of most files is small and its size is not stored. So the first 4 MiB are tried,
    // and four times as much each time that was not enough; nothing of a previous attempt is kept.
    constexpr std::uint64_t kMostFront = std::uint64_t{1} << 29;
    const std::uint64_t most = std::min<std::uint64_t>(content->bytes().size(), kMostFront);
    for (std::uint64_t front = std::uint64_t{1} << 22;; front *= 4) {
        const auto size = static_cast<std::size_t>(std::min(front, most));
        auto recording = std::make_unique<GhwRecording>(file_name, std::move(content), size);
        const bool opened = recording->Open(time_unit);
        if (!recording->IsWhole() || (size == most && !opened)) {
            return nullptr;
        }
        if (opened && (size == most || recording->has_values())) {
            recording->Finish();
            return recording->IsWhole() ? std::move(recording) : nullptr;
        }
        content = recording->TakeContent();
    }
}

std::unique_ptr<Recording> OpenGhwContent(const std::string& file_name,
                                          std::unique_ptr<platform::FileContent> content,
                                          int time_unit) {
    if (!IsGhw(content->BringPart(0, kHeaderSize))) {
        SetError(file_name,
                 content->failure() != nullptr ? content->failure() : "it is no GHW file");
        return nullptr;
    }
    return OpenGhwIn(file_name, std::move(content), time_unit);
}

}  // namespace corv::recording
