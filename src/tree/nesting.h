#pragma once

namespace corv::tree {

// Members of members are followed so deep and no deeper; types nest far less.
inline constexpr int kMostNesting = 256;

}  // namespace corv::tree
