#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>

// Access to files, behind interfaces that a test can replace by files in memory.
namespace corv::platform {

using Bytes = std::span<const unsigned char>;

// The content of a file that is open for reading. It lies in memory, or is brought there by the
// system as it is touched; the file must not be shortened meanwhile.
class FileContent {
public:
    virtual ~FileContent() = default;
    virtual Bytes bytes() const noexcept = 0;
    // Says that a part is not needed in the near future: what the system brought from the disk for
    // it may be let go. The bytes stay what they are. A hint only.
    virtual void Forget(Bytes) const noexcept {}
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
