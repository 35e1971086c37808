#include "host/driven_signal.h"

#include <algorithm>
#include <map>
#include <memory>
#include <new>
#include <set>
#include <stdexcept>
#include <utility>

#include "corv/typeinfo/type_info.h"
#include "corv/util/time_text.h"
#include "host/physical_text.h"
#include "host/value_type.h"

namespace corv::host {
namespace {

using Bytes = LeafBytes;

constexpr std::size_t kMostKnown = 1U << 16;  // texts whose values are remembered for each type

// Turns values into events of a signal's leaves. Values repeat a lot, so the stored value of each
// text is remembered instead of being converted again.
class LeafWriter {
public:
    LeafWriter(ISignal& signal, const std::vector<std::string>& texts, DrivenSignal::Put put)
        : put_(std::move(put)) {
        leaves_ = LeavesOf(signal);
        last_.resize(leaves_.size());
        for (ISignal* const leaf : leaves_) {
            values_.push_back(&bytes_[leaf->GetTypeInfo()]);
        }
        for (std::size_t i = 0; i < texts.size(); ++i) {
            numbers_[texts[i]] = i;
        }
    }

    // Writes an event for each leaf that changes; for all of them if none does, so that an event
    // that repeats a value is not lost.
    void Write(std::int64_t time, const std::vector<std::string>& elements) {
        const std::size_t count = std::min(leaves_.size(), elements.size());
        for (auto& [type, known] : bytes_) {
            // a counter has a new text at each event, and all of them would fill the memory
            if (known.size() > kMostKnown) {
                known.clear();
            }
        }
        bool any = false;
        for (std::size_t i = 0; i < count; ++i) {
            const Bytes bytes = BytesOf(i, elements[i], time);
            if (!begun_ || bytes != last_[i]) {
                last_[i] = bytes;
                Add(i, time);
                any = true;
            }
        }
        for (std::size_t i = 0; !any && i < count; ++i) {
            Add(i, time);
        }
        begun_ = true;
    }

private:
    void Add(std::size_t leaf, std::int64_t time) { put_(leaf, time, last_[leaf]); }

    // Returns the stored value of a text. An element without a value yet has the first value of its
    // type.
    Bytes BytesOf(std::size_t leaf, const std::string& text, std::int64_t time) {
        const auto known = values_[leaf]->find(text);
        if (known != values_[leaf]->end()) {
            return known->second;
        }
        const auto number = numbers_.find(text);
        const std::string literal =
            number == numbers_.end() ? text : NumberedLiteral(number->second);
        Bytes bytes{};
        if (text != std::string(1, kNotDriven) && !Read(*leaves_[leaf], literal, bytes) &&
            !Read(*leaves_[leaf], PhysicalNumber(*leaves_[leaf], literal), bytes)) {
            throw std::runtime_error("`" + text + "`, at " + FormatTime(time) +
                                     ", is not a value of the type");
        }
        return (*values_[leaf])[text] = bytes;
    }

    static bool Read(ISignal& leaf, const std::string& text, Bytes& bytes) {
        return SUCCEEDED(
            leaf.TextToValue(text.c_str(), bytes.data(), static_cast<std::uint32_t>(bytes.size())));
    }

    // Returns "103375ns" as the number that a signal of type time has for it; an empty text for
    // anything else.
    static std::string PhysicalNumber(ISignal& leaf, const std::string& text) {
        const KTypeInfo type{CString(leaf.GetTypeInfo())};
        const auto number = ReadPhysical(text, UnitsOfType(type.GetTypeIdentifier().View()));
        return number ? std::to_string(*number) : "";
    }

    DrivenSignal::Put put_;
    std::vector<ISignal*> leaves_;
    std::vector<Bytes> last_;
    std::map<std::string, std::size_t> numbers_;
    std::map<std::string, std::map<std::string, Bytes>> bytes_;  // by type, then by text
    std::vector<std::map<std::string, Bytes>*> values_;          // of each leaf's type
    bool begun_ = false;
};

// The texts of the values of a type.
class ValueTexts {
public:
    ValueTexts(const char* type, const std::vector<std::string>& texts)
        : type_(CString(type)), texts_(texts) {}

