// The times at which a stimulator switches, as a sorted map in which neighbouring states differ.

#include "corv/records/stim_state.h"

#include <cstring>
#include <iterator>
#include <limits>
#include <string>

#include "corv/stimulus/time_unit.h"
#include "platform/guard.h"
#include "util/fields.h"
#include "util/time_text.h"

namespace {

constexpr char kSeparator = ';';

void AppendTime(std::string& out, std::int64_t time) {
    unsigned unit = corv::util::kBaseUnit;
    corv::util::ScaleWhole(time, unit);
    corv::util::AppendNumber(out, time);
    out += corv::util::kTimeUnits[unit].name;
}

}  // namespace

CStimState::CStimState(const CStimState& other) noexcept {
    *this = other;
}

CStimState& CStimState::operator=(const CStimState& other) noexcept {
    corv::platform::Done([&] {
        States states(other.states_);
        const bool at_end = other.position_ == other.states_.end();
        const auto position = at_end ? states.end() : states.find(other.position_->first);
        const bool ends = position == states.end();
        states_.swap(states);  // keeps iterators valid, except the end
        position_ = ends ? states_.end() : States::const_iterator(position);
    });
    return *this;
}

CStimState::~CStimState() = default;

bool CStimState::Create(const char* text) noexcept {
    if (text == nullptr) {
        return false;
    }
    corv::util::FieldReader tokens(text, kSeparator);
    bool on = true;
    for (auto token = tokens.Next(); token; token = tokens.Next()) {
        const auto time = corv::util::ReadTime(*token);
        if (!time) {
            continue;
        }
        const unsigned unit =
            time->unit < 0 ? corv::util::kBaseUnit : static_cast<unsigned>(time->unit);
        if (!Record(corv::ConvertTime(time->whole, unit, corv::util::kBaseUnit), on)) {
            return false;
        }
        on = !on;
    }
    return true;
}

void CStimState::Add(std::int64_t time, bool on) noexcept {
    Record(time, on);
}

// Records a switch; returns false if out of memory.
bool CStimState::Record(std::int64_t time, bool on) noexcept {
    if (states_.empty() && !on) {
        return true;
    }
    return corv::platform::Done([&] {
        // the hint makes ascending times, the usual order, constant-time
        const auto entry = states_.insert_or_assign(states_.end(), time, on);
        if (entry != states_.begin() && std::prev(entry)->second == on) {
            Erase(entry);
        }
        if (states_.size() == 1 && !states_.begin()->second) {
            Erase(states_.begin());
        }
    });
}

// Removes an entry; a walk that is on it moves to the next one.
void CStimState::Erase(States::const_iterator entry) noexcept {
    const bool stands_there = position_ == entry;
    const auto next = states_.erase(entry);
    if (stands_there) {
        position_ = next;
    }
}

unsigned int CStimState::Store(char* buffer, unsigned int size) const noexcept {
    if (buffer != nullptr) {
        *buffer = '\0';
    }
    std::string text;
    const bool built = corv::platform::Done([&] {
        for (const auto& [time, on] : states_) {
            text.append(text.empty() ? 0 : 1, kSeparator);
            AppendTime(text, time);
        }
    });
    const std::size_t needed = text.size() + 1;
    if (!built || text.empty() || needed > std::numeric_limits<unsigned int>::max()) {
        return 0;
    }
    if (buffer != nullptr && needed > size) {
        return 0;
    }
    if (buffer != nullptr) {
        std::memcpy(buffer, text.c_str(), needed);
    }
    return static_cast<unsigned int>(needed);
}

std::int64_t CStimState::FirstState() noexcept {
    position_ = states_.begin();
    return NextState();
}

std::int64_t CStimState::NextState() noexcept {
    return position_ == states_.end() ? -1 : (position_++)->first;
}

bool CStimState::IsOn(std::int64_t time) const noexcept {
    const auto behind = states_.upper_bound(time);
    return behind != states_.begin() && std::prev(behind)->second;
}
