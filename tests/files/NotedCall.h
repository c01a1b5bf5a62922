// Stands in for one of the system's calls, for the calls made from the test program: notes the paths and the numbers
// that it is given, and gives one answer.
//
//     const NotedCall create(&CreateDirectoryW, "CreateDirectoryW", FALSE, ERROR_ACCESS_DENIED);
//     EXPECT_FALSE(CPathHelper::CreateDirectoryTree(path));
//     EXPECT_EQ(TakePaths(), Paths{path});
#pragma once

#include <afx.h>
#include <sddl.h>

#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "helpers/LocalMemory.h"
#include "support/ImportPatch.h"
#include "support/Throws.h"

using Paths = std::vector<std::wstring>;
using Numbers = std::vector<DWORD>;

inline Paths s_notedPaths;
inline Numbers s_notedNumbers;

// Those since the last time, in the order of the calls and of their arguments. Security attributes count as the number
// that says whether the handle is inherited.
inline Paths TakePaths() {
    return std::exchange(s_notedPaths, {});
}
inline Numbers TakeNumbers() {
    return std::exchange(s_notedNumbers, {});
}

class NotedCall {
public:
    // Objects for calls of the same type share the answer, so the latest one decides.
    template <class Result, class... Arguments>
    NotedCall(Result (*)(Arguments...), const char* name, std::type_identity_t<Result> answer,
              DWORD error = ERROR_SUCCESS)
        : m_slot(GetModuleHandleW(nullptr), name, reinterpret_cast<void*>(&Call<Result, Arguments...>)) {
        s_answer<Result, Arguments...> = {answer, error};
        TakePaths();
        TakeNumbers();
    }

private:
    template <class Result, class... Arguments>
    inline static std::pair<Result, DWORD> s_answer;

    static void Note(LPCWSTR path) { s_notedPaths.emplace_back(path); }
    static void Note(SECURITY_ATTRIBUTES* security) {
        if (security != nullptr) Note(security->bInheritHandle);
    }
    template <class Other>
    static void Note(Other other) {
        if constexpr (!std::is_pointer_v<Other>) s_notedNumbers.push_back(static_cast<DWORD>(other));
    }
    template <class Result, class... Arguments>
    static Result Call(Arguments... arguments) {
        (Note(arguments), ...);
        SetLastError(s_answer<Result, Arguments...>.second);
        return s_answer<Result, Arguments...>.first;
    }

    ImportSlot m_slot;
};

// Cause, system error and file of the CFileException that `work` throws.
template <class Work>
std::tuple<int, LONG, CString> ProblemOf(Work work) {
    std::tuple<int, LONG, CString> told{-1, 0, L""};
    Throws<CFileException>(work, [&](const CFileException& problem) {
        told = {problem.m_cause, problem.m_lOsError, problem.m_strFileName};
    });
    return told;
}

// A security descriptor in the system's own text form.
inline std::wstring TextOf(PSECURITY_DESCRIPTOR descriptor) {
    LPWSTR text = nullptr;
    if (!ConvertSecurityDescriptorToStringSecurityDescriptorW(descriptor, 1, 0xF, &text, nullptr)) return L"none";
    const LocalMemory<WCHAR> memory(text);
    return text;
}
