// Explains what the tolerant reader of records, CStiParser, does with a record that is not quite
// right. Whether a word is known is found out by asking the reader itself, so that the check cannot
// disagree with it.

#include "cli/record_check.h"

#include <array>

#include "cli/problems.h"
#include "cli/state_text.h"
#include "cli/suggestion.h"
#include "corv/records/sti_parser.h"

namespace corv::cli {
namespace {

constexpr std::array<const char*, 7> kFields{"dialog ID",   "stimulator type", "strength",
                                             "dialog data", "info string",     "active flag",
                                             "states"};
constexpr std::size_t kRequired = 3;
constexpr std::size_t kActive = 5;
constexpr std::size_t kStates = 6;

// A record with the strength Default is read as one with Override, so that is not expected.
std::vector<std::string> StrengthNames() {
    std::vector<std::string> names;
    for (const int strength : CStiParser::kStrengths) {
        if (strength != CStiParser::Default) {
            names.emplace_back(CStiParser::StrengthName(strength));
        }
    }
    return names;
}

std::vector<std::string> KnownWords(std::size_t field) {
    constexpr auto& kDialogs = CStiParser::kDialogs;
    constexpr auto& kTypes = CStiParser::kStimTypes;
    return field == 0   ? std::vector<std::string>(kDialogs.begin(), kDialogs.end())
           : field == 1 ? std::vector<std::string>(kTypes.begin(), kTypes.end())
                        : StrengthNames();
}

bool IsKnown(std::size_t field, const std::string& word) {
    int number = 0;
    CStiParser parser;
    switch (field) {
        case 0:
            return CStiParser::DialogName(word.c_str()) != nullptr;
        case 1:
            parser.Init(("VAL:" + word + ":Drive").c_str());
            parser.GetStimType(&number);
            return number != -1;
        default:
            return CStiParser::StrengthValue(word.c_str()) != -1;
    }
}

class RecordCheck {
public:
    explicit RecordCheck(const std::string& text) : text_(text), parts_(SplitText(text, ':')) {}

    std::vector<Problem> Run() {
        std::size_t end = 0;
        for (std::size_t i = 0; i < parts_.size(); ++i) {
            CheckGap(end, parts_[i].position, i);
            CheckField(i);
            end = parts_[i].position + parts_[i].text.size();
        }
        CheckEnd();
        return problems_.Take();
    }

private:
    // Checks the separators before a field. The reader takes a run of separators as one, so an
    // empty field moves all fields after it forward.
    void CheckGap(std::size_t begin, std::size_t end, std::size_t field) {
        const std::size_t usual = field == 0 ? 0 : 1;
        if (end - begin > usual && field <= kStates) {
            problems_.Add(begin, end - begin,
                          "empty fields are lost: what follows is read as the " +
                              std::string(kFields[field]) + "; write something into each");
        }
    }

    void CheckField(std::size_t field) {
        const TextPart& part = parts_[field];
        if (field < kRequired) {
            CheckWord(field, part);
        } else if (field == kActive && part.text != "0" && part.text != "1") {
            CheckActive(part);
        } else if (field == kStates) {
            CheckStates(part.text, part.position, problems_);
        } else if (field == kStates + 1) {
            problems_.Add(part.position, text_.size() - part.position,
                          "a record has seven fields; what follows them is ignored");
        }
    }

    void CheckWord(std::size_t field, const TextPart& part) {
        const std::string word(SkipBlanks(part.text));
        if (!IsKnown(field, word)) {
            problems_.Add(part.position + part.text.size() - word.size(), word.size(),
                          "unknown " + std::string(kFields[field]) + " `" + word + "`" +
                              (field + 1 == kRequired ? ", which counts as Override" : "") +
                              "; expected " + Alternatives(KnownWords(field)) +
                              Suggestion(word, KnownWords(field)));
        }
    }

    void CheckActive(const TextPart& part) {
        CStiParser parser;
        bool active = false;
        parser.Init(("VAL:FRM:Drive:a:b:" + std::string(part.text)).c_str());
        parser.GetActive(&active);
        problems_.Add(part.position, part.text.size(),
                      "the active flag is 1 or 0; `" + std::string(part.text) + "` counts as " +
                          (active ? "1" : "0"));
    }

    void CheckEnd() {
        const std::size_t count = parts_.size();
        if (count < kRequired) {
            problems_.Add(text_.size(), 0,
                          "the record ends before its " + std::string(kFields[count]) +
                              "; expected " + Alternatives(KnownWords(count)),
                          Problem::Severity::Error);
        } else if (count <= kActive) {
            problems_.Add(text_.size(), 0,
                          "the record ends before its " + std::string(kFields[count]) +
                              (count == kActive ? ", which" : "; the active flag") +
                              " counts as 0");
        }
    }

    const std::string& text_;
    std::vector<TextPart> parts_;
    CappedProblems problems_;
};

}  // namespace

std::vector<Problem> CheckRecord(const std::string& text) {
    return RecordCheck(text).Run();
}

}  // namespace corv::cli
