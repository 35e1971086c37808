#include "stremo/vcd/recording.h"

#include <algorithm>
#include <utility>

#include "stremo/progress.h"
#include "stremo/stream_error.h"
#include "stremo/vcd/changes.h"
#include "stremo/vcd/declarations.h"
#include "stremo/vcd/survey.h"

namespace corv::recording {
namespace {

using vcd::Byte;

// Returns whether a word may be a code: it follows a value that is a word of its own.
bool MayBeCode(const Byte* begin, const Byte* word) noexcept {
    const Byte* end = word;
    while (end != begin && vcd::IsBlank(end[-1])) {
        --end;
    }
    const Byte* before = end;
    while (before != begin && !vcd::IsBlank(before[-1])) {
        --before;
    }
    constexpr std::string_view kValues = "bBrRsSp";
    return before != end && kValues.find(static_cast<char>(*before)) != std::string_view::npos;
}

// Bytes that are searched backwards from `last` to `first`; those around them show the context.
struct Stretch {
    const Byte* begin;
    const Byte* first;
    const Byte* last;
    const Byte* end;
};

// Returns the last time written there, nullopt if there is none. A word at the beginning of a line
// is never taken for a code. Searching from the end finds it without reading the whole file.
std::optional<std::uint64_t> FindLastTime(const Stretch& in) noexcept {
    const auto [begin, first, last, end] = in;
    for (const Byte* at = last; at != first; --at) {
        const bool is_word = at[-1] == '#' && (at - 1 == begin || vcd::IsBlank(at[-2]));
        if (!is_word || (at - 1 != begin && at[-2] != '\n' && MayBeCode(begin, at - 1))) {
            continue;
        }
        const std::string_view word = vcd::Text(at - 1, vcd::WordEnd(at - 1, end));
        if (const auto time =
                vcd::IsTimeWord(word) ? vcd::ReadDecimal(word.substr(1)) : std::nullopt) {
            return time;
        }
    }
    return std::nullopt;
}

// The same for a content from an offset on, part by part from its end.
std::optional<std::uint64_t> FindLastTime(const platform::FileContent& content, std::size_t offset,
                                          std::size_t end) {
    constexpr std::size_t kPart = std::size_t{1} << 22;
    constexpr std::size_t kWord = 4096;  // enough context to judge a place in a part
    std::size_t before = end;
    while (before > offset) {
        const std::size_t from = before - std::min(before - offset, kPart);
        const std::size_t begin = from - std::min(from - offset, kWord);
        const platform::Bytes part =
            content.BringPart(begin, std::min(before + kWord, end) - begin);
        const Byte* const at = part.data();
        const auto time =
            FindLastTime({at, at + (from - begin), at + (before - begin), at + part.size()});
        content.Forget(part);
        if (time) {
            return time;
        }
        before = from;
    }
    return std::nullopt;
}

class VcdRecording final : public Recording {
public:
    VcdRecording(std::string file_name, std::unique_ptr<platform::FileContent> content) noexcept
        : Recording(std::move(file_name)), content_(std::move(content)), file_(content_->bytes()) {}

    const char* FormatName() const noexcept override { return kVcdName; }
    std::unique_ptr<BlockStore> OpenBlocks(std::span<const std::uint32_t> leaves) override;

    // Returns false, with the stream error set, on failure.
    bool Open() {
        const bool opened = OpenWhole();
        return IsWhole() && opened;
    }

private:
    bool OpenWhole();
    std::int64_t LatestTime() const;
    bool IsWhole() const;
    void TellNotes(const recording::Notes& notes);
    std::size_t OffsetOf(const Byte* at) const noexcept {
        return static_cast<std::size_t>(at - file_.data());
    }
    void Pass(platform::Bytes part) const {
        TellProgress(static_cast<std::uint64_t>(part.data() + part.size() - file_.data()),
                     file_.size());
    }

    std::unique_ptr<platform::FileContent> content_;
    const platform::Bytes file_;
    const Byte* end_ = nullptr;  // of the complete words
    vcd::Declarations declarations_;
    recording::Notes declaration_notes_;
};

bool VcdRecording::OpenWhole() {
    constexpr std::size_t kLongestWord = std::size_t{1} << 20;
    end_ = vcd::WholeWordsEnd(
        content_->BringPart(file_.size() - std::min(file_.size(), kLongestWord), kLongestWord));
    declarations_ = vcd::ReadDeclarations(*content_, end_, declaration_notes_, signals_);
    if (declarations_.names.empty() && !declarations_.ended) {
        SetError(file_name(), "no signal is declared before the file ends");
        return false;
    }
    if (declarations_.is_open) {
        vcd::SurveyChanges(*content_, end_, declarations_,
                           [this](platform::Bytes part) { Pass(part); });
    }
    vcd::MakeSignals(declarations_, LatestTime(), signals_);
    TellNotes(declaration_notes_);
    return true;
}

// Returns whether everything that was needed could be read; otherwise the stream error says why
// not.
bool VcdRecording::IsWhole() const {
    if (const char* const failure = content_->failure()) {
        SetError(file_name(), failure);
        return false;
    }
    return true;
}

// Returns the last time of the file. A final one that may have been cut counts if it is not before
// the previous one.
std::int64_t VcdRecording::LatestTime() const {
    const std::size_t end = OffsetOf(end_);
    auto time = FindLastTime(*content_, declarations_.changes, end);
    const auto cut = FindLastTime(*content_, end, file_.size());
    time = cut && (!time || *cut >= *time) ? cut : time;
    return time ? declarations_.time_scale.ToPicoseconds(*time) : -1;
}

std::unique_ptr<BlockStore> VcdRecording::OpenBlocks(std::span<const std::uint32_t> leaves) {
    recording::Notes notes = declaration_notes_;
    auto blocks = std::make_unique<MemoryBlocks>();
    vcd::Changes changes(*content_, declarations_, signals_, leaves, *blocks, notes);
    if (!changes.Read(end_, [this](platform::Bytes part) { Pass(part); })) {
        SetError(file_name(), "out of memory");
        return nullptr;
    }
    TellProgress(file_.size(), file_.size());
    for (std::uint32_t i = 0; i < signals_.size(); ++i) {
        signals_.SetLatest(i, changes.latest());
    }
    TellNotes(notes);
    return IsWhole() ? std::move(blocks) : nullptr;
}

void VcdRecording::TellNotes(const recording::Notes& notes) {
    notes_ = vcd::Sentences(notes, *content_);
}

}  // namespace

bool IsVcd(platform::Bytes beginning) noexcept {
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    const Byte* at = beginning.data();
    const Byte* const end = at + beginning.size();
    at += vcd::Text(at, end).starts_with(kByteOrderMark) ? kByteOrderMark.size() : 0;
    return vcd::FindCommand(vcd::NextWord(at, end)) != nullptr;
}

std::unique_ptr<Recording> OpenVcd(const std::string& file_name,
                                   std::unique_ptr<platform::FileContent> content) {
    auto recording = std::make_unique<VcdRecording>(file_name, std::move(content));
    return recording->Open() ? std::move(recording) : nullptr;
}

}  // namespace corv::recording
