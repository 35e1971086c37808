#include "signals/type_cache.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

#include "platform/guard.h"
#include "platform/immortal.h"

namespace corv::signals {
namespace {

constexpr std::size_t kLongestText = 65'536;  // of a type that is kept

struct TypeCache {
    std::array<TypePtr, 16> types;  // the one used last stands first
};

TypeCache& Cache() noexcept {
    static platform::Immortal<TypeCache> cache;
    return *cache;
}

TypePtr Recall(std::string_view text) noexcept {
    auto& types = Cache().types;
    const auto found = std::find_if(types.begin(), types.end(), [&](const TypePtr& type) {
        return type && type->GetTypeInfoString().View() == text;
    });
    if (found == types.end()) {
        return nullptr;
    }
    std::rotate(types.begin(), found, found + 1);
    return types.front();
}

void Remember(const TypePtr& type) noexcept {
    auto& types = Cache().types;
    std::rotate(types.begin(), types.end() - 1, types.end());
    types.front() = type;
}

}  // namespace

HRESULT FindType(std::string_view text, TypePtr& type) noexcept {
    type = Recall(text);
    if (type) {
        return S_OK;
    }
    return platform::Guarded(E_OUTOFMEMORY, [&] {
        const CString copy(text);
        if (!KTypeInfo::CheckTypeInfo(copy)) {
            return E_INVALIDARG;
        }
        auto made = std::make_shared<const KTypeInfo>(copy);
        if (made->GetKind() == KTypeInfo::KindNone) {
            return E_OUTOFMEMORY;
        }
        if (text.size() <= kLongestText) {
            Remember(made);
        }
        type = std::move(made);
        return S_OK;
    });
}

void ResetTypeCache() noexcept {
    Cache().types.fill(nullptr);
}

}  // namespace corv::signals
