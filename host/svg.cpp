#include "host/svg.h"

#include <algorithm>
#include <array>
#include <optional>

#include "corv/util/time_text.h"
#include "host/fit_text.h"

namespace corv::host {
namespace {

// Pixels, except where a name says hundredths.
constexpr std::int64_t kMargin = 16;
constexpr std::int64_t kNameCharacter = 8;
constexpr std::int64_t kValueHundredths = 740;  // the width of a value's character
constexpr std::int64_t kTitleHeight = 32;
constexpr std::int64_t kAxisHeight = 30;
constexpr std::int64_t kLanePitch = 38;
constexpr std::int64_t kWaveHeight = 22;
constexpr std::int64_t kNoteHeight = 26;
constexpr std::int64_t kSlope = 400;  // how far the side of a bus value leans, in hundredths

struct GroundRow {
    std::string_view rule, light, dark;  // a colour goes between the rule and "}"
};
constexpr GroundRow kGrounds[] = {
    {".ground{fill:", "#ffffff", "#0d1117"},
    {".grid{stroke:", "#e4e8ec", "#21262d"},
    {".halo{stroke:", "#ffffff", "#0d1117"},
};

// Rules for both backgrounds. Each of the filled classes has a hatch of its own, so that they
// differ without colour.
constexpr std::string_view kRules =
    "text{font:12px ui-monospace,'DejaVu Sans Mono',Menlo,Consolas,monospace}"
    ".name{font-size:13px}.title{font:600 15px system-ui,'DejaVu Sans',sans-serif}"
    ".axis,.value{text-anchor:middle}"
    "path{fill:none;stroke-width:1.6;stroke-linejoin:round}.grid,.ruler{stroke-width:1}"
    "path.weak{stroke-dasharray:5 3}"
    ".lit{stroke:none;fill-opacity:.1}.rails{fill-opacity:.07}"
    ".dense{stroke:none;fill-opacity:.75}"
    ".halo{font-weight:bold;paint-order:stroke;stroke-width:6px;stroke-linejoin:round}";

struct HatchRow {
    Ink ink;
    std::string_view path;
};
constexpr HatchRow kHatches[] = {
    {Ink::Unknown, "M-2 2L2-2M0 8L8 0M6 10L10 6"},
    {Ink::DontCare, "M-2 6L2 10M0 0L8 8M6-2L10 2"},
    {Ink::Weak, "M0 2H5M3 6H8"},
};

std::string Escape(std::string_view text) {
    std::string escaped;
    for (const char c : text) {
        switch (c) {
            case '&':
                escaped += "&amp;";
                break;
            case '<':
                escaped += "&lt;";
                break;
            case '>':
                escaped += "&gt;";
                break;
            case '"':
                escaped += "&quot;";
                break;
            default:
                escaped += c;
        }
    }
    return escaped;
}

// Returns hundredths of a pixel as a decimal number. Whole-number arithmetic makes the same picture
// on every machine, byte for byte.
std::string Decimal(std::int64_t hundredths) {
    std::string text = std::to_string(hundredths / 100);
    if (const std::int64_t rest = hundredths % 100; rest != 0) {
        text += rest < 10 ? ".0" : ".";
        text += std::to_string(rest % 10 == 0 ? rest / 10 : rest);
    }
    return text;
}

std::string Point(std::string_view command, std::int64_t x, std::int64_t y) {
    return std::string(command) + Decimal(x) + " " + std::to_string(y);
}

// The outlines of one lane by ink: one path element per ink keeps large pictures small.
struct LanePaths {
    std::array<std::string, kInks.size()> lines;
    std::array<std::string, kInks.size()> boxes;
    std::string lit;  // the area below a strong 1
};

class SvgDrawing {
public:
    SvgDrawing(const Picture& picture, const SvgStyle& style)
        : picture_(picture),
          style_(style),
          window_(picture.grid.Window()),
          fine_(window_, SvgPlotWidth(style) * 100),
          left_(style.width - kMargin - SvgPlotWidth(style)),
          top_(kMargin + (picture.title.empty() ? 0 : kTitleHeight)) {}

