#include "host/find/measure.h"

namespace corv::find {

void Lengths::Add(std::int64_t length, std::int64_t at) {
    if (count == 0 || length < shortest) {
        shortest = length;
        shortest_at = at;
    }
    if (count == 0 || length > longest) {
        longest = length;
        longest_at = at;
    }
    ++count;
    sum += static_cast<double>(length);
}

LevelFigures MeasureLevel(Level& level, std::int64_t shortest) {
    LevelFigures figures;
    bool holds = level.AtFirst();
    std::int64_t last = -1;       // the change before
    std::int64_t beginning = -1;  // the last one
    double high = 0;              // in the whole periods
    std::int64_t pulse = 0;       // that began there
    for (std::int64_t time = level.Next(); time >= 0; time = level.Next()) {
        if (last >= 0) {
            (holds ? figures.high : figures.low).Add(time - last, last);
            if (time - last < shortest) {
                figures.first_glitch = figures.glitches++ == 0 ? last : figures.first_glitch;
            }
        }
        if (!holds) {
            if (beginning >= 0) {
                figures.periods.Add(time - beginning, beginning);
                high += static_cast<double>(pulse);
            }
            beginning = time;
        } else {
            pulse = time - last;
        }
        holds = !holds;
        last = time;
    }
    figures.duty = figures.periods.count > 0 ? high / figures.periods.sum : 0;
    return figures;
}

Lengths MeasureMoments(Moments& moments) {
    Lengths lengths;
    std::int64_t last = moments.Next();
    for (std::int64_t time = moments.Next(); time >= 0; time = moments.Next()) {
        lengths.Add(time - last, last);
        last = time;
    }
    return lengths;
}

SetupAndHold MeasureSetupAndHold(Moments& changes, Moments& edges) {
    SetupAndHold figures;
    std::int64_t before = -1;
    std::int64_t next = changes.Next();
    for (std::int64_t edge = edges.Next(); edge >= 0; edge = edges.Next()) {
        ++figures.edges;
        for (; next >= 0 && next < edge; next = changes.Next()) {
            before = next;
        }
        if (before >= 0) {
            figures.setup.Add(edge - before, edge);
        }
        if (next >= 0) {
            figures.hold.Add(next - edge, edge);
        }
    }
    return figures;
}

}  // namespace corv::find
