#include "platform/windowed_content.h"

#include <algorithm>
#include <limits>
#include <new>
#include <utility>
#include <vector>

#if defined(__unix__) || defined(__APPLE__)
#include <sys/mman.h>
#include <unistd.h>
#define CORV_HAS_MMAP 1
#else
#define CORV_HAS_MMAP 0
#endif

namespace corv::platform {
namespace {

#if CORV_HAS_MMAP

// Addresses whose pages are zeros and take no memory until something is written to them.
// MAP_NORESERVE allows files larger than the memory.
class Pages {
public:
    explicit Pages(std::size_t size) noexcept
        : size_(size),
          data_(mmap(nullptr, size, PROT_READ | PROT_WRITE,
                     MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0)) {}
    Pages(const Pages&) = delete;
    Pages& operator=(const Pages&) = delete;
    ~Pages() {
        if (data_ != MAP_FAILED) {
            munmap(data_, size_);
        }
    }

    unsigned char* data() const noexcept {
        return data_ != MAP_FAILED ? static_cast<unsigned char*>(data_) : nullptr;
    }
    static std::size_t PageSize() noexcept {
        static const auto size = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
        return size;
    }
    void Drop(std::size_t from, std::size_t size) const noexcept {
        madvise(data() + from, size, MADV_DONTNEED);
    }

private:
    std::size_t size_;
    void* data_;
};

#else

class Pages {
public:
    explicit Pages(std::size_t size) : bytes_(size) {}
    unsigned char* data() const noexcept { return bytes_.data(); }
    static std::size_t PageSize() noexcept { return 65'536; }
    void Drop(std::size_t, std::size_t) const noexcept {}

private:
    mutable std::vector<unsigned char> bytes_;
};

#endif

class WindowedContent final : public FileContent {
public:
    WindowedContent(std::unique_ptr<ContentSource> source, std::size_t size)
        : source_(std::move(source)),
          size_(size),
          pages_(size),
          present_((size + Pages::PageSize() - 1) / Pages::PageSize()) {}

    bool has_room() const noexcept { return pages_.data() != nullptr; }

    Bytes bytes() const noexcept override { return {pages_.data(), size_}; }
    void Bring(Bytes part) const noexcept override;
    void Forget(Bytes part) const noexcept override;
    const char* failure() const noexcept override { return failure_; }

private:
    std::size_t PageOf(const unsigned char* at) const noexcept {
        return static_cast<std::size_t>(at - pages_.data()) / Pages::PageSize();
    }
    void ReadPages(std::size_t from, std::size_t to) const noexcept;

    const std::unique_ptr<ContentSource> source_;
    const std::size_t size_;
    const Pages pages_;
    mutable std::vector<bool> present_;  // by page
    mutable const char* failure_ = nullptr;
};

void WindowedContent::Bring(Bytes part) const noexcept {
    if (part.empty()) {
        return;
    }
    const std::size_t end = PageOf(part.data() + part.size() - 1) + 1;
    for (std::size_t page = PageOf(part.data()); page < end; ++page) {
        if (present_[page]) {
            continue;
        }
        // Adjacent pages are read in one call.
        const std::size_t from = page;
        for (; page < end && !present_[page]; ++page) {
            present_[page] = true;
        }
        ReadPages(from, page);
    }
}

// After a failure the pages stay zeros, and the first reason is kept. Readers check failure() at
// the end instead of after each step.
void WindowedContent::ReadPages(std::size_t from, std::size_t to) const noexcept {
    const std::size_t begin = from * Pages::PageSize();
    const std::size_t end = std::min(to * Pages::PageSize(), size_);
    const char* const failure = source_->Read(begin, pages_.data() + begin, end - begin);
    failure_ = failure_ != nullptr ? failure_ : failure;
}

// The page in which a part ends stays, since the next part begins there.
void WindowedContent::Forget(Bytes part) const noexcept {
    const std::size_t from = PageOf(part.data());
    const unsigned char* const part_end = part.data() + part.size();
    const std::size_t to = part_end == pages_.data() + size_ ? present_.size() : PageOf(part_end);
    if (from < to) {
        std::fill(present_.begin() + static_cast<std::ptrdiff_t>(from),
                  present_.begin() + static_cast<std::ptrdiff_t>(to), false);
        pages_.Drop(from * Pages::PageSize(),
                    std::min(to * Pages::PageSize(), size_) - from * Pages::PageSize());
    }
}

// An empty file; mmap refuses a size of 0.
class EmptyContent final : public FileContent {
public:
    Bytes bytes() const noexcept override { return {}; }
};

}  // namespace

std::unique_ptr<FileContent> MakeContent(std::unique_ptr<ContentSource> source,
                                         std::uint64_t size) {
    if (size == 0) {
        return std::make_unique<EmptyContent>();
    }
    if (size > std::numeric_limits<std::size_t>::max() / 2) {
        return nullptr;
    }
    auto content =
        std::make_unique<WindowedContent>(std::move(source), static_cast<std::size_t>(size));
    return content->has_room() ? std::move(content) : nullptr;
}

}  // namespace corv::platform
