#include "editors/control_binding.h"

#include <cstdio>
#include <cstring>
#include <string>

namespace {

// Fields are little-endian integers of 1, 2 or 4 bytes, as the records are.
int64_t ReadField(const void* record, const ControlBinding& b, bool isSigned) {
  const uint8_t* p = static_cast<const uint8_t*>(record) + b.offset;
  uint32_t value = 0;
  for (size_t i = 0; i < b.size && i < 4; ++i) value |= static_cast<uint32_t>(p[i]) << (8 * i);
  if (!isSigned || b.size >= 4) return isSigned ? static_cast<int32_t>(value) : value;
  const uint32_t sign = 1u << (8 * b.size - 1);
  return static_cast<int64_t>(value ^ sign) - sign;
}

void WriteField(void* record, const ControlBinding& b, uint32_t value) {
  uint8_t* p = static_cast<uint8_t*>(record) + b.offset;
  for (size_t i = 0; i < b.size && i < 4; ++i) p[i] = static_cast<uint8_t>(value >> (8 * i));
}

void LoadText(const ControlBinding& b, const void* record, DialogControls& controls) {
  const char* text = static_cast<const char*>(record) + b.offset;
  controls.LimitText(b.id, b.limit);
  controls.SetText(b.id, std::string(text, strnlen(text, b.size)));
}

void ReadText(const ControlBinding& b, void* record, const DialogControls& controls) {
  char* field = static_cast<char*>(record) + b.offset;
  const std::string text = controls.Text(b.id).substr(0, static_cast<size_t>(b.limit));
  std::memset(field, 0, b.size);
  text.copy(field, b.size - 1);
}

int32_t ReadRadio(const ControlBinding& b, const DialogControls& controls) {
  for (int i = 0; i < b.choiceCount; ++i)
    if (controls.Checked(b.choices[i].id)) return b.choices[i].value;
  return b.fallback.value;
}

}  // namespace

UpDownText ParseUpDownText(const std::string& text) {
  UpDownText t;
  const int n = std::sscanf(text.c_str(), "%d,%d,%d", &t.minimum, &t.maximum, &t.position);
  t.parsed = n > 0 ? n : 0;
  return t;
}

void SetUpUpDown(DialogControls& controls, int id) {
  const UpDownText t = ParseUpDownText(controls.Text(id));
  if (t.parsed >= 2) controls.SetRange(id, t.minimum, t.maximum);
  if (t.parsed >= 3) controls.SetPosition(id, t.position);
}

uint32_t ClampToUpDown(uint32_t value, const UpDownText& range) {
  const int64_t v = value;
  if (v < range.minimum) return static_cast<uint32_t>(range.minimum);
  if (v > range.maximum) return static_cast<uint32_t>(range.maximum);
  return value;
}

const ControlBinding* FindBinding(const ControlBinding* table, size_t count, int id) {
  for (size_t i = 0; i < count; ++i)
    if (table[i].id == id) return &table[i];
  return nullptr;
}

void CheckStoredRadio(const ControlBinding& b, const void* record, DialogControls& controls) {
  const int64_t stored = ReadField(record, b, true);
  int id = b.fallback.id;
  for (int i = 0; i < b.choiceCount; ++i)
    if (b.choices[i].value == stored) id = b.choices[i].id;
  controls.SetChecked(id, true);
}

void LoadControls(const ControlBinding* table, size_t count, const void* record, DialogControls& controls) {
  for (size_t i = 0; i < count; ++i) {
    const ControlBinding& b = table[i];
    if (!controls.Exists(b.id)) continue;
    switch (b.kind) {
      case ControlKind::Number:
        SetUpUpDown(controls, b.id + kUpDownOffset);
        controls.SetNumber(b.id, static_cast<uint32_t>(ReadField(record, b, false)));
        break;
      case ControlKind::Check: controls.SetChecked(b.id, ReadField(record, b, false) != 0); break;
      case ControlKind::CheckSetOnly:
        if (ReadField(record, b, false)) controls.SetChecked(b.id, true);
        break;
      case ControlKind::Radio: CheckStoredRadio(b, record, controls); break;
      case ControlKind::Text: LoadText(b, record, controls); break;
    }
  }
}

void ReadControls(const ControlBinding* table, size_t count, void* record, const DialogControls& controls) {
  for (size_t i = 0; i < count; ++i) {
    const ControlBinding& b = table[i];
    if (!controls.Exists(b.id)) continue;
    switch (b.kind) {
      case ControlKind::Number: {
        const uint32_t typed = controls.Number(b.id);
        WriteField(record, b,
                   b.clamp ? ClampToUpDown(typed, ParseUpDownText(controls.Text(b.id + kUpDownOffset))) : typed);
        break;
      }
      case ControlKind::Check:
      case ControlKind::CheckSetOnly: WriteField(record, b, controls.Checked(b.id) ? 1 : 0); break;
      case ControlKind::Radio: WriteField(record, b, static_cast<uint32_t>(ReadRadio(b, controls))); break;
      case ControlKind::Text: ReadText(b, record, controls); break;
    }
  }
}
