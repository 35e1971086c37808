// Opens event files: reads the signals, then the index at the end of the file. If the writer was
// killed there is no index, and the records are walked instead, which is slower but finds every
// whole block.

#include <algorithm>
#include <memory>
#include <string>
#include <utility>

#include "stremo/byte_code.h"
#include "stremo/event_file/blocks.h"
#include "stremo/event_file/event_file.h"
#include "stremo/stream_error.h"

namespace corv::recording {
namespace {

class EventFile final : public Recording {
public:
    EventFile(std::string file_name, std::unique_ptr<platform::FileContent> content,
              std::size_t most_kept)
        : Recording(std::move(file_name)), content_(std::move(content)), most_kept_(most_kept) {}

    const char* FormatName() const noexcept override { return kEventFileName; }
    bool KnowsLatestTimes() const noexcept override { return knows_latest_times_; }
    std::unique_ptr<BlockStore> OpenBlocks(std::span<const std::uint32_t>) override {
        return std::move(blocks_);
    }
    bool LeavesOut() const noexcept override { return false; }

    // False with the stream error set.
    bool Open();
    const platform::FileContent& content() const noexcept { return *content_; }

private:
    bool OpenSignals(std::uint64_t& end);
    bool ReadLatestTimes();

    std::unique_ptr<platform::FileContent> content_;
    const std::size_t most_kept_;
    std::unique_ptr<EventFileBlocks> blocks_;
    bool knows_latest_times_ = false;
};

bool EventFile::Open() {
    std::uint64_t blocks = 0;
    if (!OpenSignals(blocks)) {
        return false;
    }
    blocks_ = std::make_unique<EventFileBlocks>(file_name(), *content_, blocks, most_kept_);
    if (!blocks_->UseRoot()) {
        blocks_->Walk(blocks);
        notes_.push_back(
            "the file has no index, since its writer did not close it or its end is "
            "damaged; " +
            std::to_string(blocks_->Count()) + " whole blocks were found");
    }
    knows_latest_times_ = ReadLatestTimes();
    return true;
}

// Reads the signals; `end` is where their record ends.
bool EventFile::OpenSignals(std::uint64_t& end) {
    const platform::FileContent& file = *content_;
    ByteReader in(file.BringPart(0, kFileHeaderSize));
    in.Take(sizeof kFileMark);
    const auto version = in.Number<std::uint32_t>();
    if (in.Number<std::uint32_t>() != 0 || !in.ok() || version != kEventFileVersion) {
        SetError(file_name(), sizeof kFileMark, "this version of the format is not known");
        return false;
    }
    const std::optional<RecordHeader> header = ReadRecordHeader(file, kFileHeaderSize);
    const auto content = CheckedContent(file, kFileHeaderSize, RecordKind::kSignals);
    if (!content) {
        const char* const failure = file.failure();
        failure != nullptr
            ? SetError(file_name(), failure)
            : SetError(file_name(), kFileHeaderSize, "the list of signals is damaged or not whole");
        return false;
    }
    if (!ReadSignals(*content, signals_)) {
        SetError(file_name(), kFileHeaderSize, "the list of signals makes no sense");
        return false;
    }
    end =
        std::min<std::uint64_t>(kFileHeaderSize + RecordSize(header->length), file.bytes().size());
    return true;
}

bool EventFile::ReadLatestTimes() {
    const auto content = blocks_->LatestTimes();
    if (!content) {
        return false;
    }
    ByteReader in(*content);
    for (std::uint32_t i = 0; i < signals_.size(); ++i) {
        signals_.SetLatest(i, Unfold(in.Variable()));
    }
    return in.ok();
}

}  // namespace

std::unique_ptr<Recording> OpenEventFile(const std::string& file_name,
                                         std::unique_ptr<platform::FileContent> content) {
    return OpenEventFileIn(file_name, std::move(content), std::size_t{1} << 26);
}

std::unique_ptr<Recording> OpenEventFileIn(const std::string& file_name,
                                           std::unique_ptr<platform::FileContent> content,
                                           std::size_t most_kept) {
    auto file = std::make_unique<EventFile>(file_name, std::move(content), most_kept);
    const platform::FileContent& bytes = file->content();
    const bool opened = file->Open();
    if (bytes.failure() != nullptr) {
        SetError(file_name, bytes.failure());
    }
    return opened && bytes.failure() == nullptr ? std::move(file) : nullptr;
}

}  // namespace corv::recording
