#include "siblings/coresv/LogMethodEntryExit.h"

CLogMethodEntryExit::CLogMethodEntryExit(const wchar_t* name) : m_name(name) {
    Logger().LogTraceMessageFormat(L"Enter %s", m_name);
}

CLogMethodEntryExit::~CLogMethodEntryExit() {
    Logger().LogTraceMessageFormat(L"Leave %s", m_name);
}
