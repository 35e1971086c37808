// Replaces an output file as a whole. rename() is atomic only within one file system, hence the
// temporary file is in the folder of the output. A signal handler removes it if the user ends the
// program.

#include "cli/output_file.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <system_error>
#include <utility>

#include "cli/command.h"

namespace corv::cli {
namespace {

namespace fs = std::filesystem;

// The signals that usually end a program from outside.
constexpr std::array<int, 6> kSignals{SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGPIPE, SIGXCPU};
// As many as Linux follows; links that form a circle end here.
constexpr int kMostLinks = 40;

// The name of the temporary file that a signal removes; its first character is 0 if there is none.
// It is a plain array, since a signal handler must not touch a std::string.
std::array<char, 8192> temporary_file{};

// Calls only functions that are safe in a signal handler. The signal is raised again so that the
// caller of the program sees which one has ended it.
extern "C" void RemoveTemporaryAndEnd(int signal) {
    if (temporary_file[0] != '\0') {
        unlink(temporary_file.data());
    }
    std::signal(signal, SIG_DFL);
    raise(signal);
}

// Holds signals back while the temporary file and its name in temporary_file change, so that the
// handler never sees one without the other.
class SignalsHeld {
public:
    SignalsHeld() {
        sigset_t held;
        sigemptyset(&held);
        for (const int signal : kSignals) {
            sigaddset(&held, signal);
        }
        sigprocmask(SIG_BLOCK, &held, &before_);
    }
    SignalsHeld(const SignalsHeld&) = delete;
    SignalsHeld& operator=(const SignalsHeld&) = delete;
    ~SignalsHeld() { sigprocmask(SIG_SETMASK, &before_, nullptr); }

private:
    sigset_t before_{};
};

// Signals that the caller has told the program to ignore, as nohup does, stay ignored.
void CatchSignals() {
    for (const int signal : kSignals) {
        struct sigaction action = {};
        sigaction(signal, nullptr, &action);
        if (action.sa_handler != SIG_IGN) {
            action.sa_handler = RemoveTemporaryAndEnd;
            sigaction(signal, &action, nullptr);
        }
    }
}

const char* ReasonOf(int code) {
    switch (code) {
        case ENOSPC:
            return "the disk is full";
        case EFBIG:
            return "the file would be too large";
        case EACCES:
        case EPERM:
            return "access is denied";
        case EISDIR:
            return "it is a folder";
        case EROFS:
            return "the disk is read-only";
        default:
            return std::strerror(code);
    }
}

std::string NameInMessage(const std::string& name) {
    return name == "-" ? "standard output" : "`" + name + "`";
}

std::string CannotWrite(const std::string& name, const std::string& reason) {
    return "cannot write " + NameInMessage(name) + ": " + reason;
}

// These names open a file that is open already; replacing what they refer to would not reach it.
bool IsDescriptor(const std::string& name) {
    return name == "/dev/stdout" || name == "/dev/stderr" || name.starts_with("/dev/fd/") ||
           name.starts_with("/proc/self/fd/");
}

// Returns the file that a chain of links ends in, whether or not it exists.
fs::path Followed(fs::path name) {
    std::error_code error;
    for (int i = 0; i < kMostLinks && fs::is_symlink(fs::symlink_status(name, error)); ++i) {
        const fs::path next = fs::read_symlink(name, error);
        if (error) {
            break;
        }
        name = name.parent_path() / next;
    }
    return name;
}

bool AreSame(const struct stat& a, const struct stat& b) {
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

void RefuseInputs(const std::string& name, const struct stat& output,
                  const std::vector<std::string>& inputs) {
    for (const std::string& input : inputs) {
        struct stat status = {};
        if (S_ISREG(output.st_mode) && stat(input.c_str(), &status) == 0 &&
            AreSame(status, output)) {
            throw Failure(CannotWrite(name, "it is the input `" + input + "`; name another file"));
        }
    }
}

void RequireFolder(const std::string& name, const fs::path& folder) {
    std::error_code error;
    if (!fs::is_directory(folder, error)) {
        const bool exists = fs::exists(folder, error);
        throw Failure(CannotWrite(name, "the folder `" + folder.string() +
                                            (exists ? "` is a file" : "` does not exist")));
    }
}

// mkstemp makes a file that only its owner can read; a new output gets what any new file would get.
// The mask can only be read by setting it.
mode_t UsualMode() {
    const mode_t mask = umask(0);
    umask(mask);
    return 0666 & ~mask;
}

}  // namespace

std::string CannotWrite(const std::string& name, int reason) {
    return CannotWrite(name, ReasonOf(reason));
}

std::string FormatOf(const std::string& output, const std::string& chosen) {
    if (!chosen.empty()) {
        return chosen;
    }
    std::string suffix = fs::path(output).extension().string();
    std::transform(suffix.begin(), suffix.end(), suffix.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    if (suffix == ".evt" || suffix == ".vcd") {
        return suffix.substr(1);
    }
    throw Failure(NameInMessage(output) +
                  " tells no format; end its name in .evt or .vcd, or name one with --format");
}

bool AreSameOutput(const std::string& a, const std::string& b) {
    struct stat of_a = {};
    struct stat of_b = {};
    if (stat(a.c_str(), &of_a) == 0 && stat(b.c_str(), &of_b) == 0) {
        return AreSame(of_a, of_b) && S_ISREG(of_a.st_mode);
    }
    std::error_code error;
    return fs::weakly_canonical(fs::absolute(Followed(a), error), error) ==
           fs::weakly_canonical(fs::absolute(Followed(b), error), error);
}

OutputFile::OutputFile(std::string name, const std::vector<std::string>& inputs)
    : name_(std::move(name)), path_(name_ == "-" ? "/dev/stdout" : name_) {
    struct stat status = {};
    const bool exists = stat(path_.c_str(), &status) == 0;
    if (exists) {
        RefuseInputs(name_, status, inputs);
    }
    if (exists && S_ISDIR(status.st_mode)) {
        throw Failure(CannotWrite(name_, ReasonOf(EISDIR)));
    }
    if (IsDescriptor(path_) || (exists && !S_ISREG(status.st_mode))) {
        return;
    }
    if (exists && access(path_.c_str(), W_OK) != 0) {
        throw Failure(CannotWrite(name_, ReasonOf(errno)));
    }
    target_ = Followed(path_).string();
    MakeTemporary();
    if (exists) {
        // It fails without consequences: an ordinary user cannot give files away.
        [[maybe_unused]] const int owned = chown(path_.c_str(), status.st_uid, status.st_gid);
    }
    chmod(path_.c_str(), exists ? status.st_mode & 0777 : UsualMode());
}

void OutputFile::MakeTemporary() {
    const fs::path folder = fs::path(target_).parent_path();
    RequireFolder(name_, folder.empty() ? fs::path(".") : folder);
    std::string name = (folder / ".corv-XXXXXX").string();
    if (name.size() >= temporary_file.size()) {
        throw Failure(CannotWrite(name_, ReasonOf(ENAMETOOLONG)));
    }
    CatchSignals();
    const SignalsHeld held;
    const int file = mkstemp(name.data());
    if (file == -1) {
        throw Failure(CannotWrite(name_, ReasonOf(errno)));
    }
    close(file);
    path_ = std::move(name);
    std::copy_n(path_.c_str(), path_.size() + 1, temporary_file.data());
}

OutputFile::~OutputFile() {
    if (!target_.empty()) {
        const SignalsHeld held;
        unlink(path_.c_str());
        temporary_file[0] = '\0';
    }
}

void OutputFile::Commit() {
    if (target_.empty()) {
        return;
    }
    const SignalsHeld held;
    if (std::rename(path_.c_str(), target_.c_str()) != 0) {
        throw Failure(CannotWrite(name_, ReasonOf(errno)));
    }
    temporary_file[0] = '\0';
    target_.clear();
}

std::string OutputFile::Complaint(const std::string& sentence) const {
    const std::string about = path_ + ": ";
    return sentence.starts_with(about) ? CannotWrite(name_, sentence.substr(about.size()))
                                       : sentence;
}

}  // namespace corv::cli
