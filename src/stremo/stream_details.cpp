#include "corv/stremo/stream_overview.h"
#include "corv/stremo/streams.h"

#include "platform/guard.h"
#include "stremo/signal_cursor.h"
#include "stremo/stream_error.h"

namespace corv {

void SelectStreamSignals(stremo::IEventsStreamRead& reader, std::span<const int> handles) noexcept {
    if (auto* const own = recording::OwnReader(&reader)) {
        platform::Done([&] { own->SetInterest(handles); });
    }
}

std::unique_ptr<stremo::IEventsStreamRead> ShareStream(stremo::IEventsStreamRead& reader) noexcept {
    auto* const own = recording::OwnReader(&reader);
    return own != nullptr ? own->Share() : nullptr;
}

bool ReadStreamOverview(stremo::IEventsStreamRead& reader, std::span<const int> handles,
                        std::span<const std::int64_t> borders, IStreamOverview& overview) noexcept {
    recording::ClearError();
    auto* const own = recording::OwnReader(&reader);
    return own != nullptr && borders.size() >= 2 && own->ReadOverview(handles, borders, overview);
}

std::vector<std::string> GetStreamNotes(stremo::IEventsStreamRead& reader) noexcept {
    std::vector<std::string> notes;
    auto* const own = recording::OwnReader(&reader);
    const bool listed = platform::Done([&] {
        for (int i = 0; own != nullptr && i < own->NoteCount(); ++i) {
            notes.emplace_back(own->Note(i));
        }
    });
    if (!listed) {
        notes.clear();
    }
    return notes;
}

}  // namespace corv
