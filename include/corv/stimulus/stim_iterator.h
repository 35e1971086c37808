#pragma once

#include <memory>

#include "corv/platform/export.h"
#include "corv/stimulus/custom_iterator.h"
#include "corv/stimulus/simple_stimulus.h"

class CStimulus;

// Walks the elements of a stimulus in formula order, or the events of a replayed signal. It stays
// valid as long as the stimulus lives and is neither created anew nor destroyed. A copy starts at
// the position of its original and moves independently.
class CORV_API CStimIterator {
public:
    // A null stimulus has no elements, and neither has a counter.
    explicit CStimIterator(CStimulus* stimulus) noexcept;
    CStimIterator(const CStimIterator& other) noexcept;
    CStimIterator& operator=(const CStimIterator& other) noexcept;
    ~CStimIterator();

    // Goes back to the first element.
    void Reset() noexcept;

    // Returns the next element, null after the last one. The element belongs to the stimulus, for a
    // replayed signal to the iterator. The time of a relative element counts from the first
    // relative one.
    const CSimpleStimulus* Next() noexcept;

private:
    CStimulus* stimulus_;
    std::unique_ptr<CCustomIterator> custom_;
    int position_;
};
