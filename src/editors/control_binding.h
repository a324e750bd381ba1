// A tab's controls described once as a table, and the two loops that load a
// record into them and read them back. Every tab of the page, year and setup
// sheets shares these rules:
// - a number's up-down (the edit's id + 10000) takes its range and position
//   from its own text in the template, "min,max,pos";
// - numbers are read unsigned and never clamped, unless the binding says so;
// - a radio group checks the button of the stored value, or its fallback,
//   and reads back the first checked button in table order;
// - some check boxes are only ever set on loading, never cleared.
#pragma once
#include <cstddef>
#include <cstdint>

#include "editors/dialog_controls.h"

enum class ControlKind {
  Number,        // an edit with an up-down
  Check,         // a check box, loaded set or clear
  CheckSetOnly,  // a check box that loading only ever sets
  Radio,         // a radio group (see RadioChoice)
  Text,          // an edit of at most `limit` characters
};

struct RadioChoice {
  int id;
  int32_t value;
};

struct ControlBinding {
  int id;
  ControlKind kind;
  size_t offset, size;  // the record field: offsetof and sizeof
  // Radio: the buttons tested in order on reading back, then the fallback
  // button checked for any other value and the value it reads back as.
  const RadioChoice* choices = nullptr;
  int choiceCount = 0;
  RadioChoice fallback{0, 0};
  int limit = 0;        // Text: characters at most
  bool clamp = false;   // Number: kept within the up-down's range on reading
};

// A binding of a record's field, with its offset and size taken from the type.
#define QUERNAL_FIELD(Record, field) offsetof(Record, field), sizeof(Record::field)

constexpr int kUpDownOffset = 10000;

// "min,max,pos" as "%d,%d,%d" reads it; what is not parsed keeps its
// sentinel (-32767, 32767, -32767).
struct UpDownText {
  int minimum = -32767, maximum = 32767, position = -32767;
  int parsed = 0;  // how many of the three numbers were read
};
UpDownText ParseUpDownText(const std::string& text);
// Gives the up-down `id` its range when both bounds were parsed and its
// position when the third number was.
void SetUpUpDown(DialogControls& controls, int id);
// A number typed into an edit, brought within the range of its up-down's
// template text: below the minimum it becomes the minimum, then above the
// maximum the maximum.
uint32_t ClampToUpDown(uint32_t value, const UpDownText& range);

// The controls that exist in `controls` are loaded from / read back into
// `record` (a fixed-layout record the table's offsets index).
void LoadControls(const ControlBinding* table, size_t count, const void* record, DialogControls& controls);
void ReadControls(const ControlBinding* table, size_t count, void* record, const DialogControls& controls);
// The row of `table` that binds control `id`; null when none does.
const ControlBinding* FindBinding(const ControlBinding* table, size_t count, int id);
// Checks the button of the stored radio value (without clearing the others),
// as tabs do again after a font box or a click.
void CheckStoredRadio(const ControlBinding& radio, const void* record, DialogControls& controls);
