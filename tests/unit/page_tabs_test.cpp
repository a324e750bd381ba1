// The page property sheet's five tabs as data, on a real month page.
#include <algorithm>
#include <cstddef>
#include <cstring>
#include <set>
#include <vector>

#include "base/text.h"
#include "calendar/calendar_model.h"
#include "editors/choosers.h"
#include "editors/page_tabs.h"
#include "editors/picture_tab.h"
#include "editors/year_tabs.h"
#include "editors/setup_bindings.h"
#include "config/settings.h"
#include "fake_controls.h"
#include "res/page_sheet_ids.h"
#include "res/string_ids.h"
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
  // caption keeps 2,048 characters.
  page.PicturePlacement = 1;
  const SheetTab& picture = kPageTabs[3];
  FakeControls controls = TabControls(picture);
  LoadControls(picture.controls, picture.controlCount, &page, controls);
  EXPECT_TRUE(controls.Checked(IDC_PICTURE_CENTRE));
  ReadControls(picture.controls, picture.controlCount, &page, controls);
  EXPECT_EQ(page.PicturePlacement, 147);
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

// The tabs' buttons with fake choosers: what each answer does to the
// working copy (fields set, the picture replaced, freed or kept), to the
// check boxes and radios (all cleared by the user before the click), what
// the chooser was asked and what is left to the window.
TEST_F(QuernalTest, TabButtonsTakeTheirChoosersAnswers) {
  enum Picture { kKept, kNone, kNew };
  struct Field {
    size_t offset;
    int32_t value;
    const char* text = nullptr;
  };
  bool ok = true, works = true;
  std::string asked;
  BlockHandle made = 0;
  Choosers fake;
  fake.font = [&](char* face, int32_t* weight, int32_t* italic, int32_t* size, int minimum, int maximum) {
    asked = "font " + std::to_string(minimum) + ".." + std::to_string(maximum) + (size ? " sized" : "");
    if (!ok) return false;
    std::strcpy(face, "Fake");
    *weight = 700, *italic = 255;
    if (size) *size = 42;
    return true;
  };
  fake.colour = [&](Colour* colour) {
    asked = "colour";
    if (ok && works) *colour = RGBColour(1, 2, 3);
    return ok;
  };
  fake.picturesFolder = "P:\\Pictures\\";
  fake.openPicture = [&](char* path) {
    asked = std::string("open ") + path;
    if (ok) std::strcpy(path, "C:\\Holiday\\Lake.jpg");
    return ok;
  };
  fake.readPicture = [&](const char* path, Colour background) {
    asked += std::string(" read ") + path + " on " + std::to_string(background);
    return made = works ? GlobalBlockAlloc(8) : 0;
  };
  fake.paint = [&](const char* program, BlockHandle, bool maximized) {
    asked = std::string("paint ") + program + (maximized ? " maximized" : "");
    PaintedPicture painted;
    painted.noProgram = !ok;
    if (ok && works) painted.dib = made = GlobalBlockAlloc(8);
    return painted;
  };
#define PAGE(f) offsetof(MonthPage, f)
#define YEAR(f) offsetof(CalendarHeader, f)
  const Field kFont[] = {{PAGE(HeadFontName), 0, "Fake"}, {PAGE(HeadFontBold), 700}, {PAGE(HeadFontItal), 255},
                         {PAGE(HeadFontSize), 42}};
  const struct {
    const SheetTab& tab;
    int button;
    bool ok, works;  // the chooser's OK; the colour new, the file read, the paint program's round trip done
    const char* asked;
    TabClick::Then then;
    int message;
    Picture picture;
    std::vector<Field> fields;
    std::set<int> checked;
  } cases[] = {
      {kPageTabs[0], IDC_HEAD_FONT, true, true, "font 4..100 sized", TabClick::kReset, 0, kKept,
       {std::begin(kFont), std::end(kFont)}, {IDC_HEAD_CENTRE, IDC_HEAD_PREV_NEXT}},
      {kPageTabs[0], IDC_HEAD_FONT, false, true, "font 4..100 sized", TabClick::kDone, 0, kKept, {}, {}},
      {kYearTabs[0], IDC_YAG_DATE_FONT, true, true, "font 0..0", TabClick::kReset, 0, kKept,
       {{YEAR(YagFontName), 0, "Fake"}, {YEAR(YagFontBold), 700}, {YEAR(TagFontItal), 255}}, {IDC_YAG_SHADOW}},
      {kPageTabs[1], IDC_DATE_FRAME, true, true, "colour", TabClick::kRepaintButton, 0, kKept,
       {{PAGE(DateFrameColour), 0x030201}}, {}},
      {kPageTabs[1], IDC_DATE_FRAME, true, false, "colour", TabClick::kDone, 0, kKept, {}, {}},
      {kPageTabs[1], IDC_DATE_FRAME, false, true, "colour", TabClick::kDone, 0, kKept, {}, {}},
      {kPageTabs[4], IDC_CAP_RIGHT_GLYPH, true, true, "", TabClick::kDone, 0, kKept, {}, {IDC_CAP_RIGHT}},
      {kPageTabs[3], IDC_PICTURE_SHOW_FRAME, true, true, "", TabClick::kReset, 0, kKept, {}, {IDC_PICTURE_BOTTOM_LEFT}},
      {kPageTabs[3], IDC_PICTURE_SELECT, true, true, "open P:\\Pictures\\ read C:\\Holiday\\Lake.jpg on 7",
       TabClick::kNewPicture, 0, kNew, {}, {IDC_PICTURE_BOTTOM_LEFT}},
      {kPageTabs[3], IDC_PICTURE_SELECT, true, false, "open P:\\Pictures\\ read C:\\Holiday\\Lake.jpg on 7",
       TabClick::kNewPicture, 0, kNone, {}, {IDC_PICTURE_BOTTOM_LEFT}},
      {kPageTabs[3], IDC_PICTURE_SELECT, false, true, "open P:\\Pictures\\", TabClick::kDone, 0, kKept, {}, {}},
      {kYearTabs[1], IDC_PICTURE_SELECT, true, true, "open P:\\Pictures\\ read C:\\Holiday\\Lake.jpg on 9",
       TabClick::kNewPicture, 0, kNew, {}, {IDC_PICTURE_SHOW, IDC_PICTURE_BOTTOM_LEFT}},
      {kYearTabs[1], IDC_PICTURE_SELECT, true, false, "open P:\\Pictures\\ read C:\\Holiday\\Lake.jpg on 9",
       TabClick::kNewPicture, 0, kNone, {}, {IDC_PICTURE_BOTTOM_LEFT}},
      {kPageTabs[3], IDC_PICTURE_PAINT, true, true, "paint C:\\Paint.exe maximized", TabClick::kNewPicture, 0, kNew,
       {}, {}},
      {kPageTabs[3], IDC_PICTURE_PAINT, true, false, "paint C:\\Paint.exe maximized", TabClick::kDone,
       IDS_MEMORY_FAILED, kKept, {}, {}},
      {kPageTabs[3], IDC_PICTURE_PAINT, false, true, "paint C:\\Paint.exe maximized", TabClick::kDone,
       IDS_NO_PAINT_PROGRAM, kKept, {}, {}},
      {kYearTabs[1], IDC_COVER_PAINT, true, true, "paint C:\\Paint.exe maximized", TabClick::kNewPicture, 0, kNew, {},
       {}},
      {kPageTabs[3], IDC_PICTURE_CROP, true, true, "", TabClick::kNotMine, 0, kKept, {}, {}},
  };
  CalendarDocument doc = CreateCalendar(2027, 0);
  MonthPage page;
  CalendarHeader header;
  ASSERT_TRUE(GetMonthPage(doc, 3, &page) && GetHeader(doc, &header));
  page.HeadPlacement = 1, page.HeadPrevNext = 1, page.HeadShadow = 0, page.PicturePlacement = 8;
  page.PageBackgroundColour = 7, header.CoverBackgroundColour = 9;
  header.YagShadow = 1, header.CoverPicturePlacement = 8, header.CoverPictureShowPicture = 1;
  CopyText(Settings.PaintbrushPath, sizeof Settings.PaintbrushPath, "C:\\Paint.exe");
  Settings.MaximizePaint = 1;
  for (const auto& c : cases) {
    const bool year = &c.tab == &kYearTabs[0] || &c.tab == &kYearTabs[1];
    std::vector<uint8_t> record(year ? sizeof header : sizeof page);
    std::memcpy(record.data(), year ? static_cast<void*>(&header) : &page, record.size());
    const size_t pictureField = year ? YEAR(CoverPicture) : PAGE(Picture);
    const BlockHandle old = GlobalBlockAlloc(8);
    std::memcpy(record.data() + pictureField, &old, sizeof old);
    std::vector<uint8_t> expected = record;
    Settings.OpenPath[0] = 0;
    ok = c.ok, works = c.works, asked.clear(), made = 0;
    FakeControls controls = TabControls(c.tab);
    const uint32_t live = GlobalBlockLiveCount();

    const TabClick click = ClickTabButton(c.tab, c.button, record.data(), controls, fake);
    const std::string what = std::string(c.tab.caption) + " " + std::to_string(c.button) + (c.ok ? " ok" : "") +
                             (c.works ? " works" : "");
    EXPECT_EQ(asked, c.asked) << what;
    EXPECT_EQ(click.then, c.then) << what;
    EXPECT_EQ(click.message, c.message) << what;
    for (const Field& f : c.fields)
      f.text ? (void)std::strcpy(reinterpret_cast<char*>(&expected[f.offset]), f.text)
             : (void)std::memcpy(&expected[f.offset], &f.value, sizeof f.value);
    const BlockHandle now = c.picture == kKept ? old : c.picture == kNew ? made : 0;
    std::memcpy(&expected[pictureField], &now, sizeof now);
    EXPECT_TRUE(c.picture != kNew || made) << what;
    EXPECT_EQ(record, expected) << what;
    EXPECT_EQ(GlobalBlockLiveCount(), live - (c.picture == kNone)) << what << ": the old picture freed once";
    EXPECT_EQ(controls.checked_, c.checked) << what;
    EXPECT_STREQ(Settings.OpenPath, c.button == IDC_PICTURE_SELECT && c.ok ? "C:\\Holiday\\" : "") << what;
    if (now) GlobalBlockFree(now);
  }
  FreeCalendar(doc);
}
