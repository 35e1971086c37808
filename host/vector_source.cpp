#include "host/vector_source.h"

#include <algorithm>
#include <utility>

#include "corv/platform/cstring_array.h"
#include "corv/stimulators/counter.h"
#include "corv/stimulus/formula_parser.h"
#include "host/driven_signal.h"
#include "host/value_type.h"

namespace corv::host {
namespace {

constexpr int kCounts = 16;  // shown in a window unless the user asks otherwise
constexpr int kCharacters = 1;
constexpr int kWords = 0;

// Returns the elements' formulas. The normal form comes first, since splitting reads times without
// a unit as picoseconds.
std::vector<std::string> CutFormula(const VectorFormula& vector) {
    CStimulus whole(static_cast<unsigned>(vector.unit), 1);
    CString normal;
    CStringArray list;
    if (whole.Create(vector.formula.c_str(), 0) != 0) {
        whole.GenerateFormula(normal);
    }
    std::vector<std::string> formulas;
    if (CFormulaParser().Run(normal, list, vector.width, vector.words ? kWords : kCharacters)) {
        for (int i = 0; i < list.GetSize(); ++i) {
            formulas.emplace_back(list[i].View());
        }
    }
    return formulas;
}

std::unique_ptr<Source> MakeElement(const std::string& formula, std::int64_t at) {
    auto stimulus = std::make_unique<CStimulus>();
    stimulus->Create(formula.c_str(), at);  // an element without any value stays empty
    return std::make_unique<StimulusSource>(std::move(stimulus));
}

// Several elements, each with a source of its own.
class ElementsSource final : public Source {
public:
    ElementsSource(std::vector<std::unique_ptr<Source>> elements, bool words, char not_driven)
        : elements_(std::move(elements)), words_(words), not_driven_(not_driven) {}

    std::int64_t NextEvent(std::int64_t time) override {
        std::int64_t first = -1;
        for (const auto& element : elements_) {
            const std::int64_t next = element->NextEvent(time);
            first = next >= 0 && (first < 0 || next < first) ? next : first;
        }
        return first;
    }

    std::optional<std::string> ValueAt(std::int64_t time) override {
        std::string text;
        bool any = false;
        for (const auto& element : elements_) {
            const auto value = element->ValueAt(time);
            any |= value.has_value();
            if (words_ && &element != &elements_.front()) {
                text += kBetweenWords;
            }
            text += WithoutQuotes(value.value_or(std::string(1, not_driven_)));
        }
        return any ? std::optional(std::move(text)) : std::nullopt;
    }

    std::int64_t NaturalEnd(std::int64_t start) override {
        std::int64_t end = start;
        for (const auto& element : elements_) {
            end = std::max(end, element->NaturalEnd(start));
        }
        return end;
    }

    bool IsBus() const override { return true; }

private:
    std::vector<std::unique_ptr<Source>> elements_;
    bool words_;
    char not_driven_;  // for an element that nothing has driven yet
};

// A counter knows only its present count period, so it is walked forward from its start, event by
// event; a question about an earlier time restarts it.
class CounterSource final : public Source {
public:
    enum class Shows { Whole, Bus, Element };

    CounterSource(const VectorFormula& vector, Shows shows, unsigned element)
        : vector_(vector), shows_(shows), element_(element) {
        Restart();
    }

    // Returns whether the formula can be used.
    bool IsGood() const { return good_; }

    std::int64_t NextEvent(std::int64_t time) override {
        WalkTo(time);
        return next_;
    }

    std::optional<std::string> ValueAt(std::int64_t time) override {
        WalkTo(time);
        if (now_ < 0) {
            return std::nullopt;
        }
        std::string text;
        const unsigned last = shows_ == Shows::Bus ? static_cast<unsigned>(vector_.width) : 1;
        for (unsigned i = 0; i < last; ++i) {
            CString value;
            if (counter_.GetValue(element_ + i, now_, value) == 0) {
                return std::nullopt;
            }
            text += value.View();
        }
        return text;
    }

    std::int64_t NaturalEnd(std::int64_t start) override {
        const std::int64_t first = NextEvent(-1);
        const std::int64_t period = NextEvent(first) - first;
        std::int64_t end = std::max(start, first);
        for (int i = 0; i < kCounts; ++i) {
            end = Later(end, period);
        }
        return end;
    }

    bool IsBus() const override { return shows_ == Shows::Bus; }

private:
    void Restart() {
        counter_ = CCounterState();
        good_ = counter_.Init(vector_.formula.c_str(), static_cast<unsigned>(vector_.width),
                              vector_.words ? kWords : kCharacters) &&
                (shows_ != Shows::Whole || counter_.MakeWhole());
        counter_.NoteStartTime(vector_.at);
        now_ = -1;
        next_ = good_ ? counter_.GetNextEventTime(element_, -1) : -1;
    }

    void WalkTo(std::int64_t time) {
        if (time < now_) {
            Restart();
        }
        while (next_ >= 0 && next_ <= time) {
            now_ = next_;
            next_ = counter_.GetNextEventTime(element_, now_);
        }
    }

    VectorFormula vector_;
    Shows shows_;
    unsigned element_;
    CCounterState counter_;
    bool good_ = false;
    std::int64_t now_ = -1;   // the last event up to the time of the last question
    std::int64_t next_ = -1;  // the first one after it
};

std::unique_ptr<Source> MakeCounter(const VectorFormula& vector, CounterSource::Shows shows,
                                    unsigned element) {
    auto counter = std::make_unique<CounterSource>(vector, shows, element);
    return counter->IsGood() ? std::move(counter) : nullptr;
}

}  // namespace

bool IsCounter(std::string_view formula) {
    CString lower(formula);
    lower.MakeLower();
    return lower.Find("\\counter") >= 0;
}

std::unique_ptr<Source> MakeVector(const VectorFormula& vector) {
    if (IsCounter(vector.formula)) {
        return MakeCounter(vector, CounterSource::Shows::Bus, 0);
    }
    auto elements = MakeElements(vector);
    return elements.empty() ? nullptr
                            : std::make_unique<ElementsSource>(std::move(elements), vector.words,
                                                               vector.typed ? kNotDriven : 'U');
}

std::unique_ptr<Source> JoinSources(std::vector<std::unique_ptr<Source>> elements) {
    return std::make_unique<ElementsSource>(std::move(elements), true, kNotDriven);
}

std::vector<std::unique_ptr<Source>> MakeElements(const VectorFormula& vector) {
    std::vector<std::unique_ptr<Source>> elements;
    if (IsCounter(vector.formula)) {
        for (int i = 0; i < vector.width; ++i) {
            elements.push_back(
                MakeCounter(vector, CounterSource::Shows::Element, static_cast<unsigned>(i)));
        }
        return elements;
    }
    for (const std::string& formula : CutFormula(vector)) {
        elements.push_back(MakeElement(formula, vector.at));
    }
    return elements;
}

std::unique_ptr<Source> MakeWholeCounter(const std::string& formula, std::int64_t at) {
    return MakeCounter({formula, 1, false, TimeUnit::Picosecond, at}, CounterSource::Shows::Whole,
                       0);
}

}  // namespace corv::host
