#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>

// Access to files, behind interfaces that a test can replace by files in memory.
namespace corv::platform {

using Bytes = std::span<const unsigned char>;

// The content of a file that is open for reading. All its bytes have addresses, but only those that
// were brought into memory may be read. Bytes that were brought do not change, whatever happens to
// the file: unlike with a mapped file, a host is not ended by a file that is cut short.
class FileContent {
public:
    virtual ~FileContent() = default;
    virtual Bytes bytes() const noexcept = 0;
    // Brings a part of the bytes into memory. Bytes that cannot be read become zeros; failure()
    // says why.
    virtual void Bring(Bytes) const noexcept {}
    // Releases a part that is not needed soon. It must be brought again before it is read.
    virtual void Forget(Bytes) const noexcept {}
    // Returns why something could not be brought, as a part of a sentence in static storage ("the
    // file was cut while it was read"); null if nothing failed.
    virtual const char* failure() const noexcept { return nullptr; }

    // Returns a part from an offset on, cut at the end of the content.
    Bytes Part(std::uint64_t offset, std::uint64_t size) const noexcept {
        const Bytes all = bytes();
        const auto from = static_cast<std::size_t>(std::min<std::uint64_t>(offset, all.size()));
        return all.subspan(
            from, static_cast<std::size_t>(std::min<std::uint64_t>(size, all.size() - from)));
    }
    Bytes BringPart(std::uint64_t offset, std::uint64_t size) const noexcept {
        const Bytes part = Part(offset, size);
        Bring(part);
        return part;
    }
};

// A file that is written from its beginning to its end.
class FileOutput {
public:
    virtual ~FileOutput() = default;
    // Hands the bytes to the system before it returns, so they are in the file even if the process
    // ends the next moment. Returns null on success, otherwise the reason ("the disk is full").
    virtual const char* Append(Bytes bytes) noexcept = 0;
    // Closes the file. Returns null if everything was written; a second call returns null.
    virtual const char* Close() noexcept = 0;
};

// Opens files. Failures are parts of a sentence without the file's name ("it is a folder"), in
// static storage.
class Files {
public:
    template <class T>
    struct Opened {
        std::unique_ptr<T> file;        // null after a failure
        const char* failure = nullptr;  // why
    };

    virtual ~Files() = default;
    // Opens an existing file, which is found by FindFile.
    virtual Opened<FileContent> Open(const std::string& name) = 0;
    // Creates a new file in place of an existing one, with the permissions of that one. Links are
    // followed, and readers keep the old content. Devices and pipes are written to directly,
    // /dev/stdout at its current position.
    virtual Opened<FileOutput> Create(const std::string& name) = 0;
};

// The files of the system.
Files& SystemFiles() noexcept;

// The result of FindFile.
struct FoundFile {
    std::string name;               // empty if not found
    const char* failure = nullptr;  // why it was not found
};

// Returns the name of an existing file or folder as it is spelt on the disk: the name itself if it
// exists, otherwise the only name that is equal without regard to case, folder by folder ("/TMP/A"
// finds "/tmp/a" if there is no "/TMP" and no other spelling of either part).
FoundFile FindFile(std::string_view name);

}  // namespace corv::platform
