#include "editors/setup_bindings.h"

#include "config/settings.h"

std::vector<ControlBinding> SetupBindings() {
  std::vector<ControlBinding> bindings;
  const char* base = reinterpret_cast<const char*>(&Settings);
  for (int i = 0; i < SettingsTableRows; ++i) {
    const SettingsRow& row = SettingsTable[i];
    if (!row.setupControl) continue;
    const size_t offset = static_cast<size_t>(static_cast<const char*>(row.variable) - base);
    const int id = static_cast<int>(row.setupControl);
    const uint32_t kind = row.type & 0xFF;
    ControlBinding b{id, ControlKind::Check, offset, sizeof(uint32_t)};
    if (kind & kSettingText) {
      b.kind = ControlKind::Text, b.size = kSettingTextSize, b.limit = 260;
    } else if (kind & kSettingNumber) {
      if (!(kind & kSettingRanged)) continue;
      b.kind = ControlKind::Number, b.clamp = true;
    } else if (!(kind & kSettingFlag)) {
      continue;
    }
    bindings.push_back(b);
  }
  return bindings;
}
