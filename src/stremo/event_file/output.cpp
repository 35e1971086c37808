// Writes the records of an event file (docs/formats/event-file.md) in the order in which they come
// up, so that a file needs no second pass and is readable up to its last whole block at any time.
// The index follows at the end.

#include "stremo/event_file/output.h"

#include "stremo/byte_code.h"
#include "stremo/checksum.h"
#include "stremo/stream_error.h"

namespace corv::recording {

// After a failure nothing more is written, so that the first reason is the one that users see.
bool EventFileOutput::Write() {
    if (failed_) {
        return false;
    }
    if (const char* const failure = output_->Append(bytes_)) {
        SetError(file_name_, failure);
        failed_ = true;
        return false;
    }
    offset_ += bytes_.size();
    bytes_.clear();
    return true;
}

bool EventFileOutput::PutRecord(RecordKind kind, const BlockHead& head, Bytes content,
                                std::size_t checked) {
    AppendRecord(bytes_, offset_ + bytes_.size(), kind, head, content, checked);
    return Write();
}

bool EventFileOutput::PutList(RecordKind kind, std::size_t count, Bytes content) {
    return PutRecord(kind, {0, 0, count}, content, content.size());
}

bool EventFileOutput::PutSignals(const SignalTable& signals) {
    ByteWriter out(bytes_);
    out.Text({kFileMark, sizeof kFileMark});
    out.Number(kEventFileVersion);
    out.Number(std::uint32_t{0});
    return PutList(RecordKind::kSignals, signals.size(), WriteSignals(signals));
}

bool EventFileOutput::Put(const BlockHead& head, Bytes content, std::size_t front) {
    ByteWriter entry(page_);
    entry.Number(offset_);
    entry.Number(static_cast<std::uint64_t>(head.first_time));
    entry.Number(static_cast<std::uint64_t>(head.last_time));
    entry.Number(head.events);
    if (!PutRecord(RecordKind::kBlock, head, content, front)) {
        return false;
    }
    ++blocks_;
    events_ += head.events;
    // a full page of the index is written at once, so memory holds only one
    return page_.size() < kPageBlocks * kPageEntrySize || PutPage();
}

bool EventFileOutput::PutPage() {
    pages_.push_back(offset_);
    const bool put = PutList(RecordKind::kPage, page_.size() / kPageEntrySize, page_);
    page_.clear();
    return put;
}

// The signals were written before any event was known; their latest times follow here.
bool EventFileOutput::PutEnd(const SignalTable& signals) {
    if (!page_.empty() && !PutPage()) {
        return false;
    }
    std::vector<unsigned char> times;
    ByteWriter out(times);
    for (std::uint32_t i = 0; i < signals.size(); ++i) {
        out.Variable(Fold(signals[i].latest));
    }
    const std::uint64_t latest_times = offset_;
    return PutList(RecordKind::kLatest, signals.size(), times) && PutRoot(latest_times);
}

bool EventFileOutput::PutRoot(std::uint64_t latest_times) {
    std::vector<unsigned char> root;
    ByteWriter out(root);
    out.Number(blocks_);
    out.Number(events_);
    out.Number(latest_times);
    for (const std::uint64_t page : pages_) {
        out.Number(page);
    }
    const std::uint64_t offset = offset_;
    return PutList(RecordKind::kRoot, pages_.size(), root) && PutTrailer(offset);
}

bool EventFileOutput::PutTrailer(std::uint64_t root) {
    ByteWriter out(bytes_);
    out.Number(root);
    out.Number(offset_);
    out.Text({kTrailerMark, sizeof kTrailerMark});
    out.Number(Checksum(bytes_, offset_));
    return Write();
}

bool EventFileOutput::Close() {
    const char* const failure = output_->Close();
    if (failure != nullptr && !failed_) {
        SetError(file_name_, failure);
        failed_ = true;
    }
    return !failed_;
}

}  // namespace corv::recording
