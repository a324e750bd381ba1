// The calendar's two records. Each struct is byte for byte the record of the
// calendar file, on every target: packed, little-endian. Each record is one
// list of its fields below; the struct, the offset checks, the binding of the
// design defaults to the settings, the command line's field table and the
// text terminators all come from that list.
#pragma once
#include <cstddef>
#include <cstdint>

#include "base/global_block.h"

constexpr uint32_t kHeaderMagic = 0x4B575254;  // "TRWK"
constexpr uint32_t kPageMagic = 0x45474150;    // "PAGE"
constexpr uint32_t kHeaderSize = 1343;
constexpr uint32_t kMonthPageSize = 5733;
constexpr uint32_t kDocumentSize = kHeaderSize + 12 * kMonthPageSize;  // 70,139
constexpr uint32_t kRecordVersion = 64;
constexpr int kFontNameSize = 261;
constexpr int kCaptionSize = 2050;

constexpr int kYearPageIndex = 12;
constexpr int kCoverPageIndex = 13;

// What a field holds, which says how it is shown and how it may be set.
enum class FieldKind : uint8_t {
  Number,      // a percentage, a size, a year or a page
  Flag,        // 0 or 1
  Colour,      // a COLORREF 0x00BBGGRR
  Weight,      // a font weight, 400 or 700
  Placement,   // a placement code
  Text,        // a zero-terminated text filling the field
  Picture,     // a block holding a Dib
  Events,      // a block holding an event list
  Magic,       // the four letters that open the record
  Structural,  // how the file is put together: record sizes, the version, picture sizes
  Kept,        // the program's own state: changed and edited marks, the sheet's last tab
  Reserved,    // unused bytes, kept zero
};

// How a field meets the design defaults of new calendars: `Own` fields are
// the calendar's own; `Setting` fields are copied from the setting of the
// same name into a new record and stored back into it from an edited one;
// `StoredAs(key)` fields are copied from their own setting but stored into
// `key`'s.
struct DefaultBinding {
  bool fromSetting;
  const char* storedAs;  // null: the setting of the field's own name
};
namespace field_default {
constexpr DefaultBinding Own{false, nullptr};
constexpr DefaultBinding Setting{true, nullptr};
constexpr DefaultBinding StoredAs(const char* key) { return {true, key}; }
}  // namespace field_default

