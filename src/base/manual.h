// Where the manual that ships beside the program lives.
#pragma once
#include <string>

constexpr const char* kManualFile = "html\\manual.htm";

// "file:///C:/Program%20Files/Quernal/html/manual.htm#ANCHOR" for a program
// folder such as "C:\Program Files\Quernal\"; no "#" when `anchor` is empty.
std::string ManualUrl(const std::string& programFolder, const std::string& anchor);
