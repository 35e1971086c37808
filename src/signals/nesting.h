#pragma once

namespace corv::signals {

// Members of members are followed so deep and no deeper; types nest far less.
inline constexpr int kMostNesting = 256;

}  // namespace corv::signals
