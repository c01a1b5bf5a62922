#include "registry/ProductVersion.h"

#include "registry/FileVersion.h"

void ParseVersion(const CString& text, VersionParts& parts) {
    parts = ParseVersionParts(text.GetString());
}

bool IsVersionAtLeast(const CString& a, const CString& b, int count) {
    return IsAtLeast(ParseVersionParts(a.GetString()), ParseVersionParts(b.GetString()), count);
}

bool IsVersionOlder(const CString& a, const CString& b, int count) {
    return !IsVersionAtLeast(a, b, count);
}

bool IsVersionOlderThanModule(const CString& text, int count) {
    return IsVersionOlder(text, GetModuleVersionText(), count);
}

bool IsKnownProductVersion(const CString& text) {
    return BeginsWithKnownProductVersion(text.GetString());
}

bool IsKnownProductVersion(LPCWSTR text) {
    return IsKnownProductVersion(CString(text));
}

bool IsProductVersion7OrLater(const CString& text) {
    return ParseVersionParts(text.GetString())[0] >= 7;
}
