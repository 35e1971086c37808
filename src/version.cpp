#include "corv/version.h"

namespace corv {

const char* Version() noexcept {
    return CORV_VERSION;
}

}  // namespace corv