    const std::string& Of(const Bytes& bytes) {
        std::string& text = known_[bytes];
        if (text.empty()) {
            text = texts_.empty()
                       ? std::string(type_.GetValueString(bytes.data(), 10, 0, -1).View())
                       : texts_.at(
                             static_cast<std::size_t>(bytes[0] | bytes[1] << 8 | bytes[2] << 16));
        }
        return text;
    }

private:
    KTypeInfo type_;
    const std::vector<std::string>& texts_;
    std::map<Bytes, std::string> known_;
};

}  // namespace

std::vector<std::string> Elements(const std::string& value, Shape shape) {
    std::vector<std::string> elements;
    if (shape.width == 0) {
        return {value};
    }
    if (!shape.words) {
        for (const char c : value) {
            elements.emplace_back(1, c);
        }
        return elements;
    }
    for (std::size_t at = 0; at <= value.size();) {
        const std::size_t end = std::min(value.find(kBetweenWords, at), value.size());
        elements.push_back(value.substr(at, end - at));
        at = end + 1;
    }
    return elements;
}

namespace {

std::set<std::string> ElementsOf(const Trace& recorded, Shape shape) {
    std::set<std::string> elements;
    const auto add = [&](const std::string& value) {
        for (std::string& element : Elements(value, shape)) {
            elements.insert(std::move(element));
        }
    };
    if (recorded.before) {
        add(*recorded.before);
    }
    for (const Change& change : recorded.changes) {
        add(change.value);
    }
    return elements;
}

}  // namespace

DrivenSignal::DrivenSignal(const Trace& recorded, std::int64_t start, Shape shape,
                           const std::string& type)
    : DrivenSignal(type.empty() ? ElementsOf(recorded, shape) : std::set<std::string>(), shape,
                   type) {
    const std::vector<ISignal*> leaves = LeavesOf(*signal_);
    const auto drive = Driver([&](std::size_t leaf, std::int64_t time, const Bytes& value) {
        ISignalWave* const wave = leaves[leaf]->GetWave();
        if (wave == nullptr) {
            throw std::bad_alloc();
        }
        wave->AddEvent(time, 0, value.data(), static_cast<std::uint32_t>(value.size()));
    });
    if (recorded.before) {
        // the value before the window has to be an event for the wave to know it
        drive(start - 1, *recorded.before);
    }
    for (const Change& change : recorded.changes) {
        drive(change.time, change.value);
    }
}

DrivenSignal::DrivenSignal(const std::set<std::string>& elements, Shape shape, std::string type)
    : shape_(shape), typed_(!type.empty()) {
    if (type.empty()) {
        type = ChooseType(elements);
    }
    if (FAILED(CreateSignal(type.c_str(), nullptr, signal_.Out()))) {
        throw std::runtime_error("no signal can be made of the type " + type);
    }
}

std::string DrivenSignal::ChooseType(const std::set<std::string>& values) {
    if (shape_.width > 0 && !shape_.words) {
        std::string characters;
        for (const std::string& value : values) {
            characters += value;
        }
        return VectorType(shape_.width, CharacterType(characters));
    }
    const auto type = InferType(values);
    if (!type) {
        texts_.assign(values.begin(), values.end());
    }
    const std::string element = type ? *type : NumberedType(texts_.size());
    return shape_.width > 0 ? VectorType(shape_.width, element) : element;
}

DrivenSignal::Drive DrivenSignal::Driver(Put put) const {
    const auto writer = std::make_shared<LeafWriter>(*signal_, texts_, std::move(put));
    return [writer, shape = shape_](std::int64_t time, const std::string& value) {
        writer->Write(time, Elements(value, shape));
    };
}

Trace DrivenSignal::Read(TimeWindow window, const BusFormat& format) const {
    if (typed_) {
        return ReadTrace(*signal_, window, format);
    }
    const std::vector<ISignal*> leaves = LeavesOf(*signal_);
    ValueTexts texts(leaves.empty() ? "" : leaves[0]->GetTypeInfo(), texts_);
    bool as_characters = shape_.width > 0 && !shape_.words;
    const auto text_of = [&](std::span<const LeafValue> values) {
        std::string value;
        for (std::size_t i = 0; i < values.size(); ++i) {
            value += shape_.words && i > 0 ? "," : "";
            value += texts.Of(values[i].bytes);
        }
        if (shape_.words || shape_.width == 0) {
            return shape_.words ? "(" + value + ")" : value;
        }
        std::string text = format(value, {});
        as_characters &= text == value;
        return text;
    };
    Trace trace = ReadTrace(*signal_, window, text_of);
    trace.binary = as_characters;
    return trace;
}

}  // namespace corv::host
