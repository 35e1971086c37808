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

// The content of a file that is open for reading: its bytes have addresses, but only those that
// were brought may be looked at. What was brought stays as it is, whatever becomes of the file.
class FileContent {
public:
    virtual ~FileContent() = default;
    virtual Bytes bytes() const noexcept = 0;
    // Brings a part of the bytes, which then can be looked at. What can't be read is zeros;
    // failure() says why.
    virtual void Bring(Bytes) const noexcept {}
    // Says that a part is not needed in the near future: it must be brought again.
    virtual void Forget(Bytes) const noexcept {}
    // Why something could not be brought, a part of a sentence of static storage ("the file was
    // cut while it was read"); null when all was.
    virtual const char* failure() const noexcept { return nullptr; }

    // A part from an offset on; what lies beyond the end is none of it.
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
    // Hands the bytes to the system before it returns: they are in the file even if the process
    // ends the next moment. Null when all were taken, else why not ("the disk is full").
    virtual const char* Append(Bytes bytes) noexcept = 0;
    // Null when everything has been taken. The file is closed in either case; closing once more
    // gives null.
    virtual const char* Close() noexcept = 0;
};

// What opens files. The failures are parts of a sentence without the file's name ("is a folder"),
// texts of static storage.
class Files {
public:
    template <class T>
    struct Opened {
        std::unique_ptr<T> file;        // none: it failed
        const char* failure = nullptr;  // why
    };

    virtual ~Files() = default;
    // An existing file, found as FindFile does.
    virtual Opened<FileContent> Open(const std::string& name) = 0;
    // A new file in place of an existing one, whose permissions it has; links are followed, and
    // readers keep what they have. A device or a pipe is written as it is, /dev/stdout from where
    // it stands.
    virtual Opened<FileOutput> Create(const std::string& name) = 0;
};

// The files of the system.
Files& SystemFiles() noexcept;

// What a name was found to be.
struct FoundFile {
    std::string name;               // empty: none
    const char* failure = nullptr;  // why none
};

// The name of an existing file or folder as it is written on the disk: the name itself when it
// exists, otherwise the only one that is equal without regard to case, folder by folder ("/TMP/A"
// finds "/tmp/a" when there is no "/TMP" and no other spelling of either part).
FoundFile FindFile(std::string_view name);

}  // namespace corv::platform
