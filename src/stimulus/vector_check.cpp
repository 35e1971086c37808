// Checks one value of a vector: whether it can be split, and whether all of it takes effect.

#include <algorithm>
#include <string>

#include "platform/ascii.h"
#include "stimulus/formula_check.h"
#include "util/quote.h"

namespace corv::stimulus {
namespace {

using util::Quote;

std::string Elements(int count) {
    return std::to_string(count) + (count == 1 ? " element" : " elements");
}

std::string DescribeMisfit(std::string_view value, VectorShape shape) {
    if (shape.width < 1) {
        return "the value " + Quote(value) + " fits no vector of " + Elements(shape.width);
    }
    if (std::all_of(value.begin(), value.end(), platform::IsDigit)) {
        return "the value " + Quote(value) + " is not " + std::to_string(shape.width) +
               " characters long; for the number write " + Quote("10#" + std::string(value));
    }
    return "the value " + Quote(value) + " is neither a number, such as `16#A5` or `10#-3`, nor " +
           std::to_string(shape.width) + " characters long";
}

}  // namespace

void CheckVectorValue(std::string_view value, VectorShape shape, ProblemList::Place place,
                      ProblemList& problems) {
    const auto read = VectorValue::Read(value, shape);
    if (!read) {
        problems.Error(place, DescribeMisfit(value, shape));
        return;
    }
    const std::size_t words = read->CountWords();
    if (const int bits = read->BitsOfCutNumber(); bits > 0) {
        problems.Warn(place, "the value " + Quote(value) + " needs " + std::to_string(bits) +
                                 " bits and is cut to the lowest " + std::to_string(shape.width));
    } else if (words > 0 && static_cast<std::int64_t>(words) < shape.width) {
        problems.Warn(place, "the value " + Quote(value) + " holds " + std::to_string(words) +
                                 (words == 1 ? " word for " : " words for ") +
                                 Elements(shape.width) + "; the elements after them get none");
    } else if (words > 0 && static_cast<std::int64_t>(words) > shape.width) {
        problems.Warn(place, "the value " + Quote(value) + " holds " + std::to_string(words) +
                                 " words for " + Elements(shape.width) +
                                 "; the words after these are left out");
    }
}

}  // namespace corv::stimulus
