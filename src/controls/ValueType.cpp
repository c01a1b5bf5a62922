#include "controls/ValueType.h"

bool IsTextValueType(unsigned long type) {
    constexpr unsigned long kText = 1;
    constexpr unsigned long kExpandableText = 2;
    constexpr unsigned long kTextList = 7;
    return type == kText || type == kExpandableText || type == kTextList;
}
