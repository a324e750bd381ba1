#include "config/settings.h"

#include <cstring>

SettingsValues Settings;

const SettingsRow SettingsTable[] = {
#define QUERNAL_SETTING_ROW(key, type, value, control) {#key, &Settings.key, type, control, nullptr},
    QUERNAL_SETTINGS(QUERNAL_SETTING_ROW)
#undef QUERNAL_SETTING_ROW
};

const int SettingsTableRows = sizeof(SettingsTable) / sizeof(SettingsTable[0]);

void ResetSettings() { Settings = SettingsValues(); }

const SettingsRow* FindSettingsRow(const char* key) {
  for (int i = 0; i < SettingsTableRows; ++i)
    if (std::strcmp(SettingsTable[i].key, key) == 0) return &SettingsTable[i];
  return nullptr;
}