    std::string Draw() {
        const std::int64_t lanes = static_cast<std::int64_t>(picture_.lanes.size());
        const std::int64_t bottom = top_ + kAxisHeight + lanes * kLanePitch;
        const std::int64_t height = bottom + (Crowded() ? kNoteHeight : 0) + kMargin / 2;
        DrawHead(height);
        if (!picture_.title.empty()) {
            Text("title text", kMargin * 100, kMargin + 14, picture_.title);
        }
        DrawAxis(bottom);
        std::int64_t y = top_ + kAxisHeight + (kLanePitch - kWaveHeight) / 2;
        for (const Lane& lane : picture_.lanes) {
            DrawLane(lane, y);
            y += kLanePitch;
        }
        if (Crowded()) {
            DrawNote(bottom);
        }
        return out_ + "</svg>\n";
    }

private:
    // Returns a time's place in hundredths of a pixel.
    std::int64_t X(std::int64_t time) const { return left_ * 100 + fine_.Column(time); }

    bool Crowded() const {
        return std::any_of(picture_.lanes.begin(), picture_.lanes.end(), [](const Lane& lane) {
            return std::any_of(lane.segments.begin(), lane.segments.end(), [](const Segment& s) {
                return s.value.value_class == ValueClass::Activity;
            });
        });
    }

    void Path(std::string_view css_class, std::string_view path) {
        if (!path.empty()) {
            out_ += "<path class=\"" + std::string(css_class) + "\" d=\"" + std::string(path) +
                    "\"/>\n";
        }
    }

    // Adds closed outlines: bus values lightly tinted, anything else hatched.
    void Boxes(Ink ink, std::string_view path) {
        const std::string name(RowOf(ink).name);
        if (ink == Ink::Bus) {
            Path(name + " rails", path);
        } else if (ink == Ink::Activity) {
            Path(name + " dense", path);
        } else if (!path.empty()) {
            out_ += "<path class=\"" + name + "\" style=\"fill:url(#hatch-" + name + ")\" d=\"" +
                    std::string(path) + "\"/>\n";
        }
    }

    void Text(std::string_view css_class, std::int64_t x, std::int64_t y, std::string_view text) {
        out_ += "<text class=\"" + std::string(css_class) + "\" x=\"" + Decimal(x) + "\" y=\"" +
                std::to_string(y) + "\">" + Escape(CleanText(text)) + "</text>\n";
    }

    std::string Summary() const {
        std::string names;
        for (const Lane& lane : picture_.lanes) {
            names += (names.empty() ? "" : ", ") + lane.name;
        }
        return "Waveforms of " + names + " from " + FormatTime(window_.start) + " to " +
               FormatTime(window_.end);
    }

    static std::string Colours(bool dark) {
        std::string rules;
        for (const GroundRow& row : kGrounds) {
            rules += std::string(row.rule).append(dark ? row.dark : row.light) + "}";
        }
        const auto colour = [&](Ink ink) {
            return std::string(dark ? RowOf(ink).dark : RowOf(ink).light) + "}";
        };
        for (std::size_t i = 0; i < kInks.size(); ++i) {
            rules += "path." + std::string(kInks[i].name) + "{stroke:" + colour(Ink(i));
        }
        return rules + "text.text{fill:" + colour(Ink::Text) +
               "text.muted{fill:" + colour(Ink::Muted) + ".lit{fill:" + colour(Ink::Strong) +
               ".rails{fill:" + colour(Ink::Bus) + ".dense{fill:" + colour(Ink::Activity);
    }

    void DrawHead(std::int64_t height) {
        const std::string size =
            std::to_string(style_.width) + "\" height=\"" + std::to_string(height);
        const std::string summary = Escape(Summary());
        out_ = "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" + size + "\" viewBox=\"0 0 " +
               std::to_string(style_.width) + " " + std::to_string(height) + "\" role=\"img\">\n";
        out_ += "<title>" + (picture_.title.empty() ? summary : Escape(CleanText(picture_.title))) +
                "</title>\n<desc>" + summary + "</desc>\n<style>\n" + std::string(kRules) + "\n" +
                Colours(false) + "\n@media(prefers-color-scheme:dark){" + Colours(true) +
                "}\n</style>\n<defs>\n";
        for (const HatchRow& hatch : kHatches) {
            const std::string name(RowOf(hatch.ink).name);
            out_ += "<pattern id=\"hatch-" + name;
            out_ += "\" width=\"8\" height=\"8\" patternUnits=\"userSpaceOnUse\"><path class=\"";
            out_ += name + "\" style=\"stroke-width:1;stroke-dasharray:none\" d=\"" +
                    std::string(hatch.path) + "\"/></pattern>\n";
        }
        out_ += "<clipPath id=\"plot\"><rect x=\"" + std::to_string(left_) + "\" width=\"" +
                std::to_string(SvgPlotWidth(style_)) + "\" height=\"" + std::to_string(height) +
                "\"/></clipPath>\n</defs>\n<rect class=\"ground\" width=\"" + size +
                "\" rx=\"6\"/>\n";
    }

