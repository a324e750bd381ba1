#include "editors/picture_tab.h"

#include <cstring>

#include "base/global_block.h"
#include "base/text.h"
#include "config/settings.h"
#include "editors/choosers.h"
#include "res/string_ids.h"

namespace {

// A number is its edit and its up-down.
void EnableNumber(DialogControls& controls, int id, bool on) {
  controls.Enable(id, on);
  controls.Enable(id + kUpDownOffset, on);
}

BlockHandle* PictureOf(void* record, const SheetTab& tab) {
  return reinterpret_cast<BlockHandle*>(static_cast<char*>(record) + tab.picture->picture);
}

// "Select...": the picture is freed before the new one is read, so a file
// that cannot be read leaves none.
TabClick SelectPicture(const SheetTab& tab, void* record, DialogControls& controls, const Choosers& choosers) {
  char path[260];
  const std::string pictures = choosers.picturesFolder.empty() ? "" : JoinPath(choosers.picturesFolder, "");
  CopyText(path, sizeof path, DialogStartFolder(Settings.OpenPath, Settings.ApplicationPath, pictures).c_str());
  if (!choosers.openPicture(path)) return {TabClick::kDone};
  CopyText(Settings.OpenPath, sizeof Settings.OpenPath, FolderOfFile(path).c_str());
  BlockHandle* picture = PictureOf(record, tab);
  if (*picture) GlobalBlockFree(*picture);
  *picture = 0;
  Colour background;
  std::memcpy(&background, static_cast<const char*>(record) + tab.picture->background, sizeof background);
  *picture = choosers.readPicture(path, background);
  if (tab.picture->showChosen) controls.SetChecked(IDC_PICTURE_SHOW, *picture != 0);
  ApplyPictureRules(tab, record, controls);
  return {TabClick::kNewPicture};
}

// "Paint": the picture painted replaces the old one; when the round trip
// fails the old one stays and the user is told.
TabClick PaintPicture(const SheetTab& tab, void* record, const Choosers& choosers) {
  BlockHandle* picture = PictureOf(record, tab);
  if (!*picture) return {TabClick::kDone};
  const PaintedPicture painted = choosers.paint(Settings.PaintbrushPath, *picture, Settings.MaximizePaint != 0);
  if (painted.noProgram) return {TabClick::kDone, IDS_NO_PAINT_PROGRAM};
  if (!painted.dib) return {TabClick::kDone, IDS_MEMORY_FAILED};
  GlobalBlockFree(*picture);
  *picture = painted.dib;
  return {TabClick::kNewPicture};
}

}  // namespace

TabClick ClickPictureButton(const SheetTab& tab, int id, void* record, DialogControls& controls,
                            const Choosers& choosers) {
  if (IsPictureCheckBox(id)) return ResetTabControls(tab, record, controls), TabClick{TabClick::kReset};
  if (id == IDC_PICTURE_SELECT) return SelectPicture(tab, record, controls, choosers);
  if (id == tab.picture->paint) return PaintPicture(tab, record, choosers);
  return {TabClick::kNotMine};
}

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
