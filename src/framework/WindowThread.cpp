#include "framework/WindowThread.h"

#include <windows.h>
#include <commctrl.h>

#include <algorithm>
#include <utility>

namespace {

thread_local afx::WindowThread* t_state = nullptr;

void NTAPI EndState(void* state) {
    delete static_cast<afx::WindowThread*>(state);
    t_state = nullptr;
}

// Ends each thread's state with its thread, and all of them with this module.
class StateSlot {
public:
    ~StateSlot() {
        if (m_index != FLS_OUT_OF_INDEXES) FlsFree(m_index);
    }
    bool Keep(afx::WindowThread* state) const { return FlsSetValue(m_index, state) != FALSE; }

private:
    const DWORD m_index = FlsAlloc(EndState);
};

}  // namespace

namespace afx {

WindowThread& ThisThread() {
    if (t_state == nullptr) {
        // Not a thread_local object: at the end of a thread the toolchain's runtime gives back the memory of those
        // before it runs their destructors.
        static const StateSlot slot;
        auto state = std::make_unique<WindowThread>();
        if (!slot.Keep(state.get())) AfxThrowMemoryException();
        t_state = state.release();
    }
    return *t_state;
}

void WindowThread::TrimTemporaries(size_t count) {
    if (temporaries.size() <= count) return;
    std::erase_if(temporary, [&](const auto& entry) {
        return std::any_of(temporaries.begin() + static_cast<ptrdiff_t>(count), temporaries.end(),
                           [&](const auto& object) { return object.get() == entry.second; });
    });
    temporaries.resize(count);
}

void AddTemporary(std::unique_ptr<CObject> object) {
    ThisThread().temporaries.push_back(std::move(object));
}

ModalScope::ModalScope() : m_outer(ThisThread().modal), m_temporaries(ThisThread().temporaries.size()) {
    ThisThread().modal = this;
}

ModalScope::~ModalScope() {
    ThisThread().modal = m_outer;
    TrimTemporaries();
}

void ModalScope::KeepCurrentException() {
    if (m_exception == nullptr) {
        m_exception = std::current_exception();
        return;
    }
    try {
        throw;  // cppcheck-suppress rethrowNoCurrentException ; called from catch blocks only
    } catch (CException* dropped) {
        dropped->Delete();
    } catch (...) {
        // The first one is thrown again, and only one can be.
    }
}

void ModalScope::RethrowException() {
    if (m_exception != nullptr) std::rethrow_exception(std::exchange(m_exception, nullptr));
}

void RegisterCommonControls() {
    static const bool registered = [] {
        const INITCOMMONCONTROLSEX classes = {sizeof(classes), ICC_WIN95_CLASSES};
        return InitCommonControlsEx(&classes) != FALSE;
    }();
    static_cast<void>(registered);
}

}  // namespace afx
