#include "capi/Arguments.h"

#include <algorithm>
#include <cwchar>

namespace {

// Beyond any struct of this interface to come: such a size was never set.
constexpr std::size_t kLargestStruct = 4096;

}  // namespace

std::wstring TakeText(const wchar_t* text, std::size_t length, std::size_t longest) {
    if (length == 0) return {};
    RequirePointer(text);
    const bool isTerminated = length == RR_TERMINATED;
    if (isTerminated) length = wcsnlen(text, longest + 1);
    if (length > longest) throw StatusError{RR_E_TEXT, "a text is too long or has no end"};
    if (std::wmemchr(text, L'\0', length) != nullptr) throw StatusError{RR_E_TEXT, "a text has a zero inside"};
    return {text, length};
}

void Output::Check() const {
    RequirePointer(length);
    if (buffer == nullptr && capacity != 0) RequirePointer(buffer);
}

bool Output::Measure() const {
    *length = text.size();
    return capacity > text.size();
}

void Output::Put() const {
    std::copy(text.begin(), text.end(), buffer);
    buffer[text.size()] = L'\0';
}

rr_status PutText(const Output& output) {
    output.Check();
    if (!output.Measure()) return RR_E_BUFFER;
    output.Put();
    return RR_OK;
}

void CheckSize(std::size_t size, std::size_t known) {
    if (size < known || size > kLargestStruct) throw StatusError{RR_E_SIZE, "a struct has not the size of its kind"};
}

void RequireZeros(const void* data, std::size_t from, std::size_t to) {
    const auto* const bytes = static_cast<const char*>(data);
    if (std::any_of(bytes + from, bytes + to, [](char byte) { return byte != 0; })) {
        throw StatusError{RR_E_SIZE, "a struct asks for what this library does not know"};
    }
}