    // Draws the grid, the ruler and its labels; a label that would pass the right border is left
    // out.
    void DrawAxis(std::int64_t bottom) {
        const std::int64_t line = top_ + kAxisHeight - 8;
        std::string grid;
        std::string ruler = Point("M", left_ * 100, line) + "H" + Decimal(X(window_.end));
        for (const Tick& tick : picture_.ticks) {
            const std::int64_t x = X(tick.time);
            grid += Point("M", x, line) + "V" + std::to_string(bottom);
            ruler += Point("M", x, line - 4) + "V" + std::to_string(line);
        }
        Path("grid", grid);
        Path("muted ruler", ruler);
        for (const Tick& tick : picture_.ticks) {
            const std::int64_t half =
                static_cast<std::int64_t>(tick.label.size()) * kSvgLabelWidth * 50;
            if (X(tick.time) + half <= style_.width * 100) {
                Text("muted axis", X(tick.time), line - 9, tick.label);
            }
        }
    }

    void DrawNote(std::int64_t bottom) {
        const std::int64_t y = bottom + 4;
        Boxes(Ink::Activity, BoxPath(left_ * 100, (left_ + 24) * 100, y, 12));
        Text("muted", (left_ + 32) * 100, y + 11, "more happens here than a pixel can show");
    }

    static std::string BoxPath(std::int64_t from, std::int64_t to, std::int64_t y,
                               std::int64_t height) {
        return Point("M", from, y) + "H" + Decimal(to) + "V" + std::to_string(y + height) + "H" +
               Decimal(from) + "Z";
    }

    // Draws one signal. Paths are collected by ink, so that a signal becomes a few elements however
    // many segments it has. If a binary value has no room, all values of the lane become
    // hexadecimal, so that no lane mixes both.
    void DrawLane(const Lane& lane, std::int64_t y) {
        const std::int64_t base = y + kWaveHeight / 2 + 4;
        Text("name text", kMargin * 100, base,
             FitText(lane.name, static_cast<std::size_t>(style_.name_columns), "…"));
        out_ += "<g clip-path=\"url(#plot)\">\n";
        LanePaths paths;
        for (std::size_t i = 0; i < lane.segments.size(); ++i) {
            AddSegment(paths, lane, i, y);
        }
        Path("lit", paths.lit);
        for (std::size_t ink = 0; ink < kInks.size(); ++ink) {
            Boxes(static_cast<Ink>(ink), paths.boxes[ink]);
            Path(kInks[ink].name, paths.lines[ink]);
        }
        const bool narrow =
            lane.binary && std::any_of(lane.segments.begin(), lane.segments.end(),
                                       [&](const Segment& segment) { return IsNarrow(segment); });
        const Lane shown = narrow ? InHex(lane).value_or(lane) : lane;
        for (const Segment& segment : shown.segments) {
            DrawValue(segment, base);
        }
        out_ += "</g>\n";
    }

    static std::int64_t LevelY(Level level, std::int64_t y) {
        return level == Level::Top      ? y
               : level == Level::Bottom ? y + kWaveHeight
                                        : y + kWaveHeight / 2;
    }

