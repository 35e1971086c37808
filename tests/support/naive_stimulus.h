#pragma once

#include "tests/support/naive_time.h"
#include "tests/support/test.h"

namespace corv::test {

// A stimulus of an ordinary formula, read and evaluated step by step by the plainest means: words
// are erased from the front of a string, every question scans all elements, no number overflows.
class NaiveStimulus {
public:
    explicit NaiveStimulus(unsigned default_unit = 1) : default_unit_(default_unit) {}

    bool Create(std::string formula, std::int64_t start) {
        *this = NaiveStimulus(default_unit_);
        bool good = true;
        while (good && !formula.empty()) {
            good = AnalyseToken(ReadElement(formula));
        }
        start_ = NaiveConvert(start, default_unit_, 1);
        NormaliseOffset();
        return good && !elements_.empty();
    }

    std::optional<std::string> GetValue(Int128 t) const {
        Int128 pattern_time = t - PatternStart();
        if (pattern_time < 0) {
            return std::nullopt;
        }
        if (Period() != 0 && pattern_time >= Period()) {
            pattern_time %= Period();
        }
        const Element* absolute = Nearest(t, true, -1);
        const Element* relative = Nearest(pattern_time, false, -1);
        if (absolute && relative) {
            const Int128 happened = t - pattern_time + relative->time;
            return absolute->time >= happened ? absolute->value : relative->value;
        }
        const Element* only = absolute ? absolute : relative;
        return only ? std::optional(only->value) : std::nullopt;
    }

    std::int64_t GetNextEventTime(std::int64_t t) const {
        return static_cast<std::int64_t>(NextEvent(t, true).value_or(-1));
    }

    std::string GenerateFormula() const {
        std::string out;
        for (const Element& element : elements_) {
            const auto time = element.time + (element.absolute ? 0 : offset_);
            out += element.value + (element.include_time ? element.absolute ? " @" : " " : "") +
                   (element.include_time ? std::to_string(time) : "") + ", ";
        }
        out.erase(out.find_last_not_of(" \t\n\v\f\r") + 1);
        out.erase(out.size() - (out.ends_with(',') ? 1 : 0));
        return Period() == 0 ? out
                             : out + " -r " + std::to_string(period_) +
                                   (period_unit_ != 1 ? kUnitNames.at(period_unit_) : "");
    }

    void NoRepeat() { period_ = 0; }
    std::size_t Size() const { return elements_.size(); }

private:
    struct Element {
        std::string value;
        std::int64_t time = 0;  // in ps
        bool absolute = false;
        bool include_time = false;
    };

    // Where the pair that was opened before `from` closes.
    static std::size_t FindClosing(const std::string& text, std::size_t from, char open,
                                   char close) {
        std::size_t at = from;
        while (at < text.size() && text[at] != close) {
            at = text[at] == open ? FindClosing(text, at + 1, open, close) : at;
            at += at < text.size() ? 1 : 0;
        }
        return at < text.size() ? at : std::string::npos;
    }

    static std::string ReadWord(std::string& text, std::string_view separators) {
        text.erase(0, text.find_first_not_of(separators));
        std::size_t length = text.find_first_of(separators);
        if (text.starts_with('(') || text.starts_with('"') || text.starts_with('\'')) {
            length = FindClosing(text, 1, text[0], text[0] == '(' ? ')' : text[0]);
            length += length == std::string::npos ? 0 : 1;
        }
        std::string word = text.substr(0, length);
        text.erase(0, word.size());
        return word;
    }

    static std::string ReadElement(std::string& text) {
        std::string element;
        while (!text.empty() && text[0] != ',') {
            element += ReadWord(text, " \n\t,") + " ";
        }
        text.erase(0, text.find_first_not_of(','));
        return element;
    }

    bool AnalyseToken(std::string text) {
        if (text.empty()) {
            return false;
        }
        text.pop_back();  // the space put behind the last word, which is not part of it
        while (!text.empty()) {
            Element element;
            element.value = ReadWord(text, " \n\t");
            std::string time = ReadWord(text, " \n\t");
            const std::string lower = NaiveLower(element.value);
            const bool is_period = lower == "-r" || lower == "-repeat";
            element.include_time = !time.empty();
            element.absolute = !is_period && time.starts_with('@');
            time.erase(0, element.absolute ? 1 : 0);
            std::string rest = text;
            if (const std::string next = ReadWord(rest, " \n\t"); NaiveUnit(next) >= 0) {
                time += next;
                text = rest;
            }
            const NaiveTime read = NaiveReadTime(time).value_or(NaiveTime{0, -1});
            const unsigned unit = read.unit < 0 ? default_unit_ : static_cast<unsigned>(read.unit);
            element.time = NaiveConvert(read.value, unit, 1);
            if (is_period) {
                period_ = read.value;
                period_unit_ = unit;
            } else if (element.time < 0) {
                return false;
            } else if (!element.value.empty()) {
                elements_.push_back(element);
            }
        }
        return true;
    }

    void NormaliseOffset() {
        const Element* first = nullptr;
        for (const Element& element : elements_) {
            first = first || element.absolute ? first : &element;
        }
        offset_ = first ? first->time : 0;
        for (Element& element : elements_) {
            element.time -= element.absolute ? 0 : offset_;
        }
    }

    Int128 PatternStart() const { return Int128{start_} + offset_; }
    Int128 Period() const {
        const Int128 period = NaiveConvert(period_, period_unit_, 1);
        return period < 0 ? -period : period;
    }

    // The element with the smallest distance that is not negative, the earlier one of equals.
    const Element* Nearest(Int128 t, bool absolute, int direction) const {
        const Element* best = nullptr;
        Int128 best_distance = 0;
        for (const Element& element : elements_) {
            const Int128 distance = (element.time - t) * direction;
            if (element.absolute == absolute && distance >= 0 &&
                (!best || distance < best_distance)) {
                best = &element;
                best_distance = distance;
            }
        }
        return best;
    }

    std::optional<Int128> NextEvent(Int128 t, bool absolute_lookup) const {
        const Int128 start = PatternStart();
        const Int128 from = t + 1 < start ? start : t + 1;
        const Element* absolute = absolute_lookup ? Nearest(from, true, 1) : nullptr;
        Int128 pattern_time = from - start;
        Int128 periods = 0;
        if (Period() != 0 && pattern_time >= Period()) {
            periods = pattern_time / Period();
            pattern_time %= Period();
        }
        std::optional<Int128> event;
        if (const Element* next = Nearest(pattern_time, false, 1)) {
            event = start + next->time + Period() * periods;
        } else if (Period() != 0 && absolute_lookup) {
            if (const auto first = NextEvent(start - 1, false)) {  // in the next period
                event = *first + Period() * (periods + 1);
            }
        }
        if (event && *event > std::numeric_limits<std::int64_t>::max()) {
            event.reset();  // past the end of time
        }
        return absolute && (!event || absolute->time < *event) ? absolute->time : event;
    }

    std::vector<Element> elements_;
    std::int64_t period_ = 0;
    unsigned period_unit_ = 1;
    std::int64_t start_ = 0;
    std::int64_t offset_ = 0;
    unsigned default_unit_;
};

}  // namespace corv::test
