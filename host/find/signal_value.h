#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "corv/signals/signal.h"
#include "corv/typeinfo/type_info.h"
#include "host/find/value.h"
#include "host/physical_text.h"
#include "host/value_writer.h"

namespace corv::find {

// Reads the values of a signal, and the literals that are compared with them.
class SignalValue {
public:
    // The signal must outlive the object.
    SignalValue(ISignal& signal, std::string name);

    const std::string& name() const { return name_; }
    // False for records, and for arrays of anything but single characters.
    bool IsComparable() const { return kind_ != Value::Kind::None; }
    // Whether it is one bit of logic or a boolean, and so a condition by itself.
    bool IsCondition() const { return is_condition_; }
    bool IsBits() const { return kind_ == Value::Kind::Bits; }
    // Whether it is one of the literals of the signal's enumeration.
    bool HasLiteral(std::string_view text) const;

    // The value of the leaves, of kind None when one has none yet.
    Value Read(std::span<const host::LeafValue> leaves) const;
    // Whether a value of a signal that is a condition holds: 1, H and true do.
    static bool IsTrue(const Value& value);
    // Whether a bit is none of 0, 1, L and H, as Is_X of IEEE 1164 says.
    static bool IsUnknown(const Value& value);

    // A literal as a value of the signal. Without one the kind is None and `problem` is a sentence.
    Value Literal(std::string_view text, std::string& problem) const;

private:
    void ReadType(const KTypeInfo& type, ISignal& signal);
    Value BitsLiteral(std::string_view text, std::string& problem) const;
    Value NumberLiteral(std::string_view text, std::string& problem) const;
    Value TextLiteral(std::string_view text, std::string& problem) const;

    std::string name_;
    KTypeInfo type_;
    Value::Kind kind_ = Value::Kind::None;
    bool is_scalar_ = true;
    bool is_real_ = false;
    bool is_signed_ = false;
    bool is_condition_ = false;
    std::vector<std::string> literals_;  // of the enumeration, or of the elements, as compared
    host::PhysicalUnits units_;
};

}  // namespace corv::find
