#include "stimulus/event_files.h"

#include <cstdio>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

#include "platform/files.h"
#include "platform/guard.h"
#include "platform/immortal.h"
#include "stremo/stream_registry.h"

namespace corv {
namespace {

struct EventFile {
    std::string name;
    bool exact;  // spelt as on the disk; otherwise it did not exist when it was named
};

struct EventFiles {
    std::vector<EventFile> files;
    bool deletion = true;
};

EventFiles& State() noexcept {
    static platform::Immortal<EventFiles> files;
    return *files;
}

// Deletes a file; a failure is ignored. Folders must stay, and std::remove would remove an empty
// one on some systems.
void Delete(const std::string& name) {
    std::error_code error;
    if (!name.empty() && !std::filesystem::is_directory(name, error)) {
        std::remove(name.c_str());
    }
}

}  // namespace

void SetEventFileDeletion(bool enabled) noexcept {
    State().deletion = enabled;
}

void stimulus::RememberEventFile(const char* name) noexcept {
    if (name != nullptr && *name != '\0' && !recording::IsRegisteredStream(name)) {
        platform::Done([&] {
            std::string found = platform::FindFile(name).name;
            const bool exact = !found.empty();
            State().files.push_back({exact ? std::move(found) : std::string(name), exact});
        });
    }
}

void stimulus::DeleteEventFiles() noexcept {
    for (const EventFile& file : State().files) {
        platform::Done([&] {
            if (State().deletion) {
                Delete(file.exact ? file.name : platform::FindFile(file.name).name);
            }
        });
    }
    State() = EventFiles();
}

}  // namespace corv
