#pragma once

#include <string>
#include <string_view>

namespace corv::cli {

// All of standard input; throws Failure.
std::string ReadStandardInput();

// Writes to the named file, or to standard output for "-" and an empty name. The data has left
// the program when it returns; throws Failure.
void WriteOutput(const std::string& name, std::string_view data);

// A field of comma-separated values, in quotes where it needs them.
std::string CsvField(const std::string& text);

// One line on standard error in the program's form: "corv: error: ", the sentence.
void WriteMessage(std::string_view severity, std::string_view sentence);

}  // namespace corv::cli
