// The calendar's two records. Each struct is byte for byte the record of the
// calendar file, on every target: packed, little-endian, with every offset
// checked below.
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

#pragma pack(push, 1)
struct CalendarHeader {
  uint32_t Magic;
  uint32_t RecordSize;  // in a file: 1,343 plus the compressed cover picture that follows
  uint32_t Version;
  uint32_t Reserved0;
  int32_t Year;
  int32_t CurrentPage;  // PageIndex 0..13 of the page shown
  uint16_t UseCurrentYear;
  uint16_t ShowYearInPages;
  uint16_t Changed;
  BlockHandle CoverPicture;
  char YagFontName[kFontNameSize];
  uint32_t YagColour;
  int32_t TagFontItal;
  int32_t YagFontBold;
  char YagTitleFontName[kFontNameSize];
  uint32_t TagTitleColour;
  int32_t YagTitleFontSize;
  int32_t YagTitleFontItal;
  int32_t YagTitleFontBold;
  int32_t YagGutter;
  int32_t YagPageMargin;
  int32_t YagRound;
  int32_t YagShadow;
  int32_t YagShadowOffset;
  int32_t YagInteriorPadding;
  int32_t YagExteriorPadding;
  uint32_t YagFrameColour;
  uint32_t YagBackColour;
  uint32_t YagPageColour;
  char CoverFontName[kFontNameSize];
  uint32_t CoverFontColour;
  int32_t CoverFontSize;
  int32_t CoverFontItal;
  int32_t CoverFontBold;
  int32_t CoverFontPlacement;
  int32_t CoverPictureShowFrame;
  int32_t CoverPictureDropShadow;
  int32_t CoverPictureShadowOffset;
  int32_t CoverPictureExteriorPadding;
  int32_t CoverPictureShowPicture;
  int32_t CoverPictureGutter;
  int32_t CoverPicturePlacement;
  int32_t CoverPictureBleed;
  uint32_t CoverBackgroundColour;
  uint32_t CoverPictureFrameColour;
  char CoverTitle[kFontNameSize];
  // The year sheet's state lives in what was reserved space.
  int32_t LastYearPropertyPage;
  int32_t YearEdited;
  uint8_t Reserved1;
  uint32_t CoverPictureDataSize;  // uncompressed cover picture size; meaningful only in a file
  uint8_t Reserved2[124];
};

struct MonthPage {
  uint32_t Magic;
  uint32_t RecordSize;  // in a file: 5,733 plus the compressed picture that follows
  uint32_t Reserved0;
  char DateFontName[kFontNameSize];
  uint32_t DateFontColour;
  int32_t DateFontSize;
  int32_t DateFontItal;
  int32_t DateFontBold;
  int32_t DateFontPlacement;
  uint32_t DateFrameColour;
  uint32_t DateBackColour;
  int32_t DateInteriorPadding;
  int32_t DateShadow;
  int32_t DateRound;
  int32_t DateShadowOffset;
  char HeadFontName[kFontNameSize];
  uint32_t HeadFontColour;
  int32_t HeadFontSize;
  int32_t HeadFontItal;
  int32_t HeadFontBold;
  int32_t HeadShadow;
  int32_t HeadPrevNext;
  uint32_t HeadFrameColour;
  uint32_t HeadBackColour;
  int32_t HeadPlacement;
  int32_t HeadInteriorPadding;
  int32_t HeadExteriorPadding;
  uint32_t Reserved1;
  int32_t DaysShow;
  char DaysName[kFontNameSize];  // the event list this page shows
  char DaysFontName[kFontNameSize];
  uint32_t DaysFontColour;
  int32_t DaysFontSize;
  int32_t DaysFontItal;
  int32_t DaysFontBold;
  int32_t PicturePlacement;
  uint32_t PictureFrameColour;
  int32_t PictureShowPicture;
  int32_t PictureShowFrame;
  int32_t PictureDropShadow;
  int32_t PictureShadowOffset;
  int32_t PictureExteriorPadding;
  char CapFontName[kFontNameSize];
  uint32_t CapFontColour;
  int32_t CapFontSize;
  int32_t CapFontItal;
  int32_t CapFontBold;
  int32_t CapPlacement;
  uint32_t PageBackgroundColour;
  int32_t PageMargin;
  int32_t Gutter;
  BlockHandle Picture;
  BlockHandle Events;
  int32_t LastPropertyPage;  // page of the page property sheet last applied
  char LeftCaption[kCaptionSize];
  char RightCaption[kCaptionSize];
  int32_t Edited;
  uint32_t PictureDataSize;  // uncompressed picture size; meaningful only in a file
  int32_t PictureShadowSoftness;
  uint8_t Reserved2[120];
};
#pragma pack(pop)

