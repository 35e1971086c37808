#pragma once

// The library for C++20 users: values without anything to release, std::string_view in, std::string
// out, ranges of events, and corv::Error for every failure. Header-only, built on the C-style
// operations. Where these can do more, Get returns the object below.
//
// The classes are in the namespace corv itself. The C-style ones (CStimulus, ISignal, ISignalWave,
// KTypeInfo) are global and have other names, so Stimulus, Signal, Wave, Type and Recording do not
// collide with anything. Times are std::int64_t picoseconds. A zero byte ends a text that is passed
// in. The rule for threads is in corv/corv.h.

#include "corv/cpp/error.h"
#include "corv/cpp/events.h"
#include "corv/cpp/recording.h"
#include "corv/cpp/save_signals.h"
#include "corv/cpp/signal.h"
#include "corv/cpp/stimulus.h"
#include "corv/cpp/type.h"
#include "corv/cpp/wave.h"
