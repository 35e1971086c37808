#pragma once

namespace corv::tree {

// The depth down to which operations follow members of members. Types nest far less; the limit
// keeps a tree that contains itself from exhausting the stack.
inline constexpr int kMostNesting = 256;

}  // namespace corv::tree
