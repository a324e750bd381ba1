#include "cli/record_fields.h"

#include <cstring>

namespace {

#define FIELD(Record, Name, Kind) Field{#Name, offsetof(Record, Name), sizeof(Record::Name), Kind}

// Every field of the records in file order; the reserved areas are left out.
const Field kHeaderFields[] = {
    FIELD(CalendarHeader, Magic, kMagic),
    FIELD(CalendarHeader, RecordSize, kU32),
    FIELD(CalendarHeader, Version, kU32),
    FIELD(CalendarHeader, Year, kI32),
    FIELD(CalendarHeader, CurrentPage, kI32),
    FIELD(CalendarHeader, UseCurrentYear, kU16),
    FIELD(CalendarHeader, ShowYearInPages, kU16),
    FIELD(CalendarHeader, Changed, kU16),
    FIELD(CalendarHeader, CoverPicture, kPicture),
    FIELD(CalendarHeader, YagFontName, kText),
    FIELD(CalendarHeader, YagColour, kU32),
    FIELD(CalendarHeader, TagFontItal, kI32),
    FIELD(CalendarHeader, YagFontBold, kI32),
    FIELD(CalendarHeader, YagTitleFontName, kText),
    FIELD(CalendarHeader, TagTitleColour, kU32),
    FIELD(CalendarHeader, YagTitleFontSize, kI32),
    FIELD(CalendarHeader, YagTitleFontItal, kI32),
    FIELD(CalendarHeader, YagTitleFontBold, kI32),
    FIELD(CalendarHeader, YagGutter, kI32),
    FIELD(CalendarHeader, YagPageMargin, kI32),
    FIELD(CalendarHeader, YagRound, kI32),
    FIELD(CalendarHeader, YagShadow, kI32),
    FIELD(CalendarHeader, YagShadowOffset, kI32),
    FIELD(CalendarHeader, YagInteriorPadding, kI32),
    FIELD(CalendarHeader, YagExteriorPadding, kI32),
    FIELD(CalendarHeader, YagFrameColour, kU32),
    FIELD(CalendarHeader, YagBackColour, kU32),
    FIELD(CalendarHeader, YagPageColour, kU32),
    FIELD(CalendarHeader, CoverFontName, kText),
    FIELD(CalendarHeader, CoverFontColour, kU32),
    FIELD(CalendarHeader, CoverFontSize, kI32),
    FIELD(CalendarHeader, CoverFontItal, kI32),
    FIELD(CalendarHeader, CoverFontBold, kI32),
    FIELD(CalendarHeader, CoverFontPlacement, kI32),
    FIELD(CalendarHeader, CoverPictureShowFrame, kI32),
    FIELD(CalendarHeader, CoverPictureDropShadow, kI32),
    FIELD(CalendarHeader, CoverPictureShadowOffset, kI32),
    FIELD(CalendarHeader, CoverPictureExteriorPadding, kI32),
    FIELD(CalendarHeader, CoverPictureShowPicture, kI32),
    FIELD(CalendarHeader, CoverPictureGutter, kI32),
    FIELD(CalendarHeader, CoverPicturePlacement, kI32),
    FIELD(CalendarHeader, CoverPictureBleed, kI32),
    FIELD(CalendarHeader, CoverBackgroundColour, kU32),
    FIELD(CalendarHeader, CoverPictureFrameColour, kU32),
    FIELD(CalendarHeader, CoverTitle, kText),
    FIELD(CalendarHeader, LastYearPropertyPage, kI32),
    FIELD(CalendarHeader, YearEdited, kI32),
    FIELD(CalendarHeader, CoverPictureDataSize, kU32),
};

const Field kMonthPageFields[] = {
    FIELD(MonthPage, Magic, kMagic),
    FIELD(MonthPage, RecordSize, kU32),
    FIELD(MonthPage, DateFontName, kText),
    FIELD(MonthPage, DateFontColour, kU32),
    FIELD(MonthPage, DateFontSize, kI32),
    FIELD(MonthPage, DateFontItal, kI32),
    FIELD(MonthPage, DateFontBold, kI32),
    FIELD(MonthPage, DateFontPlacement, kI32),
    FIELD(MonthPage, DateFrameColour, kU32),
    FIELD(MonthPage, DateBackColour, kU32),
    FIELD(MonthPage, DateInteriorPadding, kI32),
    FIELD(MonthPage, DateShadow, kI32),
    FIELD(MonthPage, DateRound, kI32),
    FIELD(MonthPage, DateShadowOffset, kI32),
    FIELD(MonthPage, HeadFontName, kText),
    FIELD(MonthPage, HeadFontColour, kU32),
    FIELD(MonthPage, HeadFontSize, kI32),
    FIELD(MonthPage, HeadFontItal, kI32),
    FIELD(MonthPage, HeadFontBold, kI32),
    FIELD(MonthPage, HeadShadow, kI32),
    FIELD(MonthPage, HeadPrevNext, kI32),
    FIELD(MonthPage, HeadFrameColour, kU32),
    FIELD(MonthPage, HeadBackColour, kU32),
    FIELD(MonthPage, HeadPlacement, kI32),
    FIELD(MonthPage, HeadInteriorPadding, kI32),
    FIELD(MonthPage, HeadExteriorPadding, kI32),
    FIELD(MonthPage, DaysShow, kI32),
    FIELD(MonthPage, DaysName, kText),
    FIELD(MonthPage, DaysFontName, kText),
    FIELD(MonthPage, DaysFontColour, kU32),
    FIELD(MonthPage, DaysFontSize, kI32),
    FIELD(MonthPage, DaysFontItal, kI32),
    FIELD(MonthPage, DaysFontBold, kI32),
    FIELD(MonthPage, PicturePlacement, kI32),
    FIELD(MonthPage, PictureFrameColour, kU32),
    FIELD(MonthPage, PictureShowPicture, kI32),
    FIELD(MonthPage, PictureShowFrame, kI32),
    FIELD(MonthPage, PictureDropShadow, kI32),
    FIELD(MonthPage, PictureShadowOffset, kI32),
    FIELD(MonthPage, PictureExteriorPadding, kI32),
    FIELD(MonthPage, CapFontName, kText),
    FIELD(MonthPage, CapFontColour, kU32),
    FIELD(MonthPage, CapFontSize, kI32),
    FIELD(MonthPage, CapFontItal, kI32),
    FIELD(MonthPage, CapFontBold, kI32),
    FIELD(MonthPage, CapPlacement, kI32),
    FIELD(MonthPage, PageBackgroundColour, kU32),
    FIELD(MonthPage, PageMargin, kI32),
    FIELD(MonthPage, Gutter, kI32),
    FIELD(MonthPage, Picture, kPicture),
    FIELD(MonthPage, Events, kEvents),
    FIELD(MonthPage, LastPropertyPage, kI32),
    FIELD(MonthPage, LeftCaption, kText),
    FIELD(MonthPage, RightCaption, kText),
    FIELD(MonthPage, Edited, kI32),
    FIELD(MonthPage, PictureDataSize, kU32),
    FIELD(MonthPage, PictureShadowSoftness, kI32),
};
#undef FIELD

}  // namespace

FieldList HeaderFields() { return {kHeaderFields, sizeof kHeaderFields / sizeof kHeaderFields[0]}; }
FieldList MonthPageFields() { return {kMonthPageFields, sizeof kMonthPageFields / sizeof kMonthPageFields[0]}; }

const Field* FindField(const FieldList& list, const char* name) {
  for (size_t i = 0; i < list.count; ++i)
    if (std::strcmp(list.fields[i].name, name) == 0) return &list.fields[i];
  return nullptr;
}
