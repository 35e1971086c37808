// Splits the formula of a vector into one formula per element. The formula is first brought into
// its normal form, so that times are plain picoseconds and only values have to be split.

#include "corv/stimulus/formula_parser.h"

#include <algorithm>
#include <array>
#include <memory>

#include "corv/stimulus/stimulus.h"
#include "platform/ascii.h"
#include "platform/guard.h"
#include "stimulus/custom_formula.h"
#include "stimulus/recorded_signals.h"
#include "stimulus/vector_value.h"
#include "util/words.h"

namespace {

using corv::frame::ComPtr;
using corv::util::Pairs;

constexpr Pairs kPairs{"([{\"'", ")]}\"'"};
constexpr std::string_view kBlanks = " \n\t";
constexpr std::string_view kWhiteSpace = " \t\n\v\f\r";
constexpr std::string_view kRepeat = ",-r";
constexpr std::size_t kLongestName = 260;                // of a recorded member, with its zero
constexpr std::size_t kMaxBytes = std::size_t{1} << 30;  // of all formulas together

// Returns an element's formula in its final form: without the comma after the last piece, and with
// the repeat period joined to the piece before it by a blank.
std::string_view FinishPieces(std::string& pieces, bool repeats, bool trim) {
    std::string_view entry(pieces);
    const std::string_view trimmed = corv::util::TrimEnds(entry, kWhiteSpace);
    if (trim && trimmed.ends_with(',')) {
        entry = trimmed.substr(0, trimmed.size() - 1);
    } else if (entry.ends_with(',')) {
        entry.remove_suffix(1);
    }
    const std::size_t repeat = repeats ? entry.find(kRepeat) : std::string_view::npos;
    if (repeat != std::string_view::npos) {
        pieces[static_cast<std::size_t>(entry.data() - pieces.data()) + repeat] = ' ';
    }
    return entry;
}

// Lists one formula per member of the recorded signal that a custom formula names.
bool SplitCustom(std::string_view formula, CStringArray& list) {
    auto parts = corv::stimulus::ReadCustomToSplit(formula);
    if (!parts) {
        return false;
    }
    const std::unique_ptr<stremo::IEventsStreamRead> reader(
        stremo::CreateStreamRead(parts->file.c_str()));
    ComPtr<ISignalContainer> signals;
    ISignal* const whole =
        reader ? corv::stimulus::FindRecordedSignal(*reader, parts->signal.c_str(), signals)
               : nullptr;
    if (whole == nullptr) {
        return false;
    }
    list.RemoveAll();
    ComPtr<ISignalEnumerator> members;
    if (FAILED(whole->EnumSubSignals(members.Out()))) {
        return false;
    }
    ISignal* member = nullptr;
    while (members->Next(1, &member, nullptr) == S_OK) {
        std::array<char, kLongestName> name{};
        if (FAILED(member->GetFullName(name.data(), name.size()))) {
            return false;
        }
        parts->signal = name.data();
        list.Add(corv::stimulus::WriteCustomFormula(*parts).c_str());
    }
    return true;
}

}  // namespace

int CFormulaParser::Run(const char* formula, CStringArray& list, int width,
                        int split_mode) noexcept {
    const std::string_view text(formula ? formula : "");
    if (corv::platform::FindNoCase(text, "\\counter") != std::string_view::npos) {
        return CCounterFormulaParser().Run(formula, list, width, split_mode);
    }
    if (corv::platform::FindNoCase(text, corv::stimulus::kCustomMark) != std::string_view::npos) {
        return corv::platform::Guarded(false, [&] { return SplitCustom(text, list); }) ? 1 : 0;
    }
    return CSimpleFormulaParser().Run(formula, list, width, split_mode);
}

int CSimpleFormulaParser::Run(const char* formula, CStringArray& list, int width,
                              int split_mode) noexcept {
    if (!formula || !*formula) {
        return 0;
    }
    width_ = width;
    split_mode_ = split_mode;
    CStimulus stimulus(1, 1);
    if (width > kMaxVectorWidth || stimulus.Create(formula, 0) == 0) {
        return 0;
    }
    CString normal;
    stimulus.GenerateFormula(normal);
    return corv::platform::Guarded(false, [&] { return Cut(normal.View(), list); }) ? 1 : 0;
}

bool CSimpleFormulaParser::Cut(std::string_view normal, CStringArray& list) const {
    std::string text(normal);
    // The repeat parameter becomes an element of its own, so that it is dealt out to all pieces
    // like a value; FinishPieces joins it again.
    const std::size_t repeat = text.find(" -r");
    if (repeat != std::string::npos) {
        text[repeat] = ',';
    }
    std::string_view rest = corv::util::TrimEnds(text, kWhiteSpace);
    if (rest.empty()) {
        return false;
    }
    std::vector<std::string> pieces(static_cast<std::size_t>(std::max(width_, 0)));
    std::size_t room = kMaxBytes;
    bool cut = true;
    while (!rest.empty() && cut) {
        cut = splitToken(corv::util::TakeToken(rest, ",", kPairs, kBlanks), pieces, room);
    }
    if (room == 0) {
        return false;
    }
    CStringArray entries;
    entries.SetSize(width_);
    for (std::size_t i = 0; i < pieces.size(); ++i) {
        entries[static_cast<int>(i)] +=
            FinishPieces(pieces[i], repeat != std::string::npos, split_mode_ == 0);
    }
    list = std::move(entries);
    return cut;
}

bool CSimpleFormulaParser::splitToken(std::string_view token, std::vector<std::string>& pieces,
                                      std::size_t& room) const {
    const std::string_view word = corv::util::TakeWord(token, kPairs, kBlanks);
    auto value = corv::stimulus::VectorValue::Read(word, {width_, split_mode_});
    if (!value) {
        return false;
    }
    const std::string_view time = corv::util::TakeWord(token, kPairs, kBlanks);
    for (std::string& piece : pieces) {
        const std::size_t before = piece.size();
        if (!value->AppendNext(piece)) {
            break;  // the other elements keep the value that they have
        }
        if (!time.empty()) {
            piece += ' ';
            piece += time;
        }
        piece += ',';
        if (piece.size() - before > room) {
            room = 0;
            return false;
        }
        room -= piece.size() - before;
    }
    return true;
}
