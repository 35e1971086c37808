// Signal trees in byte streams (docs/formats/signal-tree.md) and recordings. Here is one signal's
// part; the count of the members and what follows it belong to the container of the members.

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string_view>

#include "corv/signals/byte_stream.h"
#include "corv/stremo/events_stream_read.h"
#include "corv/stremo/events_stream_write.h"
#include "platform/ascii.h"
#include "signals/loads.h"
#include "signals/signal.h"
#include "signals/value_text.h"
#include "stremo/kept_properties.h"
#include "tree/members.h"
#include "tree/save_check.h"
#include "tree/stream_number.h"

using corv::frame::ComPtr;
using corv::tree::ReadNumber;
using corv::tree::WriteNumber;

namespace {

using Limits16 = std::numeric_limits<std::uint16_t>;

// What loading takes; longer texts are not saved.
constexpr std::size_t kLongestKey = 127;
constexpr std::size_t kLongestValue = corv::signals::kTextBufferSize - 1;

// All parts of the entry are written, also after one that fails.
bool WriteEntry(IByteStream& stream, std::string_view key, std::string_view value) {
    bool good = true;
    for (const std::string_view text : {key, value}) {
        good = SUCCEEDED(WriteNumber(stream, text.size())) && good;
        const auto length = static_cast<std::uint32_t>(text.size());
        good = SUCCEEDED(stream.Write(text.data(), length)) && good;
    }
    return good;
}

// A text and its terminating zero; false when it can't be read or is too long for the buffer.
bool ReadText(IByteStream& stream, char* buffer, std::size_t longest) {
    std::size_t length = 0;
    if (FAILED(ReadNumber(stream, length)) || length > longest ||
        FAILED(stream.Read(buffer, static_cast<std::uint32_t>(length)))) {
        return false;
    }
    buffer[length] = '\0';
    return true;
}

// An empty container for the members of a signal that is loaded: it has its owner's handle manager.
HRESULT MakeMembers(ISignalContainer& owner, ComPtr<ISignalContainer>& members) noexcept {
    ComPtr<IHandleManager> manager;
    owner.GetHandleManager(manager.Out());
    return CreateSignalContainer(members.Out(), manager.get());
}

bool WriteStreamProperties(IEventsStreamWrite& writer, int handle, const CPropertyMap& properties) {
    for (const char* const key : corv::recording::kSignalProperties) {
        const char* const value = properties.Get(key);
        if (value != nullptr && !writer.WriteProperty(handle, key, value)) {
            return false;
        }
    }
    return true;
}

}  // namespace

// The name and the handle stand beside the map, or in it.
template <class Action>
bool CSignal::ForEachProperty(const Action& action) const noexcept {
    std::array<char, std::numeric_limits<int>::digits10 + 3> handle{};
    std::to_chars(handle.data(), handle.data() + handle.size() - 1, handle_);
    struct Apart {
        const char* key;
        const char* value;  // null: there is none
    };
    const std::array<Apart, 2> apart{
        {{"Handle", HasHandleApart() ? handle.data() : nullptr}, {"Name", name_.Get()}}};
    auto next = apart.begin();
    const auto act_before = [&](const char* end) {
        bool good = true;
        for (; good && next != apart.end() &&
               (end == nullptr || corv::platform::IsBeforeNoCase(next->key, end));
             ++next) {
            good = next->value == nullptr || action(next->key, next->value);
        }
        return good;
    };
    const char* key = nullptr;
    const char* value = nullptr;
    bool good = true;
    for (bool more = properties_.GetFirst(key, value); more && good;
         more = properties_.GetNext(key, value)) {
        good = act_before(key) && action(key, value);
    }
    return good && act_before(nullptr);
}

bool CSignal::HasHandleApart() const noexcept {
    return handle_ != -1 && properties_.Get("Handle") == nullptr;
}

std::size_t CSignal::CountProperties() const noexcept {
    return static_cast<std::size_t>(properties_.GetCount()) + (HasHandleApart() ? 1 : 0) +
           (name_.Get() != nullptr ? 1 : 0);
}

bool CSignal::CanBeLoaded() const noexcept {
    return CountProperties() <= Limits16::max() &&
           ForEachProperty([](std::string_view key, std::string_view value) {
               return key.size() <= kLongestKey && value.size() <= kLongestValue;
           });
}

// What is written has been checked.
bool CSignal::WriteProperties(IByteStream& stream) const noexcept {
    if (&stream == &corv::tree::SaveCheck::Get()) {
        return CanBeLoaded();
    }
    return SUCCEEDED(WriteNumber(stream, CountProperties())) &&
           ForEachProperty([&](std::string_view key, std::string_view value) {
               return WriteEntry(stream, key, value);
           });
}

HRESULT CSignal::ReadProperties(IByteStream& stream) noexcept {
    std::array<char, kLongestKey + 1> key;
    char* const value = corv::signals::SharedValueTexts().text.data();
    std::size_t count = 0;
    bool good = SUCCEEDED(ReadNumber(stream, count));
    for (std::size_t i = 0; good && i < count; ++i) {
        good = ReadText(stream, key.data(), kLongestKey) && ReadText(stream, value, kLongestValue);
        if (good && !StoreProperty(key.data(), value)) {
            return E_OUTOFMEMORY;
        }
    }
    return good ? S_OK : E_FAIL;
}

