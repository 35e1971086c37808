#include "corv/util/extended_id.h"

const char* SkipExtendedID(const char* name) noexcept {
    if (name == nullptr || *name != '\\') {
        return name;
    }
    const char* at = name + 1;
    for (; *at != '\0'; ++at) {
        if (*at != '\\') {
            continue;
        }
        if (at[1] != '\\') {
            return at + 1;
        }
        ++at;  // the second one of a pair
    }
    return at;
}
