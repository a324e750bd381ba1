#include "editors/picture_tab.h"

#include <cstring>

#include "base/global_block.h"

namespace {

// A number is its edit and its up-down.
void EnableNumber(DialogControls& controls, int id, bool on) {
  controls.Enable(id, on);
  controls.Enable(id + kUpDownOffset, on);
}

}  // namespace

void ApplyPictureRules(const SheetTab& tab, const void* record, DialogControls& controls) {
  if (const ControlBinding* radio = FindBinding(tab.controls, tab.controlCount, tab.picture->placement))
    CheckStoredRadio(*radio, record, controls);
  BlockHandle block;
  std::memcpy(&block, static_cast<const char*>(record) + tab.picture->picture, sizeof block);
  const bool picture = block != 0;
  controls.Enable(IDC_PICTURE_SHOW, picture);
  if (picture && controls.Checked(IDC_PICTURE_SHOW)) {
    for (int id :
         {IDC_PICTURE_SAMPLE, IDC_PICTURE_SHADOW, IDC_PICTURE_SHOW_FRAME, tab.picture->paint, IDC_PICTURE_CROP})
      controls.Enable(id, true);
    // Without a drop shadow, the external padding keeps whatever state it had.
    const bool shadow = controls.Checked(IDC_PICTURE_SHADOW);
    EnableNumber(controls, IDC_PICTURE_SHADOW_OFFSET, shadow);
    EnableNumber(controls, IDC_PICTURE_SOFTNESS, shadow);
    if (shadow) EnableNumber(controls, IDC_PICTURE_EXTERIOR, true);
    controls.Enable(IDC_PICTURE_FRAME, controls.Checked(IDC_PICTURE_SHOW_FRAME));
  } else {
    // Softness, the gutter and the placement keep their state.
    for (int id : {IDC_PICTURE_SHADOW, IDC_PICTURE_SHOW_FRAME, IDC_PICTURE_SAMPLE, tab.picture->paint,
                   IDC_PICTURE_FRAME, IDC_PICTURE_CROP})
      controls.Enable(id, false);
    EnableNumber(controls, IDC_PICTURE_SHADOW_OFFSET, false);
    EnableNumber(controls, IDC_PICTURE_EXTERIOR, false);
  }
}
