// The page property sheet's five tabs as data, on a real month page.
#include <algorithm>
#include <cstddef>
#include <cstring>
#include <set>
#include <vector>

#include "calendar/calendar_model.h"
#include "editors/page_tabs.h"
#include "editors/picture_tab.h"
#include "editors/year_tabs.h"
#include "editors/setup_bindings.h"
#include "config/settings.h"
#include "fake_controls.h"
#include "res/page_sheet_ids.h"
#include "res/year_sheet_ids.h"
#include "test_support.h"

namespace {

// Every control a tab's table names, and the up-downs of its numbers with
// the texts their templates hold.
FakeControls TabControls(const SheetTab& tab) {
  std::set<int> ids;
  std::map<int, std::string> ranges;
  for (size_t i = 0; i < tab.controlCount; ++i) {
    const ControlBinding& b = tab.controls[i];
    ids.insert(b.id);
    for (int c = 0; c < b.choiceCount; ++c) ids.insert(b.choices[c].id);
    if (b.kind == ControlKind::Radio) ids.insert(b.fallback.id);
    if (b.kind == ControlKind::Number) ids.insert(b.id + kUpDownOffset), ranges[b.id + kUpDownOffset] = "0,25,5";
  }
  FakeControls controls(ids);
  controls.text_ = ranges;
  return controls;
}

}  // namespace

TEST_F(QuernalTest, EveryTabGivesBackThePageItShowed) {
  MonthPage page;
  CalendarDocument doc = CreateCalendar(2027, 0);
  ASSERT_TRUE(GetMonthPage(doc, 3, &page));
  std::strcpy(page.LeftCaption, "Spring\r\ncomes");
  page.PicturePlacement = 10;
  for (const SheetTab& tab : kPageTabs) {
    FakeControls controls = TabControls(tab);
    LoadControls(tab.controls, tab.controlCount, &page, controls);
    MonthPage back = page;
    ReadControls(tab.controls, tab.controlCount, &back, controls);
    EXPECT_EQ(std::memcmp(&back, &page, sizeof page), 0) << tab.caption;
  }

  // A centred picture stored as 1 shows as centre and comes back as 147; a
  // typed number beyond its arrows is kept; a caption keeps 2,048 characters.
  page.PicturePlacement = 1;
  const SheetTab& picture = kPageTabs[3];
  FakeControls controls = TabControls(picture);
  LoadControls(picture.controls, picture.controlCount, &page, controls);
  EXPECT_TRUE(controls.Checked(IDC_PICTURE_CENTRE));
  controls.SetText(IDC_PICTURE_GUTTER, "99");
  ReadControls(picture.controls, picture.controlCount, &page, controls);
  EXPECT_EQ(page.PicturePlacement, 147);
  EXPECT_EQ(page.Gutter, 99);
  const SheetTab& caption = kPageTabs[4];
  controls = TabControls(caption);
  controls.SetText(IDC_CAP_LEFT_TEXT, std::string(3000, 'x'));
  ReadControls(caption.controls, caption.controlCount, &page, controls);
  EXPECT_EQ(std::strlen(page.LeftCaption), 2048u);
  FreeCalendar(doc);
}

// The setup sheet's controls from the settings rows: check boxes, names of
// 260 characters, and the compression clamped to its arrows' 1..9; the
// palette warning's box binds nothing, so ticking it changes nothing.
TEST_F(QuernalTest, SetupControlsComeFromTheSettingsRows) {
  const std::vector<ControlBinding> setup = SetupBindings();
  std::set<int> ids{111};
  for (const ControlBinding& b : setup) ids.insert({b.id, b.id + kUpDownOffset});
  EXPECT_EQ(std::count_if(setup.begin(), setup.end(), [](const ControlBinding& b) { return b.id == 111; }), 0);
  FakeControls controls(ids);
  controls.text_[10107] = "1,9,6";
  LoadControls(setup.data(), setup.size(), &Settings, controls);
  EXPECT_TRUE(controls.Checked(108)) << "WarnShowManual";
  EXPECT_EQ(controls.Text(112), "January");
  EXPECT_EQ(controls.limit_[130], 260);
  EXPECT_EQ(controls.range_[10107], std::make_pair(1, 9));
  const struct {
    const char* typed;
    uint32_t stored;
  } compression[] = {{"0", 1}, {"12", 9}, {"4", 4}};
  for (const auto& c : compression) {
    controls.text_[107] = c.typed;
    ReadControls(setup.data(), setup.size(), &Settings, controls);
    EXPECT_EQ(Settings.ImageCompression, c.stored) << c.typed;
  }
  controls.text_[112] = std::string(300, 'x');
  controls.SetChecked(111, false);
  controls.SetChecked(133, true);
  ReadControls(setup.data(), setup.size(), &Settings, controls);
  EXPECT_EQ(std::strlen(Settings.MonthJanuary), 259u) << "a name fills the setting's buffer at most";
  EXPECT_EQ(Settings.WarnPaletteColour, 1u);
  EXPECT_EQ(Settings.StartMonday, 1u);
}

