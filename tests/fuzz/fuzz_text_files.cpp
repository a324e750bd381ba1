// The text files the program reads: the settings file (with its recent
// files), an events file and a colour table, each taken from the same input.
#include <cstring>

#include "calendar/event_list.h"
#include "colours/colour_table.h"
#include "config/settings.h"
#include "config/settings_file.h"
#include "fuzz_support.h"

namespace {
void Ignore(const char* value, void*) {
  if (std::strlen(value) > 259) __builtin_trap();
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  ResetSettings();
  std::string ini = WriteInput("QUERNL.INI", data, size);
  LoadSettingsFile(ini.c_str());
  LoadRecentFilesFromFile(ini.c_str(), Ignore, nullptr);
  for (int i = 0; i < SettingsTableRows; ++i)
    if ((SettingsTable[i].type & kSettingText) && !std::memchr(SettingsTable[i].variable, 0, kSettingTextSize))
      __builtin_trap();

  // The same bytes as an events file, looked up on every day of the year
  // with the month names the settings file gave.
  std::strcpy(Settings.ApplicationPath, FuzzFolder().c_str());
  WriteInput("Fuzz.CDF", data, size);
  BlockHandle list = LoadEventList("Fuzz");
  char text[1024];
  for (int month = 0; month < 12; ++month)
    for (int day = 0; day < 31; ++day) FindEvent(text, sizeof text, list, month, day);
  if (list) GlobalBlockFree(list);
  CheckNoBlocksLeft();

  // A colour table names only colours of 24 bits, by names without "=".
  std::vector<NamedColour> table;
  ReadColourTable(WriteInput("Fuzz.CCL", data, size), &table);
  for (const NamedColour& c : table)
    if (c.colour > 0xFFFFFF || c.name.empty() || c.name.find_first_of("=\n\r") != std::string::npos) __builtin_trap();
  return 0;
}
