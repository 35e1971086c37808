#pragma once

#include <array>
#include <cstddef>
#include <vector>

#include "corv/platform/cstring.h"
#include "corv/platform/export.h"

// A stimulator-info record: the one line of text that a host keeps for a stimulator. It has seven
// fields with ":" after each of the first six, so no field can contain a ":" itself:
//
//     CLK:FRM:Drive:10.000000;1;0;0;50;0:clock:1:100ns;200ns
//
//     dialog ID         VAL, FRM, CLK, KEY, CST or PRD: the dialog that defined the stimulator
//     stimulator type   FRM (0), a formula, or KEY (1), a hot key
//     strength          Default (512), Override (1), Deposit (8) or Drive (16)
//     dialog data       the dialog's own settings
//     info string       free text
//     active            1 or 0
//     stimulus states   the times at which the stimulator switches (stim_state.h), may be empty
//
// Codes and names are compared without regard to case. Runs of ":" count as one, so an empty field
// in the middle of a record is lost and the later fields move forward.
//
// Field texts belong to the parser and live until its next Init, an assignment to it, or its end.
// In a new parser all of them are null.
class CORV_API CStiParser {
public:
    CStiParser() noexcept = default;
    // Copies in the same way as assignment.
    CStiParser(const CStiParser& other) noexcept;
    // Builds the record anew from the other parser's fields and numbers. If the other's type or
    // strength is unknown, or if out of memory, this parser stays as it was.
    CStiParser& operator=(const CStiParser& other) noexcept;
    ~CStiParser();

    // Reads a record. White space before the first three fields is skipped; a strength that is
    // unknown or "Default" becomes "Override". Fields missing at the end become empty, the active
    // flag "0"; fields after the seventh are ignored. The type is not checked. Returns false in
    // three cases: for null and empty text, with the parser unchanged; for a record of fewer than
    // three fields, with these fields kept and the others null; and if out of memory, with all
    // fields null.
    bool Init(const char* record) noexcept;

    // Builds a record; null texts count as empty. Returns false, with the parser unchanged, if type
    // or strength is not one of the numbers above or if out of memory.
    bool Init(const char* dialog_id, int stim_type, int strength, const char* dialog_data,
              const char* info_string, bool active, const char* stim_states) noexcept;

    const char* GetDialogID() const noexcept { return fields_[0]; }
    const char* GetDialogData() const noexcept { return fields_[3]; }
    const char* GetInfoString() const noexcept { return fields_[4]; }
    const char* GetStimStates() const noexcept { return fields_[6]; }
    // Return the field's text and store its number (-1 for an unknown one) unless the pointer is
    // null.
    const char* GetStimType(int* number = nullptr) const noexcept;
    const char* GetStrength(int* number = nullptr) const noexcept;
    // Returns the field's text and, unless the pointer is null, stores whether its leading number
    // is not 0.
    const char* GetActive(bool* active = nullptr) const noexcept;

    // Writes the record. Returns false with the text unchanged if the parser lacks one of the first
    // five fields, and false with the text empty if out of memory.
    bool MergeStimInfo(CString& record) const noexcept;

    // Loads the names below from the library's string table. Their first use does the same.
    static void InitResources() noexcept;
    // Returns the name of a strength, null for any other number.
    static const char* StrengthName(int number) noexcept;
    // Returns the number of a strength's name, -1 for null and for any other text.
    static int StrengthValue(const char* name) noexcept;
    // Returns the display name of a dialog ("Clock" for "CLK"), null for null and for any other
    // code.
    static const char* DialogName(const char* code) noexcept;

private:
    static constexpr std::size_t kFieldCount = 7;

    bool ReadFields(std::size_t length) noexcept;

    std::vector<char> buffer_;
    std::array<const char*, kFieldCount> fields_{};  // in the buffer or static, in record order
};

// Returns whether all fields are equal without regard to case; null counts as empty.
CORV_API bool operator==(const CStiParser& a, const CStiParser& b) noexcept;
