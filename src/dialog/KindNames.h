// The texts of the three kinds, which the string table holds and a row's Type cell shows.
#pragma once

#include "dialog/RowRules.h"
#include "helpers/ResourceString.h"
#include "helpers/TextView.h"
#include "resources/resource.h"

struct KindNames {
    CString branch = LoadResourceString(IDS_KIND_BRANCH);
    CString key = LoadResourceString(IDS_KIND_KEY);
    CString value = LoadResourceString(IDS_KIND_VALUE);

    KindTexts Texts() const { return {ViewOf(branch), ViewOf(key), ViewOf(value)}; }
};
