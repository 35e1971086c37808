// The counters of the process. Stimuli refer to them by handle and look them up at each question,
// so that a stimulus may outlive its counter.

#include <cstddef>
#include <memory>
#include <vector>

#include "corv/stimulators/counter.h"
#include "corv/stimulus/formula_parser.h"
#include "platform/guard.h"
#include "platform/immortal.h"
#include "stimulators/counter_text.h"

namespace {

// The registered counters; a handle is an index into the list.
using Counters = std::vector<std::unique_ptr<CCounterState>>;

Counters& Registry() noexcept {
    static corv::platform::Immortal<Counters> counters;
    return *counters;
}

template <class SetUp>
int Register(SetUp set_up) noexcept {
    return corv::platform::Guarded(-1, [&] {
        auto counter = std::make_unique<CCounterState>();
        if (!set_up(*counter)) {
            return -1;
        }
        Registry().push_back(std::move(counter));
        return static_cast<int>(Registry().size()) - 1;
    });
}

}  // namespace

int RegisterCounter(const char* formula, unsigned width, int split_mode) noexcept {
    return Register(
        [&](CCounterState& counter) { return counter.Init(formula, width, split_mode); });
}

int RegisterWholeCounter(const char* formula) noexcept {
    return Register(
        [&](CCounterState& counter) { return counter.Init(formula, 1, 0) && counter.MakeWhole(); });
}

CCounterState* FindCounter(int handle) noexcept {
    const Counters& counters = Registry();
    return handle >= 0 && static_cast<std::size_t>(handle) < counters.size()
               ? counters[static_cast<std::size_t>(handle)].get()
               : nullptr;
}

namespace corv {

void ResetCounters() noexcept {
    Counters().swap(Registry());
}

}  // namespace corv

bool CCounterRef::Init(const char* formula, std::int64_t start) noexcept {
    if (const auto reference = corv::stimulators::ReadCounterReference(formula ? formula : "")) {
        handle = reference->handle;
        wire = reference->wire;
    } else {
        handle = RegisterWholeCounter(formula);
        wire = 0;
    }
    CCounterState* counter = FindCounter(handle);
    if (counter) {
        counter->NoteStartTime(start);
    }
    return counter != nullptr;
}

bool CCounterRef::Format(CString& out) const noexcept {
    return handle != -1 && wire != -1 && corv::platform::Done([&] {
               out = CString(corv::stimulators::WriteCounterReference({wire, handle}));
           });
}

int CCounterRef::GetValue(std::int64_t time, CString& value) const noexcept {
    CCounterState* counter = FindCounter(handle);
    return counter ? counter->GetValue(static_cast<unsigned>(wire), time, value) : 0;
}

std::int64_t CCounterRef::GetNextEventTime(std::int64_t time) const noexcept {
    CCounterState* counter = FindCounter(handle);
    return counter ? counter->GetNextEventTime(static_cast<unsigned>(wire), time) : -1;
}

// Here and not beside the other parsers, since it has to undo its registration if the list cannot
// be filled.
int CCounterFormulaParser::Run(const char* formula, CStringArray& list, int width,
                               int split_mode) noexcept {
    if (!formula || !*formula || width > kMaxVectorWidth) {
        return 0;
    }
    const int handle =
        RegisterCounter(formula, static_cast<unsigned>(width > 0 ? width : 0), split_mode);
    const int before = list.GetSize();
    const bool appended =
        handle >= 0 && corv::platform::Done([&] {
            for (int wire = 0; wire < width; ++wire) {
                list.Add(corv::stimulators::WriteCounterReference({wire, handle}).c_str());
            }
        });
    if (handle >= 0 && !appended) {
        list.SetSize(before);
        Registry().pop_back();
    }
    return appended ? 1 : 0;
}
