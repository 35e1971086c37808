#include "host/terminal.h"

#include <algorithm>
#include <array>

#include "host/fit_text.h"

namespace corv::host {
namespace {

constexpr std::size_t kLevels = 6;
constexpr std::size_t kLanesPerRuler = 40;

struct Glyphs {
    std::array<std::string_view, kClasses.size()> body;               // by ValueClass
    std::array<std::array<std::string_view, kLevels>, kLevels> edge;  // by the levels that it joins
    std::string_view ruler, tick, ellipsis;
};

// The rows and columns of `edge` are Nothing, Bottom, Middle, Top, Box and Rails.
constexpr Glyphs kBoxDrawing{{" ", "▁", "▔", "─", "₋", "⁻", "░", "░", "╱", "═", "║"},
                             {{{"", "", "", "", "", ""},
                               {"", "▁", "╭", "╱", "│", "<"},
                               {"", "╮", "─", "╯", "│", "<"},
                               {"", "╲", "╰", "▔", "│", "<"},
                               {"", "│", "│", "│", "│", "│"},
                               {"", ">", ">", ">", "│", "╳"}}},
                             "─",
                             "┬",
                             "…"};

// For compact drawings, whose lines touch each other.
constexpr Glyphs kBars{{" ", "▁", "▇", "─", "₋", "⁻", "░", "░", "╱", "═", "║"},
                       {{{"", "", "", "", "", ""},
                         {"", "▁", "╭", "▇", "│", "<"},
                         {"", "╮", "─", "▇", "│", "<"},
                         {"", "▁", "╰", "▇", "│", "<"},
                         {"", "│", "│", "│", "│", "│"},
                         {"", ">", ">", ">", "│", "╳"}}},
                       "─",
                       "┬",
                       "…"};

constexpr Glyphs kAscii{{" ", "_", "\"", "-", ".", "'", "?", "~", "/", "=", "#"},
                        {{{"", "", "", "", "", ""},
                          {"", "_", "/", "/", "|", "<"},
                          {"", "\\", "-", "/", "|", "<"},
                          {"", "\\", "\\", "\"", "|", "<"},
                          {"", "|", "|", "|", "|", "|"},
                          {"", ">", ">", ">", "|", "|"}}},
                        "-",
                        "+",
                        ".."};

struct Place {
    std::string character;
    Ink ink = Ink::Text;
};
using Row = std::vector<Place>;

class TerminalDrawing {
public:
    TerminalDrawing(const Picture& picture, const TerminalStyle& style)
        : picture_(picture),
          style_(style),
          glyphs_(style.ascii     ? kAscii
                  : style.compact ? kBars
                                  : kBoxDrawing) {}

    std::string Draw() {
        if (!picture_.title.empty()) {
            AddRow(TextRow(picture_.title));
            out_ += '\n';
        }
        DrawRuler();
        for (std::size_t i = 0; i < picture_.lanes.size(); ++i) {
            out_ += style_.compact || i == 0 ? "" : "\n";
            if (i > 0 && i % kLanesPerRuler == 0) {
                DrawRuler();
            }
            DrawLane(picture_.lanes[i]);
        }
        if (crowded_) {
            Row legend(Start());
            Put(legend, Start(), glyphs_.body[static_cast<std::size_t>(ValueClass::Activity)],
                Ink::Activity);
            Put(legend, Start() + 2, "more happens here than a column can show", Ink::Muted);
            out_ += '\n';
            AddRow(legend);
        }
        return std::move(out_);
    }

private:
    std::size_t Start() const { return style_.name_width + kTerminalGap; }
    std::size_t Columns() const { return static_cast<std::size_t>(picture_.grid.Columns()); }

    // Returns a character of the drawing; one beyond 7 bits becomes a question mark in ASCII
    // drawings.
    std::string Shown(const std::string& character) const {
        return style_.ascii && character.size() > 1 ? "?" : character;
    }

    void Put(Row& row, std::size_t at, std::string_view text, Ink ink) const {
        for (const std::string& character : Characters(text)) {
            row.resize(std::max(row.size(), at + 1), Place{" "});
            row[at++] = {Shown(character), ink};
        }
    }

    Row TextRow(std::string_view text) const {
        Row row;
        Put(row, 0, text, Ink::Text);
        return row;
    }

