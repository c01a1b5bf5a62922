// A registry file on disk. Nobody writes to it while it is open, so that it can be read more than once.
#pragma once

#include <functional>
#include <string>

#include "carry/RegistryFileReader.h"
#include "helpers/UniqueHandle.h"

class RegistryFileInput {
public:
    // Throws CarryException when the file does not open.
    explicit RegistryFileInput(const std::wstring& path);

    // Reads all of it from the start. A file that begins with FF FE is in UTF-16, any other in the ANSI code page.
    // `start` gets the reader before the first line, for its line numbers. Throws CarryException for what is no
    // registry file, and passes on what the sink throws.
    void Read(RegistryFileSink& sink, const std::function<void(const RegistryFileReader&)>& start = {}) const;

private:
    void ReadBlocks(RegistryFileSink& sink, const std::function<void(const RegistryFileReader&)>& start) const;

    std::wstring m_path;
    UniqueHandle m_file;
};
