#include "stimulus/event_files.h"

#include <cstdio>
#include <string>
#include <vector>

#include "platform/files.h"
#include "platform/guard.h"
#include "platform/immortal.h"
#include "stremo/stream_registry.h"

namespace corv {
namespace {

struct EventFiles {
    std::vector<std::string> names;
    bool deletion = true;
};

EventFiles& State() noexcept {
    static platform::Immortal<EventFiles> files;
    return *files;
}

}  // namespace

void SetEventFileDeletion(bool enabled) noexcept {
    State().deletion = enabled;
}

void stimulus::RememberEventFile(const char* name) noexcept {
    if (name != nullptr && *name != '\0' && !recording::IsRegisteredStream(name)) {
        platform::Done([&] { State().names.emplace_back(name); });
    }
}

void stimulus::DeleteEventFiles() noexcept {
    for (const std::string& name : State().names) {
        platform::Done([&] {
            const platform::FoundFile found = platform::FindFile(name);
            if (State().deletion && !found.name.empty()) {
                std::remove(found.name.c_str());  // without success: nothing to be done about it
            }
        });
    }
    State() = EventFiles();
}

}  // namespace corv