// X(name, C type, array length or 0, offset, FieldKind, DefaultBinding)
#define QUERNAL_CALENDAR_HEADER_FIELDS(X) \
  X(Magic, uint32_t, 0, 0, Magic, Own) \
  X(RecordSize, uint32_t, 0, 4, Structural, Own) /* in a file: 1,343 plus the compressed cover picture that follows */ \
  X(Version, uint32_t, 0, 8, Structural, Own) \
  X(Reserved0, uint32_t, 0, 12, Reserved, Own) \
  X(Year, int32_t, 0, 16, Number, Own) \
  X(CurrentPage, int32_t, 0, 20, Number, Own) /* PageIndex 0..13 of the page shown */ \
  X(UseCurrentYear, uint16_t, 0, 24, Flag, Own) \
  X(ShowYearInPages, uint16_t, 0, 26, Flag, Own) \
  X(Changed, uint16_t, 0, 28, Kept, Own) \
  X(CoverPicture, BlockHandle, 0, 30, Picture, Own) \
  X(YagFontName, char, kFontNameSize, 34, Text, Setting) \
  X(YagColour, uint32_t, 0, 295, Colour, Setting) \
  X(TagFontItal, int32_t, 0, 299, Flag, Setting) \
  X(YagFontBold, int32_t, 0, 303, Weight, Setting) \
  X(YagTitleFontName, char, kFontNameSize, 307, Text, Setting) \
  X(TagTitleColour, uint32_t, 0, 568, Colour, Setting) \
  X(YagTitleFontSize, int32_t, 0, 572, Number, Setting) \
  X(YagTitleFontItal, int32_t, 0, 576, Flag, Setting) \
  X(YagTitleFontBold, int32_t, 0, 580, Weight, Setting) \
  X(YagGutter, int32_t, 0, 584, Number, Setting) \
  X(YagPageMargin, int32_t, 0, 588, Number, Setting) \
  X(YagRound, int32_t, 0, 592, Number, Setting) \
  X(YagShadow, int32_t, 0, 596, Flag, Setting) \
  X(YagShadowOffset, int32_t, 0, 600, Number, Setting) \
  X(YagInteriorPadding, int32_t, 0, 604, Number, Setting) \
  X(YagExteriorPadding, int32_t, 0, 608, Number, Setting) \
  X(YagFrameColour, uint32_t, 0, 612, Colour, Setting) \
  X(YagBackColour, uint32_t, 0, 616, Colour, Setting) \
  X(YagPageColour, uint32_t, 0, 620, Colour, Setting) \
  X(CoverFontName, char, kFontNameSize, 624, Text, Setting) \
  X(CoverFontColour, uint32_t, 0, 885, Colour, Setting) \
  X(CoverFontSize, int32_t, 0, 889, Number, Setting) \
  X(CoverFontItal, int32_t, 0, 893, Flag, Setting) \
  X(CoverFontBold, int32_t, 0, 897, Weight, Setting) \
  X(CoverFontPlacement, int32_t, 0, 901, Placement, Setting) \
  X(CoverPictureShowFrame, int32_t, 0, 905, Flag, Setting) \
  X(CoverPictureDropShadow, int32_t, 0, 909, Flag, Setting) \
  X(CoverPictureShadowOffset, int32_t, 0, 913, Number, Setting) \
  X(CoverPictureExteriorPadding, int32_t, 0, 917, Number, Setting) \
  X(CoverPictureShowPicture, int32_t, 0, 921, Flag, Setting) \
  X(CoverPictureGutter, int32_t, 0, 925, Number, Setting) \
  X(CoverPicturePlacement, int32_t, 0, 929, Placement, Setting) \
  X(CoverPictureBleed, int32_t, 0, 933, Flag, Setting) \
  X(CoverBackgroundColour, uint32_t, 0, 937, Colour, Setting) \
  X(CoverPictureFrameColour, uint32_t, 0, 941, Colour, Setting) \
  X(CoverTitle, char, kFontNameSize, 945, Text, Own) \
  /* The year sheet's state lives in what was reserved space. */ \
  X(LastYearPropertyPage, int32_t, 0, 1206, Kept, Own) \
  X(YearEdited, int32_t, 0, 1210, Kept, Own) \
  X(Reserved1, uint8_t, 0, 1214, Reserved, Own) \
  X(CoverPictureDataSize, uint32_t, 0, 1215, Structural, Own) /* uncompressed cover picture size; meaningful only in a file */ \
  X(Reserved2, uint8_t, 124, 1219, Reserved, Own)