HRESULT CSignal::Save(IByteStream* stream) noexcept {
    corv::tree::SaveCheck& check = corv::tree::SaveCheck::Get();
    const bool is_outermost = corv::tree::Running().save_depth == 0 && stream != &check;
    if (is_outermost && FAILED(Save(&check))) {
        return E_FAIL;
    }
    if (!WriteProperties(*stream)) {
        return E_FAIL;
    }
    return members_ ? members_->Save(stream) : WriteNumber(*stream, 0);
}

HRESULT CSignal::Load(IByteStream* stream, ISignalContainer* owner, ISignal* parent) noexcept {
    if (const HRESULT read = ReadProperties(*stream); FAILED(read)) {
        return read;
    }
    // most signals have no members: within a load that is seen before a container is made
    corv::signals::LoadStream* const load = corv::tree::Running().load;
    if (load != stream || !load->SkipEmptyList()) {
        ComPtr<ISignalContainer> members;
        const HRESULT made = MakeMembers(*owner, members);
        if (FAILED(made)) {
            return made;
        }
        if (SUCCEEDED(members->Load(stream, this))) {
            TakeMembers(std::move(members));
        }
    }
    return FinishLoading(*owner, parent);
}

HRESULT CSignal::LoadFromReader(stremo::IEventsStreamRead* reader, ISignalContainer* owner,
                                ISignal* parent, int member_count) noexcept {
    for (const char* const key : corv::recording::kSignalProperties) {
        const char* const value = reader->GetSignalProperty(handle_, key);
        const char* const there = properties_.Get(key);
        if (there == nullptr || std::strcmp(there, value != nullptr ? value : "") != 0) {
            properties_.Set(key, value);
        }
    }
    if (member_count != 0) {
        ComPtr<ISignalContainer> members;
        const HRESULT made = MakeMembers(*owner, members);
        if (FAILED(made)) {
            return made;
        }
        for (int i = 0; i < member_count; ++i) {
            // no member is asked for, so that the container may make it later
            if (FAILED(members->CreateFromReader(reader, this, i, nullptr))) {
                return E_FAIL;
            }
        }
        TakeMembers(std::move(members));
    }
    return FinishLoading(*owner, parent);
}

void CSignal::TakeMembers(ComPtr<ISignalContainer> members) noexcept {
    DropWave();
    members_ = std::move(members);
}

HRESULT CSignal::FinishLoading(ISignalContainer& owner, ISignal* parent) noexcept {
    parent_ = parent;
    const char* const text = properties_.Get("Type Info");
    corv::signals::TypePtr type;
    const bool is_same = type_ && text != nullptr && type_->GetTypeInfoString() == text;
    if (!is_same && text != nullptr && SUCCEEDED(corv::signals::FindType(text, type))) {
        type_ = std::move(type);
    }
    if (type_) {
        SetType(type_);
    }
    // a record without fields has members all the same: none
    if (type_ && type_->GetKind() == KTypeInfo::KindRecord && type_->GetNbOfFields() == 0 &&
        !members_) {
        ComPtr<ISignalContainer> none;
        if (const HRESULT made = MakeMembers(owner, none); FAILED(made)) {
            return made;
        }
        TakeMembers(std::move(none));
    }
    if (type_ && !members_) {
        PlanWave(*type_);
    }
    if (members_ && handle_ != -1) {
        SetHandle(-1);
    }
    ComPtr<ISignalWave> shared;
    if (FAILED(FindSharedWave(owner, shared)) || owner.Add(this) == E_OUTOFMEMORY) {
        return E_OUTOFMEMORY;
    }
    Release();
    if (shared) {
        SetWave(shared.get());
    }
    return S_OK;
}

// The container registers the signal behind the others of its handle.
HRESULT CSignal::FindSharedWave(ISignalContainer& owner, ComPtr<ISignalWave>& wave) const noexcept {
    ComPtr<IHandleManager> manager;
    if (handle_ == -1 || FAILED(owner.GetHandleManager(manager.Out()))) {
        return S_OK;
    }
    ISignal* const first = manager->GetFirstSignal(handle_);
    if (first == nullptr || first == this) {
        return S_OK;
    }
    wave = ComPtr<ISignalWave>::Share(first->GetWave());
    return !wave && first->GetWaveValueSize() != 0 ? E_OUTOFMEMORY : S_OK;
}

HRESULT CSignal::WriteToWriter(IEventsStreamWrite* writer, int index) noexcept {
    const corv::tree::Descent descent(is_descending_);
    if (writer == nullptr || !descent.IsAllowed()) {
        return E_FAIL;
    }
    const int parent = parent_ != nullptr ? parent_->GetHandle() : -1;
    const char* const name = GetName() != nullptr ? GetName() : "";
    const std::int64_t max_time = GetMaxTime();
    const int count = members_ ? members_->GetCount() : 0;
    const bool written =
        members_ ? writer->WriteCompositeSignal(handle_, static_cast<std::uint32_t>(count), name,
                                                parent, index, GetMode(), &max_time)
                 : writer->WriteScalarSignal(handle_, name, parent, index, GetMode(), &max_time);
    if (!written || !WriteStreamProperties(*writer, handle_, properties_)) {
        return E_FAIL;
    }
    for (int i = 0; i < count; ++i) {
        ISignal* member = nullptr;
        if (FAILED(members_->GetAt(static_cast<std::uint32_t>(i), &member))) {
            return E_FAIL;
        }
        if (const HRESULT result = member->WriteToWriter(writer, i); FAILED(result)) {
            return result;
        }
    }
    return S_OK;
}
