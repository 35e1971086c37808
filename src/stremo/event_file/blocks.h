#pragma once

#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "stremo/event_file/event_file.h"

namespace corv::recording {

// The blocks of an event file, found through the pages of its index or, in a file without a root,
// by walking from record to record. Pages and blocks are checked when they are first used. The
// blocks used last stay in memory, up to `most_kept` bytes.
class EventFileBlocks final : public BlockStore {
public:
    // The file must outlive the object. Its first `front` bytes, which contain the signals, are
    // never released. Throws std::bad_alloc.
    EventFileBlocks(std::string file_name, const platform::FileContent& file, std::uint64_t front,
                    std::size_t most_kept)
        : file_name_(std::move(file_name)), file_(file), front_(front), most_kept_(most_kept) {}

    // Uses the root that the trailer points to. Returns false if it is missing or damaged.
    bool UseRoot();
    // Walks over the records from an offset on.
    void Walk(std::uint64_t offset);

    // Returns the content of the record of latest times, nullopt without a complete one.
    std::optional<platform::Bytes> LatestTimes() const noexcept;

    std::size_t Count() const noexcept override { return checked_.size(); }
    std::optional<BlockHead> Head(std::size_t block) override;
    std::optional<Bytes> Content(std::size_t block) override;
    void Blame(std::size_t block) override;
    bool EndsThere() const noexcept override { return damage_ == 0; }
    void BlameEnd() override;
    std::uint64_t EventCount() override { return events_; }

private:
    struct Entry {
        std::uint64_t offset;
        BlockHead head;
    };
    struct Page {
        std::uint64_t offset;
        std::vector<unsigned char> entries = {};  // empty: not checked yet
    };

    bool CountBlocks(std::uint64_t blocks);
    bool CheckPage(std::size_t number, Page& page);
    std::optional<Entry> FindEntry(std::size_t block);
    bool CheckBlock(const Entry& entry, const RecordHeader& header);
    bool AddWalked(std::uint64_t offset, const RecordHeader& header);

    bool Fail(std::uint64_t offset, const char* what) const;
    void Keep(std::size_t block, platform::Bytes content);

    std::string file_name_;
    const platform::FileContent& file_;
    const std::uint64_t front_;
    const std::size_t most_kept_;
    std::vector<Page> pages_;    // with a root
    std::vector<Entry> walked_;  // without
    std::vector<bool> checked_;  // by block: its content is checked and in memory
    std::deque<std::pair<std::size_t, platform::Bytes>> kept_;  // the blocks in memory
    std::size_t kept_bytes_ = 0;
    std::uint64_t events_ = 0;
    std::uint64_t latest_times_ = 0;  // where the record is; 0: nowhere
    std::uint64_t damage_ = 0;        // where the walk ended before the file did; 0: nowhere
};

}  // namespace corv::recording
