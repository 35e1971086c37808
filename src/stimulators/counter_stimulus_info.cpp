#include "corv/stimulators/counter_stimulus_info.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <string>
#include <string_view>

#include "platform/guard.h"
#include "stimulators/counter_text.h"
#include "util/fields.h"

namespace corv {

struct CCounterStimulusInfo::Settings {
    Type type = Type{};
    Dir dir = Dir{};
    int display_radix = 0;
    std::string starting_value;
    std::string increment;
    std::string count_period;
    bool reverse_bit_order = false;
};

namespace {

bool CopyOut(const std::string& text, char* buffer, int size) noexcept {
    if (buffer && size > 0) {
        const std::size_t length = std::min(text.size(), static_cast<std::size_t>(size) - 1);
        std::memcpy(buffer, text.data(), length);
        buffer[length] = '\0';
    }
    return !text.empty();
}

}  // namespace

// An object that could not allocate its settings reads the defaults.
const CCounterStimulusInfo::Settings& CCounterStimulusInfo::Read() const noexcept {
    static const Settings kDefaults;
    return settings_ ? *settings_ : kDefaults;
}

template <class Change>
void CCounterStimulusInfo::Write(Change change) noexcept {
    if (settings_) {
        platform::Done([&] { change(*settings_); });
    }
}

CCounterStimulusInfo::CCounterStimulusInfo() noexcept : settings_(new (std::nothrow) Settings) {}

CCounterStimulusInfo::CCounterStimulusInfo(const CCounterStimulusInfo& other) noexcept
    : CCounterStimulusInfo() {
    *this = other;
}

CCounterStimulusInfo& CCounterStimulusInfo::operator=(const CCounterStimulusInfo& other) noexcept {
    if (this != &other) {
        Write([&](Settings& settings) {
            Settings copy = other.Read();  // all of it or nothing
            settings = std::move(copy);
        });
    }
    return *this;
}

CCounterStimulusInfo::~CCounterStimulusInfo() {
    delete settings_;
}

CCounterStimulusInfo::Type CCounterStimulusInfo::GetType() const noexcept {
    return Read().type;
}

void CCounterStimulusInfo::SetType(Type type) noexcept {
    Write([=](Settings& settings) { settings.type = type; });
}

CCounterStimulusInfo::Dir CCounterStimulusInfo::GetDir() const noexcept {
    return Read().dir;
}

void CCounterStimulusInfo::SetDir(Dir dir) noexcept {
    Write([=](Settings& settings) { settings.dir = dir; });
}

int CCounterStimulusInfo::GetDisplayRadix() const noexcept {
    return Read().display_radix;
}

void CCounterStimulusInfo::SetDisplayRadix(int radix) noexcept {
    Write([=](Settings& settings) { settings.display_radix = radix; });
}

bool CCounterStimulusInfo::GetReverseBitOrder() const noexcept {
    return Read().reverse_bit_order;
}

void CCounterStimulusInfo::SetReverseBitOrder(bool reverse) noexcept {
    Write([=](Settings& settings) { settings.reverse_bit_order = reverse; });
}

void CCounterStimulusInfo::SetStartingValue(const char* text) noexcept {
    Write([=](Settings& settings) { settings.starting_value = text ? text : ""; });
}

void CCounterStimulusInfo::SetIncrementBy(const char* text) noexcept {
    Write([=](Settings& settings) { settings.increment = text ? text : ""; });
}

void CCounterStimulusInfo::SetCountPeriod(const char* text) noexcept {
    Write([=](Settings& settings) { settings.count_period = text ? text : ""; });
}

bool CCounterStimulusInfo::GetStartingValue(char* buffer, int size) const noexcept {
    return CopyOut(Read().starting_value, buffer, size);
}

bool CCounterStimulusInfo::GetIncrementBy(char* buffer, int size) const noexcept {
    return CopyOut(Read().increment, buffer, size);
}

bool CCounterStimulusInfo::GetCountPeriod(char* buffer, int size) const noexcept {
    return CopyOut(Read().count_period, buffer, size);
}

bool CCounterStimulusInfo::GenerateFormula(char* buffer, int size) const noexcept {
    const Settings& settings = Read();
    if (settings.type == 0 || settings.dir == 0 || settings.display_radix == 0 ||
        settings.starting_value.empty() || settings.increment.empty() ||
        settings.count_period.empty()) {
        return false;
    }
    return platform::Guarded(false, [&] {
        const std::string text = stimulators::WriteCounterText(
            {settings.type, settings.dir, settings.display_radix, settings.starting_value,
             settings.increment, settings.count_period, settings.reverse_bit_order});
        if (!buffer || size < 0 || text.size() >= static_cast<std::size_t>(size)) {
            return false;
        }
        std::memcpy(buffer, text.c_str(), text.size() + 1);
        return true;
    });
}

bool CCounterStimulusInfo::FromFormula(const char* text) noexcept {
    if (!settings_) {
        return false;
    }
    stimulators::CounterReader reader(text ? text : "");
    return platform::Guarded(false, [&] {
        Settings& to = *settings_;
        // One step per key, so that everything before a wrong one is stored.
        const auto read = [&reader](stimulators::CounterKey key, auto store) {
            const auto value = reader.Value(key);
            if (value) {
                store(*value);
            }
            return value.has_value();
        };
        using Key = stimulators::CounterKey;
        using util::LeadingInt;
        return reader.Begin() &&
               read(Key::Type, [&](auto v) { to.type = static_cast<Type>(LeadingInt(v)); }) &&
               read(Key::Dir, [&](auto v) { to.dir = static_cast<Dir>(LeadingInt(v)); }) &&
               read(Key::Radix, [&](auto v) { to.display_radix = LeadingInt(v); }) &&
               read(Key::Start, [&](auto v) { to.starting_value = v; }) &&
               read(Key::Inc, [&](auto v) { to.increment = v; }) &&
               read(Key::Period, [&](auto v) { to.count_period = v; }) &&
               read(Key::Rev, [&](auto v) { to.reverse_bit_order = LeadingInt(v) != 0; });
    });
}

}  // namespace corv
