#pragma once

#include <string>

#include "corv/stremo/vcd_writer.h"
#include "platform/files.h"

namespace corv::vcd {

// corv::WriteVcd with files of the caller's choice. Throws std::bad_alloc and whatever the options'
// functions throw.
bool WriteVcd(stremo::IEventsStreamRead& reader, platform::Files& files,
              const std::string& file_name, const VcdOptions& options);

}  // namespace corv::vcd
