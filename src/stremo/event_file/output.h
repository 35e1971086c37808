#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/files.h"
#include "stremo/event_file/event_file.h"

namespace corv::recording {

// Writes the records of an event file. Each record is handed to the system as a whole, so that a
// writer that is killed leaves only complete records. After a failure nothing more is written, so
// the file stays readable up to there.
class EventFileOutput final : public BlockSink {
public:
    EventFileOutput(std::string file_name, std::unique_ptr<platform::FileOutput> output) noexcept
        : file_name_(std::move(file_name)), output_(std::move(output)) {}

    // Each returns false, with the stream error set, if the disk does not accept it or has refused
    // something before.
    bool PutSignals(const SignalTable& signals);
    bool Put(const BlockHead& head, Bytes content, std::size_t front) override;
    // Writes the end of the file: the rest of the index, the latest times of all signals and the
    // root.
    bool PutEnd(const SignalTable& signals);
    bool Close();

    bool failed() const noexcept { return failed_; }
    const std::string& file_name() const noexcept { return file_name_; }

private:
    bool Write();
    bool PutRecord(RecordKind kind, const BlockHead& head, Bytes content, std::size_t checked);
    bool PutList(RecordKind kind, std::size_t count, Bytes content);
    bool PutPage();
    bool PutRoot(std::uint64_t latest_times);
    bool PutTrailer(std::uint64_t root);

    std::string file_name_;
    std::unique_ptr<platform::FileOutput> output_;
    bool failed_ = false;
    std::uint64_t offset_ = 0;
    std::uint64_t blocks_ = 0;
    std::uint64_t events_ = 0;
    std::vector<unsigned char> page_;   // entries of blocks that are on no page yet
    std::vector<std::uint64_t> pages_;  // where the pages are
    std::vector<unsigned char> bytes_;  // what is written next
};

}  // namespace corv::recording
