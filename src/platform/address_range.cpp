#include "platform/address_range.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <bit>
#include <cstdint>
#include <utility>

#if defined(__unix__) || defined(__APPLE__)
#include <sys/mman.h>
#include <sys/resource.h>
#include <unistd.h>
#define CORV_HAS_MMAP 1
#else
#define CORV_HAS_MMAP 0
#endif

namespace corv::platform {
namespace {

#if CORV_HAS_MMAP

// Addresses are mapped without access (PROT_NONE), so they count neither as memory nor towards
// overcommit until mprotect makes them usable; the kernel then fills them page by page at the first
// touch.
std::size_t PageSize() noexcept {
    static const auto size = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    return size;
}

void* MapAddresses(std::size_t bytes) noexcept {
    void* const data = mmap(nullptr, bytes, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    return data == MAP_FAILED ? nullptr : data;
}
void UnmapAddresses(void* data, std::size_t bytes) noexcept {
    munmap(data, bytes);
}
bool MakeUsable(void* data, std::size_t bytes) noexcept {
    return mprotect(data, bytes, PROT_READ | PROT_WRITE) == 0;
}
void DropContent(void* data, std::size_t bytes) noexcept {
    madvise(data, bytes, MADV_DONTNEED);
}
// Asks for pages of kLargePage bytes, which cause far fewer page faults.
void PreferLargePages(void* data, std::size_t bytes) noexcept {
#if defined(MADV_HUGEPAGE)
    madvise(data, bytes, MADV_HUGEPAGE);
#else
    static_cast<void>(data);
    static_cast<void>(bytes);
#endif
}
// Returns how many addresses the process may have, SIZE_MAX without a limit.
std::size_t AddressLimit() noexcept {
    rlimit limit{};
    const bool is_limited = getrlimit(RLIMIT_AS, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY;
    return is_limited ? static_cast<std::size_t>(limit.rlim_cur) : SIZE_MAX;
}

#else

constexpr std::size_t PageSize() noexcept {
    return 4096;
}
void* MapAddresses(std::size_t) noexcept {
    return nullptr;
}
void UnmapAddresses(void*, std::size_t) noexcept {}
bool MakeUsable(void*, std::size_t) noexcept {
    return false;
}
void DropContent(void*, std::size_t) noexcept {}
void PreferLargePages(void*, std::size_t) noexcept {}
constexpr std::size_t AddressLimit() noexcept {
    return SIZE_MAX;
}

#endif

std::size_t Whole(std::size_t bytes, std::size_t page) noexcept {
    return (bytes + page - 1) / page * page;
}
std::size_t WholePages(std::size_t bytes) noexcept {
    return Whole(bytes, PageSize());
}

// Large ranges are for long lists, where large pages waste little. Only the first 64 MiB of a range
// ask for them, since a system that has to find very many large pages becomes slow.
constexpr std::size_t kLargePage = std::size_t{2} << 20;
constexpr std::size_t kLargeRange = 8 * kLargePage;
constexpr std::size_t kMostLarge = 32 * kLargePage;

// A process has a limited number of memory areas (65,530 by default on Linux), and a range takes
// two, its usable and its reserved part; most of them are left to the host.
constexpr int kMostRanges = 8192;
std::atomic<int> range_count{0};
std::atomic<std::size_t> reserved_bytes{0};

// Up to this total, ranges are reserved as large as wanted; beyond it, only as large as necessary.
// Under a limit of addresses, generous ranges take an eighth of them and all ranges half, so that
// the larger part remains for the host.
constexpr std::size_t kMostGenerous = std::size_t{2} << 30;
constexpr std::size_t kGenerousPart = 8;
constexpr std::size_t kLargestPart = 2;

// The ranges that no list uses at the moment. Owners may be on different threads. There is no lock:
// a thread that finds the list in use does without a kept range, which costs time but is never
// wrong.
class KeptRanges {
public:
    void Put(AddressRange& range) noexcept {
        const Use use(in_use_);
        if (!use || count_ == kept_.size() ||
            range.usable() > AddressRange::kMostKeptBytes - bytes_) {
            return;
        }
        bytes_ += range.usable();
        kept_[count_++] = std::move(range);
    }

    // Once all remaining ranges are kept ones, drops the largest of them until the rest is small
    // enough to leave with the process.
    void DropUnlessUsed() noexcept {
        const Use use(in_use_);
        while (use && bytes_ > AddressRange::kMostLeftBytes &&
               range_count.load(std::memory_order_relaxed) == static_cast<int>(count_)) {
            const auto largest = std::max_element(
                kept_.begin(), kept_.begin() + static_cast<std::ptrdiff_t>(count_),
                [](const auto& a, const auto& b) { return a.usable() < b.usable(); });
            const AddressRange dropped = std::move(*largest);
            *largest = std::move(kept_[--count_]);
            bytes_ -= dropped.usable();
        }
    }

    // Returns the range of that size that was put last (of any size, for 0), an empty one if there
    // is none. The latest is the most likely to be still in the processor's caches.
    AddressRange Take(std::size_t reserved) noexcept {
        const Use use(in_use_);
        if (!use) {
            return {};
        }
        for (std::size_t i = count_; i-- > 0;) {
            if (reserved == 0 || kept_[i].reserved() == reserved) {
                AddressRange taken = std::move(kept_[i]);
                kept_[i] = std::move(kept_[--count_]);
                bytes_ -= taken.usable();
                return taken;
            }
        }
        return {};
    }

private:
    class Use {
    public:
        explicit Use(std::atomic<bool>& in_use) noexcept
            : in_use_(in_use), granted_(!in_use.exchange(true, std::memory_order_acquire)) {}
        Use(const Use&) = delete;
        Use& operator=(const Use&) = delete;
        ~Use() {
            if (granted_) {
                in_use_.store(false, std::memory_order_release);
            }
        }
        explicit operator bool() const noexcept { return granted_; }

    private:
        std::atomic<bool>& in_use_;
        bool granted_;
    };

    std::atomic<bool> in_use_ = false;
    std::array<AddressRange, 64> kept_;
    std::size_t count_ = 0;
    std::size_t bytes_ = 0;
};

// Constant-initialised and never destroyed, since waves may end after everything else, even after
// static objects. The union keeps the compiler from calling the destructor.
union NeverDestroyed {
    constexpr NeverDestroyed() noexcept : ranges() {}
    ~NeverDestroyed() {}
    KeptRanges ranges;
};
constinit NeverDestroyed kept_ranges;

KeptRanges& Kept() noexcept {
    return kept_ranges.ranges;
}

}  // namespace

AddressRange AddressRange::Reserve(std::size_t least, std::size_t wanted) noexcept {
    if (sizeof(void*) < 8 || std::max(least, wanted) > (SIZE_MAX >> 1)) {
        return {};
    }
    // The limit is asked anew each time, since a host may change it. Sizes are powers of two, so
    // that kept ranges fit later requests.
    const std::size_t limit = AddressLimit();
    const std::size_t in_use = reserved_bytes.load(std::memory_order_relaxed);
    const auto is_within = [&](std::size_t bytes, std::size_t most) {
        return in_use <= most && bytes <= most - in_use;
    };
    wanted = std::bit_ceil(WholePages(wanted));
    const bool is_generous = is_within(wanted, std::min(kMostGenerous, limit / kGenerousPart));
    const std::size_t bytes = is_generous ? wanted : std::bit_ceil(WholePages(least));
    if (AddressRange kept = Kept().Take(bytes)) {
        return kept;
    }
    return is_within(bytes, limit / kLargestPart) ? Map(bytes) : AddressRange();
}

AddressRange AddressRange::Map(std::size_t bytes) noexcept {
    // The count is raised before mapping, so that threads together cannot pass the limit.
    if (range_count.fetch_add(1, std::memory_order_relaxed) < kMostRanges) {
        if (void* const data = MapAddresses(bytes)) {
            reserved_bytes.fetch_add(bytes, std::memory_order_relaxed);
            if (bytes >= kLargeRange) {
                PreferLargePages(data, std::min(bytes, kMostLarge));
            }
            return {data, bytes, 0};
        }
    }
    range_count.fetch_sub(1, std::memory_order_relaxed);
    return {};
}

void AddressRange::Keep(AddressRange range) noexcept {
    Kept().Put(range);
    Kept().DropUnlessUsed();
}

void AddressRange::ReleaseKept() noexcept {
    while (Kept().Take(0)) {
    }
}

AddressRange::~AddressRange() {
    if (data_ != nullptr) {
        UnmapAddresses(data_, reserved_);
        reserved_bytes.fetch_sub(reserved_, std::memory_order_relaxed);
        range_count.fetch_sub(1, std::memory_order_relaxed);
        Kept().DropUnlessUsed();
    }
}

bool AddressRange::Commit(std::size_t bytes) noexcept {
    // Whole large pages, or the kernel could not use them.
    bytes = reserved_ >= kLargeRange ? Whole(bytes, kLargePage) : WholePages(bytes);
    if (bytes <= usable_) {
        return true;
    }
    if (bytes > reserved_ ||
        !MakeUsable(static_cast<std::byte*>(data_) + usable_, bytes - usable_)) {
        return false;
    }
    usable_ = bytes;
    return true;
}

void AddressRange::Trim(std::size_t used) noexcept {
    used = WholePages(used);
    if (used < usable_) {
        DropContent(static_cast<std::byte*>(data_) + used, usable_ - used);
    }
}

}  // namespace corv::platform