#define QUERNAL_AT(record, field, offset) static_assert(offsetof(record, field) == (offset), #record "." #field)
static_assert(sizeof(CalendarHeader) == kHeaderSize, "CalendarHeader is 1,343 bytes");
QUERNAL_AT(CalendarHeader, RecordSize, 4);
QUERNAL_AT(CalendarHeader, Version, 8);
QUERNAL_AT(CalendarHeader, Year, 16);
QUERNAL_AT(CalendarHeader, CurrentPage, 20);
QUERNAL_AT(CalendarHeader, UseCurrentYear, 24);
QUERNAL_AT(CalendarHeader, ShowYearInPages, 26);
QUERNAL_AT(CalendarHeader, Changed, 28);
QUERNAL_AT(CalendarHeader, CoverPicture, 30);
QUERNAL_AT(CalendarHeader, YagFontName, 34);
QUERNAL_AT(CalendarHeader, YagColour, 295);
QUERNAL_AT(CalendarHeader, TagFontItal, 299);
QUERNAL_AT(CalendarHeader, YagFontBold, 303);
QUERNAL_AT(CalendarHeader, YagTitleFontName, 307);
QUERNAL_AT(CalendarHeader, TagTitleColour, 568);
QUERNAL_AT(CalendarHeader, YagTitleFontSize, 572);
QUERNAL_AT(CalendarHeader, YagTitleFontItal, 576);
QUERNAL_AT(CalendarHeader, YagTitleFontBold, 580);
QUERNAL_AT(CalendarHeader, YagGutter, 584);
QUERNAL_AT(CalendarHeader, YagPageMargin, 588);
QUERNAL_AT(CalendarHeader, YagRound, 592);
QUERNAL_AT(CalendarHeader, YagShadow, 596);
QUERNAL_AT(CalendarHeader, YagShadowOffset, 600);
QUERNAL_AT(CalendarHeader, YagInteriorPadding, 604);
QUERNAL_AT(CalendarHeader, YagExteriorPadding, 608);
QUERNAL_AT(CalendarHeader, YagFrameColour, 612);
QUERNAL_AT(CalendarHeader, YagBackColour, 616);
QUERNAL_AT(CalendarHeader, YagPageColour, 620);
QUERNAL_AT(CalendarHeader, CoverFontName, 624);
QUERNAL_AT(CalendarHeader, CoverFontColour, 885);
QUERNAL_AT(CalendarHeader, CoverFontSize, 889);
QUERNAL_AT(CalendarHeader, CoverFontItal, 893);
QUERNAL_AT(CalendarHeader, CoverFontBold, 897);
QUERNAL_AT(CalendarHeader, CoverFontPlacement, 901);
QUERNAL_AT(CalendarHeader, CoverPictureShowFrame, 905);
QUERNAL_AT(CalendarHeader, CoverPictureDropShadow, 909);
QUERNAL_AT(CalendarHeader, CoverPictureShadowOffset, 913);
QUERNAL_AT(CalendarHeader, CoverPictureExteriorPadding, 917);
QUERNAL_AT(CalendarHeader, CoverPictureShowPicture, 921);
QUERNAL_AT(CalendarHeader, CoverPictureGutter, 925);
QUERNAL_AT(CalendarHeader, CoverPicturePlacement, 929);
QUERNAL_AT(CalendarHeader, CoverPictureBleed, 933);
QUERNAL_AT(CalendarHeader, CoverBackgroundColour, 937);
QUERNAL_AT(CalendarHeader, CoverPictureFrameColour, 941);
QUERNAL_AT(CalendarHeader, CoverTitle, 945);
QUERNAL_AT(CalendarHeader, LastYearPropertyPage, 1206);
QUERNAL_AT(CalendarHeader, YearEdited, 1210);
QUERNAL_AT(CalendarHeader, CoverPictureDataSize, 1215);
QUERNAL_AT(CalendarHeader, Reserved2, 1219);

