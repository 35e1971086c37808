#pragma once

#include <array>
#include <cstddef>
#include <vector>

#include "corv/platform/cstring.h"
#include "corv/platform/export.h"

// A stimulator-info record: the one line of text that a host keeps for a stimulator. It has seven
// fields with ":" behind each of the first six, so that no field can hold a ":" itself:
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
// Codes and names are compared without regard to case. Runs of ":" count as one, so that an empty
// field in the middle of a record is lost and the later fields move forward.
//
// Field texts belong to the parser and live until its next Init, its assignment or its end; all are
// null in a new parser.
class CORV_API CStiParser {
public:
    CStiParser() noexcept = default;
    // Copies what assignment copies.
    CStiParser(const CStiParser& other) noexcept;
    // Builds the record again from the other's fields and numbers. When the other's type or
    // strength is unknown, or memory runs out, this parser stays as it was.
    CStiParser& operator=(const CStiParser& other) noexcept;
    ~CStiParser();

    // Reads a record. White space before the first three fields is skipped; a strength that is
    // unknown or "Default" becomes "Override". Fields missing at the end become empty, the active
    // flag "0"; those behind the seventh are ignored. The type is not tested. False, with the
    // parser as it was, for null and empty text; false for a record of fewer than three fields,
    // which keeps those read, the others being null; false, with all null, without memory.
    bool Init(const char* record) noexcept;

    // Builds a record; null texts are empty ones. False, with the parser as it was, when type or
    // strength is not one of the numbers above and when memory runs out.
    bool Init(const char* dialog_id, int stim_type, int strength, const char* dialog_data,
              const char* info_string, bool active, const char* stim_states) noexcept;

    const char* GetDialogID() const noexcept { return fields_[0]; }
    const char* GetDialogData() const noexcept { return fields_[3]; }
    const char* GetInfoString() const noexcept { return fields_[4]; }
    const char* GetStimStates() const noexcept { return fields_[6]; }
    // The field's text; through the pointer, which may be null, its number: -1 when unknown.
    const char* GetStimType(int* number = nullptr) const noexcept;
    const char* GetStrength(int* number = nullptr) const noexcept;
    // The field's text; through the pointer whether its leading number is not 0.
    const char* GetActive(bool* active = nullptr) const noexcept;

    // Writes the record. False, with the text as it was, when the parser lacks one of the first
    // five fields; false, with the text empty, when memory runs out.
    bool MergeStimInfo(CString& record) const noexcept;

    // Loads the names below from the library's string table, which their first use does as well.
    static void InitResources() noexcept;
    // The name of a strength, null for any other number.
    static const char* StrengthName(int number) noexcept;
    // The number of a strength's name, -1 for any other text and null.
    static int StrengthValue(const char* name) noexcept;
    // What users call a dialog ("Clock" for "CLK"), null for any other code and null.
    static const char* DialogName(const char* code) noexcept;

private:
    static constexpr std::size_t kFieldCount = 7;

    bool ReadFields(std::size_t length) noexcept;

    std::vector<char> buffer_;
    std::array<const char*, kFieldCount> fields_{};  // in the buffer or static, in record order
};

// Whether all fields are equal without regard to case; null counts as empty.
CORV_API bool operator==(const CStiParser& a, const CStiParser& b) noexcept;
