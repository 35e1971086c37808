#include "stremo/event_file/blocks.h"

#include <algorithm>
#include <cstring>

#include "stremo/byte_code.h"
#include "stremo/checksum.h"
#include "stremo/stream_error.h"

namespace corv::recording {

// ---- the index ----

bool EventFileBlocks::UseRoot() {
    const std::size_t size = file_.bytes().size();
    if (size < kTrailerSize) {
        return false;
    }
    const std::size_t start = size - kTrailerSize;
    const platform::Bytes trailer = file_.BringPart(start, kTrailerSize);
    ByteReader in(trailer);
    const auto root = in.Number<std::uint64_t>();
    const bool in_place = in.Number<std::uint64_t>() == start;
    const bool marked = in.Text(sizeof kTrailerMark) == std::string_view(kTrailerMark, 8);
    if (!in_place || !marked || in.Number<std::uint64_t>() != Checksum(trailer.first(24), start)) {
        return false;
    }
    const auto content = CheckedContent(file_, root, RecordKind::kRoot);
    if (!content) {
        return false;
    }
    ByteReader numbers(*content);
    const auto blocks = numbers.Number<std::uint64_t>();
    const auto events = numbers.Number<std::uint64_t>();
    const auto latest_times = numbers.Number<std::uint64_t>();
    if (!numbers.ok() || numbers.left() % 8 != 0 ||
        blocks / kPageBlocks + (blocks % kPageBlocks != 0 ? 1 : 0) != numbers.left() / 8) {
        return false;
    }
    while (!numbers.AtEnd()) {
        pages_.push_back({numbers.Number<std::uint64_t>(), {}});
    }
    checked_.resize(static_cast<std::size_t>(blocks));
    events_ = events;
    latest_times_ = latest_times;
    return true;
}

void EventFileBlocks::Walk(std::uint64_t offset) {
    const std::uint64_t size = file_.bytes().size();
    while (size - offset >= kRecordHeaderSize) {
        const std::optional<RecordHeader> header = ReadRecordHeader(file_, offset);
        if (!header || !AddWalked(offset, *header)) {
            damage_ = offset;
            break;
        }
        const std::uint64_t left = size - offset;
        if (header->length > left || RecordSize(header->length) > left ||
            header->kind == RecordKind::kRoot) {
            break;
        }
        offset += RecordSize(header->length);
    }
    checked_.resize(walked_.size());
}

// Returns false for a record that cannot be at that place.
bool EventFileBlocks::AddWalked(std::uint64_t offset, const RecordHeader& header) {
    const BlockHead& head = header.head;
    switch (header.kind) {
        case RecordKind::kBlock:
            if (head.events == 0 || head.last_time < head.first_time ||
                head.first_time < (walked_.empty() ? 0 : walked_.back().head.last_time)) {
                return false;
            }
            if (RecordContent(file_, offset, header)) {
                walked_.push_back({offset, head});
                events_ += head.events;
            }
            return true;
        case RecordKind::kLatest:
            latest_times_ = offset;
            return true;
        case RecordKind::kPage:
        case RecordKind::kRoot:
            return true;
        default:
            return false;
    }
}

std::optional<platform::Bytes> EventFileBlocks::LatestTimes() const noexcept {
    return latest_times_ == 0 ? std::nullopt
                              : CheckedContent(file_, latest_times_, RecordKind::kLatest);
}

bool EventFileBlocks::CheckPage(std::size_t number, Page& page) {
    if (!page.entries.empty()) {
        return true;
    }
    const auto content = CheckedContent(file_, page.offset, RecordKind::kPage);
    const std::size_t entries = std::min(kPageBlocks, Count() - number * kPageBlocks);
    if (!content || content->size() != entries * kPageEntrySize) {
        return Fail(page.offset, "the index is damaged here");
    }
    page.entries.assign(content->begin(), content->end());
    return true;
}

std::optional<EventFileBlocks::Entry> EventFileBlocks::FindEntry(std::size_t block) {
    if (pages_.empty()) {
        return walked_[block];
    }
    Page& page = pages_[block / kPageBlocks];
    if (!CheckPage(block / kPageBlocks, page)) {
        return std::nullopt;
    }
    const unsigned char* const entry = page.entries.data() + block % kPageBlocks * kPageEntrySize;
    return Entry{LoadNumber<std::uint64_t>(entry),
                 {static_cast<std::int64_t>(LoadNumber<std::uint64_t>(entry + 8)),
                  static_cast<std::int64_t>(LoadNumber<std::uint64_t>(entry + 16)),
                  LoadNumber<std::uint64_t>(entry + 24)}};
}

// ---- blocks ----

std::optional<BlockHead> EventFileBlocks::Head(std::size_t block) {
    const std::optional<Entry> entry = FindEntry(block);
    return entry ? std::optional(entry->head) : std::nullopt;
}

std::optional<Bytes> EventFileBlocks::Content(std::size_t block) {
    const std::optional<Entry> entry = FindEntry(block);
    if (!entry) {
        return std::nullopt;
    }
    if (checked_[block]) {  // a page shared with a block that was released may be gone
        const unsigned char* const record =
            file_.BringPart(entry->offset, kRecordHeaderSize).data();
        return file_.BringPart(entry->offset + kRecordHeaderSize,
                               LoadNumber<std::uint64_t>(record + 8));
    }
    const std::optional<RecordHeader> header = ReadRecordHeader(file_, entry->offset);
    if (!header || header->kind != RecordKind::kBlock ||
        header->head.first_time != entry->head.first_time ||
        header->head.last_time != entry->head.last_time) {
        Fail(entry->offset, "the block's header is damaged");
        return std::nullopt;
    }
    const std::optional<Bytes> content = RecordContent(file_, entry->offset, *header);
    if (!content) {
        Fail(entry->offset, "the file ends within the block");
        return std::nullopt;
    }
    file_.BringPart(entry->offset, kRecordHeaderSize + header->length);
    if (!FitsChecksum(*content, *header)) {
        Fail(entry->offset, "the block does not match its checksum");
        return std::nullopt;
    }
    Keep(block, *content);
    return content;
}

// Adds a block to those in memory and releases the oldest ones. The page at the end of the file's
// front is spared, since the first block may share it with the signals.
void EventFileBlocks::Keep(std::size_t block, platform::Bytes content) {
    constexpr std::size_t kPage = 65'536;  // of any system
    kept_.emplace_back(block, content);
    kept_bytes_ += content.size();
    checked_[block] = true;
    while (kept_bytes_ > most_kept_ && kept_.size() > 1) {
        const auto [oldest, bytes] = kept_.front();
        kept_.pop_front();
        kept_bytes_ -= bytes.size();
        checked_[oldest] = false;
        const auto offset = static_cast<std::uint64_t>(bytes.data() - file_.bytes().data());
        const std::uint64_t skipped = front_ + kPage > offset ? front_ + kPage - offset : 0;
        file_.Forget(bytes.subspan(
            static_cast<std::size_t>(std::min<std::uint64_t>(skipped, bytes.size()))));
    }
}

// A failure to read is reported as such, not as damage.
bool EventFileBlocks::Fail(std::uint64_t offset, const char* what) const {
    const char* const failure = file_.failure();
    failure != nullptr ? SetError(file_name_, failure) : SetError(file_name_, offset, what);
    return false;
}

void EventFileBlocks::Blame(std::size_t block) {
    const std::optional<Entry> entry = FindEntry(block);
    Fail(entry ? entry->offset : 0, "the block's content is damaged");
}

void EventFileBlocks::BlameEnd() {
    if (damage_ != 0) {
        SetError(file_name_, damage_, "there is neither a whole block nor the end of the file");
    }
}

}  // namespace corv::recording
