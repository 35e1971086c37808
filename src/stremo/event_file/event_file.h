#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/files.h"
#include "stremo/recording.h"

// The library's own recordings, "event files" (.evt). The format is described byte for byte in
// docs/formats/event-file.md; what its reader and its writer share stands here, the content of the
// blocks in block_layout.h.
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

// What a signal's first byte says.
enum SignalFlag : unsigned { kComposite = 1, kJoins = 2 };

struct RecordHeader {
    RecordKind kind;
    std::uint64_t length = 0;    // of the content
    std::uint64_t checksum = 0;  // of its first bytes
    std::uint64_t checked = 0;   // the number of these: a block's front, all of others
    BlockHead head{0, 0, 0};     // of a block; of others the count alone
};

// The bytes from one record to the next for a content of that length.
constexpr std::uint64_t RecordSize(std::uint64_t length) noexcept {
    return kRecordHeaderSize + (length + 7) / 8 * 8;
}

// Appends a record that will lie at an offset of the file; `checked` bytes of its content get a
// checksum.
void AppendRecord(std::vector<unsigned char>& out, std::uint64_t offset, RecordKind kind,
                  const BlockHead& head, platform::Bytes content, std::size_t checked);

// The record at an offset: nothing when its header is not there, or is damaged.
std::optional<RecordHeader> ReadRecordHeader(const platform::FileContent& file,
                                             std::uint64_t offset) noexcept;
// Its content, which is not brought; nothing when it is not there as a whole.
std::optional<platform::Bytes> RecordContent(const platform::FileContent& file,
                                             std::uint64_t offset,
                                             const RecordHeader& header) noexcept;
// Whether the content fits its checksum.
bool FitsChecksum(platform::Bytes content, const RecordHeader& header) noexcept;
// The content of a record of a kind, brought and checked; nothing when something is wrong.
std::optional<platform::Bytes> CheckedContent(const platform::FileContent& file,
                                              std::uint64_t offset, RecordKind kind) noexcept;

bool IsEventFile(platform::Bytes beginning) noexcept;
std::unique_ptr<Recording> OpenEventFile(const std::string& file_name,
                                         std::unique_ptr<platform::FileContent> content);
// The same, of whose blocks so many bytes stay in memory when they have been read.
std::unique_ptr<Recording> OpenEventFileIn(const std::string& file_name,
                                           std::unique_ptr<platform::FileContent> content,
                                           std::size_t most_kept);

// The content of the record of signals.
std::vector<unsigned char> WriteSignals(const SignalTable& signals);
// False when it makes no sense. The content must outlive the table.
bool ReadSignals(platform::Bytes content, SignalTable& signals);

}  // namespace corv::recording
