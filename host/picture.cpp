#include "host/picture.h"

#include <algorithm>
#include <utility>

#include "host/bus_text.h"
#include "host/fit_text.h"

namespace corv::host {
namespace {

struct LetterRow {
    char letter;
    ValueClass value_class;
};
constexpr std::array<LetterRow, 9> kLetters{{
    {'U', ValueClass::Unknown},
    {'X', ValueClass::Unknown},
    {'0', ValueClass::Low},
    {'1', ValueClass::High},
    {'Z', ValueClass::HighZ},
    {'W', ValueClass::WeakUnknown},
    {'L', ValueClass::WeakLow},
    {'H', ValueClass::WeakHigh},
    {'-', ValueClass::DontCare},
}};

// Returns the single letter of a value text, with or without quotes, in upper case; 0 if there is
// more than one letter.
char Bare(std::string_view text) {
    if (text.size() == 3 && text.front() == text.back() && (text[0] == '\'' || text[0] == '"')) {
        text = text.substr(1, 1);
    }
    const char c = text.size() == 1 ? text[0] : '\0';
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

// Appends the value that holds from a time on, where the one before it ends.
void Append(Lane& lane, std::int64_t from, ShownValue value, std::int64_t end) {
    if (!lane.segments.empty()) {
        // a later value at the same time replaces one that lasted no time
        if (lane.segments.back().from == from) {
            lane.segments.pop_back();
        }
    }
    if (!lane.segments.empty()) {
        Segment& last = lane.segments.back();
        last.to = last.value == value ? end : from;
        if (last.value == value) {
            return;
        }
    }
    lane.segments.push_back({from, end, std::move(value)});
}

// Walks a trace column by column.
class LaneBuilder {
public:
    LaneBuilder(const Trace& trace, const TimeGrid& grid)
        : trace_(trace),
          grid_(grid),
          window_(grid.Window()),
          marks_(static_cast<std::size_t>(grid.Columns()), Mark::Nothing) {
        lane_.name = CleanText(trace.name);
        lane_.binary = trace.binary;
        if (trace.before) {
            value_ = Shown(*trace.before);
        }
        Append(lane_, window_.start, value_, window_.end);
    }

    Lane Build() {
        auto crowded = trace_.crowded.begin();
        std::size_t next = 0;
        for (;;) {
            const std::int64_t change =
                next < trace_.changes.size() ? trace_.changes[next].time : window_.end;
            const std::int64_t crowd =
                crowded != trace_.crowded.end() ? crowded->start : window_.end;
            if (std::min(change, crowd) >= window_.end) {
                JoinActivity();
                EndWithKnowledge();
                return std::move(lane_);
            }
            if (grid_.Column(crowd) <= grid_.Column(change)) {
                next = AddCrowd(*crowded, next);
                ++crowded;
            } else {
                next = AddColumn(next);
            }
        }
    }

private:
    ShownValue Shown(const std::string& value) const {
        if (trace_.plain) {
            return {ValueClass::Bus, CleanText(value)};
        }
        return trace_.bus ? ClassifyBus(value) : Classify(value);
    }

    // Adds a stretch in which more happens than was recorded one by one. It is drawn as Activity;
    // the changes in it only decide the value after it.
    std::size_t AddCrowd(TimeWindow crowd, std::size_t next) {
        const std::int64_t last = std::min(grid_.Column(crowd.end - 1), grid_.Columns() - 1);
        const std::int64_t end = grid_.First(last + 1);
        for (; next < trace_.changes.size() && trace_.changes[next].time < end; ++next) {
            value_ = Shown(trace_.changes[next].value);
        }
        const std::int64_t first = grid_.Column(crowd.start);
        std::fill(At(first), At(last + 1), Mark::Activity);
        AddActivity(grid_.First(first), end);
        return next;
    }

    // Adds the changes of one column. Events that do not change the shown value do not count: a
    // column is Activity only if more than one visible change is in it.
    std::size_t AddColumn(std::size_t next) {
        const std::int64_t column = grid_.Column(trace_.changes[next].time);
        const std::int64_t end = grid_.First(column + 1);
        std::int64_t at = 0;
        int changes = 0;
        for (; next < trace_.changes.size() && trace_.changes[next].time < end; ++next) {
            ShownValue value = Shown(trace_.changes[next].value);
            if (value != value_) {
                at = trace_.changes[next].time;
                value_ = std::move(value);
                ++changes;
            }
        }
        if (changes == 1) {
            *At(column) = Mark::Change;
            Append(lane_, at, value_, window_.end);
        } else if (changes > 1) {
            *At(column) = Mark::Activity;
            AddActivity(grid_.First(column), end);
        }
        return next;
    }

    // Single changes next to Activity become part of it: edges between dense bands would look like
    // a slow signal that does not exist.
    void JoinActivity() {
        std::vector<Segment> segments;
        std::swap(segments, lane_.segments);
        TimeWindow run = NextRun(window_.start);
        for (Segment& segment : segments) {
            while (run.end <= segment.from && run.start < run.end) {
                run = NextRun(run.end);
            }
            if (run.start >= run.end || segment.from < run.start) {
                Append(lane_, segment.from, std::move(segment.value), window_.end);
                continue;
            }
            Append(lane_, run.start, {ValueClass::Activity, {}}, window_.end);
            if (segment.to > run.end) {
                Append(lane_, run.end, std::move(segment.value), window_.end);
            }
        }
    }

    // Returns the first run of columns with changes, from a column border on, that contains
    // Activity; an empty window if there is none.
    TimeWindow NextRun(std::int64_t border) {
        for (auto first = At(grid_.Column(border)); first != marks_.end();) {
            const auto end = std::find(first, marks_.end(), Mark::Nothing);
            if (std::find(first, end, Mark::Activity) != end) {
                return {grid_.First(first - marks_.begin()), grid_.First(end - marks_.begin())};
            }
            first = std::find_if(end, marks_.end(), [](Mark m) { return m != Mark::Nothing; });
        }
        return {window_.end, window_.end};
    }

    // Removes everything after the column of the last known time.
    void EndWithKnowledge() {
        const std::int64_t known = trace_.known_until.value_or(window_.end);
        const std::int64_t end =
            known < window_.start ? window_.start : grid_.First(grid_.Column(known) + 1);
        if (known >= window_.end || end >= window_.end) {
            return;
        }
        while (!lane_.segments.empty() && lane_.segments.back().from >= end) {
            lane_.segments.pop_back();
        }
        Append(lane_, end, {}, window_.end);
    }

    void AddActivity(std::int64_t from, std::int64_t to) {
        from = std::max(from, lane_.segments.back().from);
        Append(lane_, from, {ValueClass::Activity, {}}, window_.end);
        if (to < window_.end) {
            Append(lane_, to, value_, window_.end);
        }
    }

    enum class Mark : char { Nothing, Change, Activity };  // what happens in a column
    std::vector<Mark>::iterator At(std::int64_t column) { return marks_.begin() + column; }

    const Trace& trace_;
    const TimeGrid& grid_;
    TimeWindow window_;
    std::vector<Mark> marks_;  // by column
    Lane lane_;
    ShownValue value_;
};

}  // namespace

ShownValue Classify(std::string_view value_text) {
    const char letter = Bare(value_text);
    const auto row = std::find_if(kLetters.begin(), kLetters.end(),
                                  [&](const LetterRow& r) { return r.letter == letter; });
    if (row == kLetters.end()) {
        return {ValueClass::Bus, CleanText(value_text)};
    }
    return {row->value_class, std::string(1, letter)};
}

ShownValue ClassifyBus(std::string_view value_text) {
    for (const std::string_view letter : {"Z", "X", "U"}) {
        if (!value_text.empty() && value_text.find_first_not_of(letter) == std::string_view::npos) {
            return Classify(letter);
        }
    }
    return {ValueClass::Bus, CleanText(value_text)};
}

Lane LayOut(const Trace& trace, const TimeGrid& grid) {
    return LaneBuilder(trace, grid).Build();
}

std::optional<Lane> InHex(const Lane& lane) {
    Lane hex = lane;
    for (Segment& segment : hex.segments) {
        std::string& text = segment.value.text;
        if (segment.value.value_class == ValueClass::Bus && text.size() > 1) {
            std::string digits = BusDigits(text, Radix::Hex);
            if (digits == text) {
                return std::nullopt;
            }
            text = std::move(digits);
        }
    }
    return hex;
}

std::vector<Cell> CellsOf(const Lane& lane, const TimeGrid& grid) {
    std::vector<Cell> cells(static_cast<std::size_t>(grid.Columns()));
    const Segment* before = nullptr;
    for (const Segment& segment : lane.segments) {
        const auto first = cells.begin() + grid.Column(segment.from);
        std::fill(first, cells.end(), Cell{&segment});
        const bool plain = before == nullptr || before->value.value_class == ValueClass::None ||
                           before->value.value_class == ValueClass::Activity ||
                           segment.value.value_class == ValueClass::Activity;
        if (!plain) {
            first->before = before;
        }
        before = &segment;
    }
    return cells;
}

}  // namespace corv::host
