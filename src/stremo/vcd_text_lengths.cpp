#include "stremo/vcd_text_lengths.h"

#include <algorithm>
#include <string>

namespace corv::vcd {
namespace {

// The sink that looks at texts only.
class TextLengths {
public:
    explicit TextLengths(Declarations& declarations) noexcept : declarations_(declarations) {}

    void Time(std::uint64_t, const Byte*) noexcept {}
    bool Scalar(unsigned, const Code&) noexcept { return true; }
    bool Vector(const Digits&, const Code& code) const noexcept { return Has(code); }
    bool Real(std::string_view, const Code& code) const noexcept { return Has(code); }
    bool Port(std::string_view, const Code& code) const noexcept { return Has(code); }
    bool Text(std::string_view text, const Code& code);
    void BeginBlock(std::string_view, const Byte*) noexcept {}
    void EndBlock() noexcept {}
    void Note(Problem, const Byte*, std::string_view) noexcept {}

private:
    bool Has(const Code& code) const noexcept {
        return declarations_.codes.Find(code) != recording::kNone;
    }

    Declarations& declarations_;
    std::string characters_;
};

bool TextLengths::Text(std::string_view text, const Code& code) {
    Unescape(text, characters_);
    const auto length =
        static_cast<std::uint32_t>(std::min<std::size_t>(characters_.size(), kMostText));
    std::uint32_t i = declarations_.codes.Find(code);
    const bool found = i != recording::kNone;
    for (; i != recording::kNone; i = declarations_.variables[i].next) {
        Variable& variable = declarations_.variables[i];
        if (variable.is_open) {
            variable.width = std::max(variable.width, length);
        }
    }
    return found;
}

}  // namespace

void FindTextLengths(Bytes file, const Byte* end, Declarations& declarations,
                     const Forget& forget) {
    constexpr std::ptrdiff_t kWindow = std::ptrdiff_t{1} << 22;
    TextLengths lengths(declarations);
    Scanner scanner(lengths, file.data() + declarations.changes, end);
    while (scanner.at() < end) {
        const Byte* const from = scanner.at();
        scanner.ReadTo(end - from > kWindow ? from + kWindow : end);
        forget(file.subspan(static_cast<std::size_t>(from - file.data()),
                            static_cast<std::size_t>(scanner.at() - from)));
    }
}

}  // namespace corv::vcd
