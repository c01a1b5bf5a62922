// A file that is whole or not there: written beside its place, flushed to the disk, and moved into it.
#pragma once

#include <afx.h>

#include <cstddef>
#include <string>

#include "helpers/UniqueHandle.h"

class OutputFile {
public:
    // A file that stands in the place is replaced at the end, or refused now. Throws CarryException, as all members.
    OutputFile(const std::wstring& path, bool replace);
    // Removes what has been written unless Finish was called.
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    void Write(const void* data, std::size_t bytes);
    void Finish();

private:
    std::wstring m_path;
    bool m_replace;
    CString m_place;  // as they go to the system
    CString m_beside;
    UniqueHandle m_file;
};
