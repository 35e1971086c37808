#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace corv::cli {

// A file that a command writes. The content goes to a temporary file in the same folder, which
// takes the name once all is written. So after a failure, or a signal that ends the program, the
// file has its former content. A link stays a link: the file that it names is replaced. Permissions
// are kept. A device or a pipe is written directly; "-" is standard output. There can be only one
// OutputFile at a time.
class OutputFile {
public:
    // Throws Failure if the file cannot be written or is one of the inputs, under whatever name.
    explicit OutputFile(std::string name, const std::vector<std::string>& inputs = {});
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;
    // Removes the temporary file unless Commit has renamed it.
    ~OutputFile();

    // Returns the file to write to.
    const std::string& path() const { return path_; }
    // Ends the writing: the temporary file takes the name of the output. Throws Failure.
    void Commit();

    // Turns a sentence about path() into one about the file that the user named, "cannot write
    // `run.evt`: the disk is full"; returns any other sentence unchanged.
    std::string Complaint(const std::string& sentence) const;

private:
    void MakeTemporary();

    const std::string name_;  // as the user wrote it
    std::string target_;      // the file that is replaced; empty if it is written directly
    std::string path_;
};

// Returns the format of a recording to write, "evt" or "vcd": the chosen one, or else that of the
// name's suffix. Throws Failure if neither decides it.
std::string FormatOf(const std::string& output, const std::string& chosen);

// Returns whether two names of outputs mean the same file, which need not exist.
bool AreSameOutput(const std::string& a, const std::string& b);

// Returns "cannot write `run.evt`: the disk is full" with the reason for an errno.
std::string CannotWrite(const std::string& name, int reason);

}  // namespace corv::cli
