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
  controls.Enable(kPictureShow, picture);
  if (picture && controls.Checked(kPictureShow)) {
    for (int id : {kPictureSample, kPictureShadow, kPictureShowFrame, tab.picture->paint, kPictureCrop})
      controls.Enable(id, true);
    // Without a drop shadow, the external padding keeps whatever state it had.
    const bool shadow = controls.Checked(kPictureShadow);
    EnableNumber(controls, kPictureShadowOffset, shadow);
    EnableNumber(controls, kPictureSoftness, shadow);
    if (shadow) EnableNumber(controls, kPictureExterior, true);
    controls.Enable(kPictureFrame, controls.Checked(kPictureShowFrame));
  } else {
    // Softness, the gutter and the placement keep their state.
    for (int id : {kPictureShadow, kPictureShowFrame, kPictureSample, tab.picture->paint, kPictureFrame, kPictureCrop})
      controls.Enable(id, false);
    EnableNumber(controls, kPictureShadowOffset, false);
    EnableNumber(controls, kPictureExterior, false);
  }
}
