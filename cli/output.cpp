#include "cli/output.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>

#include "cli/command.h"
#include "cli/output_file.h"
#include "host/fit_text.h"

namespace corv::cli {
std::string ReadStandardInput() {
    std::string data;
    char block[1 << 16];
    while (const std::size_t length = std::fread(block, 1, sizeof block, stdin)) {
        data.append(block, length);
    }
    if (std::ferror(stdin)) {
        throw Failure(std::string("cannot read standard input: ") + std::strerror(errno));
    }
    return data;
}

namespace {

void WriteAll(std::FILE* file, const std::string& name, std::string_view data) {
    const bool written =
        std::fwrite(data.data(), 1, data.size(), file) == data.size() && std::fflush(file) == 0;
    const int reason = errno;
    if ((file != stdout && std::fclose(file) != 0) || !written) {
        throw Failure(CannotWrite(name, written ? errno : reason));
    }
}

}  // namespace

void WriteOutput(const std::string& name, std::string_view data,
                 const std::vector<std::string>& inputs) {
    if (name.empty() || name == "-") {
        return WriteAll(stdout, "-", data);
    }
    OutputFile output(name, inputs);
    std::FILE* const file = std::fopen(output.path().c_str(), "wb");
    if (!file) {
        throw Failure(CannotWrite(name, errno));
    }
    WriteAll(file, name, data);
    output.Commit();
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
