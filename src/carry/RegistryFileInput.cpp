#include "carry/RegistryFileInput.h"

#include <cstring>

#include "carry/CarryReport.h"
#include "files/LongPathFile.h"

namespace {

constexpr size_t kBlockBytes = 0x10000;
constexpr wchar_t kMark = L'\xFEFF';

std::wstring FromAnsi(std::string_view bytes) {
    std::wstring text(bytes.size(), L'\0');
    if (bytes.empty()) return text;
    const int size = static_cast<int>(bytes.size());
    text.resize(static_cast<size_t>(MultiByteToWideChar(CP_ACP, 0, bytes.data(), size, text.data(), size)));
    return text;
}

// How many bytes of the block can be converted: those up to the last one that is no part of a character of several.
size_t WholeCharacters(std::string_view bytes) {
    // No code page has a second byte below this.
    constexpr unsigned char kNeverSecond = 0x30;
    for (size_t end = bytes.size(); end != 0; --end) {
        if (static_cast<unsigned char>(bytes[end - 1]) < kNeverSecond) return end;
    }
    return bytes.size();
}

}  // namespace

RegistryFileInput::RegistryFileInput(const std::wstring& path)
    : m_path(path),
      m_file(MakeUniqueHandle(LongPath::CreateFile(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                                   FILE_FLAG_SEQUENTIAL_SCAN))) {
    if (!m_file) throw CarryException(CarryFailure::Failed, "the file cannot be opened", path, GetLastError());
}

void RegistryFileInput::Read(RegistryFileSink& sink,
                             const std::function<void(const RegistryFileReader&)>& start) const {
    try {
        ReadBlocks(sink, start);
    } catch (const RegistryFileError& error) {
        throw CarryException(CarryFailure::NotARegistryFile, error.what(), m_path, 0, error.Line());
    }
}

void RegistryFileInput::ReadBlocks(RegistryFileSink& sink,
                                   const std::function<void(const RegistryFileReader&)>& start) const {
    if (!SetFilePointerEx(m_file.get(), {}, nullptr, FILE_BEGIN)) {
        throw CarryException(CarryFailure::Failed, "the file cannot be read", m_path, GetLastError());
    }
    std::vector<wchar_t> block(kBlockBytes / sizeof(wchar_t));
    auto* const bytes = reinterpret_cast<char*>(block.data());
    size_t kept = 0;  // bytes at the start of the block that wait for what follows them
    std::optional<RegistryFileReader> reader;
    bool isUnicode = false;
    for (;;) {
        DWORD read = 0;
        if (!ReadFile(m_file.get(), bytes + kept, static_cast<DWORD>(kBlockBytes - kept), &read, nullptr)) {
            throw CarryException(CarryFailure::Failed, "the file cannot be read", m_path, GetLastError());
        }
        const size_t available = kept + read;
        size_t used = available;
        const bool isFirst = !reader;
        if (isFirst) {
            isUnicode = available >= sizeof(kMark) && block[0] == kMark;
            reader.emplace(sink, isUnicode ? nullptr : FromAnsi);
            if (start) start(*reader);
        }
        if (isUnicode) {
            const size_t units = available / sizeof(wchar_t);
            const size_t skip = isFirst ? 1 : 0;
            reader->Add({block.data() + skip, units - skip});
            used = units * sizeof(wchar_t);
        } else {
            if (read != 0) used = WholeCharacters({bytes, available});
            reader->Add(FromAnsi({bytes, used}));
        }
        if (read == 0) break;
        kept = available - used;
        std::memmove(bytes, bytes + used, kept);
    }
    reader->Finish();
}
