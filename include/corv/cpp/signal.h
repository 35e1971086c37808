#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "corv/containers/signal_container.h"
#include "corv/cpp/error.h"
#include "corv/cpp/events.h"
#include "corv/cpp/stimulus.h"
#include "corv/cpp/type.h"
#include "corv/cpp/wave.h"
#include "corv/signals/signal.h"

namespace corv {

// A VHDL object with its value changes: a scalar signal, or an array or record of members, each a
// signal of its own. Copies refer to the same signal; a member keeps the whole alive. Times are
// picoseconds.
//
//     corv::Signal bus("bus", corv::Type("std_logic_vector(3 downto 0)"));
//     bus.Add(0, "0000");
//     bus.Add(10'000, "X\"A\"");
//     bus.ValueAt(12'000);   // 1010
class Signal {
    // Finds times in the waves of a signal's leaves and takes values from the signal.
    struct Source {
        std::optional<std::int64_t> Next(std::int64_t time) const {
            std::optional<std::int64_t> first;
            for (ISignalWave* const wave : *waves) {
                IWaveEvent* event = nullptr;
                if (SUCCEEDED(wave->FindEvent(time, FindAfter, &event))) {
                    first = std::min(first.value_or(kEndOfTime), event->GetTime());
                }
            }
            return first;
        }
        Event At(std::int64_t time) const {
            return {time, TextAt(*signal, time).value_or(std::string())};
        }
        std::shared_ptr<ISignal> signal;
        std::shared_ptr<const std::vector<ISignalWave*>> waves;
    };

public:
    // Makes a signal without events. Throws Error for a type that a signal cannot have: an
    // unconstrained array, a dimension of more than 256 indices, more than 1,048,576 members.
    Signal(std::string_view name, const Type& type) {
        ISignal* signal = nullptr;
        cpp::Check(CreateSignal(type.Description().c_str(), nullptr, &signal),
                   "a signal cannot have this type");
        signal_ = {signal, [](ISignal* made) { made->Release(); }};
        signal_->SetName(std::string(name).c_str());
    }
    // Refers to a signal that lives as long as `owner`.
    template <class Owner>
    Signal(const std::shared_ptr<Owner>& owner, ISignal& signal) : signal_(owner, &signal) {}

    // Its own name, and that name after those of all signals above it: "s(3).a".
    std::string Name() const { return TextOf(signal_->GetName()); }
    std::string FullName() const {
        std::string name = Name();
        for (ISignal* at = signal_->GetParent(); at != nullptr; at = at->GetParent()) {
            name.insert(0, TextOf(at->GetName()));
        }
        return name;
    }

    // Throws Error for a signal without a type, which recordings may contain.
    Type GetType() const { return Type::FromDescription(TextOf(signal_->GetTypeInfo())); }

    // The elements or fields, in order; a scalar signal has none.
    std::vector<Signal> Members() const {
        std::vector<Signal> members;
        ISignalContainer* const list = signal_->GetSubSignals();
        ISignal* member = nullptr;
        for (std::uint32_t i = 0; list != nullptr && SUCCEEDED(list->GetAt(i, &member)); ++i) {
            members.push_back(Signal(signal_, *member));
        }
        return members;
    }
    // A scalar signal itself, or all scalar signals below a composite one, depth first.
    std::vector<Signal> Leaves() const {
        if (signal_->GetSubSignals() == nullptr) {
            return {*this};
        }
        std::vector<Signal> leaves;
        for (const Signal& member : Members()) {
            for (Signal& leaf : member.Leaves()) {
                leaves.push_back(std::move(leaf));
            }
        }
        return leaves;
    }

    // The stored events of a scalar signal. Throws Error for a composite one.
    Wave GetWave() const {
        if (signal_->GetWave() == nullptr) {
            throw Error("`" + Name() + "` has no wave; its members have");
        }
        return Wave(signal_, *signal_->GetWave());
    }

    // Appends an event to a scalar or to each element of an array of scalars. Throws Error for a
    // text that is not a value of the type, for other types, for a negative time and for one before
    // the last event; nothing is appended then.
    void Add(std::int64_t time, std::string_view value) {
        AddBytes(LeafWaves(), time, GetType().Bytes(value));
    }
    // Appends what a stimulus does from one time to another, both included: its value at `from`,
    // then its events. Throws Error as above; the events appended before stay.
    void Add(const Stimulus& stimulus, std::int64_t from, std::int64_t to) {
        const Type type = GetType();
        const std::vector<ISignalWave*> waves = LeafWaves();
        if (const auto value = stimulus.ValueAt(from)) {
            AddBytes(waves, from, type.Bytes(*value));
        }
        for (const Event& event : stimulus.Events(from + 1, to)) {
            AddBytes(waves, event.time, type.Bytes(event.value));
        }
    }

    // The text of the value at a time, as ISignal::GetValueTextAt writes it; nullopt if that
    // returns null.
    std::optional<std::string> ValueAt(std::int64_t time) const { return TextAt(*signal_, time); }

    // The events from one time to another, both included; a composite signal has one at each time
    // at which a member changes. A value is empty if ValueAt returns nullopt.
    EventView<Source> Events(std::int64_t from = 0, std::int64_t to = kEndOfTime) const {
        return {Source{signal_, std::make_shared<std::vector<ISignalWave*>>(LeafWaves())}, from,
                to};
    }

    // The object below, for the C-style operations.
    ISignal& Get() const noexcept { return *signal_; }

private:
    static std::string TextOf(const char* text) { return text != nullptr ? text : ""; }
    static std::optional<std::string> TextAt(ISignal& signal, std::int64_t time) {
        const char* const text = signal.GetValueTextAt(time, FindAtOrBefore);
        return text != nullptr ? std::optional<std::string>(text) : std::nullopt;
    }

    std::vector<ISignalWave*> LeafWaves() const {
        std::vector<ISignalWave*> waves;
        for (const Signal& leaf : Leaves()) {
            if (ISignalWave* const wave = leaf.Get().GetWave()) {
                waves.push_back(wave);
            }
        }
        return waves;
    }

    // The bytes are those of the leaves, one after the other. All times are checked before the
    // first event is appended.
    static void AddBytes(const std::vector<ISignalWave*>& waves, std::int64_t time,
                         const std::vector<unsigned char>& bytes) {
        const bool rises = std::all_of(waves.begin(), waves.end(), [&](ISignalWave* wave) {
            return time >= std::max<std::int64_t>(wave->GetLastTime(), 0);
        });
        if (!rises) {
            throw Error("events must be added in order of time");
        }
        const std::size_t size = bytes.size() / std::max<std::size_t>(waves.size(), 1);
        for (std::size_t i = 0; i < waves.size(); ++i) {
            std::uint64_t number = 0;
            std::memcpy(&number, bytes.data() + i * size, size);
            cpp::Check(waves[i]->AddEvent(time, 0, &number, sizeof number),
                       "the event cannot be added");
        }
    }

    std::shared_ptr<ISignal> signal_;
};

}  // namespace corv
