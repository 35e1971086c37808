#include "host/open_stream.h"

#include <array>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <utility>

#include "corv/stremo/streams.h"
#include "host/packed_source.h"

namespace corv::host {
namespace {

namespace fs = std::filesystem;

// Only ordinary files are examined: a device might never end.
bool IsPacked(const std::string& file_name) {
    std::error_code error;
    if (!fs::is_regular_file(file_name, error)) {
        return false;
    }
    std::ifstream file(file_name, std::ios::binary);
    std::array<char, 2> mark{};
    return file.read(mark.data(), mark.size()) && std::memcmp(mark.data(), "\x1F\x8B", 2) == 0;
}

// Reads what can be read only once and in order.
PackedStream KeepPipe(const std::string& file_name) {
    if (file_name == "-") {
        return KeepPacked(std::cin);
    }
    std::ifstream pipe(file_name, std::ios::binary);
    if (!pipe) {
        throw std::runtime_error(file_name + ": access is denied");
    }
    return KeepPacked(pipe);
}

OpenedStream OpenSource(const std::string& file_name, PackedStream packed, int time_unit) {
    OpenedStream opened;
    if (!packed.problem.empty()) {
        opened.notes.push_back(packed.problem);
    }
    opened.reader = OpenStreamSource(file_name == "-" ? "standard input" : file_name.c_str(),
                                     std::move(packed.source), time_unit);
    if (!opened.reader) {
        throw std::runtime_error(std::string(LastStreamError()) +
                                 (packed.problem.empty() ? "" : "; " + packed.problem));
    }
    return opened;
}

}  // namespace

OpenedStream OpenStream(const std::string& file_name, const OpenOptions& options) {
    const int time_unit = options.time_unit ? static_cast<int>(*options.time_unit) : -1;
    std::error_code error;
    if (file_name == "-" || fs::is_fifo(file_name, error)) {
        return OpenSource(file_name, KeepPipe(file_name), time_unit);
    }
    if (IsPacked(file_name)) {
        return OpenSource(file_name, OpenPacked(file_name, options.progress), time_unit);
    }
    OpenedStream opened;
    if (options.time_unit) {
        opened.reader = OpenGhwRecording(file_name.c_str(), time_unit);
    } else {
        opened.reader.reset(stremo::CreateStreamRead(file_name.c_str()));
    }
    if (!opened.reader) {
        throw std::runtime_error(LastStreamError());
    }
    return opened;
}

}  // namespace corv::host
