// The types of registry values, as far as the tree tells them apart.
#pragma once

// True for the types whose data is text (plain, expandable, list of texts): they get the text picture, all others,
// unknown ones too, the binary picture.
bool IsTextValueType(unsigned long type);
