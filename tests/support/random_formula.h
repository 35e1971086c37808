#pragma once

#include "tests/support/random.h"
