// Stands in for one of the system's calls, for the calls made from the test program: notes the paths that it is given
// and gives one answer.
//
//     const NotedCall create(&CreateDirectoryW, "CreateDirectoryW", FALSE, ERROR_ACCESS_DENIED);
//     EXPECT_FALSE(CPathHelper::CreateDirectoryTree(path));
//     EXPECT_EQ(TakePaths(), Paths{path});
#pragma once

#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "support/ImportPatch.h"

using Paths = std::vector<std::wstring>;

inline Paths s_notedPaths;

// The paths since the last time, in the order of the calls and of their arguments.
inline Paths TakePaths() {
    return std::exchange(s_notedPaths, {});
}

class NotedCall {
public:
    // Objects for calls of the same type share the answer, so the latest one decides.
    template <class Result, class... Arguments>
    NotedCall(Result (*)(Arguments...), const char* name, std::type_identity_t<Result> answer,
              DWORD error = ERROR_SUCCESS)
        : m_slot(GetModuleHandleW(nullptr), name, reinterpret_cast<void*>(&Call<Result, Arguments...>)) {
        s_answer<Result, Arguments...> = {answer, error};
        s_notedPaths.clear();
    }

private:
    template <class Result, class... Arguments>
    inline static std::pair<Result, DWORD> s_answer;

    static void Note(LPCWSTR path) { s_notedPaths.emplace_back(path); }
    template <class Other>
    static void Note(Other) {}
    template <class Result, class... Arguments>
    static Result Call(Arguments... arguments) {
        (Note(arguments), ...);
        SetLastError(s_answer<Result, Arguments...>.second);
        return s_answer<Result, Arguments...>.first;
    }

    ImportSlot m_slot;
};
