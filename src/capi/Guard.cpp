#include "capi/Guard.h"

#include <memory>
#include <new>

#include "carry/CarryReport.h"
#include "helpers/SystemText.h"
#include "helpers/TextView.h"

namespace {

// The last failure's text of each thread. Not thread_local: this toolchain frees such an object's memory at the
// thread's end before it calls the destructor.
class ThreadText {
public:
    ThreadText() = default;
    ~ThreadText() { FlsFree(m_index); }
    ThreadText(const ThreadText&) = delete;
    ThreadText& operator=(const ThreadText&) = delete;

    // Throws std::bad_alloc.
    std::wstring& Get() const {
        auto* text = static_cast<std::wstring*>(FlsGetValue(m_index));
        if (text != nullptr) return *text;
        auto made = std::make_unique<std::wstring>();
        if (!FlsSetValue(m_index, made.get())) throw std::bad_alloc();
        return *made.release();
    }

private:
    static void WINAPI Delete(void* text) { delete static_cast<std::wstring*>(text); }

    DWORD m_index = FlsAlloc(Delete);
};
const ThreadText g_lastError;

rr_status Keep(rr_status status, std::wstring_view text) noexcept {
    try {
        g_lastError.Get() = text;
    } catch (const std::bad_alloc&) {
        // The text of an earlier failure stays.
        return status;
    }
    return status;
}

std::wstring Wide(const char* text) {
    const std::string_view view(text);
    return {view.begin(), view.end()};
}

rr_status StatusOf(CarryFailure failure) {
    switch (failure) {
        case CarryFailure::NotARegistryFile:
            return RR_E_FORMAT;
        case CarryFailure::Refused:
            return RR_E_REFUSED;
        case CarryFailure::TakenBack:
            return RR_E_TAKEN_BACK;
        case CarryFailure::NotTakenBack:
            return RR_E_NOT_TAKEN_BACK;
        case CarryFailure::Cancelled:
            return RR_E_CANCELLED;
        case CarryFailure::Failed:
            break;
    }
    return RR_E_FAILED;
}

std::wstring TextOf(const CarryException& problem) {
    std::wstring text = problem.Path();
    if (!text.empty()) text += L": ";
    if (problem.Line() != 0) text += L"line " + std::to_wstring(problem.Line()) + L": ";
    text += Wide(problem.what());
    if (problem.Status() == 0) return text;
    std::wstring reason(ViewOf(SystemErrorText(problem.Status())));
    reason.resize(reason.find_last_not_of(L"\r\n .") + 1);
    return text + L" (" + (reason.empty() ? L"error " + std::to_wstring(problem.Status()) : reason) + L")";
}

std::wstring TextOf(CException* problem) {
    WCHAR text[512];
    const BOOL hasText = problem->GetErrorMessage(text, ARRAYSIZE(text));
    problem->Delete();
    return hasText ? text : L"the library failed";
}

rr_status Translate() {
    try {
        throw;
    } catch (const StatusError& problem) {
        return Keep(problem.status, Wide(problem.text));
    } catch (const CarryException& problem) {
        return Keep(StatusOf(problem.Failure()), TextOf(problem));
    } catch (CException* problem) {
        return Keep(RR_E_FAILED, TextOf(problem));
    } catch (const std::bad_alloc&) {
        return Keep(RR_E_MEMORY, L"there is not enough memory");
    } catch (const std::exception& problem) {
        return Keep(RR_E_FAILED, Wide(problem.what()));
    }
}

}  // namespace

rr_status FailureOf() noexcept {
    try {
        return Translate();
    } catch (...) {
        // No memory for the text, or something that nobody here throws.
        return Keep(RR_E_FAILED, {});
    }
}

std::wstring_view LastError() {
    return g_lastError.Get();
}
