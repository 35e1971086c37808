#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/files.h"
#include "stremo/recording.h"

// The library's own recordings, "event files" (.evt). The format is described byte for byte in
// docs/formats/event-file.md. What its reader and writer share is here; the content of blocks is in
// block_layout.h.
//
//     file mark | record (signals) | records (blocks, a page after every 256) | record (latest
//     times) | record (root) | trailer
namespace corv::recording {

inline constexpr char kEventFileName[] = "corv event file";

inline constexpr char kFileMark[8] = {'c', 'o', 'r', 'v', '.', 'e', 'v', 't'};
inline constexpr char kTrailerMark[8] = {'c', 'o', 'r', 'v', '.', 'e', 'n', 'd'};
inline constexpr std::uint32_t kEventFileVersion = 1;
inline constexpr std::size_t kFileHeaderSize = 16;  // the mark, the version, 4 bytes of zero
inline constexpr std::size_t kRecordHeaderSize = 64;
inline constexpr std::size_t kTrailerSize = 32;
inline constexpr std::size_t kPageBlocks = 256;
inline constexpr std::size_t kPageEntrySize = 32;

enum class RecordKind : std::uint32_t {  // four characters each
    kSignals = 0x53474953,               // SIGS
    kBlock = 0x4B434C42,                 // BLCK
    kPage = 0x45474150,                  // PAGE
    kLatest = 0x5453414C,                // LAST
    kRoot = 0x544F4F52,                  // ROOT
};

// The bits of a signal's first byte.
enum SignalFlag : unsigned { kComposite = 1, kJoins = 2 };

struct RecordHeader {
    RecordKind kind;
    std::uint64_t length = 0;    // of the content
    std::uint64_t checksum = 0;  // of its first bytes
    std::uint64_t checked = 0;   // their number: a block's front, or all
    BlockHead head{0, 0, 0};     // of a block; other records use the count alone
};

// Returns the bytes from one record to the next for a content of that length.
constexpr std::uint64_t RecordSize(std::uint64_t length) noexcept {
    return kRecordHeaderSize + (length + 7) / 8 * 8;
}

// Appends a record that will be at an offset of the file. The checksum covers the first `checked`
// bytes of its content.
void AppendRecord(std::vector<unsigned char>& out, std::uint64_t offset, RecordKind kind,
                  const BlockHead& head, platform::Bytes content, std::size_t checked);

// Returns the header of the record at an offset, nullopt if it is missing or damaged.
std::optional<RecordHeader> ReadRecordHeader(const platform::FileContent& file,
                                             std::uint64_t offset) noexcept;
// Returns its content, without bringing it into memory; nullopt if it is not complete.
std::optional<platform::Bytes> RecordContent(const platform::FileContent& file,
                                             std::uint64_t offset,
                                             const RecordHeader& header) noexcept;
// Returns whether the content matches its checksum.
bool FitsChecksum(platform::Bytes content, const RecordHeader& header) noexcept;
// Returns the content of a record of a kind, in memory and checked; nullopt if anything is wrong.
std::optional<platform::Bytes> CheckedContent(const platform::FileContent& file,
                                              std::uint64_t offset, RecordKind kind) noexcept;

bool IsEventFile(platform::Bytes beginning) noexcept;
std::unique_ptr<Recording> OpenEventFile(const std::string& file_name,
                                         std::unique_ptr<platform::FileContent> content);
// The same with a limit for the bytes of blocks that stay in memory after reading.
std::unique_ptr<Recording> OpenEventFileIn(const std::string& file_name,
                                           std::unique_ptr<platform::FileContent> content,
                                           std::size_t most_kept);

// Returns the content of the record of signals.
std::vector<unsigned char> WriteSignals(const SignalTable& signals);
// Returns false if it is malformed. The content must outlive the table, whose texts point into it.
bool ReadSignals(platform::Bytes content, SignalTable& signals);

}  // namespace corv::recording
