#pragma once

#include "corv/platform/export.h"

// Gate-level simulation values, single characters of a wider alphabet than std_logic (IEEE 1164).
// Case matters: H is a strong 1, h the weak H.

// The std_logic character that stands for a gate-level one, 0 when there is none.
CORV_API char GateLevel2StdLogic(char value) noexcept;

// That character's position in "UX01ZWLH-", -1 when there is none.
CORV_API int GateLevel2StdLogicIndex(char value) noexcept;
