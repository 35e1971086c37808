#include "corv/stremo/stream_details.h"
#include "corv/stremo/stream_overview.h"

#include <algorithm>

#include "platform/guard.h"
#include "stremo/signal_cursor.h"
#include "stremo/stream_error.h"

namespace corv {

void SelectStreamSignals(stremo::IEventsStreamRead& reader, const int* handles,
                         int count) noexcept {
    if (auto* const own = recording::OwnReader(&reader)) {
        const auto selected = static_cast<std::size_t>(std::max(count, 0));
        platform::Done([&] { own->SetInterest({handles, selected}); });
    }
}

stremo::IEventsStreamRead* ShareStream(stremo::IEventsStreamRead& reader) noexcept {
    auto* const own = recording::OwnReader(&reader);
    return own != nullptr ? own->Share().release() : nullptr;
}

bool ReadStreamOverview(stremo::IEventsStreamRead& reader, const int* handles, int count,
                        const std::int64_t* borders, std::size_t border_count,
                        IStreamOverview& overview) noexcept {
    recording::ClearError();
    auto* const own = recording::OwnReader(&reader);
    return own != nullptr && border_count >= 2 &&
           own->ReadOverview({handles, static_cast<std::size_t>(std::max(count, 0))},
                             {borders, border_count}, overview);
}

int CountStreamNotes(stremo::IEventsStreamRead& reader) noexcept {
    auto* const own = recording::OwnReader(&reader);
    return own != nullptr ? own->NoteCount() : 0;
}

const char* GetStreamNote(stremo::IEventsStreamRead& reader, int index) noexcept {
    auto* const own = recording::OwnReader(&reader);
    return own != nullptr ? own->Note(index) : nullptr;
}

}  // namespace corv
