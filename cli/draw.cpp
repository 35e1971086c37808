#include <unistd.h>

#include <memory>

#include "cli/command.h"
#include "cli/formulas.h"
#include "cli/options.h"
#include "cli/output.h"
#include "cli/output_file.h"
#include "cli/recordings.h"
#include "corv/util/time_text.h"
#include "host/axis.h"
#include "host/svg.h"
#include "host/terminal.h"

namespace corv::cli {
namespace {

// From this many signals a drawing with empty lines between them would not fit on a screen.
constexpr std::size_t kCompactFrom = 25;
constexpr std::size_t kManySignals = 100;
// The columns that a drawing has beside the names, even if the terminal is too narrow for it.
constexpr int kLeastPlot = 10;

struct DrawOptions : FormulaOptions {
    std::string output, svg, title;
    std::optional<int> width, svg_width;
    bool ascii = false;
    bool compact = false;
};

host::Picture MakePicture(const DrawOptions& options, const Shown& shown,
                          const host::TimeGrid& grid, std::vector<host::Tick> ticks) {
    host::Picture picture{options.title, grid, std::move(ticks), {}};
    for (const host::Trace& trace : shown.ForGrid(grid)) {
        picture.lanes.push_back(host::LayOut(trace, grid));
        picture.lanes.back().binary &= !options.radix;  // a radix that was asked for is kept
    }
    return picture;
}

void DrawText(const DrawOptions& options, const Shown& shown, host::TimeWindow window) {
    const bool to_screen = options.output.empty() || options.output == "-";
    const int file_descriptor = to_screen ? STDOUT_FILENO : -1;
    const int width = options.width ? *options.width : host::DrawingWidth(file_descriptor);
    host::TerminalStyle style;
    style.ascii = options.ascii;
    style.compact = options.compact || shown.Names().size() >= kCompactFrom;
    style.colour = WithColour(options.colour, file_descriptor);
    style.name_width = host::TerminalNameWidth(shown.Names(), static_cast<std::size_t>(width));
    const auto names = static_cast<int>(style.name_width + host::kTerminalGap);
    const host::TimeGrid grid(window, std::max(width - names, kLeastPlot));
    auto ticks = host::MakeTicks(grid, 1, options.time_unit);
    WriteOutput(options.output,
                DrawTerminal(MakePicture(options, shown, grid, std::move(ticks)), style),
                InputsOf(options));
}

void DrawPicture(const DrawOptions& options, const Shown& shown, host::TimeWindow window) {
    host::SvgStyle style;
    style.width = options.svg_width.value_or(static_cast<int>(style.width));
    style.name_columns = host::SvgNameColumns(shown.Names(), style.width);
    const std::int64_t pixels = host::SvgPlotWidth(style);
    auto ticks =
        host::MakeTicks(host::TimeGrid(window, pixels), host::kSvgLabelWidth, options.time_unit);
    const host::TimeGrid grid(window, pixels / host::kSvgColumn);
    const host::Picture picture = MakePicture(options, shown, grid, std::move(ticks));
    WriteOutput(options.svg, DrawSvg(picture, style), InputsOf(options));
}

// Tells the user how to draw less if there are many signals and none was chosen.
void TellMany(const DrawOptions& options, const Shown& shown) {
    const std::size_t count = shown.Names().size();
    if (count >= kManySignals && options.names.empty()) {
        WriteMessage("note", std::to_string(count) + " signals; choose some with -n, such as -n '" +
                                 shown.Names().front() + "'");
    }
}

// Tells the user that the drawing is empty after the recording's end.
void TellEnd(const Shown& shown, host::TimeWindow window) {
    const auto end = shown.RecordingEnd();
    if (end && *end < window.end) {
        WriteMessage("note", "the recording ends at " + FormatTime(*end) +
                                 (*end < window.start ? ", before the window"
                                                      : "; after it nothing is drawn"));
    }
}

int RunDraw(const DrawOptions& options) {
    if (options.svg == "-" && options.output == "-") {
        throw Failure("only one of --svg and --output can go to standard output");
    }
    if (!options.svg.empty() && !options.output.empty() &&
        AreSameOutput(options.svg, options.output)) {
        throw Failure("--svg and --output name the same file, `" + options.output + "`");
    }
    const Shown shown(options);
    const host::TimeWindow window = shown.Window();
    TellEnd(shown, window);
    TellMany(options, shown);
    if (options.svg.empty() || !options.output.empty()) {
        DrawText(options, shown, window);
    }
    if (!options.svg.empty()) {
        DrawPicture(options, shown, window);
    }
    return kFine;
}

}  // namespace

void AddDraw(CLI::App& program, Action& chosen) {
    CLI::App* command = program.add_subcommand(
        "draw",
        "draw the waveforms of formulas and recordings\n"
        "Draws a line for each signal of a recording and each formula, under a time ruler, to "
        "standard output or as SVG. 0 and 1 "
        "are lines, X, U, W and - boxes with their letter, other values boxes with their text. "
        "Where more happens than can be shown a mark says so.");
    auto options = std::make_shared<DrawOptions>();
    AddRecordingOptions(*command, *options);
    AddFormulaOptions(*command, *options);
    AddText(*command, "--svg", "FILE", options->svg,
            "Write an SVG picture to FILE instead of the drawing in text");
    AddText(*command, "-o,--output", "FILE", options->output,
            "Write the drawing in text to FILE, also beside --svg");
    AddText(*command, "--title", "TEXT", options->title, "A title above the waveforms");
    AddNumber(*command, "--width", 20, 10000, options->width,
              "Columns of the drawing in text; the terminal's unless given");
    AddNumber(*command, "--svg-width", 200, 10000, options->svg_width,
              "Pixels of the SVG picture's width; 1000 unless given");
    command->add_flag("--ascii", options->ascii, "Draw with 7-bit characters");
    command->add_flag("--compact", options->compact,
                      "Leave no empty line between signals; the usual way from 25 signals on");
    command->footer(
        "corv draw -f clk='0 0, 1 5ns -r 10ns' -f rst='1 0, 0 @23ns'\n"
        "corv draw -f cnt:4=\"$(corv counter --kind gray --period 10ns)\" --expand\n"
        "corv draw -f bus='/vesk [1F]25ns[2A]40ns z10ns' --svg bus.svg --title Transfer\n"
        "corv clock --freq 100MHz --formula | corv draw -f clk=- -e 50ns\n"
        "corv draw run.evt -n 'tb.u1.*' -s 1us -e 2us");
    command->callback([&chosen, options] { chosen = [options] { return RunDraw(*options); }; });
}

}  // namespace corv::cli
