#include "host/packed_source.h"

#define ZLIB_CONST  // input is not written to
#include <zlib.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <istream>
#include <limits>
#include <sstream>
#include <stdexcept>
#include <utility>
#include <vector>

namespace corv::host {
namespace {

using Byte = unsigned char;

constexpr std::size_t kWindow = 32'768;  // how far unpacking looks back
constexpr std::size_t kBuffer = std::size_t{1} << 18;
constexpr int kRaw = -15;
constexpr int kGzip = 31;
constexpr const char* kChanged = "the packed file was changed while it was read";

// A place from which unpacking can begin: only the 32 KiB before it are needed.
struct Place {
    std::uint64_t unpacked;
    std::uint64_t packed;
    int format;                // kGzip at the beginning of a packed file, else kRaw
    int bits = 0;              // unused bits of the byte before `packed`
    std::vector<Byte> window;  // what was unpacked before it
};

// Unpacks from a place on.
class Unpacker {
public:
    explicit Unpacker(std::istream& in) : in_(in), input_(kBuffer) {}
    Unpacker(const Unpacker&) = delete;
    Unpacker& operator=(const Unpacker&) = delete;
    ~Unpacker() { inflateEnd(&stream_); }

    // Returns false if the input cannot be read there.
    bool Begin(const Place& place);

    // Unpacks up to `size` bytes, but not past the end of a block. `code` is that of inflate.
    std::size_t Read(Byte* to, std::size_t size, int& code);

    std::uint64_t unpacked() const { return unpacked_; }
    std::uint64_t packed() const { return packed_ - stream_.avail_in; }
    // Return whether a block ends here and another one of the same file follows, and how many bits
    // of the last byte are unused.
    bool at_block() const { return (stream_.data_type & 0xC0) == 0x80; }
    int bits() const { return stream_.data_type & 7; }
    const char* message() const { return stream_.msg != nullptr ? stream_.msg : "no gzip data"; }

    // After the end of a packed file, returns whether another one follows, and begins it: gzip
    // files may be concatenated.
    bool BeginNext();

private:
    bool Fill();

    std::istream& in_;
    std::vector<Byte> input_;
    z_stream stream_{};
    int format_ = 0;
    std::uint64_t packed_ = 0;  // taken from the input
    std::uint64_t unpacked_ = 0;
};

bool Unpacker::Begin(const Place& place) {
    in_.clear();
    in_.seekg(static_cast<std::streamoff>(place.packed - (place.bits != 0 ? 1 : 0)));
    inflateEnd(&stream_);
    stream_ = {};
    if (!in_ || inflateInit2(&stream_, place.format) != Z_OK) {
        return false;
    }
    format_ = place.format;
    packed_ = place.packed;
    unpacked_ = place.unpacked;
    if (place.bits != 0) {
        inflatePrime(&stream_, place.bits, in_.get() >> (8 - place.bits));
    }
    return place.window.empty() ||
           inflateSetDictionary(&stream_, place.window.data(),
                                static_cast<uInt>(place.window.size())) == Z_OK;
}

bool Unpacker::Fill() {
    if (stream_.avail_in == 0) {
        in_.read(reinterpret_cast<char*>(input_.data()),
                 static_cast<std::streamsize>(input_.size()));
        stream_.next_in = input_.data();
        stream_.avail_in = static_cast<uInt>(in_.gcount());
        packed_ += stream_.avail_in;
    }
    return stream_.avail_in > 0;
}

std::size_t Unpacker::Read(Byte* to, std::size_t size, int& code) {
    stream_.next_out = to;
    stream_.avail_out = static_cast<uInt>(std::min(size, kBuffer));
    const uInt room = stream_.avail_out;
    do {
        code = Fill() ? inflate(&stream_, Z_BLOCK) : Z_BUF_ERROR;
    } while (code == Z_OK && stream_.avail_out == room && !at_block());
    unpacked_ += room - stream_.avail_out;
    return room - stream_.avail_out;
}

bool Unpacker::BeginNext() {
    if (format_ == kRaw) {  // the sum and the length, which were looked at the first time
        for (int left = 8; left > 0 && Fill(); --left) {
            ++stream_.next_in;
            --stream_.avail_in;
        }
    }
    format_ = kGzip;
    return Fill() && *stream_.next_in == 0x1F && inflateReset2(&stream_, kGzip) == Z_OK;
}

class PackedSource final : public IStreamSource {
public:
    explicit PackedSource(std::unique_ptr<std::istream> in)
        : in_(std::move(in)), unpacker_(*in_), scratch_(kBuffer) {}