    void AddSegment(LanePaths& paths, const Lane& lane, std::size_t i, std::int64_t y) {
        const Segment& segment = lane.segments[i];
        const ClassRow& shape = RowOf(segment.value.value_class);
        const ClassRow* before = i == 0 ? nullptr : &RowOf(lane.segments[i - 1].value.value_class);
        const std::int64_t from = X(segment.from);
        const std::int64_t to = X(segment.to);
        const auto ink = static_cast<std::size_t>(shape.ink);
        // A shape that reaches the window's border is drawn beyond it, where it is clipped.
        const std::int64_t open_from = segment.from == window_.start ? from - kSlope : from;
        const std::int64_t open_to = segment.to == window_.end ? to + kSlope : to;
        if (shape.level == Level::Box) {
            paths.boxes[ink] += BoxPath(open_from, open_to, y, kWaveHeight);
        } else if (shape.level == Level::Rails) {
            paths.boxes[ink] += RailsPath(open_from, open_to, y);
            if (before && IsLine(before->level)) {
                paths.lines[static_cast<std::size_t>(before->ink)] +=
                    "V" + std::to_string(LevelY(Level::Middle, y));
            }
        } else if (shape.level != Level::Nothing) {
            paths.lines[ink] += LinePath(before, shape, from, to, y);
            if (segment.value.value_class == ValueClass::High) {
                paths.lit += BoxPath(from, to, y, kWaveHeight);
            }
        }
    }

    static bool IsLine(Level level) {
        return level == Level::Bottom || level == Level::Middle || level == Level::Top;
    }

    // Returns a level line with the edge that leads to it. In the same ink it continues the last
    // line.
    static std::string LinePath(const ClassRow* before, const ClassRow& shape, std::int64_t from,
                                std::int64_t to, std::int64_t y) {
        const std::string level = std::to_string(LevelY(shape.level, y));
        const bool joined = before && (IsLine(before->level) || before->level == Level::Rails);
        std::string path;
        if (!joined) {
            path = Point("M", from, LevelY(shape.level, y));
        } else if (IsLine(before->level) && before->ink == shape.ink) {
            path = "V" + level;
        } else {
            path = Point("M", from, LevelY(before->level, y)) + "V" + level;
        }
        return path + "H" + Decimal(to);
    }

    // Returns the outline of a bus value, a hexagon whose slopes shrink if it is narrow.
    static std::string RailsPath(std::int64_t from, std::int64_t to, std::int64_t y) {
        const std::int64_t slope = std::min(kSlope, (to - from) / 2);
        const std::int64_t middle = LevelY(Level::Middle, y);
        const std::int64_t bottom = y + kWaveHeight;
        return Point("M", from, middle) + Point("L", from + slope, y) + "H" + Decimal(to - slope) +
               Point("L", to, middle) + Point("L", to - slope, bottom) + "H" +
               Decimal(from + slope) + "Z";
    }

    // Returns how many characters fit into a segment.
    std::size_t RoomOf(const Segment& segment) const {
        const std::int64_t room = X(segment.to) - X(segment.from) - 2 * kSlope;
        return room < 0 ? 0 : static_cast<std::size_t>(room / kValueHundredths);
    }

    bool IsNarrow(const Segment& segment) const {
        return segment.value.value_class == ValueClass::Bus &&
               TextWidth(segment.value.text) > RoomOf(segment);
    }

    void DrawValue(const Segment& segment, std::int64_t base) {
        const ClassRow& shape = RowOf(segment.value.value_class);
        if (shape.level < Level::Box || segment.value.text.empty()) {
            return;
        }
        const std::string text = FitValue(segment.value.text, RoomOf(segment), "…");
        if (!text.empty()) {
            Text(shape.level == Level::Box ? "value halo text" : "value text",
                 (X(segment.from) + X(segment.to)) / 2, base, text);
        }
    }

    const Picture& picture_;
    const SvgStyle& style_;
    TimeWindow window_;
    TimeGrid fine_;
    std::int64_t left_;
    std::int64_t top_;
    std::string out_;
};

}  // namespace

std::int64_t SvgNameColumns(const std::vector<std::string>& names, std::int64_t width) {
    std::size_t widest = 0;
    for (const std::string& name : names) {
        widest = std::max(widest, TextWidth(name));
    }
    return std::min(static_cast<std::int64_t>(widest), width / 3 / kNameCharacter);
}

std::int64_t SvgPlotWidth(const SvgStyle& style) {
    return style.width - 3 * kMargin - style.name_columns * kNameCharacter;
}

std::string DrawSvg(const Picture& picture, const SvgStyle& style) {
    return SvgDrawing(picture, style).Draw();
}

}  // namespace corv::host