// The page's picture frame colour is stored into the PicturePlacement
// default and the PictureFrameColour default is never updated from a page:
// a behaviour users of earlier versions rely on, kept on purpose.
#define QUERNAL_MONTH_PAGE_FIELDS(X) \
  X(Magic, uint32_t, 0, 0, Magic, Own) \
  X(RecordSize, uint32_t, 0, 4, Structural, Own) /* in a file: 5,733 plus the compressed picture that follows */ \
  X(Reserved0, uint32_t, 0, 8, Reserved, Own) \
  X(DateFontName, char, kFontNameSize, 12, Text, Setting) \
  X(DateFontColour, uint32_t, 0, 273, Colour, Setting) \
  X(DateFontSize, int32_t, 0, 277, Number, Setting) \
  X(DateFontItal, int32_t, 0, 281, Flag, Setting) \
  X(DateFontBold, int32_t, 0, 285, Weight, Setting) \
  X(DateFontPlacement, int32_t, 0, 289, Placement, Setting) \
  X(DateFrameColour, uint32_t, 0, 293, Colour, Setting) \
  X(DateBackColour, uint32_t, 0, 297, Colour, Setting) \
  X(DateInteriorPadding, int32_t, 0, 301, Number, Setting) \
  X(DateShadow, int32_t, 0, 305, Flag, Setting) \
  X(DateRound, int32_t, 0, 309, Number, Setting) \
  X(DateShadowOffset, int32_t, 0, 313, Number, Setting) \
  X(HeadFontName, char, kFontNameSize, 317, Text, Setting) \
  X(HeadFontColour, uint32_t, 0, 578, Colour, Setting) \
  X(HeadFontSize, int32_t, 0, 582, Number, Setting) \
  X(HeadFontItal, int32_t, 0, 586, Flag, Setting) \
  X(HeadFontBold, int32_t, 0, 590, Weight, Setting) \
  X(HeadShadow, int32_t, 0, 594, Flag, Setting) \
  X(HeadPrevNext, int32_t, 0, 598, Flag, Setting) \
  X(HeadFrameColour, uint32_t, 0, 602, Colour, Setting) \
  X(HeadBackColour, uint32_t, 0, 606, Colour, Setting) \
  X(HeadPlacement, int32_t, 0, 610, Placement, Setting) \
  X(HeadInteriorPadding, int32_t, 0, 614, Number, Setting) \
  X(HeadExteriorPadding, int32_t, 0, 618, Number, Setting) \
  X(Reserved1, uint32_t, 0, 622, Reserved, Own) \
  X(DaysShow, int32_t, 0, 626, Flag, Setting) \
  X(DaysName, char, kFontNameSize, 630, Text, Setting) /* the event list this page shows */ \
  X(DaysFontName, char, kFontNameSize, 891, Text, Setting) \
  X(DaysFontColour, uint32_t, 0, 1152, Colour, Setting) \
  X(DaysFontSize, int32_t, 0, 1156, Number, Setting) \
  X(DaysFontItal, int32_t, 0, 1160, Flag, Setting) \
  X(DaysFontBold, int32_t, 0, 1164, Weight, Setting) \
  X(PicturePlacement, int32_t, 0, 1168, Placement, Setting) \
  X(PictureFrameColour, uint32_t, 0, 1172, Colour, StoredAs("PicturePlacement")) \
  X(PictureShowPicture, int32_t, 0, 1176, Flag, Setting) \
  X(PictureShowFrame, int32_t, 0, 1180, Flag, Setting) \
  X(PictureDropShadow, int32_t, 0, 1184, Flag, Setting) \
  X(PictureShadowOffset, int32_t, 0, 1188, Number, Setting) \
  X(PictureExteriorPadding, int32_t, 0, 1192, Number, Setting) \
  X(CapFontName, char, kFontNameSize, 1196, Text, Setting) \
  X(CapFontColour, uint32_t, 0, 1457, Colour, Setting) \
  X(CapFontSize, int32_t, 0, 1461, Number, Setting) \
  X(CapFontItal, int32_t, 0, 1465, Flag, Setting) \
  X(CapFontBold, int32_t, 0, 1469, Weight, Setting) \
  X(CapPlacement, int32_t, 0, 1473, Placement, Setting) \
  X(PageBackgroundColour, uint32_t, 0, 1477, Colour, Setting) \
  X(PageMargin, int32_t, 0, 1481, Number, Setting) \
  X(Gutter, int32_t, 0, 1485, Number, Setting) \
  X(Picture, BlockHandle, 0, 1489, Picture, Own) \
  X(Events, BlockHandle, 0, 1493, Events, Own) \
  X(LastPropertyPage, int32_t, 0, 1497, Kept, Own) /* page of the page property sheet last applied */ \
  X(LeftCaption, char, kCaptionSize, 1501, Text, Own) \
  X(RightCaption, char, kCaptionSize, 3551, Text, Own) \
  X(Edited, int32_t, 0, 5601, Kept, Own) \
  X(PictureDataSize, uint32_t, 0, 5605, Structural, Own) /* uncompressed picture size; meaningful only in a file */ \
  X(PictureShadowSoftness, int32_t, 0, 5609, Number, Setting) \
  X(Reserved2, uint8_t, 120, 5613, Reserved, Own)

template <typename T, size_t N>
struct FieldStorage {
  using type = T[N];
};
template <typename T>
struct FieldStorage<T, 0> {
  using type = T;
};

#define QUERNAL_MEMBER(name, T, length, offset, kind, binding) typename FieldStorage<T, length>::type name;
#pragma pack(push, 1)
struct CalendarHeader {
  QUERNAL_CALENDAR_HEADER_FIELDS(QUERNAL_MEMBER)
};
struct MonthPage {
  QUERNAL_MONTH_PAGE_FIELDS(QUERNAL_MEMBER)
};
#pragma pack(pop)
#undef QUERNAL_MEMBER

static_assert(sizeof(CalendarHeader) == kHeaderSize, "CalendarHeader is 1,343 bytes");
static_assert(sizeof(MonthPage) == kMonthPageSize, "MonthPage is 5,733 bytes");
#define QUERNAL_AT(record, name, offset) static_assert(offsetof(record, name) == (offset), #record "." #name);
#define QUERNAL_HEADER_AT(name, type, length, offset, kind, binding) QUERNAL_AT(CalendarHeader, name, offset)
#define QUERNAL_PAGE_AT(name, type, length, offset, kind, binding) QUERNAL_AT(MonthPage, name, offset)
QUERNAL_CALENDAR_HEADER_FIELDS(QUERNAL_HEADER_AT)
QUERNAL_MONTH_PAGE_FIELDS(QUERNAL_PAGE_AT)
#undef QUERNAL_PAGE_AT
#undef QUERNAL_HEADER_AT
#undef QUERNAL_AT
