#pragma once

#include "corv/containers/signal_container.h"
#include "corv/frame/com_ptr.h"
#include "tests/support/fake_signal.h"
#include "tests/support/test.h"

// Trees of fake signals, written as text: "a s((0) (1)(.x .y)) b" are a leaf, a composite signal of
// a leaf and a composite one, and a leaf. A name ends at a blank or at "(" that is not its first
// character.
namespace corv::test {

using ContainerPtr = frame::ComPtr<ISignalContainer>;
using ManagerPtr = frame::ComPtr<IHandleManager>;

inline ContainerPtr NewContainer(IHandleManager* manager = nullptr) {
    ContainerPtr container;
    EXPECT_EQ(CreateSignalContainer(container.Out(), manager), S_OK);
    return container;
}

inline ManagerPtr ManagerOf(ISignalContainer& container) {
    ManagerPtr manager;
    container.GetHandleManager(manager.Out());
    return manager;
}

// Adds the signals of a text up to its end or ")" and gives what is left of it.
inline const char* AddSignals(ISignalContainer& container, const char* text,
                              ISignal* parent = nullptr) {
    while (*text != '\0' && *text != ')') {
        std::string name(1, *text++);
        const char end = name[0] == '(' ? ')' : '(';
        while (*text != '\0' && *text != ' ' && *text != ')' && *text != '(') {
            name += *text++;
        }
        if (end == ')') {
            name += *text++;
        }
        const FakePtr signal = NewFake(name.c_str());
        signal->SetParent(parent);
        if (*text == '(') {
            text = AddSignals(signal->MakeComposite(), text + 1, signal.get()) + 1;
        } else {
            signal->MakeLeaf(-1);
        }
        container.Add(signal.get());
        text += *text == ' ' ? 1 : 0;
    }
    return text;
}

// The same text back, with the handles of the leaves that have one: "a=5 s((0)=6 ...)".
inline std::string TextOf(ISignalContainer& container) {
    std::string text;
    for (int i = 0; i < container.GetCount(); ++i) {
        ISignal* signal = nullptr;
        EXPECT_EQ(container.GetAt(static_cast<std::uint32_t>(i), &signal), S_OK);
        text += i > 0 ? " " : "";
        text += signal->GetName() != nullptr ? signal->GetName() : "?";
        if (ISignalContainer* const members = signal->GetSubSignals()) {
            text += "(" + TextOf(*members) + ")";
        } else if (signal->GetHandle() != -1) {
            text += "=" + std::to_string(signal->GetHandle());
        }
    }
    return text;
}

// The registered signals: "5:a,b 6:c", by name.
inline std::string TextOf(IHandleManager& manager) {
    std::string text;
    for (int h = manager.GetFirstHandle(); h != -1; h = manager.GetNextHandle()) {
        text += (text.empty() ? "" : " ") + std::to_string(h);
        char before = ':';
        for (ISignal* s = manager.GetFirstSignal(h); s != nullptr; s = manager.GetNextSignal()) {
            text += before + std::string(s->GetName());
            before = ',';
        }
    }
    return text;
}

inline ISignal* Find(ISignalContainer& container, const std::string& path) {
    ISignal* signal = nullptr;
    const HRESULT result = container.FindSignal(path.c_str(), &signal);
    EXPECT_EQ(result, signal != nullptr ? S_OK : E_FAIL) << path;
    return signal;
}

template <class Interface>
std::uint32_t ReferencesTo(Interface& object) {
    object.AddRef();
    return object.Release();
}

}  // namespace corv::test