static_assert(sizeof(MonthPage) == kMonthPageSize, "MonthPage is 5,733 bytes");
QUERNAL_AT(MonthPage, RecordSize, 4);
QUERNAL_AT(MonthPage, DateFontName, 12);
QUERNAL_AT(MonthPage, DateFontColour, 273);
QUERNAL_AT(MonthPage, DateFontSize, 277);
QUERNAL_AT(MonthPage, DateFontItal, 281);
QUERNAL_AT(MonthPage, DateFontBold, 285);
QUERNAL_AT(MonthPage, DateFontPlacement, 289);
QUERNAL_AT(MonthPage, DateFrameColour, 293);
QUERNAL_AT(MonthPage, DateBackColour, 297);
QUERNAL_AT(MonthPage, DateInteriorPadding, 301);
QUERNAL_AT(MonthPage, DateShadow, 305);
QUERNAL_AT(MonthPage, DateRound, 309);
QUERNAL_AT(MonthPage, DateShadowOffset, 313);
QUERNAL_AT(MonthPage, HeadFontName, 317);
QUERNAL_AT(MonthPage, HeadFontColour, 578);
QUERNAL_AT(MonthPage, HeadFontSize, 582);
QUERNAL_AT(MonthPage, HeadFontItal, 586);
QUERNAL_AT(MonthPage, HeadFontBold, 590);
QUERNAL_AT(MonthPage, HeadShadow, 594);
QUERNAL_AT(MonthPage, HeadPrevNext, 598);
QUERNAL_AT(MonthPage, HeadFrameColour, 602);
QUERNAL_AT(MonthPage, HeadBackColour, 606);
QUERNAL_AT(MonthPage, HeadPlacement, 610);
QUERNAL_AT(MonthPage, HeadInteriorPadding, 614);
QUERNAL_AT(MonthPage, HeadExteriorPadding, 618);
QUERNAL_AT(MonthPage, Reserved1, 622);
QUERNAL_AT(MonthPage, DaysShow, 626);
QUERNAL_AT(MonthPage, DaysName, 630);
QUERNAL_AT(MonthPage, DaysFontName, 891);
QUERNAL_AT(MonthPage, DaysFontColour, 1152);
QUERNAL_AT(MonthPage, DaysFontSize, 1156);
QUERNAL_AT(MonthPage, DaysFontItal, 1160);
QUERNAL_AT(MonthPage, DaysFontBold, 1164);
QUERNAL_AT(MonthPage, PicturePlacement, 1168);
QUERNAL_AT(MonthPage, PictureFrameColour, 1172);
QUERNAL_AT(MonthPage, PictureShowPicture, 1176);
QUERNAL_AT(MonthPage, PictureShowFrame, 1180);
QUERNAL_AT(MonthPage, PictureDropShadow, 1184);
QUERNAL_AT(MonthPage, PictureShadowOffset, 1188);
QUERNAL_AT(MonthPage, PictureExteriorPadding, 1192);
QUERNAL_AT(MonthPage, CapFontName, 1196);
QUERNAL_AT(MonthPage, CapFontColour, 1457);
QUERNAL_AT(MonthPage, CapFontSize, 1461);
QUERNAL_AT(MonthPage, CapFontItal, 1465);
QUERNAL_AT(MonthPage, CapFontBold, 1469);
QUERNAL_AT(MonthPage, CapPlacement, 1473);
QUERNAL_AT(MonthPage, PageBackgroundColour, 1477);
QUERNAL_AT(MonthPage, PageMargin, 1481);
QUERNAL_AT(MonthPage, Gutter, 1485);
QUERNAL_AT(MonthPage, Picture, 1489);
QUERNAL_AT(MonthPage, Events, 1493);
QUERNAL_AT(MonthPage, LastPropertyPage, 1497);
QUERNAL_AT(MonthPage, LeftCaption, 1501);
QUERNAL_AT(MonthPage, RightCaption, 3551);
QUERNAL_AT(MonthPage, Edited, 5601);
QUERNAL_AT(MonthPage, PictureDataSize, 5605);
QUERNAL_AT(MonthPage, PictureShadowSoftness, 5609);
QUERNAL_AT(MonthPage, Reserved2, 5613);
#undef QUERNAL_AT
