#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace corv::cli {

using Json = nlohmann::ordered_json;

// Returns the document as one line. Bytes that are not UTF-8 become U+FFFD.
inline std::string JsonLine(const Json& document) {
    return document.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace corv::cli
