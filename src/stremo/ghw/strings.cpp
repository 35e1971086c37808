#include "stremo/ghw/strings.h"

#include <algorithm>

namespace corv::ghw {
namespace {

constexpr std::string_view kEnd("EOS", 4);

bool EndsString(unsigned char byte) noexcept {
    return byte < 32 || (byte >= 128 && byte < 160);
}

std::uint64_t ReadShared(Input& in) noexcept {
    std::uint64_t shared = 0;
    for (unsigned shift = 0; shift <= 30; shift += 5) {
        const unsigned byte = in.Byte();
        shared |= std::uint64_t{byte & 0x1F} << shift;
        if ((byte & 0x80) == 0) {
            return shared;
        }
    }
    in.Fail("a string shares more characters with the one before than a file has");
    return 0;
}

}  // namespace

void Strings::Read(Input& in, Notes& notes) {
    const std::size_t begin = in.offset();
    const std::uint32_t count = in.Number32();
    const std::uint32_t total = in.Number32();
    // The end mark is in capitals and cannot be taken for a string: names are in lower case, or in
    // quotes or backslashes.
    for (std::uint64_t shared = 0; in.ok();) {
        if ((shared == 0 || size() >= count) && in.Skip(kEnd)) {
            break;
        }
        ReadString(in, shared, notes);
        shared = ReadShared(in);
    }
    if (in.ok() && (size() != count || characters_.size() != total)) {
        notes.Add(begin, "the numbers of strings and characters are wrong");
    }
}

void Strings::ReadString(Input& in, std::uint64_t shared, Notes& notes) {
    // A few bytes can expand to a long string. Honest files stay far below this limit.
    const std::size_t most = (std::size_t{1} << 26) + 16 * in.file().size();
    const std::size_t before = ends_.size() > 1 ? ends_[ends_.size() - 2] : 0;
    const std::size_t length = characters_.size() - before;
    if (shared > length) {
        notes.Add(in.offset(), "a string shares more characters with the one before than it has");
        shared = length;
    }
    const Bytes rest = in.file().subspan(in.offset());
    const auto own = std::find_if(rest.begin(), rest.end(), EndsString) - rest.begin();
    if (characters_.size() + shared + static_cast<std::size_t>(own) > most) {
        in.Fail("the strings have too many characters");
        return;
    }
    characters_.append(characters_, before, shared);
    characters_.append(reinterpret_cast<const char*>(rest.data()), static_cast<std::size_t>(own));
    ends_.push_back(characters_.size());
    in.GoTo(in.offset() + static_cast<std::size_t>(own));
}

std::string_view Strings::ReadName(Input& in, Notes& notes) const {
    const std::size_t offset = in.offset();
    const std::uint64_t number = in.Unsigned();
    if (number > size()) {
        notes.Add(offset, "a name refers to a string that is not there");
    }
    const std::string_view name = (*this)[number];
    if (name.size() > kMostCharacters) {
        notes.Add(offset, "a name is too long; its end is left out");
    }
    return name.substr(0, kMostCharacters);
}

}  // namespace corv::ghw
