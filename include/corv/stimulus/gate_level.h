#pragma once

#include "corv/platform/export.h"

// Gate-level simulation values, single characters of a wider alphabet than std_logic (IEEE 1164).
// Case matters: H is a strong 1, h the weak H.

// Returns the std_logic character for a gate-level one, 0 if there is none.
CORV_API char GateLevel2StdLogic(char value) noexcept;

// Returns that character's position in "UX01ZWLH-", -1 if there is none.
CORV_API int GateLevel2StdLogicIndex(char value) noexcept;
