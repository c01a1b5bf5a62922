// What comes from the caller, checked before it is used, and what goes back. All throw StatusError.
#pragma once

#include <cstring>
#include <string>
#include <string_view>

#include "capi/Guard.h"

constexpr std::size_t kLongestPath = 32767;       // units: of files and keys
constexpr std::size_t kLongestValueName = 16383;  // units, as the registry takes them

std::wstring TakeText(const wchar_t* text, std::size_t length, std::size_t longest);

template <class Pointer>
void RequirePointer(Pointer pointer) {
    if (pointer == nullptr) throw StatusError{RR_E_NULL, "a pointer is null"};
}

// A text that goes into the caller's buffer.
struct Output {
    std::wstring_view text;
    wchar_t* buffer;
    std::size_t capacity;
    std::size_t* length;

    void Check() const;
    // Tells the length; false when it does not fit.
    bool Measure() const;
    void Put() const;
};
rr_status PutText(const Output& output);

// Whether the struct's size is one of this or of a newer header.
void CheckSize(std::size_t size, std::size_t known);
void RequireZeros(const void* data, std::size_t from, std::size_t to);

// A copy of the caller's struct, all zero for a null pointer.
template <class Struct>
Struct TakeStruct(const Struct* given) {
    Struct taken{};
    if (given == nullptr) return taken;
    CheckSize(given->size, sizeof(Struct));
    RequireZeros(given, sizeof(Struct), given->size);
    std::memcpy(&taken, given, sizeof(Struct));
    return taken;
}

// Fills the caller's struct, whose size was checked before; a null pointer wants nothing.
template <class Struct>
void PutStruct(Struct* to, Struct filled) {
    if (to == nullptr) return;
    filled.size = to->size;
    std::memcpy(to, &filled, sizeof(Struct));
}
template <class Struct>
void CheckOutput(const Struct* to) {
    if (to != nullptr) CheckSize(to->size, sizeof(Struct));
}
