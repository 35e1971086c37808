#include "signals/value_text.h"

#include <cstring>

#include "platform/guard.h"
#include "tree/nesting.h"
#include "typeinfo/fixed_text.h"
#include "typeinfo/type_access.h"
#include "typeinfo/value_text.h"

namespace corv::signals {
namespace {

constinit ValueTexts shared_texts;

}  // namespace

ValueTexts& SharedValueTexts() noexcept {
    return shared_texts;
}

void ResetValueTexts() noexcept {
    shared_texts = ValueTexts();
}

bool ValueTexts::Append(std::string_view piece) noexcept {
    if (failed || piece.size() >= text.size() - position) {
        failed = true;
        return false;
    }
    std::memmove(Here(), piece.data(), piece.size());
    position += piece.size();
    *Here() = '\0';
    return true;
}

const char* ValueTexts::WriteValue(const KTypeInfo& type, const unsigned char* bytes,
                                   typeinfo::ScalarStyle style) noexcept {
    typeinfo::FixedText out(Here(), text.size() - position - 1);
    bool written = false;
    const bool fits = platform::Done([&] {
        written = typeinfo::AppendValue(out, typeinfo::TypeAccess::ViewOf(type), bytes, style);
    });
    failed = failed || !fits;
    const bool good = fits && written && out.size() > 0;
    Here()[good ? out.size() : 0] = '\0';
    return good ? Here() : nullptr;
}

void ValueTexts::MoveToEnd() noexcept {
    position += std::strlen(Here());
}

void ValueTexts::Rewind(std::size_t place) noexcept {
    position = place;
    *Here() = '\0';
}

ValueTextPass::ValueTextPass(ValueTexts& texts) noexcept
    : texts_(texts), was_in_pass_(texts.in_pass) {
    if (!was_in_pass_) {
        texts.Rewind(0);
        texts.in_pass = true;
        texts.nesting = 0;
        texts.failed = false;
    }
    start_ = texts.position;
    ++texts.nesting;
    texts.failed = texts.failed || texts.nesting > tree::kMostNesting;
}

ValueTextPass::~ValueTextPass() {
    --texts_.nesting;
    texts_.in_pass = was_in_pass_;
}

const char* ValueTextPass::Result(const char* built) noexcept {
    if (built == nullptr || texts_.failed) {
        texts_.Rewind(start_);
        return nullptr;
    }
    return built;
}

}  // namespace corv::signals
