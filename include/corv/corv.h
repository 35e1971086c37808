#pragma once

// Every public declaration of corv.

#include "corv/platform/cstring.h"
#include "corv/platform/cstring_array.h"
#include "corv/platform/export.h"
#include "corv/stimulators/clock.h"
#include "corv/stimulators/counter.h"
#include "corv/stimulators/counter_stimulus_info.h"
#include "corv/stimulus/check_formula.h"
#include "corv/stimulus/formula_parser.h"
#include "corv/stimulus/gate_level.h"
#include "corv/stimulus/simple_stimulus.h"
#include "corv/stimulus/stim_iterator.h"
#include "corv/stimulus/stimulus.h"
#include "corv/stimulus/time_unit.h"
#include "corv/stimulus/vesk.h"
#include "corv/util/dec_converter.h"
#include "corv/util/text.h"
#include "corv/util/time_units.h"
#include "corv/version.h"