    // Finds the places; returns why it stopped before the end, or an empty text.
    std::string GoThrough(std::uint64_t packed_size, const std::function<void(double)>& progress);
    // Uses places that are already known.
    void SetPlaces(std::vector<Place> places, std::uint64_t size) {
        places_ = std::move(places);
        size_ = size;
    }

    std::uint64_t GetSize() noexcept override { return size_; }
    const char* Read(std::uint64_t offset, void* to, std::size_t size) noexcept override;

private:
    void AddPlace(const std::vector<Byte>& window);
    bool GoTo(std::uint64_t offset);
    bool Unpack(Byte* to, std::size_t size);

    std::unique_ptr<std::istream> in_;
    Unpacker unpacker_;
    std::vector<Place> places_;
    std::uint64_t step_ = std::uint64_t{1} << 22;  // from place to place, unpacked
    std::uint64_t size_ = 0;
    bool begun_ = false;
    std::vector<Byte> scratch_;
};

std::string PackedSource::GoThrough(std::uint64_t packed_size,
                                    const std::function<void(double)>& progress) {
    places_.push_back({0, 0, kGzip, 0, {}});
    int code = unpacker_.Begin(places_[0]) ? Z_OK : Z_DATA_ERROR;
    std::vector<Byte> window;
    std::uint64_t told = 0;
    while (code == Z_OK || (code == Z_STREAM_END && unpacker_.BeginNext())) {
        const std::size_t count = unpacker_.Read(scratch_.data(), scratch_.size(), code);
        const std::size_t kept = std::min(count, kWindow);
        window.insert(window.end(), scratch_.data() + count - kept, scratch_.data() + count);
        window.erase(window.begin(),
                     window.end() - static_cast<std::ptrdiff_t>(std::min(window.size(), kWindow)));
        if (code == Z_OK && unpacker_.at_block() &&
            unpacker_.unpacked() - places_.back().unpacked >= step_) {
            AddPlace(window);
        }
        if (progress && unpacker_.packed() - told >= kBuffer) {
            told = unpacker_.packed();
            progress(static_cast<double>(told) / static_cast<double>(packed_size));
        }
    }
    size_ = unpacker_.unpacked();
    if (code == Z_STREAM_END) {
        return {};
    }
    return code == Z_BUF_ERROR ? "the packed file is cut: what can be unpacked is read"
                               : std::string("the packed file is damaged (") + unpacker_.message() +
                                     "): what can be unpacked is read";
}

// Adds a place. If there are too many, every second one is dropped and the distance doubles, so
// that memory stays limited whatever the size.
void PackedSource::AddPlace(const std::vector<Byte>& window) {
    constexpr std::size_t kMostPlaces = 512;
    places_.push_back({unpacker_.unpacked(), unpacker_.packed(), kRaw, unpacker_.bits(), window});
    if (places_.size() > kMostPlaces) {
        std::size_t kept = 0;
        for (std::size_t i = 0; i < places_.size(); i += 2) {
            std::swap(places_[kept++], places_[i]);
        }
        places_.resize(kept);
        step_ *= 2;
    }
}

// Continues from where the last reading ended, or from the last place before the offset.
bool PackedSource::GoTo(std::uint64_t offset) {
    const auto after =
        std::upper_bound(places_.begin(), places_.end(), offset,
                         [](std::uint64_t o, const Place& place) { return o < place.unpacked; });
    const Place& place = after[-1];
    if (!begun_ || unpacker_.unpacked() > offset || unpacker_.unpacked() < place.unpacked) {
        begun_ = unpacker_.Begin(place);
    }
    while (begun_ && unpacker_.unpacked() < offset) {
        const auto left = std::min<std::uint64_t>(offset - unpacker_.unpacked(), kBuffer);
        begun_ = Unpack(scratch_.data(), static_cast<std::size_t>(left));
    }
    return begun_;
}

bool PackedSource::Unpack(Byte* to, std::size_t size) {
    int code = Z_OK;
    while (size > 0) {
        const std::size_t count = unpacker_.Read(to, size, code);
        to += count;
        size -= count;
        const bool goes_on = code == Z_OK || (code == Z_STREAM_END && unpacker_.BeginNext());
        if (size > 0 && !goes_on && count == 0) {
            return false;
        }
    }
    return true;
}

const char* PackedSource::Read(std::uint64_t offset, void* to, std::size_t size) noexcept {
    try {
        begun_ = GoTo(offset) && Unpack(static_cast<Byte*>(to), size);
    } catch (const std::exception&) {
        begun_ = false;
    }
    return begun_ ? nullptr : kChanged;
}

// ---- what comes only once ----

// Packs a stream in parts that can be unpacked independently of each other (a full flush resets the
// window).
class Packer {
public:
    Packer() { deflateInit2(&stream_, 1, Z_DEFLATED, kRaw, 8, Z_DEFAULT_STRATEGY); }
    Packer(const Packer&) = delete;
    Packer& operator=(const Packer&) = delete;
    ~Packer() { deflateEnd(&stream_); }

