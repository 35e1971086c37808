#pragma once

#include "corv/platform/export.h"
#include "corv/stimulus/simple_stimulus.h"

class CStimulus;

// Walks the elements of a stimulus in formula order. It stays valid while the stimulus lives and
// is neither created anew nor destroyed; it owns nothing and may be copied freely.
class CORV_API CStimIterator {
public:
    // A null stimulus has no elements.
    explicit CStimIterator(CStimulus* stimulus) noexcept;

    // Back to the first element.
    void Reset() noexcept;

    // The next element, null after the last one. The element belongs to the stimulus. A relative
    // element's time counts from the first relative one.
    const CSimpleStimulus* Next() noexcept;

private:
    CStimulus* stimulus_;
    int position_;
};
