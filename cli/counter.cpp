#include <charconv>
#include <memory>

#include "cli/command.h"
#include "cli/formulas.h"
#include "cli/json.h"
#include "cli/options.h"
#include "cli/output.h"
#include "corv/stimulators/counter.h"
#include "corv/util/dec_converter.h"
#include "corv/util/time_text.h"

namespace corv::cli {
namespace {

using Info = CCounterStimulusInfo;

struct KindRow {
    const char* word;
    Info::Type type;
};
constexpr KindRow kKinds[] = {
    {"binary", Info::Binary},  {"gray", Info::Gray},        {"johnson", Info::Johnson},
    {"one-hot", Info::OneHot}, {"one-cold", Info::OneCold},
};

// A number with the radix in which it was written.
struct BasedNumber {
    std::int64_t value = 0;
    int radix = 10;
};

struct CounterOptions {
    Info::Type kind = Info::Binary;
    Info::Dir dir = Info::Up;
    BasedNumber start;
    BasedNumber step{1, 10};
    std::optional<std::int64_t> period;
    std::optional<int> width;
    bool reverse = false;
    bool json = false;
};

// Reads a decimal number or a based literal; returns a complaint if the word is neither.
std::string ReadNumber(const std::string& word, BasedNumber& number) {
    c_decConverter converter;
    const std::size_t mark = word.find('#');
    if (mark == std::string::npos ? converter.Convert(word.c_str(), 10, &number.value) == 0
                                  : converter.Convert(word.c_str(), &number.value) == 0) {
        return "`" + word +
               "` is not a number; write it in decimal or with its radix, such as 16#FF";
    }
    number.radix = mark == std::string::npos ? 10 : std::stoi(word.substr(0, mark));
    return {};
}

// Writes a number in a radix. Only decimal numbers have a sign; other radixes show the 64 bits.
std::string Digits(std::int64_t value, int radix) {
    char digits[70];
    char* const end = digits + sizeof digits;
    char* const written =
        radix == 10 ? std::to_chars(digits, end, value).ptr
                    : std::to_chars(digits, end, static_cast<std::uint64_t>(value), radix).ptr;
    return std::string(digits, written);
}

int RunCounter(const CounterOptions& options) {
    if (!options.period || *options.period < 1) {
        throw Failure("--period is required and must be at least 1ps");
    }
    const auto start = static_cast<std::uint64_t>(options.start.value);
    if (options.width && *options.width < 64 && start >> *options.width != 0) {
        throw Failure("--start: the value does not fit " + std::to_string(*options.width) +
                      " wires");
    }
    Info info;
    info.SetType(options.kind);
    info.SetDir(options.dir);
    info.SetDisplayRadix(options.start.radix);
    info.SetStartingValue(Digits(options.start.value, options.start.radix).c_str());
    info.SetIncrementBy(Digits(options.step.value, options.start.radix).c_str());
    info.SetCountPeriod(FormatTime(*options.period).c_str());
    info.SetReverseBitOrder(options.reverse);
    char text[512];  // enough for three numbers of 64 bits and the keys
    if (!info.GenerateFormula(text, sizeof text)) {
        throw Failure("the formula cannot be written");
    }
    WriteOutput(
        "", options.json ? JsonLine({{"schema", 1}, {"formula", text}}) : std::string(text) + "\n");
    return kFine;
}

}  // namespace

void AddCounter(CLI::App& program, Action& chosen) {
    CLI::App* command = program.add_subcommand(
        "counter",
        "make the formula of a counter\n"
        "The formula drives the wires of a vector, -f NAME:WIDTH=FORMULA; that of a binary counter "
        "also a signal as a whole. Numbers are decimal or written with their radix, 16#FF.");
    auto options = std::make_shared<CounterOptions>();
    AddChoice(*command, "--kind", "binary|gray|johnson|one-hot|one-cold",
              "What counts; binary unless given",
              [options = options.get()](const std::string& word) {
                  for (const KindRow& row : kKinds) {
                      options->kind = word == row.word ? row.type : options->kind;
                  }
              });
    AddChoice(*command, "--dir", "up|down", "The direction; up unless given",
              [options = options.get()](const std::string& word) {
                  options->dir = word == "up" ? Info::Up : Info::Down;
              });
    AddNumber(*command, "-w,--width", 1, 65536, options->width,
              "The number of wires that the start has to fit");
    AddValue(*command, "--start", "NUMBER",
             "The first value; 0 unless given. Its radix is the formula's",
             [options = options.get()](const std::string& word) {
                 return ReadNumber(word, options->start);
             });
    AddValue(*command, "--step", "NUMBER", "What binary and Gray counters count by; 1 unless given",
             [options = options.get()](const std::string& word) {
                 return ReadNumber(word, options->step);
             });
    AddTime(*command, "--period", options->period, "How long a count lasts");
    command->add_flag("--reverse", options->reverse, "Show the lowest bit first");
    command->add_flag("--json", options->json, "Write JSON");
    command->footer(
        "corv counter --kind gray --width 4 --period 10ns\n"
        "corv draw -f cnt:8=\"$(corv counter --start 16#F0 --period 5ns)\" --radix hex");
    command->callback([&chosen, options] { chosen = [options] { return RunCounter(*options); }; });
}

}  // namespace corv::cli
