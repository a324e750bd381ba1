#include "editors/year_tabs.h"

#include "calendar/records.h"
#include "render/picture_box.h"
#include "res/year_sheet_ids.h"

namespace {

#define FIELD(f) QUERNAL_FIELD(CalendarHeader, f)
#define AT(f) offsetof(CalendarHeader, f)

// The two flags are only ever set on loading; the drop shadow is set or
// cleared. The year's arrows get their range when the tab opens.
const ControlBinding kYear[] = {
    {IDC_YEAR_CURRENT, ControlKind::CheckSetOnly, FIELD(UseCurrentYear)},
    {IDC_YEAR_IN_PAGES, ControlKind::CheckSetOnly, FIELD(ShowYearInPages)},
    {IDC_YEAR_NUMBER, ControlKind::Number, FIELD(Year)},
    {IDC_YAG_INTERIOR, ControlKind::Number, FIELD(YagInteriorPadding)},
    {IDC_YAG_EXTERIOR, ControlKind::Number, FIELD(YagExteriorPadding)},
    {IDC_YAG_ROUND, ControlKind::Number, FIELD(YagRound)},
    {IDC_YAG_MARGIN, ControlKind::Number, FIELD(YagPageMargin)},
    {IDC_YAG_GUTTER, ControlKind::Number, FIELD(YagGutter)},
    {IDC_YAG_SHADOW_OFFSET, ControlKind::Number, FIELD(YagShadowOffset)},
    {IDC_YAG_SHADOW, ControlKind::Check, FIELD(YagShadow)},
};
const RadioChoice kCoverPlaces[] = {{IDC_PICTURE_TOP_LEFT, 0},
                                    {IDC_PICTURE_TOP_RIGHT, 2},
                                    {IDC_PICTURE_BOTTOM_LEFT, 8},
                                    {IDC_PICTURE_BOTTOM_RIGHT, 10}};
const RadioChoice kTitlePlaces[] = {{IDC_COVER_TITLE_RIGHT, 2}, {IDC_COVER_TITLE_CENTRE, 1}};
const ControlBinding kCover[] = {
    {IDC_PICTURE_SHOW, ControlKind::CheckSetOnly, FIELD(CoverPictureShowPicture)},
    {IDC_PICTURE_SHOW_FRAME, ControlKind::CheckSetOnly, FIELD(CoverPictureShowFrame)},
    {IDC_PICTURE_SHADOW, ControlKind::CheckSetOnly, FIELD(CoverPictureDropShadow)},
    {IDC_PICTURE_TOP_LEFT, ControlKind::Radio, FIELD(CoverPicturePlacement), kCoverPlaces, 4,
     {IDC_PICTURE_CENTRE, 147}},
    {IDC_PICTURE_SHADOW_OFFSET, ControlKind::Number, FIELD(CoverPictureShadowOffset)},
    {IDC_PICTURE_EXTERIOR, ControlKind::Number, FIELD(CoverPictureExteriorPadding)},
    {IDC_PICTURE_GUTTER, ControlKind::Number, FIELD(CoverPictureGutter)},
    {IDC_COVER_TITLE_LEFT, ControlKind::Radio, FIELD(CoverFontPlacement), kTitlePlaces, 2, {IDC_COVER_TITLE_LEFT, 0}},
    {IDC_COVER_TITLE, ControlKind::Text, FIELD(CoverTitle), nullptr, 0, {0, 0}, 260},
    {IDC_COVER_BLEED, ControlKind::Check, FIELD(CoverPictureBleed)},
};

// The dates of the year at a glance have no size of their own.
const FontButtonBinding kYearFonts[] = {
    {IDC_YAG_TITLE_FONT, IDC_YAG_TITLE_SAMPLE, AT(YagTitleFontName), AT(YagTitleFontBold), AT(YagTitleFontItal),
     AT(YagTitleFontSize)},
    {IDC_YAG_DATE_FONT, IDC_YAG_DATE_SAMPLE, AT(YagFontName), AT(YagFontBold), AT(TagFontItal), kNoField, 0, 0},
};
const FontButtonBinding kCoverFonts[] = {{IDC_COVER_TITLE_FONT, IDC_COVER_TITLE_SAMPLE, AT(CoverFontName),
                                          AT(CoverFontBold), AT(CoverFontItal), AT(CoverFontSize)}};
const ColourButtonBinding kYearColours[] = {{IDC_YAG_TITLE_COLOUR, AT(TagTitleColour)}, {IDC_YAG_DATE_COLOUR, AT(YagColour)},
                                            {IDC_YAG_FRAME, AT(YagFrameColour)},        {IDC_YAG_BACKGROUND, AT(YagBackColour)},
                                            {IDC_YAG_PAGE, AT(YagPageColour)}};
const ColourButtonBinding kCoverColours[] = {{IDC_COVER_BACKGROUND, AT(CoverBackgroundColour)},
                                             {IDC_PICTURE_FRAME, AT(CoverPictureFrameColour)},
                                             {IDC_COVER_TITLE_COLOUR, AT(CoverFontColour)}};
bool CoverPictureOnPage(const Rect& page, const void* record, PagePicture* out) {
  return CoverPagePicture(page, *static_cast<const CalendarHeader*>(record), out);
}
// A chosen picture is shown.
const PictureBinding kCoverPicture{AT(CoverPicture),          IDC_PICTURE_TOP_LEFT,   true, IDC_COVER_PAINT,
                                   AT(CoverBackgroundColour), sizeof(CalendarHeader), CoverPictureOnPage};

}  // namespace

const SheetTab kYearTabs[kYearTabCount] = {
    {"YearPropertyOne", "Year/Year at a Glance", kYear, QUERNAL_COUNT(kYear), kYearFonts, QUERNAL_COUNT(kYearFonts),
     kYearColours, QUERNAL_COUNT(kYearColours)},
    {"YearPropertyTwo", "Cover", kCover, QUERNAL_COUNT(kCover), kCoverFonts, 1, kCoverColours,
     QUERNAL_COUNT(kCoverColours), IDC_COVER_TITLE_LEFT_GLYPH, IDC_COVER_TITLE_LEFT, &kCoverPicture},
};
