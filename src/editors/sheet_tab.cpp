#include "editors/sheet_tab.h"

#include <cstring>

#include "editors/choosers.h"
#include "editors/picture_tab.h"

namespace {

char* Field(void* record, size_t offset) { return static_cast<char*>(record) + offset; }
// Record fields are read and written by their bytes: the records are packed.
int32_t Int32At(const void* record, size_t offset) {
  int32_t value;
  std::memcpy(&value, static_cast<const char*>(record) + offset, sizeof value);
  return value;
}
void SetInt32At(void* record, size_t offset, int32_t value) { std::memcpy(Field(record, offset), &value, sizeof value); }

// The font box writes the face into the record itself; the other fields
// follow after OK.
TabClick ChooseFont(const SheetTab& tab, const FontButtonBinding& f, void* record, DialogControls& controls,
                    const Choosers& choosers) {
  int32_t weight = Int32At(record, f.weight), italic = Int32At(record, f.italic);
  int32_t size = f.size == kNoField ? 0 : Int32At(record, f.size);
  if (!choosers.font(Field(record, f.face), &weight, &italic, f.size == kNoField ? nullptr : &size, f.minimum,
                     f.maximum))
    return {TabClick::kDone};
  SetInt32At(record, f.weight, weight);
  SetInt32At(record, f.italic, italic);
  if (f.size != kNoField) SetInt32At(record, f.size, size);
  ResetTabControls(tab, record, controls);
  return {TabClick::kReset};
}

TabClick ChooseColour(const ColourButtonBinding& b, void* record, const Choosers& choosers) {
  Colour colour = static_cast<Colour>(Int32At(record, b.colour));
  const Colour before = colour;
  if (!choosers.colour(&colour) || colour == before) return {TabClick::kDone};
  SetInt32At(record, b.colour, static_cast<int32_t>(colour));
  return {TabClick::kRepaintButton};
}

}  // namespace

void ResetTabControls(const SheetTab& tab, const void* record, DialogControls& controls) {
  for (size_t i = 0; i < tab.controlCount; ++i) {
    const ControlBinding& b = tab.controls[i];
    if (b.kind == ControlKind::Radio || b.kind == ControlKind::Check) LoadControls(&b, 1, record, controls);
  }
  if (tab.picture) ApplyPictureRules(tab, record, controls);
}

TabClick ClickTabButton(const SheetTab& tab, int id, void* record, DialogControls& controls, const Choosers& choosers) {
  for (size_t i = 0; i < tab.fontCount; ++i)
    if (id == tab.fonts[i].button) return ChooseFont(tab, tab.fonts[i], record, controls, choosers);
  for (size_t i = 0; i < tab.colourCount; ++i)
    if (id == tab.colours[i].button) return ChooseColour(tab.colours[i], record, choosers);
  // A click on a placement glyph chooses the placement beside it.
  if (tab.firstGlyph && id >= tab.firstGlyph && id < tab.firstGlyph + 3) {
    for (int i = 0; i < 3; ++i) controls.SetChecked(tab.firstGlyphRadio + i, i == id - tab.firstGlyph);
    return {TabClick::kDone};
  }
  return tab.picture ? ClickPictureButton(tab, id, record, controls, choosers) : TabClick{TabClick::kNotMine};
}
