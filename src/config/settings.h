// Every user option and every design default of a new calendar is a member
// of `Settings`, bound by name to one row of `SettingsTable`. One generic
// reader and one generic writer move all rows between the members and the
// settings file; adding a setting means adding a member and a row.
#pragma once
#include <cstdint>

constexpr int kSettingTextSize = 260;  // 259 characters and a terminating zero

// Type code bits of a settings row.
enum : uint32_t {
  kSettingFlag = 0x0001,       // 32-bit 0 or 1, a check box on the setup sheet
  kSettingText = 0x0002,       // 260-byte text buffer
  kSettingNumber = 0x0004,     // 32-bit number (colours, weights, percentages)
  kSettingUserData = 0x0008,   // setup binding only: value kept in the control's user data
  kSettingList = 0x0010,       // setup binding only: list box filled from the choice list
  kSettingRanged = 0x0040,     // number edited with an up-down control (id + 10000), clamped
  kSettingWriteOnly = 0x0100,  // written to the file, never read from it
  kSettingListValue = 0x0800,  // with kSettingList: store the chosen row's value, not its index
};

// One row of a choice list; a list ends with a row whose text is null.
struct SettingChoice {
  const char* text;
  uint32_t value;
};

struct SettingsRow {
  const char* key;  // case-sensitive
  void* variable;   // uint32_t* or char[kSettingTextSize]
  uint32_t type;
  uint32_t setupControl;  // control id on the setup property sheet, or 0
  const SettingChoice* choices;
};

