#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace corv::cli {

// All of standard input; throws Failure.
std::string ReadStandardInput();

// Writes to the named file, or to standard output for "-" and an empty name. The data has left
// the program when it returns. Throws Failure, also when the file is one of the inputs; what was
// in the file stays then.
void WriteOutput(const std::string& name, std::string_view data,
                 const std::vector<std::string>& inputs = {});

// A field of comma-separated values, in quotes where it needs them.
std::string CsvField(const std::string& text);

// One line on standard error in the program's form: "corv: error: ", the sentence.
void WriteMessage(std::string_view severity, std::string_view sentence);

}  // namespace corv::cli
