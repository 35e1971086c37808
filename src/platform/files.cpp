#include "platform/files.h"

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <utility>
#include <vector>

#include "platform/ascii.h"
#include "platform/guard.h"
#include "platform/windowed_content.h"

#if defined(__unix__) || defined(__APPLE__)
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#define CORV_HAS_POSIX_FILES 1
#else
#include <cstdio>
#define CORV_HAS_POSIX_FILES 0
#endif

namespace corv::platform {
namespace {

// The reasons that users read instead of the system's own messages, which depend on its language.
struct Reason {
    int code;
    const char* text;
};

constexpr const char* kIsFolder = "it is a folder";
constexpr const char* kNoFile = "there is no such file";
constexpr Reason kReasons[] = {
    {ENOENT, kNoFile},
    {ENOTDIR, "there is no such folder"},
    {EACCES, "access is denied"},
    {EPERM, "access is denied"},
    {EROFS, "the disk is read-only"},
    {EISDIR, kIsFolder},
    {ENOSPC, "the disk is full"},
    {EFBIG, "the file would be too large"},
    {ENAMETOOLONG, "the name is too long"},
    {EMFILE, "too many files are open"},
    {ENFILE, "too many files are open"},
    {ENOMEM, "out of memory"},
    {EIO, "the disk cannot be read or written"},
    {ELOOP, "its symbolic links lead in a circle"},
};

const char* ReasonOf(int code) noexcept {
    for (const Reason& reason : kReasons) {
        if (reason.code == code) {
            return reason.text;
        }
    }
    return "the system refused it";
}

#if CORV_HAS_POSIX_FILES

class Descriptor {
public:
    explicit Descriptor(int number) noexcept : number_(number) {}
    Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    Descriptor& operator=(Descriptor&&) = delete;
    ~Descriptor() { Close(); }

    int get() const noexcept { return number_; }
    bool Close() noexcept {
        const int number = std::exchange(number_, -1);
        return number == -1 || close(number) == 0;
    }

private:
    int number_;
};

class FileSource final : public ContentSource {
public:
    explicit FileSource(Descriptor file) noexcept : file_(std::move(file)) {}
    const char* Read(std::uint64_t offset, unsigned char* to, std::size_t size) noexcept override {
        while (size > 0) {
            const ssize_t count = pread(file_.get(), to, size, static_cast<off_t>(offset));
            if (count == 0) {
                return "the file was cut while it was read";
            }
            if (count < 0 && errno != EINTR) {
                return ReasonOf(errno);
            }
            const auto read = count > 0 ? static_cast<std::size_t>(count) : 0;
            to += read;
            size -= read;
            offset += read;
        }
        return nullptr;
    }

private:
    Descriptor file_;
};

class SystemOutput final : public FileOutput {
public:
    explicit SystemOutput(Descriptor file) noexcept : file_(std::move(file)) {}

