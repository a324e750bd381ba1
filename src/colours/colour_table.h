// Colour tables: named colours kept in small text files (*.CCL) in the
// program's folder, one "name=red,green,blue" line each.
#pragma once
#include <cstdint>
#include <string>
#include <vector>

struct NamedColour {
  std::string name;
  uint32_t colour;  // a COLORREF: red | green << 8 | blue << 16
};

// One line of a table, cut at its first line feed and carriage return. False
// for a line without "=", with an empty name, or without both commas. The
// name is everything before the first "=", blanks included; each value keeps
// only its low 8 bits.
bool ParseColourLine(const std::string& line, NamedColour* out);
// The table in `path`, in file order; false when the file cannot be opened.
// Lines are read 260 characters at most, so a longer one goes on as the next.
bool ReadColourTable(const std::string& path, std::vector<NamedColour>* out);
// "name=r,g,b\n"
std::string ColourLine(const NamedColour& colour);
// The file of the table in use: ColourTableFile in the program's folder.
// The setting comes from the settings file, so a name that is not a plain
// file name there (IsPlainFileName) is ignored and the default table's file
// is used instead.
std::string ColourTablePath();
// Writes the table over `path` after deleting `path`.bak. With no colours
// to write (`colours` null: the list could not be counted) the new file is
// deleted and `path`.bak renamed back, which finds nothing, as no backup was
// made; that order is kept. False when the file cannot be written.
bool WriteColourTable(const std::string& path, const std::vector<NamedColour>* colours);
