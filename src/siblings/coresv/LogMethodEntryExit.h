// Traces the life of a method: one line at its start, one on every way out.
#pragma once

#include "siblings/coresv/LoggingService.h"

class CORESV_API CLogMethodEntryExit {
public:
    // `name` is the method's; it must live as long as this object, as a literal does.
    explicit CLogMethodEntryExit(const wchar_t* name);
    ~CLogMethodEntryExit();
    CLogMethodEntryExit(const CLogMethodEntryExit&) = delete;
    CLogMethodEntryExit& operator=(const CLogMethodEntryExit&) = delete;

private:
    const wchar_t* m_name;
};
