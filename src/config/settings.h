// Every user option and every design default of a new calendar is a member
// of `Settings`, bound by name to one row of `SettingsTable`. One generic
// reader and one generic writer move all rows between the members and the
// settings file; adding a setting means adding a row to the list below.
#pragma once
#include <cstdint>
#include <type_traits>

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

// Every row of the settings table in its order: X(key, type code, value before
// any file is read, setup control). The order matters: a key abbreviated in
// the settings file selects the first row that starts with it (so "Month"
// means MonthApril, and June stands before July on purpose).
#define QUERNAL_SETTINGS(X) \
  X(ApplicationPath, kSettingText, "", 0) \
  X(BuildDate, kSettingText | kSettingWriteOnly, "Dec 20 2010", 0) \
  X(CapFontBold, kSettingNumber, 400, 0) \
  X(CapFontColour, kSettingNumber, 0, 0) \
  X(CapFontItal, kSettingFlag, 0, 0) \
  X(CapFontName, kSettingText, "ARIAL", 0) \
  X(CapFontSize, kSettingNumber, 20, 0) \
  X(CapPlacement, kSettingNumber, 1, 0) \
  X(ColourTableFile, kSettingText, "QUERNL.CCL", 0) \
  X(CoverBackgroundColour, kSettingNumber, 0xFFFFFF, 0) \
  X(CoverFontBold, kSettingNumber, 700, 0) \
  X(CoverFontColour, kSettingNumber, 0, 0) \
  X(CoverFontItal, kSettingFlag, 0, 0) \
  X(CoverFontName, kSettingText, "ARIAL", 0) \
  X(CoverFontPlacement, kSettingNumber, 1, 0) \
  X(CoverFontSize, kSettingNumber, 25, 0) \
  X(CoverPictureBleed, kSettingFlag, 0, 0) \
  X(CoverPictureDropShadow, kSettingFlag, 1, 0) \
  X(CoverPictureExteriorPadding, kSettingNumber, 5, 0) \
  X(CoverPictureFrameColour, kSettingNumber, 0, 0) \
  X(CoverPictureGutter, kSettingNumber, 2, 0) \
  X(CoverPicturePlacement, kSettingNumber, 1, 0) \
  X(CoverPictureShadowOffset, kSettingNumber, 5, 0) \
  X(CoverPictureShowFrame, kSettingFlag, 1, 0) \
  X(CoverPictureShowPicture, kSettingFlag, 0, 0) \
  X(DateBackColour, kSettingNumber, 0xE0E0E0, 0) \
  X(DateFontBold, kSettingNumber, 700, 0) \
  X(DateFontColour, kSettingNumber, 0, 0) \
  X(DateFontItal, kSettingFlag, 0, 0) \
  X(DateFontName, kSettingText, "ARIAL", 0) \
  X(DateFontPlacement, kSettingNumber, 10, 0) \
  X(DateFontSize, kSettingNumber, 50, 0) \
  X(DateFrameColour, kSettingNumber, 0, 0) \
  X(DateInteriorPadding, kSettingNumber, 5, 0) \
  X(DateRound, kSettingNumber, 0, 0) \
  X(DateShadow, kSettingFlag, 1, 0) \
  X(DateShadowOffset, kSettingNumber, 8, 0) \
  X(DayFriday, kSettingText, "Friday", 129) \
  X(DayMonday, kSettingText, "Monday", 125) \
  X(DaySaturday, kSettingText, "Saturday", 130) \
  X(DaySunday, kSettingText, "Sunday", 124) \
  X(DayThursday, kSettingText, "Thursday", 128) \
  X(DayTuesday, kSettingText, "Tuesday", 126) \
  X(DayWednesday, kSettingText, "Wednesday", 127) \
  X(DaysFontBold, kSettingNumber, 700, 0) \
  X(DaysFontColour, kSettingNumber, 0, 0) \
  X(DaysFontItal, kSettingFlag, 0, 0) \
  X(DaysFontName, kSettingText, "ARIAL", 0) \
  X(DaysFontSize, kSettingNumber, 10, 0) \
  X(DaysName, kSettingText, "General", 0) \
  X(DaysShow, kSettingFlag, 1, 0) \
  X(FileMenuRange, kSettingNumber, 10, 0) \
  X(Gutter, kSettingNumber, 2, 0) \
  X(HeadBackColour, kSettingNumber, 0xE0E0E0, 0) \
  X(HeadExteriorPadding, kSettingNumber, 15, 0) \
  X(HeadFontBold, kSettingNumber, 700, 0) \
  X(HeadFontColour, kSettingNumber, 0, 0) \
  X(HeadFontItal, kSettingFlag, 0, 0) \
  X(HeadFontName, kSettingText, "ARIAL", 0) \
  X(HeadFontSize, kSettingNumber, 40, 0) \
  X(HeadFrameColour, kSettingNumber, 0, 0) \
  X(HeadInteriorPadding, kSettingNumber, 15, 0) \
  X(HeadPlacement, kSettingNumber, 1, 0) \
  X(HeadPrevNext, kSettingFlag, 1, 0) \
  X(HeadShadow, kSettingFlag, 1, 0) \
  X(HeadShowYear, kSettingFlag, 0, 0) \
  X(ImageCompression, kSettingNumber | kSettingRanged, 6, 107) \
  X(ImageFileOpenIndex, kSettingNumber, 0, 0) \
  X(InkJet, kSettingFlag, 0, 0) \
  X(LiveButtons, kSettingFlag, 1, 0) \
  X(LogoDelay, kSettingNumber, 8000, 0) \
  X(MaximizePaint, kSettingFlag, 1, 104) \
  X(MonthApril, kSettingText, "April", 115) \
  X(MonthAugust, kSettingText, "August", 119) \
  X(MonthDecember, kSettingText, "December", 123) \
  X(MonthFebruary, kSettingText, "February", 113) \
  X(MonthJanuary, kSettingText, "January", 112) \
  X(MonthJune, kSettingText, "June", 117) \
  X(MonthJuly, kSettingText, "July", 118) \
  X(MonthMarch, kSettingText, "March", 114) \
  X(MonthMay, kSettingText, "May", 116) \
  X(MonthNovember, kSettingText, "November", 122) \
  X(MonthOctober, kSettingText, "October", 121) \
  X(MonthSeptember, kSettingText, "September", 120) \
  X(OpenPath, kSettingText, "", 0) \
  X(PageBackgroundColour, kSettingNumber, 0xFFFFFF, 0) \
  X(PageMargin, kSettingNumber, 2, 0) \
  X(PatchLevel, kSettingNumber | kSettingWriteOnly, 35, 0) \
  X(PaintbrushName, kSettingText, "MSPAINT.EXE", 0) \
  X(PaintbrushPath, kSettingText, "", 0) \
  X(PictureDropShadow, kSettingFlag, 1, 0) \
  X(PictureExteriorPadding, kSettingNumber, 5, 0) \
  X(PictureFrameColour, kSettingNumber, 0, 0) \
  X(PicturePlacement, kSettingNumber, 1, 0) \
  X(PictureShadowOffset, kSettingNumber, 5, 0) \
  X(PictureShadowSoftness, kSettingNumber, 5, 0) \
  X(PictureShowFrame, kSettingFlag, 1, 0) \
  X(PictureShowPicture, kSettingFlag, 1, 0) \
  X(SearchForPaintbrush, kSettingFlag, 1, 106) \
  X(ShowDriverMessage, kSettingFlag, 1, 0) \
  X(ShowFileOpenPreview, kSettingFlag, 1, 0) \
  X(ShowStartupWindow, kSettingFlag, 1, 105) \
  X(StartMaximized, kSettingFlag, 0, 0) \
  X(StartMonday, kSettingFlag, 0, 133) \
  X(StickyWindowBottom, kSettingNumber, 0xFFFFFFFFu, 0) \
  X(StickyWindowLeft, kSettingNumber, 0xFFFFFFFFu, 0) \
  X(StickyWindowRight, kSettingNumber, 0xFFFFFFFFu, 0) \
  X(StickyWindowTop, kSettingNumber, 0xFFFFFFFFu, 0) \
  X(TagFontItal, kSettingFlag, 0, 0) \
  X(TagTitleColour, kSettingNumber, 0, 0) \
  X(ThemeCurrent, kSettingText, "THEME_Standard.dll", 0) \
  X(UseAD, kSettingFlag, 0, 109) \
  X(VersionNumber, kSettingNumber | kSettingWriteOnly, 64, 0) \
  X(WarnPaletteColour, kSettingNumber, 1, 111) \
  X(WarnShowManual, kSettingFlag, 1, 108) \
  X(YagBackColour, kSettingNumber, 0xE0E0E0, 0) \
  X(YagColour, kSettingNumber, 0, 0) \
  X(YagExteriorPadding, kSettingNumber, 5, 0) \
  X(YagFontBold, kSettingNumber, 400, 0) \
  X(YagFontName, kSettingText, "ARIAL", 0) \
  X(YagFrameColour, kSettingNumber, 0, 0) \
  X(YagGutter, kSettingNumber, 2, 0) \
  X(YagInteriorPadding, kSettingNumber, 5, 0) \
  X(YagPageColour, kSettingNumber, 0xFFFFFF, 0) \
  X(YagPageMargin, kSettingNumber, 5, 0) \
  X(YagRound, kSettingNumber, 0, 0) \
  X(YagShadow, kSettingFlag, 1, 0) \
  X(YagShadowOffset, kSettingNumber, 10, 0) \
  X(YagTitleFontBold, kSettingNumber, 400, 0) \
  X(YagTitleFontItal, kSettingFlag, 0, 0) \
  X(YagTitleFontName, kSettingText, "ARIAL", 0) \
  X(YagTitleFontSize, kSettingNumber, 25, 0)

template <uint32_t Type>
using SettingStorage = std::conditional_t<(Type & kSettingText) != 0, char[kSettingTextSize], uint32_t>;

struct SettingsValues {
#define QUERNAL_SETTING_MEMBER(key, type, value, control) SettingStorage<type> key = value;
  QUERNAL_SETTINGS(QUERNAL_SETTING_MEMBER)
#undef QUERNAL_SETTING_MEMBER
};

// The bound variables. They hold the compiled-in defaults until a settings
// file is read.
extern SettingsValues Settings;

extern const SettingsRow SettingsTable[];
extern const int SettingsTableRows;

// Puts every variable back to its compiled-in default.
void ResetSettings();
// The row with exactly this key, or nullptr.
const SettingsRow* FindSettingsRow(const char* key);
