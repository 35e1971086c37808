#include <algorithm>
#include <array>
#include <charconv>
#include <memory>

#include "cli/command.h"
#include "cli/json.h"
#include "cli/options.h"
#include "cli/output.h"
#include "cli/problems.h"
#include "cli/record_check.h"
#include "cli/state_text.h"
#include "corv/records/hot_key_data.h"
#include "corv/records/sti_parser.h"
#include "corv/stimulators/clock.h"
#include "corv/util/time_text.h"
#include "host/fit_text.h"

namespace corv::cli {
namespace {

constexpr std::size_t kMostStates = 6;  // shown in one line
constexpr std::size_t kTextColumn = 17;
constexpr std::size_t kMostColumns = 40;  // width of the texts that have a meaning beside them

struct StiOptions {
    std::string text;
    host::ColourMode colour = host::ColourMode::Auto;
    bool json = false;
};

std::string Number(double value) {
    std::array<char, 32> text;
    return {text.data(), std::to_chars(text.data(), text.data() + text.size(), value).ptr};
}

// Explains the settings of a clock; empty if the data is not such settings.
std::string ClockMeaning(const char* data) {
    CClock clock;
    if (!clock.StreamIn(data)) {
        return {};
    }
    const bool is_period = clock.GetRateType();
    const unsigned unit = clock.GetRateUnit();
    const auto names = is_period ? TimeUnitNames() : FrequencyUnitNames();
    const std::string rate =
        Number(clock.GetRateValue()).append(unit < names.size() ? names[unit] : "");
    return (is_period ? "period " : "") + rate + ", starts at " + (clock.IsStartLow() ? "0" : "1") +
           ", duty " + std::to_string(clock.GetRateCycle()) + " %" +
           (clock.GetRateOffset() != 0 ? ", offset " + FormatTime(clock.GetRateOffset()) : "");
}

// Explains the data of a hot key; empty if the data is not of one.
std::string KeyMeaning(const char* data) {
    unsigned long key = 0;
    CString text;
    if (!ParseHotKeyData(data, &key, text)) {
        return {};
    }
    const bool is_shown = key > ' ' && key <= '~';
    return "key " + std::to_string(key) +
           (is_shown ? " (" + std::string(1, static_cast<char>(key)) + ")" : "") + ", text " +
           std::string(text.View());
}

std::string DataMeaning(const CStiParser& record) {
    const int dialog = CStiParser::DialogNumber(record.GetDialogID());
    return dialog == CStiParser::Clock    ? ClockMeaning(record.GetDialogData())
           : dialog == CStiParser::HotKey ? KeyMeaning(record.GetDialogData())
                                          : "";
}

std::string TypeMeaning(const CStiParser& record) {
    int number = 0;
    record.GetStimType(&number);
    return number == 0 ? "formula" : number == 1 ? "hot key" : "unknown";
}

// Compares with the text, since reading replaces an unknown strength by Override.
std::string StrengthMeaning(const CStiParser& record, const std::string& text) {
    int number = 0;
    record.GetStrength(&number);
    const std::string word(SkipBlanks(SplitText(text, ':')[2].text));
    return std::to_string(number) +
           (word == record.GetStrength() ? "" : ", in the place of `" + word + "`");
}

std::string StatesMeaning(const std::vector<SwitchTime>& states) {
    std::string text;
    for (std::size_t i = 0; i < std::min(states.size(), kMostStates); ++i) {
        text += (i > 0 ? ", " : "") + std::string(states[i].on ? "on at " : "off at ") +
                FormatTime(states[i].time);
    }
    const std::size_t more = states.size() - std::min(states.size(), kMostStates);
    return text + (more > 0 ? " and " + std::to_string(more) + " more" : "");
}

struct Row {
    const char* field;
    std::string text;
    std::string meaning;
};

std::string Table(const std::vector<Row>& rows) {
    std::size_t width = 0;
    for (const Row& row : rows) {
        const std::size_t columns = host::TextWidth(row.text);
        width = row.meaning.empty() || columns > kMostColumns ? width : std::max(width, columns);
    }
    std::string out;
    for (const Row& row : rows) {
        std::string head = row.field;
        head.resize(kTextColumn, ' ');
        const std::size_t columns = host::TextWidth(row.text);
        out += head + row.text;
        if (!row.meaning.empty()) {
            const bool fits = columns <= width;
            out += (fits ? std::string(width - columns + 2, ' ')
                         : "\n" + std::string(kTextColumn, ' ')) +
                   row.meaning;
        }
        out += "\n";
    }
    return out;
}

std::string Explain(const CStiParser& record, const std::string& text) {
    bool active = false;
    record.GetActive(&active);
    const char* const dialog = CStiParser::DialogName(record.GetDialogID());
    std::vector<Row> rows{
        {"dialog ID", record.GetDialogID(), dialog != nullptr ? dialog : "unknown"},
        {"stimulator type", record.GetStimType(), TypeMeaning(record)},
        {"strength", record.GetStrength(), StrengthMeaning(record, text)},
        {"dialog data", record.GetDialogData(), DataMeaning(record)},
        {"info string", record.GetInfoString(), ""},
        {"active", record.GetActive(), active ? "yes" : "no"},
        {"states", record.GetStimStates(),
         StatesMeaning(ReadStates(record.GetStimStates()).states)},
    };
    for (Row& row : rows) {
        row.text = host::CleanText(row.text);
        row.meaning = row.text.empty() ? "none" : host::CleanText(row.meaning);
    }
    return Table(rows);
}

Json NumberOrNull(int number) {
    return number == -1 ? Json(nullptr) : Json(number);
}

Json ExplainInJson(const CStiParser& record) {
    int type = 0;
    int strength = 0;
    bool active = false;
    const char* const type_text = record.GetStimType(&type);
    const char* const strength_text = record.GetStrength(&strength);
    record.GetActive(&active);
    const char* const dialog = CStiParser::DialogName(record.GetDialogID());
    CString merged;
    record.MergeStimInfo(merged);
    return {{"schema", 1},
            {"record", std::string(merged.View())},
            {"dialog_id",
             {{"text", record.GetDialogID()},
              {"name", dialog != nullptr ? Json(dialog) : Json(nullptr)}}},
            {"stimulator_type", {{"text", type_text}, {"number", NumberOrNull(type)}}},
            {"strength", {{"text", strength_text}, {"number", NumberOrNull(strength)}}},
            {"dialog_data", record.GetDialogData()},
            {"info_string", record.GetInfoString()},
            {"active", active},
            {"states", StatesJson(ReadStates(record.GetStimStates()).states)}};
}

int RunSti(const StiOptions& options) {
    const std::string text = TextOperand(options.text, "record");
    const auto problems = CheckRecord(text);
    CStiParser record;
    const bool is_read = record.Init(text.c_str());
    if (!is_read || !options.json) {
        ReportProblems("sti", text, problems, options.colour);
    }
    if (!is_read) {
        return kFailed;
    }
    if (options.json) {
        Json document = ExplainInJson(record);
        AppendProblems(document, text, problems);
        WriteOutput("", JsonLine(document));
    } else {
        WriteOutput("", Explain(record, text));
    }
    return problems.empty() ? kFine : kFound;
}

}  // namespace

void AddSti(CLI::App& program, Action& chosen) {
    CLI::App* command = program.add_subcommand(
        "sti",
        "explain a stimulator-info record field by field\n"
        "A record has seven fields with : between them: dialog ID, stimulator type, strength, "
        "dialog data, info string, active flag and states. What is odd about it is told with its "
        "place, and the exit status is 1 then.");
    auto options = std::make_shared<StiOptions>();
    AddTextOperand(*command, options->text, "The record, or - for standard input");
    AddColour(*command, options->colour);
    command->add_flag("--json", options->json, "Write JSON, times in picoseconds");
    command->footer(
        "corv sti 'CLK:FRM:Drive:10.000000;1;0;0;50;0:clock:1:100ns;200ns'\n"
        "corv sti --json 'KEY:KEY:Override:65/reset:reset key:1:'");
    command->callback([&chosen, options] { chosen = [options] { return RunSti(*options); }; });
}

}  // namespace corv::cli
