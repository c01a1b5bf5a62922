#include "framework/DialogInit.h"

#include <cstring>
#include <string>

namespace afx {
namespace {

constexpr WORD kResourceType = 240;
// The resource's own message numbers, from the days of 16 bits.
constexpr WORD kAddToListBox = 0x0401;
constexpr WORD kAddToComboBox = 0x0403;

// One record: WORD control id, WORD message, DWORD length in bytes, the bytes.
struct Record {
    WORD control;
    WORD message;
    std::string text;
};

class Reader {
public:
    Reader(const BYTE* data, DWORD bytes) : m_data(data), m_end(data + bytes) {}

    template <typename Number>
    bool Read(Number& number) {
        if (static_cast<size_t>(m_end - m_data) < sizeof(number)) return false;
        std::memcpy(&number, m_data, sizeof(number));
        m_data += sizeof(number);
        return true;
    }

    bool Read(std::string& text, DWORD bytes) {
        if (static_cast<size_t>(m_end - m_data) < bytes) return false;
        text.assign(reinterpret_cast<const char*>(m_data), bytes);
        m_data += bytes;
        return true;
    }

private:
    const BYTE* m_data;
    const BYTE* m_end;
};

bool Run(HWND dialog, const Record& record) {
    UINT message = record.message;
    if (message == kAddToComboBox) message = CB_ADDSTRING;
    if (message == kAddToListBox) message = LB_ADDSTRING;
    // The texts are narrow and end with a zero of their own; one that does not still ends at the record's end.
    const LRESULT answer =
        ::SendDlgItemMessageA(dialog, record.control, message, 0, reinterpret_cast<LPARAM>(record.text.c_str()));
    return answer != CB_ERR && answer != CB_ERRSPACE;
}

}  // namespace

bool RunDialogInit(HWND dialog, HINSTANCE module, LPCWSTR name) {
    const HRSRC found = ::FindResourceW(module, name, MAKEINTRESOURCEW(kResourceType));
    if (found == nullptr) return true;
    const HGLOBAL loaded = ::LoadResource(module, found);
    if (loaded == nullptr) return false;
    Reader reader(static_cast<const BYTE*>(::LockResource(loaded)), ::SizeofResource(module, found));
    for (;;) {
        Record record{};
        DWORD bytes = 0;
        if (!reader.Read(record.control)) return false;
        if (record.control == 0) return true;
        if (!reader.Read(record.message) || !reader.Read(bytes) || !reader.Read(record.text, bytes)) return false;
        if (!Run(dialog, record)) return false;
    }
}

}  // namespace afx
