#pragma once

#include <memory>

#include "corv/platform/export.h"
#include "corv/stimulus/custom_iterator.h"
#include "corv/stimulus/simple_stimulus.h"

class CStimulus;

// Walks the elements of a stimulus in formula order, of a replayed signal its events. It stays
// valid while the stimulus lives and is neither created anew nor destroyed. A copy stands where its
// original stands and moves on its own.
class CORV_API CStimIterator {
public:
    // A null stimulus has no elements, nor has a counter.
    explicit CStimIterator(CStimulus* stimulus) noexcept;
    CStimIterator(const CStimIterator& other) noexcept;
    CStimIterator& operator=(const CStimIterator& other) noexcept;
    ~CStimIterator();

    // Back to the first element.
    void Reset() noexcept;

    // The next element, null after the last one. The element belongs to the stimulus, that of a
    // replayed signal to the iterator. A relative element's time counts from the first relative
    // one.
    const CSimpleStimulus* Next() noexcept;

private:
    CStimulus* stimulus_;
    std::unique_ptr<CCustomIterator> custom_;
    int position_;
};
