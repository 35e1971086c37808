#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace corv::cli {

// Returns all of standard input; throws Failure.
std::string ReadStandardInput();

// Writes to the named file, or to standard output for "-" and an empty name. When it returns, no
// data is left in the program's buffers. Throws Failure if writing fails or the file is one of the
// inputs; the file is unchanged then.
void WriteOutput(const std::string& name, std::string_view data,
                 const std::vector<std::string>& inputs = {});

// Returns the text as a field of comma-separated values, in quotes if it needs them.
std::string CsvField(const std::string& text);

// Writes one line to standard error in the program's form: "corv: error: " and the sentence.
void WriteMessage(std::string_view severity, std::string_view sentence);

}  // namespace corv::cli
