#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace corv::cli {

// A file that a command writes. Its content goes to a temporary file beside it, which takes its
// name when all is written: a failure, or a signal that ends the program, leaves what was there
// before. A link stays a link: the file that it names is replaced. Permissions are kept. A device
// or a pipe is written as it is; "-" is standard output. There is one output at a time.
class OutputFile {
public:
    // Throws Failure when the file cannot be written or is one of the inputs, by whatever name.
    explicit OutputFile(std::string name, const std::vector<std::string>& inputs = {});
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;
    // Removes what was written, unless it has its name.
    ~OutputFile();

    // The file to write to.
    const std::string& path() const { return path_; }
    // All is written. Throws Failure.
    void Commit();

    // "cannot write `run.evt`: the disk is full" for a sentence about path(); any other sentence
    // stays what it is.
    std::string Complaint(const std::string& sentence) const;

private:
    void MakeTemporary();

    const std::string name_;  // as the user wrote it
    std::string target_;      // the file that is replaced; empty when it is written directly
    std::string path_;
};

// The format of a recording that is written, "evt" or "vcd": the one that was chosen, or else that
// of the name's suffix. Throws Failure when neither says it.
std::string FormatOf(const std::string& output, const std::string& chosen);

// Whether two names of outputs mean the same file, which need not exist.
bool AreSameOutput(const std::string& a, const std::string& b);

// "cannot write `run.evt`: the disk is full", with the reason that errno has.
std::string CannotWrite(const std::string& name, int reason);

}  // namespace corv::cli
