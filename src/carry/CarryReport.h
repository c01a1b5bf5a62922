// What capture and apply tell: while they work, at their end, and when they fail.
//
// The one way to fail of everything in this folder that works on the registry is a CarryException, thrown by value.
#pragma once

#include <cstdint>
#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

enum class CarryFailure {
    NotARegistryFile,  // a file that is not of the format; nothing was changed
    Refused,           // something that is not done without being told twice; nothing was changed
    Failed,            // nothing was changed
    TakenBack,         // a change failed or was cancelled, and what had been done was taken back
    NotTakenBack,      // a change failed, and some stay: the undo file tells how it was before
    Cancelled,         // by the progress function; nothing was changed
};

class CarryException : public std::runtime_error {
public:
    // `path` is a key, a value's place or a file; `status` a Win32 status, 0 where the system was not asked; `line` a
    // line of the registry file, 0 for none.
    CarryException(CarryFailure failure, const std::string& reason, std::wstring path = {}, std::uint32_t status = 0,
                   std::uint64_t line = 0)
        : std::runtime_error(reason), m_failure(failure), m_path(std::move(path)), m_status(status), m_line(line) {}

    CarryFailure Failure() const { return m_failure; }
    const std::wstring& Path() const { return m_path; }
    std::uint32_t Status() const { return m_status; }
    std::uint64_t Line() const { return m_line; }

private:
    CarryFailure m_failure;
    std::wstring m_path;
    std::uint32_t m_status;
    std::uint64_t m_line;
};

enum class CarryNoteKind {
    Missing,      // a key or value that a rule names is not there
    Vanished,     // a key that was there when its parent was read
    Unreadable,   // a key that may not be read; `status` tells why
    Unwritable,   // a name that the format cannot hold, or a value of more than 64 MiB
    OutOfReach,   // a key that an installation on another drive has not got, or a user who was not given
    SkippedLine,  // a line of the registry file that did nothing, as `reason` tells
};

// Something that was left out, while the rest went on.
struct CarryNote {
    CarryNoteKind kind{};
    std::wstring path{};
    std::wstring value{};  // the name, when it is about one value
    bool isValue = false;
    std::uint32_t status = 0;  // Win32
    std::uint64_t line = 0;    // of the registry file
    const char* reason = "";
};

struct CarryReport {
    static constexpr std::size_t kMostNotes = 1000;

    std::uint64_t keys = 0;
    std::uint64_t values = 0;
    std::uint64_t bytes = 0;  // of the values' data
    std::uint64_t removedKeys = 0;
    std::uint64_t removedValues = 0;
    std::uint64_t noteCount = 0;
    std::vector<CarryNote> notes;  // the first kMostNotes

    void Add(CarryNote note) {
        if (notes.size() < kMostNotes) notes.push_back(std::move(note));
        ++noteCount;
    }
};

struct CarryProgress {
    std::uint64_t keys = 0;
    std::uint64_t values = 0;
    std::uint64_t bytes = 0;
    std::wstring_view path;  // of the key in work
};

// Called for each key, on the thread that does the work; false cancels. May be empty.
using CarryProgressFunction = std::function<bool(const CarryProgress&)>;

// Throws CarryException when the work is cancelled.
inline void TellProgress(const CarryProgressFunction& tell, const CarryProgress& progress) {
    if (tell && !tell(progress))
        throw CarryException(CarryFailure::Cancelled, "cancelled", std::wstring(progress.path));
}
