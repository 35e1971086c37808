#include "host/recorder.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "corv/stremo/event_file_writer.h"
#include "corv/stremo/streams.h"
#include "corv/stremo/vcd_writer.h"
#include "host/value_type.h"

namespace corv::host {
namespace {

constexpr std::size_t kManyTexts = 4096;

// Whole numbers of several digits all imply the same type, so a sample of them is enough; a counter
// would otherwise fill the memory.
bool SaysNoMore(const std::string& text) {
    return text.size() > 1 && text.size() < 10 &&
           text.find_first_not_of("0123456789") == std::string::npos;
}

void AddElements(const std::string& value, Shape shape, std::set<std::string>& texts) {
    for (std::string& element : Elements(value, shape)) {
        if (texts.size() < kManyTexts || !SaysNoMore(element)) {
            texts.insert(std::move(element));
        }
    }
}

// Returns the texts of the values from a window's start through its end.
std::set<std::string> TextsIn(const SourceSignal& signal, TimeWindow window) {
    std::set<std::string> texts;
    std::string last;
    std::int64_t time = window.start - 1;
    do {
        const auto value = signal.source->ValueAt(time);
        if (value && *value != last) {
            AddElements(*value, signal.shape, texts);
            last = *value;
        }
        time = signal.source->NextEvent(time);
    } while (time >= 0 && time <= window.end);
    return texts;
}

// Returns the part of a window in which a repeating source has usually shown all its values.
TimeWindow Beginning(Source& source, TimeWindow window) {
    return {window.start, std::min(window.end, source.NaturalEnd(window.start))};
}

bool Write(SourceReader& reader, const std::string& file_name, const RecordOptions& options) {
    const auto progress = [&](std::int64_t time) {
        if (options.progress) {
            options.progress(time);
        }
        return true;
    };
    if (!options.vcd) {
        EventFileOptions file;
        file.progress = progress;
        return WriteEventFile(reader, file_name.c_str(), file);
    }
    VcdOptions vcd;
    vcd.start = options.window.start;
    vcd.end = options.window.end;
    vcd.progress = progress;
    return WriteVcd(reader, file_name.c_str(), vcd);
}

// Returns an empty text if everything was written, otherwise why a source could not be read on.
std::string TryRecord(const std::vector<SourceSignal>& signals, const std::string& file_name,
                      const RecordOptions& options) {
    SourceReader reader(signals, options.window);
    const bool written = Write(reader, file_name, options);
    if (reader.Problem().empty() && !written) {
        throw std::runtime_error(LastStreamError());
    }
    return reader.Problem();
}

}  // namespace

void RecordSources(std::vector<SourceSignal> signals, const std::string& file_name,
                   const RecordOptions& options) {
    bool surveyed = false;
    for (SourceSignal& signal : signals) {
        if (signal.type.empty()) {
            signal.elements = TextsIn(signal, Beginning(*signal.source, options.window));
            surveyed = true;
        }
    }
    std::string problem = TryRecord(signals, file_name, options);
    if (!problem.empty() && surveyed) {  // a late value has another type: write again
        for (SourceSignal& signal : signals) {
            if (signal.type.empty()) {
                signal.elements = TextsIn(signal, options.window);
            }
        }
        problem = TryRecord(signals, file_name, options);
    }
    if (!problem.empty()) {
        throw std::runtime_error(problem);
    }
}

double EstimateEvents(Source& source, TimeWindow window) {
    constexpr int kLookedAt = 1000;
    int count = 0;
    std::int64_t last = window.start;
    std::int64_t time = source.NextEvent(window.start - 1);
    for (; time >= 0 && time <= window.end && count < kLookedAt; ++count) {
        last = time;
        time = source.NextEvent(time);
    }
    if (count < kLookedAt || last == window.start) {
        return count;
    }
    return count * (static_cast<double>(window.end - window.start) /
                    static_cast<double>(last - window.start));
}

}  // namespace corv::host
