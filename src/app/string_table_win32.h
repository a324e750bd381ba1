// Texts of the program's string table.
#pragma once
#include <windows.h>

#include <string>

// Text `id` of `instance`'s string table, or the program's own words that
// the table lacks it.
std::string StringTableText(HINSTANCE instance, UINT id);