// The picture rules on the page's picture tab and on the cover tab: from a
// picture or none, "Show picture", the drop shadow and the frame, which
// controls end enabled, which disabled and which keep their state; the
// stored placement is checked again either way.
TEST_F(QuernalTest, PictureControlsFollowThePictureShowShadowAndFrame) {
  enum : int {
    Paint = -1,  // the tab's own "Paint"
    Show = IDC_PICTURE_SHOW,
    Sample = IDC_PICTURE_SAMPLE,
    Shadow = IDC_PICTURE_SHADOW,
    ShowFrame = IDC_PICTURE_SHOW_FRAME,
    Crop = IDC_PICTURE_CROP,
    Frame = IDC_PICTURE_FRAME,
    // A number stands for its edit and its up-down.
    Offset = IDC_PICTURE_SHADOW_OFFSET,
    Softness = IDC_PICTURE_SOFTNESS,
    Exterior = IDC_PICTURE_EXTERIOR,
  };
  const struct {
    bool picture, show, shadow, frame;
    std::vector<int> on, off;
  } cases[] = {
      {false, true, true, true, {}, {Show, Sample, Shadow, ShowFrame, Paint, Crop, Frame, Offset, Exterior}},
      {true, false, true, true, {Show}, {Sample, Shadow, ShowFrame, Paint, Crop, Frame, Offset, Exterior}},
      {true, true, false, false, {Show, Sample, Shadow, ShowFrame, Paint, Crop}, {Offset, Softness, Frame}},
      {true, true, true, false, {Show, Sample, Shadow, ShowFrame, Paint, Crop, Offset, Softness, Exterior}, {Frame}},
      {true, true, false, true, {Show, Sample, Shadow, ShowFrame, Paint, Crop, Frame}, {Offset, Softness}},
  };
  const struct {
    const SheetTab& tab;
    size_t placement;
    int paint;
  } tabs[] = {{kPageTabs[3], offsetof(MonthPage, PicturePlacement), IDC_PICTURE_PAINT},
              {kYearTabs[1], offsetof(CalendarHeader, CoverPicturePlacement), IDC_COVER_PAINT}};
  const BlockHandle block = GlobalBlockAlloc(16);
  for (const auto& t : tabs) {
    for (const auto& c : cases) {
      std::vector<uint8_t> record(t.tab.picture->recordSize);
      const BlockHandle picture = c.picture ? block : 0;
      const int32_t bottomLeft = 8;
      std::memcpy(record.data() + t.tab.picture->picture, &picture, sizeof picture);
      std::memcpy(record.data() + t.placement, &bottomLeft, sizeof bottomLeft);
      FakeControls controls = TabControls(t.tab);
      controls.SetChecked(IDC_PICTURE_SHOW, c.show);
      controls.SetChecked(IDC_PICTURE_SHADOW, c.shadow);
      controls.SetChecked(IDC_PICTURE_SHOW_FRAME, c.frame);
      ApplyPictureRules(t.tab, record.data(), controls);

      std::map<int, bool> expected;
      for (bool on : {true, false})
        for (int id : on ? c.on : c.off) {
          id = id == Paint ? t.paint : id;
          expected[id] = on;
          if (id == Offset || id == Softness || id == Exterior) expected[id + kUpDownOffset] = on;
        }
      const std::string what = std::string(t.tab.caption) + (c.picture ? " picture" : " none") +
                               (c.show ? " shown" : "") + (c.shadow ? " shadow" : "") + (c.frame ? " frame" : "");
      EXPECT_EQ(controls.enabled_, expected) << what;
      EXPECT_TRUE(controls.Checked(IDC_PICTURE_BOTTOM_LEFT)) << what;
    }
  }
  GlobalBlockFree(block);
}