struct SettingsValues {
  char ApplicationPath[kSettingTextSize] = "";
  char BuildDate[kSettingTextSize] = "Dec 20 2010";
  uint32_t CapFontBold = 400;
  uint32_t CapFontColour = 0;
  uint32_t CapFontItal = 0;
  char CapFontName[kSettingTextSize] = "ARIAL";
  uint32_t CapFontSize = 20;
  uint32_t CapPlacement = 1;
  char ColourTableFile[kSettingTextSize] = "QUERNL.CCL";
  uint32_t CoverBackgroundColour = 0xFFFFFF;
  uint32_t CoverFontBold = 700;
  uint32_t CoverFontColour = 0;
  uint32_t CoverFontItal = 0;
  char CoverFontName[kSettingTextSize] = "ARIAL";
  uint32_t CoverFontPlacement = 1;
  uint32_t CoverFontSize = 25;
  uint32_t CoverPictureBleed = 0;
  uint32_t CoverPictureDropShadow = 1;
  uint32_t CoverPictureExteriorPadding = 5;
  uint32_t CoverPictureFrameColour = 0;
  uint32_t CoverPictureGutter = 2;
  uint32_t CoverPicturePlacement = 1;
  uint32_t CoverPictureShadowOffset = 5;
  uint32_t CoverPictureShowFrame = 1;
  uint32_t CoverPictureShowPicture = 0;
  uint32_t DateBackColour = 0xE0E0E0;
  uint32_t DateFontBold = 700;
  uint32_t DateFontColour = 0;
  uint32_t DateFontItal = 0;
  char DateFontName[kSettingTextSize] = "ARIAL";
  uint32_t DateFontPlacement = 10;
  uint32_t DateFontSize = 50;
  uint32_t DateFrameColour = 0;
  uint32_t DateInteriorPadding = 5;
  uint32_t DateRound = 0;
  uint32_t DateShadow = 1;
  uint32_t DateShadowOffset = 8;
  char DayFriday[kSettingTextSize] = "Friday";
  char DayMonday[kSettingTextSize] = "Monday";
  char DaySaturday[kSettingTextSize] = "Saturday";
  char DaySunday[kSettingTextSize] = "Sunday";
  char DayThursday[kSettingTextSize] = "Thursday";
  char DayTuesday[kSettingTextSize] = "Tuesday";
  char DayWednesday[kSettingTextSize] = "Wednesday";
  uint32_t DaysFontBold = 700;
  uint32_t DaysFontColour = 0;
  uint32_t DaysFontItal = 0;
  char DaysFontName[kSettingTextSize] = "ARIAL";
  uint32_t DaysFontSize = 10;
  char DaysName[kSettingTextSize] = "General";
  uint32_t DaysShow = 1;
  uint32_t FileMenuRange = 10;
  uint32_t Gutter = 2;
  uint32_t HeadBackColour = 0xE0E0E0;
  uint32_t HeadExteriorPadding = 15;
  uint32_t HeadFontBold = 700;
  uint32_t HeadFontColour = 0;
  uint32_t HeadFontItal = 0;
  char HeadFontName[kSettingTextSize] = "ARIAL";
  uint32_t HeadFontSize = 40;
  uint32_t HeadFrameColour = 0;
  uint32_t HeadInteriorPadding = 15;
  uint32_t HeadPlacement = 1;
  uint32_t HeadPrevNext = 1;
  uint32_t HeadShadow = 1;
  uint32_t HeadShowYear = 0;
  uint32_t ImageCompression = 6;
  uint32_t ImageFileOpenIndex = 0;
  uint32_t InkJet = 0;
  uint32_t LiveButtons = 1;
  uint32_t LogoDelay = 8000;
  uint32_t MaximizePaint = 1;
  char MonthApril[kSettingTextSize] = "April";
  char MonthAugust[kSettingTextSize] = "August";
  char MonthDecember[kSettingTextSize] = "December";
  char MonthFebruary[kSettingTextSize] = "February";
  char MonthJanuary[kSettingTextSize] = "January";
  char MonthJune[kSettingTextSize] = "June";
  char MonthJuly[kSettingTextSize] = "July";
  char MonthMarch[kSettingTextSize] = "March";
  char MonthMay[kSettingTextSize] = "May";
  char MonthNovember[kSettingTextSize] = "November";
  char MonthOctober[kSettingTextSize] = "October";
  char MonthSeptember[kSettingTextSize] = "September";
  char OpenPath[kSettingTextSize] = "";
  uint32_t PageBackgroundColour = 0xFFFFFF;
  uint32_t PageMargin = 2;
  uint32_t PatchLevel = 35;
  char PaintbrushName[kSettingTextSize] = "MSPAINT.EXE";
  char PaintbrushPath[kSettingTextSize] = "";
  uint32_t PictureDropShadow = 1;
  uint32_t PictureExteriorPadding = 5;
  uint32_t PictureFrameColour = 0;
  uint32_t PicturePlacement = 1;
  uint32_t PictureShadowOffset = 5;
  uint32_t PictureShadowSoftness = 5;
  uint32_t PictureShowFrame = 1;
  uint32_t PictureShowPicture = 1;
  uint32_t SearchForPaintbrush = 1;
  uint32_t ShowDriverMessage = 1;
  uint32_t ShowFileOpenPreview = 1;
  uint32_t ShowStartupWindow = 1;
  uint32_t StartMaximized = 0;
  uint32_t StartMonday = 0;
  uint32_t StickyWindowBottom = 0xFFFFFFFFu;
  uint32_t StickyWindowLeft = 0xFFFFFFFFu;
  uint32_t StickyWindowRight = 0xFFFFFFFFu;
  uint32_t StickyWindowTop = 0xFFFFFFFFu;
  uint32_t TagFontItal = 0;
  uint32_t TagTitleColour = 0;
  char ThemeCurrent[kSettingTextSize] = "THEME_Standard.dll";
  uint32_t UseAD = 0;
  uint32_t VersionNumber = 64;
  uint32_t WarnPaletteColour = 1;
  uint32_t WarnShowManual = 1;
  uint32_t YagBackColour = 0xE0E0E0;
  uint32_t YagColour = 0;
  uint32_t YagExteriorPadding = 5;
  uint32_t YagFontBold = 400;
  char YagFontName[kSettingTextSize] = "ARIAL";
  uint32_t YagFrameColour = 0;
  uint32_t YagGutter = 2;
  uint32_t YagInteriorPadding = 5;
  uint32_t YagPageColour = 0xFFFFFF;
  uint32_t YagPageMargin = 5;
  uint32_t YagRound = 0;
  uint32_t YagShadow = 1;
  uint32_t YagShadowOffset = 10;
  uint32_t YagTitleFontBold = 400;
  uint32_t YagTitleFontItal = 0;
  char YagTitleFontName[kSettingTextSize] = "ARIAL";
  uint32_t YagTitleFontSize = 25;};

// The bound variables. They hold the compiled-in defaults until a settings
// file is read.
extern SettingsValues Settings;

extern const SettingsRow SettingsTable[];
extern const int SettingsTableRows;

// Puts every variable back to its compiled-in default.
void ResetSettings();
// The row with exactly this key, or nullptr.
const SettingsRow* FindSettingsRow(const char* key);
