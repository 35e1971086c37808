#include "host/driven_signal.h"

#include <algorithm>
#include <array>
#include <map>
#include <set>
#include <stdexcept>
#include <utility>

#include "corv/typeinfo/type_info.h"
#include "host/time_text.h"
#include "host/value_type.h"

namespace corv::host {
namespace {

using Bytes = std::array<unsigned char, 8>;

// The texts of the elements, one of a scalar.
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

// The scalar signals below one, in order.
void AddLeaves(ISignal& signal, std::vector<ISignal*>& leaves) {
    ISignalContainer* const members = signal.GetSubSignals();
    if (members == nullptr) {
        leaves.push_back(&signal);
        return;
    }
    for (int i = 0; i < members->GetCount(); ++i) {
        ISignal* member = nullptr;
        if (SUCCEEDED(members->GetAt(static_cast<std::uint32_t>(i), &member))) {
            AddLeaves(*member, leaves);
        }
    }
}

// Puts values into the waves of a signal's leaves.
class LeafWriter {
public:
    LeafWriter(ISignal& signal, const std::vector<std::string>& texts) {
        AddLeaves(signal, leaves_);
        last_.resize(leaves_.size());
        for (std::size_t i = 0; i < texts.size(); ++i) {
            numbers_[texts[i]] = i;
        }
    }

    // Leaves that keep their value get no event, unless none changes.
    void Write(std::int64_t time, const std::vector<std::string>& elements) {
        const std::size_t count = std::min(leaves_.size(), elements.size());
        bool any = false;
        for (std::size_t i = 0; i < count; ++i) {
            const Bytes bytes = BytesOf(*leaves_[i], elements[i], time);
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
    void Add(std::size_t leaf, std::int64_t time) {
        leaves_[leaf]->GetWave()->AddEvent(time, 0, last_[leaf].data(),
                                           static_cast<std::uint32_t>(last_[leaf].size()));
    }

    Bytes BytesOf(ISignal& leaf, const std::string& text, std::int64_t time) {
        const auto known = bytes_.find(text);
        if (known != bytes_.end()) {
            return known->second;
        }
        const auto number = numbers_.find(text);
        const std::string literal =
            number == numbers_.end() ? text : NumberedLiteral(number->second);
        Bytes bytes{};
        if (FAILED(leaf.TextToValue(literal.c_str(), bytes.data(), bytes.size()))) {
            throw std::runtime_error("`" + text + "`, at " + TimeText(time) +
                                     ", is not a value of the type");
        }
        return bytes_[text] = bytes;
    }

    std::vector<ISignal*> leaves_;
    std::vector<Bytes> last_;
    std::map<std::string, std::size_t> numbers_;
    std::map<std::string, Bytes> bytes_;
    bool begun_ = false;
};

// The texts of the values of a type.
class ValueTexts {
public:
    ValueTexts(const char* type, const std::vector<std::string>& texts)
        : type_(CString(type)), texts_(texts) {}

    const std::string& Of(const void* value, std::uint32_t size) {
        Bytes bytes{};
        std::copy_n(static_cast<const unsigned char*>(value), std::min<std::size_t>(size, 8),
                    bytes.begin());
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

DrivenSignal::DrivenSignal(const Trace& recorded, std::int64_t start, Shape shape, std::string type)
    : shape_(shape) {
    if (type.empty()) {
        type = ChooseType(recorded);
    }
    if (FAILED(CreateSignal(type.c_str(), nullptr, signal_.Out()))) {
        throw std::runtime_error("no signal can be made of the type " + type);
    }
    Drive(recorded, start);
}

std::string DrivenSignal::ChooseType(const Trace& recorded) {
    std::set<std::string> values;
    const auto add = [&](const std::string& value) {
        for (std::string& element : Elements(value, shape_)) {
            values.insert(std::move(element));
        }
    };
    if (recorded.before) {
        add(*recorded.before);
    }
    for (const Change& change : recorded.changes) {
        add(change.value);
    }
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

void DrivenSignal::Drive(const Trace& recorded, std::int64_t start) {
    LeafWriter writer(*signal_, texts_);
    if (recorded.before) {
        writer.Write(start - 1, Elements(*recorded.before, shape_));
    }
    for (const Change& change : recorded.changes) {
        writer.Write(change.time, Elements(change.value, shape_));
    }
}

Trace DrivenSignal::Read(TimeWindow window, const BusFormat& format) const {
    return shape_.width > 0 ? ReadVector(window, format) : ReadScalar(window);
}

Trace DrivenSignal::ReadScalar(TimeWindow window) const {
    Trace trace;
    ValueTexts texts(signal_->GetTypeInfo(), texts_);
    frame::ComPtr<IWaveEventEnumerator> events;
    if (FAILED(signal_->EnumEvents(events.Out()))) {
        return trace;
    }
    IWaveEvent* event = nullptr;
    while (events->Next(1, &event, nullptr) == S_OK && event->GetTime() <= window.end) {
        const std::string& text = texts.Of(event->GetValueData(), event->GetValueSize());
        if (event->GetTime() < window.start) {
            trace.before = text;
        } else {
            trace.changes.push_back({event->GetTime(), text});
        }
    }
    return trace;
}

Trace DrivenSignal::ReadVector(TimeWindow window, const BusFormat& format) const {
    Trace trace;
    trace.bus = true;
    std::vector<ISignal*> leaves;
    AddLeaves(*signal_, leaves);
    frame::ComPtr<IBusEventIterator> events;
    if (leaves.empty() || FAILED(signal_->GetBusEventIterator(events.Out()))) {
        return trace;
    }
    ValueTexts texts(leaves[0]->GetTypeInfo(), texts_);
    IBusEvent& event = *events->GetEvent();
    while (events->Next() == S_OK && event.GetTime() <= window.end) {
        std::string value;
        for (std::uint32_t i = 0; i < leaves.size(); ++i) {
            value += shape_.words && i > 0 ? "," : "";
            value += texts.Of(event.GetValueData(i), event.GetValueSize(i));
        }
        value = shape_.words ? "(" + value + ")" : format(value);
        if (event.GetTime() < window.start) {
            trace.before = std::move(value);
        } else {
            trace.changes.push_back({event.GetTime(), std::move(value)});
        }
    }
    return trace;
}

}  // namespace corv::host
