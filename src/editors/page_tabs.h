// The five tabs of the page property sheet as data: which control edits
// which field of the month page, and the font and colour buttons, glyphs
// and picture of each tab.
#pragma once
#include "editors/sheet_tab.h"

constexpr int kPageTabCount = 5;
constexpr int kEventsTab = 2;
extern const SheetTab kPageTabs[kPageTabCount];
