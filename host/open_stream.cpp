#include "host/open_stream.h"

#include <zlib.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <random>
#include <stdexcept>
#include <system_error>

#include "corv/stremo/ghw_options.h"
#include "corv/stremo/stream_error.h"

namespace corv::host {
namespace {

namespace fs = std::filesystem;

// A folder of its own for the unpacked file, which keeps its name so that messages can tell it.
class TemporaryFolder {
public:
    TemporaryFolder() {
        std::random_device random;
        std::error_code error;
        do {
            path_ = fs::temp_directory_path() / ("corv-" + std::to_string(random()));
        } while (!fs::create_directory(path_, error) && !error);
        if (error) {
            throw std::runtime_error(path_.string() + ": " + error.message());
        }
        fs::permissions(path_, fs::perms::owner_all, error);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder() {
        std::error_code error;
        fs::remove_all(path_, error);
    }

    const fs::path& path() const { return path_; }

private:
    fs::path path_;
};

// Nothing is read from what is no ordinary file: a pipe might never answer.
bool IsPacked(const std::string& file_name) {
    std::error_code error;
    if (!fs::is_regular_file(file_name, error)) {
        return false;
    }
    std::ifstream file(file_name, std::ios::binary);
    std::array<char, 2> mark{};
    return file.read(mark.data(), mark.size()) && std::memcmp(mark.data(), "\x1F\x8B", 2) == 0;
}

using PackedFile = std::unique_ptr<gzFile_s, decltype(&gzclose)>;

// Unpacks as far as the file is whole; gives what is wrong with it, or an empty text.
std::string Unpack(const std::string& from, const fs::path& to,
                   const std::function<void(double)>& progress) {
    const PackedFile packed(gzopen(from.c_str(), "rb"), gzclose);
    if (packed == nullptr) {
        throw std::runtime_error(from + ": " + std::strerror(errno));
    }
    gzbuffer(packed.get(), 1U << 18);
    std::error_code error;
    const auto size = static_cast<double>(fs::file_size(from, error));
    std::ofstream unpacked(to, std::ios::binary);
    std::vector<char> buffer(std::size_t{1} << 20);
    int count = 0;
    while ((count = gzread(packed.get(), buffer.data(), static_cast<unsigned>(buffer.size()))) >
           0) {
        if (!unpacked.write(buffer.data(), count)) {
            throw std::runtime_error(from + " can't be unpacked: no room in " +
                                     to.parent_path().parent_path().string() +
                                     "; set TMPDIR to a folder with more");
        }
        if (progress) {
            progress(static_cast<double>(gzoffset(packed.get())) / size);
        }
    }
    if (!unpacked.flush()) {
        throw std::runtime_error(from + " can't be unpacked: " + std::strerror(errno));
    }
    int code = Z_OK;
    const char* const problem = gzerror(packed.get(), &code);
    if (code == Z_BUF_ERROR) {
        return "the packed file is cut: what can be unpacked is read";
    }
    return code == Z_OK || code == Z_STREAM_END ? ""
                                                : std::string("the packed file is damaged (") +
                                                      problem + "): what can be unpacked is read";
}

stremo::IEventsStreamRead* Open(const std::string& file_name, const OpenOptions& options) {
    return options.time_unit
               ? OpenGhwRecording(file_name.c_str(), static_cast<int>(*options.time_unit))
               : stremo::CreateStreamRead(file_name.c_str());
}

}  // namespace

OpenedStream OpenStream(const std::string& file_name, const OpenOptions& options) {
    OpenedStream opened;
    if (!IsPacked(file_name)) {
        opened.reader.reset(Open(file_name, options));
        if (!opened.reader) {
            throw std::runtime_error(LastStreamError());
        }
        return opened;
    }
    const TemporaryFolder folder;
    const fs::path unpacked = folder.path() / fs::path(file_name).stem();
    if (std::string problem = Unpack(file_name, unpacked, options.progress); !problem.empty()) {
        opened.notes.push_back(std::move(problem));
    }
    opened.unpacked = unpacked.string();
    opened.reader.reset(Open(opened.unpacked, options));
    if (!opened.reader) {
        std::string problem = LastStreamError();
        if (problem.starts_with(opened.unpacked)) {
            problem.replace(0, opened.unpacked.size(), file_name);
        }
        throw std::runtime_error(opened.notes.empty() ? problem
                                                      : problem + "; " + opened.notes.front());
    }
    return opened;
}

}  // namespace corv::host
