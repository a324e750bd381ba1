// The two tabs of the year property sheet as data: the year and the year
// at a glance, and the cover.
#pragma once
#include "editors/sheet_tab.h"

constexpr int kYearTabCount = 2;
constexpr int kYearTab = 0;
extern const SheetTab kYearTabs[kYearTabCount];