    void Take(const char* bytes, std::size_t size, bool last);

    std::stringstream packed;
    std::vector<Place> places;
    std::uint64_t size = 0;

private:
    z_stream stream_{};
};

void Packer::Take(const char* bytes, std::size_t count, bool last) {
    places.push_back({size, stream_.total_out, kRaw, 0, {}});
    size += count;
    stream_.next_in = reinterpret_cast<const Byte*>(bytes);
    stream_.avail_in = static_cast<uInt>(count);
    std::array<char, 65'536> part;
    do {
        stream_.next_out = reinterpret_cast<Byte*>(part.data());
        stream_.avail_out = static_cast<uInt>(part.size());
        deflate(&stream_, last ? Z_FINISH : Z_FULL_FLUSH);
        packed.write(part.data(), static_cast<std::streamsize>(part.size() - stream_.avail_out));
    } while (stream_.avail_out == 0);
}

bool IsGzip(const std::string& beginning) {
    return beginning.starts_with("\x1F\x8B");
}

}  // namespace

PackedStream OpenPacked(const std::string& file_name, const std::function<void(double)>& progress) {
    auto file = std::make_unique<std::ifstream>(file_name, std::ios::binary | std::ios::ate);
    if (!*file) {
        throw std::runtime_error(file_name + ": " + std::strerror(errno));
    }
    const auto size = static_cast<std::uint64_t>(file->tellg());
    auto source = std::make_unique<PackedSource>(std::move(file));
    std::string problem = source->GoThrough(size, progress);
    return {std::move(source), std::move(problem)};
}

PackedStream KeepPacked(std::istream& in) {
    std::string part(std::size_t{1} << 20, '\0');
    const auto read = [&] {
        in.read(part.data(), static_cast<std::streamsize>(part.size()));
        return static_cast<std::size_t>(in.gcount());
    };
    std::size_t count = read();
    if (IsGzip(part.substr(0, std::min<std::size_t>(count, 2)))) {
        auto packed = std::make_unique<std::stringstream>();
        for (; count > 0; count = read()) {
            packed->write(part.data(), static_cast<std::streamsize>(count));
        }
        auto source = std::make_unique<PackedSource>(std::move(packed));
        std::string problem = source->GoThrough(1, {});
        return {std::move(source), std::move(problem)};
    }
    Packer packer;
    for (; count == part.size(); count = read()) {
        packer.Take(part.data(), count, false);
    }
    packer.Take(part.data(), count, true);
    auto source = std::make_unique<PackedSource>(
        std::make_unique<std::stringstream>(std::move(packer.packed)));
    source->SetPlaces(std::move(packer.places), packer.size);
    return {std::move(source), {}};
}

}  // namespace corv::host
