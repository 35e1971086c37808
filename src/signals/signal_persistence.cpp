// Signal trees in byte streams (docs/formats/signal-tree.md) and recordings. Here is one signal's
// part; the count of the members and what follows it belong to the container of the members.

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string_view>

#include "corv/signals/byte_stream.h"
#include "corv/stremo/events_stream_read.h"
#include "corv/stremo/events_stream_write.h"
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

// Calls an action with each entry, in order, until it gives false; gives whether none did.
template <class Action>
bool ForEachEntry(const CPropertyMap& properties, Action action) {
    const char* key = nullptr;
    const char* value = nullptr;
    bool good = true;
    for (bool more = properties.GetFirst(key, value); more && good;
         more = properties.GetNext(key, value)) {
        good = action(std::string_view(key), std::string_view(value));
    }
    return good;
}

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

bool CanBeLoaded(const CPropertyMap& properties) {
    return static_cast<std::size_t>(properties.GetCount()) <= Limits16::max() &&
           ForEachEntry(properties, [](std::string_view key, std::string_view value) {
               return key.size() <= kLongestKey && value.size() <= kLongestValue;
           });
}

// What is written has been checked.
bool WriteProperties(IByteStream& stream, const CPropertyMap& properties) {
    if (&stream == &corv::tree::SaveCheck::Get()) {
        return CanBeLoaded(properties);
    }
    return SUCCEEDED(WriteNumber(stream, static_cast<std::size_t>(properties.GetCount()))) &&
           ForEachEntry(properties, [&](std::string_view key, std::string_view value) {
               return WriteEntry(stream, key, value);
           });
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

HRESULT ReadProperties(IByteStream& stream, CPropertyMap& properties) {
    std::array<char, kLongestKey + 1> key;
    char* const value = corv::signals::SharedValueTexts().text.data();
    std::size_t count = 0;
    bool good = SUCCEEDED(ReadNumber(stream, count));
    for (std::size_t i = 0; good && i < count; ++i) {
        good = ReadText(stream, key.data(), kLongestKey) && ReadText(stream, value, kLongestValue);
        if (good && !properties.Set(key.data(), value)) {
            return E_OUTOFMEMORY;
        }
    }
    return good ? S_OK : E_FAIL;
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

HRESULT CSignal::Save(IByteStream* stream) noexcept {
    corv::tree::SaveCheck& check = corv::tree::SaveCheck::Get();
    const bool is_outermost = corv::tree::Running().save_depth == 0 && stream != &check;
    if (is_outermost && FAILED(Save(&check))) {
        return E_FAIL;
    }
    if (!WriteProperties(*stream, properties_)) {
        return E_FAIL;
    }
    return members_ ? members_->Save(stream) : WriteNumber(*stream, 0);
}

HRESULT CSignal::Load(IByteStream* stream, ISignalContainer* owner, ISignal* parent) noexcept {
    const HRESULT read = ReadProperties(*stream, properties_);
    NoteNewName();
    if (FAILED(read)) {
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
            ISignal* member = nullptr;
            if (FAILED(members->CreateFromReader(reader, this, i, &member))) {
                return E_FAIL;
            }
        }
        TakeMembers(std::move(members));
    }
    return FinishLoading(*owner, parent);
}

void CSignal::TakeMembers(ComPtr<ISignalContainer> members) noexcept {
    wave_ = {};
    external_wave_ = false;
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
    ComPtr<ISignalWave> wave;
    if (type_ && !members_ && MakeWave(*type_, wave) && wave) {
        wave_ = std::move(wave);
        external_wave_ = false;
    }
    if (members_ && handle_ != -1) {
        SetHandle(-1);
    }
    if (owner.Add(this) == E_OUTOFMEMORY) {
        return E_OUTOFMEMORY;
    }
    Release();
    ShareWave(owner);
    return S_OK;
}

// The container has registered the signal behind the others of its handle.
void CSignal::ShareWave(ISignalContainer& owner) noexcept {
    ComPtr<IHandleManager> manager;
    if (handle_ == -1 || FAILED(owner.GetHandleManager(manager.Out()))) {
        return;
    }
    ISignal* const first = manager->GetFirstSignal(handle_);
    if (first != nullptr && first != this) {
        SetWave(first->GetWave());
    }
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
