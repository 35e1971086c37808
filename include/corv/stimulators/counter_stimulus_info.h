#pragma once

#include "corv/platform/export.h"

namespace corv {

// The settings of a counter stimulator and their formula text,
// "\counter\TYPE\1\DIR\1\RADIX\10\START\0\INC\1\PERIOD\10ns\REV\0". No setting is checked here;
// RegisterCounter does that. If memory runs out while a setting is stored, the setting stays as it
// was; an object that could not allocate any memory has the defaults and keeps them.
class CORV_API CCounterStimulusInfo {
public:
    enum Type : int { Binary = 1, Gray, Johnson, OneHot, OneCold };  // 0: unset
    enum Dir : int { Up = 1, Down = 2 };  // 0: unset; others count as Down

    // Type, direction and radix 0, texts empty, bits in their usual order.
    CCounterStimulusInfo() noexcept;
    CCounterStimulusInfo(const CCounterStimulusInfo& other) noexcept;
    CCounterStimulusInfo& operator=(const CCounterStimulusInfo& other) noexcept;
    ~CCounterStimulusInfo();

    Type GetType() const noexcept;
    void SetType(Type type) noexcept;
    Dir GetDir() const noexcept;
    void SetDir(Dir dir) noexcept;
    // The radix, 2 to 16, in which starting value and increment are written.
    int GetDisplayRadix() const noexcept;
    void SetDisplayRadix(int radix) noexcept;
    // Whether bit 0 is shown as the most significant one.
    bool GetReverseBitOrder() const noexcept;
    void SetReverseBitOrder(bool reverse) noexcept;

    // First value, step (of binary and Gray counters) and time between two counts: a number with an
    // optional unit. Copies are stored; null counts as empty.
    void SetStartingValue(const char* text) noexcept;
    void SetIncrementBy(const char* text) noexcept;
    void SetCountPeriod(const char* text) noexcept;
    // Copy the text into a buffer, cut to the buffer's size in bytes including the terminating
    // zero. Return whether the text is not empty.
    bool GetStartingValue(char* buffer, int size) const noexcept;
    bool GetIncrementBy(char* buffer, int size) const noexcept;
    bool GetCountPeriod(char* buffer, int size) const noexcept;

    // Writes the formula text. Returns false, with the buffer unchanged, if type, direction or
    // radix is 0, if a text is empty, or if the text and its zero do not fit into the buffer's size
    // in bytes.
    bool GenerateFormula(char* buffer, int size) const noexcept;

    // Reads a formula text: "counter", then the keys TYPE, DIR, RADIX, START, INC, PERIOD and REV
    // in this order and in any case, each with its value, separated by runs of "\". Returns false
    // at the first word that is missing or wrong; the fields before it have been set by then.
    bool FromFormula(const char* text) noexcept;

private:
    struct Settings;
    const Settings& Read() const noexcept;
    template <class Change>
    void Write(Change change) noexcept;

    Settings* settings_;  // owned; null if there was no memory for it
};

}  // namespace corv