    const char* Append(Bytes bytes) noexcept override {
        while (!bytes.empty()) {
            const ssize_t written = write(file_.get(), bytes.data(), bytes.size());
            if (written < 0 && errno != EINTR) {
                return ReasonOf(errno);
            }
            bytes = bytes.subspan(written > 0 ? static_cast<std::size_t>(written) : 0);
        }
        return nullptr;
    }
    const char* Close() noexcept override { return file_.Close() ? nullptr : ReasonOf(errno); }

private:
    Descriptor file_;
};

Files::Opened<FileContent> OpenContent(const std::string& name) {
    // O_NONBLOCK, since opening a pipe would otherwise wait for somebody to write to it.
    Descriptor file(open(name.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat status = {};
    if (file.get() == -1 || fstat(file.get(), &status) != 0) {
        return {nullptr, ReasonOf(errno)};
    }
    if (!S_ISREG(status.st_mode)) {
        return {nullptr, S_ISDIR(status.st_mode) ? kIsFolder : "it is not an ordinary file"};
    }
    auto content = MakeContent(std::make_unique<FileSource>(std::move(file)),
                               static_cast<std::uint64_t>(status.st_size));
    if (content == nullptr) {
        return {nullptr, ReasonOf(ENOMEM)};
    }
    return {std::move(content), nullptr};
}

// Returns the file that all links lead to, or the name itself if there is no file yet.
std::string Followed(const std::string& name) {
    const std::unique_ptr<char, decltype(&std::free)> real(realpath(name.c_str(), nullptr),
                                                           &std::free);
    return real != nullptr ? std::string(real.get()) : name;
}

// Creates a new file in place of an ordinary one, with its permissions. Unlinking instead of
// truncating leaves the old content to those who are reading it. The loop repeats if another
// process creates the name in between.
Descriptor ReplaceFile(const std::string& name, mode_t mode) noexcept {
    while (unlink(name.c_str()) == 0 || errno == ENOENT) {
        Descriptor file(open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
        if (file.get() != -1) {
            fchmod(file.get(), mode & 0777);
            return file;
        }
        if (errno != EEXIST) {
            break;
        }
    }
    return Descriptor(-1);
}

Descriptor OpenForWriting(const std::string& name) {
    if (name == "/dev/stdout") {  // opening it by name would start over
        return Descriptor(fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 0));
    }
    struct stat status = {};
    if (stat(name.c_str(), &status) == 0 && S_ISREG(status.st_mode)) {
        if (Descriptor file = ReplaceFile(Followed(name), status.st_mode); file.get() != -1) {
            return file;
        }
    }
    return Descriptor(open(name.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666));
}

Files::Opened<FileOutput> CreateOutput(const std::string& name) {
    Descriptor file = OpenForWriting(name);
    if (file.get() == -1) {
        // A file that is to be created is missing anyway; it is its folder that cannot be found.
        return {nullptr, ReasonOf(errno == ENOENT ? ENOTDIR : errno)};
    }
    return {std::make_unique<SystemOutput>(std::move(file)), nullptr};
}

#else

// A content that was read as a whole.
class HeldContent final : public FileContent {
public:
    explicit HeldContent(std::vector<unsigned char> content) noexcept
        : content_(std::move(content)) {}
    Bytes bytes() const noexcept override { return content_; }

private:
    std::vector<unsigned char> content_;
};

struct CloseFile {
    void operator()(std::FILE* file) const noexcept { std::fclose(file); }
};
using OpenFile = std::unique_ptr<std::FILE, CloseFile>;

class SystemOutput final : public FileOutput {
public:
    explicit SystemOutput(OpenFile file) noexcept : file_(std::move(file)) {}
    const char* Append(Bytes bytes) noexcept override {
        const bool written =
            std::fwrite(bytes.data(), 1, bytes.size(), file_.get()) == bytes.size() &&
            std::fflush(file_.get()) == 0;
        return written ? nullptr : ReasonOf(errno);
    }
    const char* Close() noexcept override {
        std::FILE* const file = file_.release();
        return file == nullptr || std::fclose(file) == 0 ? nullptr : ReasonOf(errno);
    }

private:
    OpenFile file_;
};

Files::Opened<FileContent> OpenContent(const std::string& name) {
    std::error_code error;
    if (std::filesystem::is_directory(name, error)) {
        return {nullptr, kIsFolder};
    }
    const OpenFile file(std::fopen(name.c_str(), "rb"));
    if (file == nullptr) {
        return {nullptr, ReasonOf(errno)};
    }
    std::vector<unsigned char> content;
    unsigned char part[65'536];
    while (const std::size_t count = std::fread(part, 1, sizeof part, file.get())) {
        content.insert(content.end(), part, part + count);
    }
    if (std::ferror(file.get()) != 0) {
        return {nullptr, ReasonOf(EIO)};
    }
    return {std::make_unique<HeldContent>(std::move(content)), nullptr};
}

Files::Opened<FileOutput> CreateOutput(const std::string& name) {
    OpenFile file(std::fopen(name.c_str(), "wb"));
    if (file == nullptr) {
        return {nullptr, ReasonOf(errno)};
    }
    return {std::make_unique<SystemOutput>(std::move(file)), nullptr};
}

#endif

class System final : public Files {
public:
    Opened<FileContent> Open(const std::string& name) override {
        const FoundFile found = FindFile(name);
        return found.failure != nullptr ? Opened<FileContent>{nullptr, found.failure}
                                        : OpenContent(found.name);
    }
    Opened<FileOutput> Create(const std::string& name) override { return CreateOutput(name); }
};

using std::filesystem::path;

// True also if the system cannot tell; opening the file then reports the reason.
bool Exists(const path& name) noexcept {
    std::error_code error;
    return std::filesystem::exists(name, error) || error;
}

// Returns the entry of a folder that is equal to a name without regard to case, unless there are
// several.
FoundFile FindEntry(const path& folder, const std::string& name) {
    FoundFile found{{}, kNoFile};
    std::error_code error;
    std::filesystem::directory_iterator entries(folder.empty() ? path(".") : folder, error);
    for (; !error && entries != std::filesystem::directory_iterator(); entries.increment(error)) {
        const std::string entry = entries->path().filename().string();
        if (!EqualNoCase(entry, name)) {
            continue;
        }
        if (found.failure == nullptr) {
            return {{}, "several names differ from this one only in case"};
        }
        found = {(folder / entry).string(), nullptr};
    }
    return found;
}

}  // namespace

FoundFile FindFile(std::string_view name) {
    if (name.empty()) {
        return {{}, "a name is missing"};
    }
    if (Exists(path(name))) {
        return {std::string(name), nullptr};
    }
    // Each part that exists is kept, so only the parts that differ in case cost a listing.
    path found;
    for (const path& part : path(name)) {
        if (part.empty() || Exists(found / part)) {
            found /= part;
            continue;
        }
        FoundFile entry = FindEntry(found, part.string());
        if (entry.failure != nullptr) {
            return entry;
        }
        found = entry.name;
    }
    return {found.string(), nullptr};
}

Files& SystemFiles() noexcept {
    static System files;
    return files;
}

}  // namespace corv::platform
