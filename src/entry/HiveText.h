// The key path decisions over the hive names of the library's own string table, for the dialog and its controls.
#pragma once

#include <afx.h>

#include "entry/HiveTable.h"
#include "entry/KeyPath.h"

// The five hives with their texts as the string table has them. The texts are loaded at the first call, in the module
// state of that moment: the library's, under every member that it exports.
const HiveTable& Hives();

// Each does what the operation of the same name in entry/HiveTable.h or entry/KeyPath.h says.
KeyCheck CheckKeyPath(const CString& text, const CString& watermark);
CString AbbreviateHive(const CString& path);
CString NormaliseAbbreviation(const CString& path);
void ExpandHive(CString& path);  // changes its argument
CString MakeHivePath(HKEY rootKey, const CString& subkey);
