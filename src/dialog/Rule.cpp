#include "dialog/Rule.h"

#include <utility>

CRule::CRule(CString key, int position) : m_key(std::move(key)), m_position(position) {}

CRule::~CRule() = default;

CKeyRule::CKeyRule(CString key, int isBranch, int position) : CRule(std::move(key), position), m_isBranch(isBranch) {}

CValueRule::CValueRule(CString key, CString value, int position)
    : CRule(std::move(key), position), m_value(std::move(value)) {}
