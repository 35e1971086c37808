#include "stremo/vcd_recording.h"

#include <algorithm>
#include <utility>

#include "stremo/progress.h"
#include "stremo/stream_error.h"
#include "stremo/vcd_changes.h"
#include "stremo/vcd_declarations.h"
#include "stremo/vcd_survey.h"

namespace corv::recording {
namespace {

using vcd::Byte;

// Whether a word stands where a code is expected: behind a value that is a word of its own.
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

// The last time that is written, nothing without one. At the beginning of a line it is never taken
// for a code.
std::optional<std::uint64_t> FindLastTime(const Byte* begin, const Byte* end) noexcept {
    for (const Byte* at = end; at != begin; --at) {
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

class VcdRecording final : public Recording {
public:
    VcdRecording(std::string file_name, std::unique_ptr<platform::FileContent> content) noexcept
        : Recording(std::move(file_name)),
          content_(std::move(content)),
          file_(content_->bytes()),
          end_(vcd::WholeWordsEnd(file_)) {}

    const char* FormatName() const noexcept override { return kVcdName; }
    std::unique_ptr<BlockStore> OpenBlocks(std::span<const std::uint32_t> leaves) override;

    // False with the stream error set.
    bool Open();

private:
    std::int64_t LatestTime() const noexcept;
    void TellNotes(const vcd::Notes& notes);
    // What has been read comes from the disk again, should it be asked for.
    void Pass(platform::Bytes part) const {
        content_->Forget(part);
        TellProgress(static_cast<std::uint64_t>(part.data() + part.size() - file_.data()),
                     file_.size());
    }

    std::unique_ptr<platform::FileContent> content_;
    const platform::Bytes file_;
    const Byte* const end_;  // of the words that are whole
    vcd::Declarations declarations_;
    vcd::Notes declaration_notes_;
};

bool VcdRecording::Open() {
    declarations_ = vcd::ReadDeclarations(file_, end_, declaration_notes_, signals_);
    if (declarations_.names.empty() && !declarations_.ended) {
        SetError(file_name(), "no signal is declared before the file ends");
        return false;
    }
    if (declarations_.is_open) {
        vcd::SurveyChanges(file_, end_, declarations_,
                           [this](platform::Bytes part) { Pass(part); });
    }
    vcd::MakeSignals(declarations_, LatestTime(), signals_);
    TellNotes(declaration_notes_);
    return true;
}

// The time that the file ends with. A last one that may have been cut counts if it is not before
// the one in front of it.
std::int64_t VcdRecording::LatestTime() const noexcept {
    const Byte* const begin = file_.data() + declarations_.changes;
    auto time = FindLastTime(begin, std::max(begin, end_));
    const auto cut = FindLastTime(end_, file_.data() + file_.size());
    time = cut && (!time || *cut >= *time) ? cut : time;
    return time ? declarations_.time_scale.ToPicoseconds(*time) : -1;
}

std::unique_ptr<BlockStore> VcdRecording::OpenBlocks(std::span<const std::uint32_t> leaves) {
    vcd::Notes notes = declaration_notes_;
    auto blocks = std::make_unique<MemoryBlocks>();
    vcd::Changes changes(file_, declarations_, signals_, leaves, *blocks, notes);
    if (!changes.Read(end_, [this](platform::Bytes part) { Pass(part); })) {
        SetError(file_name(), "memory has run out");
        return nullptr;
    }
    TellProgress(file_.size(), file_.size());
    for (std::uint32_t i = 0; i < signals_.size(); ++i) {
        signals_.SetLatest(i, changes.latest());
    }
    TellNotes(notes);
    return blocks;
}

void VcdRecording::TellNotes(const vcd::Notes& notes) {
    notes_ = notes.Sentences(file_, [this](platform::Bytes part) { Pass(part); });
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