    void DrawRuler() {
        Row labels;
        Row line(Start());
        for (std::size_t i = 0; i < Columns(); ++i) {
            Put(line, Start() + i, glyphs_.ruler, Ink::Muted);
        }
        for (const Tick& tick : picture_.ticks) {
            const auto column = static_cast<std::size_t>(picture_.grid.Column(tick.time));
            Put(line, Start() + column, glyphs_.tick, Ink::Muted);
            if (column + tick.label.size() <= Columns()) {
                Put(labels, Start() + column, tick.label, Ink::Muted);
            }
        }
        AddRow(labels);
        AddRow(line);
    }

    void DrawLane(const Lane& lane) {
        Row row = TextRow(FitText(lane.name, style_.name_width, glyphs_.ellipsis));
        row.resize(Start(), Place{" "});
        for (const Cell& cell : CellsOf(lane, picture_.grid)) {
            PutCell(row, cell);
        }
        const bool narrow = lane.binary && !PutValues(row, lane, false);
        PutValues(row, narrow ? InHex(lane).value_or(lane) : lane, true);
        AddRow(row);
    }

    // Writes the values, or only returns whether there is room for each as a whole.
    bool PutValues(Row& row, const Lane& lane, bool write) const {
        const std::vector<Cell> cells = CellsOf(lane, picture_.grid);
        bool all = true;
        for (std::size_t first = 0; first < cells.size();) {
            std::size_t end = first + 1;
            while (end < cells.size() && cells[end].segment == cells[first].segment) {
                ++end;
            }
            const std::size_t from = first + (cells[first].before ? 1 : 0);
            const ShownValue& value = cells[first].segment->value;
            all = all &&
                  (value.value_class != ValueClass::Bus || TextWidth(value.text) <= end - from);
            if (write) {
                PutValue(row, Start() + from, Start() + end, value);
            }
            first = end;
        }
        return all;
    }

    void PutCell(Row& row, const Cell& cell) {
        const ValueClass value_class = cell.segment->value.value_class;
        const ClassRow& shape = RowOf(value_class);
        crowded_ = crowded_ || value_class == ValueClass::Activity;
        if (!cell.before) {
            Put(row, row.size(), glyphs_.body[static_cast<std::size_t>(value_class)], shape.ink);
            return;
        }
        // The taller shape determines the edge's colour: boxes and rails keep their sides in their
        // own.
        const ClassRow& before = RowOf(cell.before->value.value_class);
        const Ink ink =
            before.level >= Level::Box && shape.level < Level::Box ? before.ink : shape.ink;
        Put(row, row.size(),
            glyphs_.edge[static_cast<std::size_t>(before.level)]
                        [static_cast<std::size_t>(shape.level)],
            ink);
    }

    // Writes the text of a box or a bus in the middle of its places, or nothing if there is no
    // room.
    void PutValue(Row& row, std::size_t first, std::size_t end, const ShownValue& value) const {
        const ClassRow& shape = RowOf(value.value_class);
        if (end <= first || shape.level < Level::Box || value.text.empty()) {
            return;
        }
        std::string text = FitValue(value.text, end - first, glyphs_.ellipsis);
        if (!text.empty() && TextWidth(text) + 2 <= end - first) {
            text = " " + text + " ";
        }
        Put(row, first + (end - first - TextWidth(text)) / 2, text,
            shape.level == Level::Box ? shape.ink : Ink::Text);
    }

    void AddRow(const Row& row) {
        std::size_t end = row.size();
        while (end > 0 && (row[end - 1].character.empty() || row[end - 1].character == " ")) {
            --end;
        }
        int colour = RowOf(Ink::Text).terminal;
        for (std::size_t i = 0; i < end; ++i) {
            const bool blank = row[i].character.empty() || row[i].character == " ";
            SetColour(colour, blank ? colour : RowOf(row[i].ink).terminal);
            out_ += blank ? " " : row[i].character;
        }
        SetColour(colour, RowOf(Ink::Text).terminal);
        out_ += '\n';
    }

    void SetColour(int& now, int next) {
        if (style_.colour && now != next) {
            out_ += next < 0 ? "\x1b[39m" : "\x1b[38;5;" + std::to_string(next) + "m";
        }
        now = next;
    }

    const Picture& picture_;
    const TerminalStyle& style_;
    const Glyphs& glyphs_;
    std::string out_;
    bool crowded_ = false;
};

}  // namespace

std::size_t TerminalNameWidth(const std::vector<std::string>& names, std::size_t width) {
    std::size_t widest = 0;
    for (const std::string& name : names) {
        widest = std::max(widest, TextWidth(name));
    }
    return std::min(widest, width / 3);
}

std::string DrawTerminal(const Picture& picture, const TerminalStyle& style) {
    return TerminalDrawing(picture, style).Draw();
}

}  // namespace corv::host
