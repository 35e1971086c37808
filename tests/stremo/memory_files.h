#pragma once

#include <algorithm>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/files.h"

namespace corv::test {

// Files in memory, of which writing can fail.
class MemoryFiles final : public platform::Files {
public:
    using Content = std::vector<unsigned char>;

    Opened<platform::FileContent> Open(const std::string& name) override {
        const auto found = files_.find(name);
        if (found == files_.end()) {
            return {nullptr, "there is no such file"};
        }
        return {std::make_unique<Held>(found->second), nullptr};
    }
    Opened<platform::FileOutput> Create(const std::string& name) override {
        return {std::make_unique<Output>(*this, files_[name] = {}), nullptr};
    }

    Content& operator[](const std::string& name) { return files_[name]; }
    // The disk takes that many bytes more, of all files together; part of a write too.
    void LimitRoom(std::size_t bytes) { room_ = bytes; }
    void FailOnClose() { fail_on_close_ = true; }

private:
    class Held final : public platform::FileContent {
    public:
        explicit Held(Content content) : content_(std::move(content)) {}
        platform::Bytes bytes() const noexcept override { return content_; }

    private:
        Content content_;
    };

    class Output final : public platform::FileOutput {
    public:
        Output(MemoryFiles& files, Content& content) : files_(files), content_(content) {}
        const char* Append(platform::Bytes bytes) noexcept override {
            const std::size_t taken = std::min(bytes.size(), files_.room_);
            content_.insert(content_.end(), bytes.begin(),
                            bytes.begin() + static_cast<long>(taken));
            files_.room_ -= taken;
            return taken < bytes.size() ? "the disk is full" : nullptr;
        }
        const char* Close() noexcept override {
            return files_.fail_on_close_ ? "the disk can't be read or written" : nullptr;
        }

    private:
        MemoryFiles& files_;
        Content& content_;
    };

    std::map<std::string, Content> files_;
    std::size_t room_ = static_cast<std::size_t>(-1);
    bool fail_on_close_ = false;
};

}  // namespace corv::test
