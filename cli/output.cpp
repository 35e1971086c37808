#include "cli/output.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

#include "cli/command.h"
#include "host/fit_text.h"

namespace corv::cli {
namespace {

[[noreturn]] void Fail(std::string_view what, const std::string& name) {
    const int reason = errno;
    throw Failure("cannot " + std::string(what) + " " + name + ": " + std::strerror(reason));
}

}  // namespace

std::string ReadStandardInput() {
    std::string data;
    char block[1 << 16];
    while (const std::size_t length = std::fread(block, 1, sizeof block, stdin)) {
        data.append(block, length);
    }
    if (std::ferror(stdin)) {
        Fail("read", "standard input");
    }
    return data;
}

void WriteOutput(const std::string& name, std::string_view data) {
    const bool standard = name.empty() || name == "-";
    const std::string shown = standard ? "standard output" : "`" + name + "`";
    std::FILE* file = standard ? stdout : std::fopen(name.c_str(), "wb");
    if (!file) {
        Fail("open", shown);
    }
    const bool written =
        std::fwrite(data.data(), 1, data.size(), file) == data.size() && std::fflush(file) == 0;
    const int reason = errno;
    if ((!standard && std::fclose(file) != 0) || !written) {
        errno = written ? errno : reason;
        Fail("write", shown);
    }
}

std::string CsvField(const std::string& text) {
    if (text.find_first_of(",\"\r\n") == std::string::npos) {
        return text;
    }
    std::string field = "\"";
    for (const char c : text) {
        field += c == '"' ? "\"\"" : std::string(1, c);
    }
    return field + "\"";
}

void WriteMessage(std::string_view severity, std::string_view sentence) {
    std::fprintf(stderr, "corv: %s: %s\n", std::string(severity).c_str(),
                 host::CleanText(sentence).c_str());
}

}  // namespace corv::cli
