#pragma once

#include <cstdint>

// Which event a search by time selects. Operations take the mode as a number; a number above 4
// finds nothing. The examples have events at 10, 20 and 30.
enum EFindMode : std::uint32_t {
    FindAt = 0,          // the first event at the time: 20 finds 20, 25 finds nothing
    FindBefore = 1,      // the last event before it: 20 finds 10
    FindAfter = 2,       // the first event after it: 20 finds 30
    FindAtOrBefore = 3,  // the first event at it, else the last before: 20 finds 20, 25 finds 20
    FindAtOrAfter = 4,   // the first event at it or later: 20 finds 20, 25 finds 30
};
