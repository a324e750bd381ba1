#include "editors/page_tabs.h"

#include "calendar/records.h"
#include "render/picture_box.h"
#include "res/page_sheet_ids.h"

namespace {

#define FIELD(f) QUERNAL_FIELD(MonthPage, f)
#define FONT(prefix) offsetof(MonthPage, prefix##FontName), offsetof(MonthPage, prefix##FontBold), \
    offsetof(MonthPage, prefix##FontItal), offsetof(MonthPage, prefix##FontSize)

// Radio groups: the buttons in the order reading back tests them, then the
// button of every other stored value and what it reads back as.
const RadioChoice kHeadPlaces[] = {{IDC_HEAD_RIGHT, 2}, {IDC_HEAD_CENTRE, 1}};
const RadioChoice kDatePlaces[] = {{IDC_DATE_TOP_LEFT, 0}, {IDC_DATE_TOP_RIGHT, 2}, {IDC_DATE_BOTTOM_LEFT, 8}, {IDC_DATE_BOTTOM_RIGHT, 10}};
const RadioChoice kPicturePlaces[] = {{IDC_PICTURE_TOP_LEFT, 0}, {IDC_PICTURE_TOP_RIGHT, 2}, {IDC_PICTURE_BOTTOM_LEFT, 8}, {IDC_PICTURE_BOTTOM_RIGHT, 10}};
const RadioChoice kCaptionPlaces[] = {{IDC_CAP_RIGHT, 2}, {IDC_CAP_CENTRE, 1}};

// Round corners and shadow offset of the dates are edited with the heading.
const ControlBinding kHeading[] = {
    {IDC_HEAD_LEFT, ControlKind::Radio, FIELD(HeadPlacement), kHeadPlaces, 2, {IDC_HEAD_LEFT, 0}},
    {IDC_HEAD_PREV_NEXT, ControlKind::Check, FIELD(HeadPrevNext)},
    {IDC_HEAD_SHADOW, ControlKind::Check, FIELD(HeadShadow)},
    {IDC_HEAD_INTERIOR, ControlKind::Number, FIELD(HeadInteriorPadding)},
    {IDC_HEAD_EXTERIOR, ControlKind::Number, FIELD(HeadExteriorPadding)},
    {IDC_DATE_ROUND, ControlKind::Number, FIELD(DateRound)},
    {IDC_DATE_SHADOW_OFFSET, ControlKind::Number, FIELD(DateShadowOffset)},
};
const ControlBinding kDates[] = {
    {IDC_DATE_TOP_LEFT, ControlKind::Radio, FIELD(DateFontPlacement), kDatePlaces, 4, {IDC_DATE_CENTRE, 1}},
    {IDC_DATE_INTERIOR, ControlKind::Number, FIELD(DateInteriorPadding)},
    {IDC_DATE_SHADOW, ControlKind::Check, FIELD(DateShadow)},
};
// The list of event lists (127) is filled and read by the tab itself.
const ControlBinding kEvents[] = {
    {IDC_DAYS_SHOW, ControlKind::Check, FIELD(DaysShow)},
};
// The template leaves the three check boxes clear; loading only sets them.
const ControlBinding kPicture[] = {
    {IDC_PICTURE_SHOW, ControlKind::CheckSetOnly, FIELD(PictureShowPicture)},
    {IDC_PICTURE_SHOW_FRAME, ControlKind::CheckSetOnly, FIELD(PictureShowFrame)},
    {IDC_PICTURE_SHADOW, ControlKind::CheckSetOnly, FIELD(PictureDropShadow)},
    {IDC_PICTURE_TOP_LEFT, ControlKind::Radio, FIELD(PicturePlacement), kPicturePlaces, 4, {IDC_PICTURE_CENTRE, 147}},
    {IDC_PICTURE_SHADOW_OFFSET, ControlKind::Number, FIELD(PictureShadowOffset)},
    {IDC_PICTURE_EXTERIOR, ControlKind::Number, FIELD(PictureExteriorPadding)},
    {IDC_PICTURE_GUTTER, ControlKind::Number, FIELD(Gutter)},
    {IDC_PICTURE_SOFTNESS, ControlKind::Number, FIELD(PictureShadowSoftness)},
};
const ControlBinding kCaption[] = {
    {IDC_CAP_LEFT, ControlKind::Radio, FIELD(CapPlacement), kCaptionPlaces, 2, {IDC_CAP_LEFT, 0}},
    {IDC_CAP_LEFT_TEXT, ControlKind::Text, FIELD(LeftCaption), nullptr, 0, {0, 0}, 2048},
    {IDC_CAP_RIGHT_TEXT, ControlKind::Text, FIELD(RightCaption), nullptr, 0, {0, 0}, 2048},
    {IDC_PAGE_MARGIN, ControlKind::Number, FIELD(PageMargin)},
};

const FontButtonBinding kHeadFont[] = {{IDC_HEAD_FONT, IDC_HEAD_SAMPLE, FONT(Head)}};
const FontButtonBinding kDateFont[] = {{IDC_DATE_FONT, IDC_DATE_SAMPLE, FONT(Date)}};
const FontButtonBinding kDaysFont[] = {{IDC_DAYS_FONT, IDC_DAYS_SAMPLE, FONT(Days)}};
const FontButtonBinding kCapFont[] = {{IDC_CAP_FONT, IDC_CAP_SAMPLE, FONT(Cap)}};
bool MonthPictureOnPage(const Rect& page, const void* record, PagePicture* out) {
  return MonthPagePicture(page, *static_cast<const MonthPage*>(record), out);
}
const PictureBinding kPictureBlock{offsetof(MonthPage, Picture),
                                   IDC_PICTURE_TOP_LEFT,
                                   false,
                                   IDC_PICTURE_PAINT,
                                   offsetof(MonthPage, PageBackgroundColour),
                                   sizeof(MonthPage),
                                   MonthPictureOnPage};

const ColourButtonBinding kHeadColours[] = {{IDC_HEAD_COLOUR, offsetof(MonthPage, HeadFontColour)},
                                            {IDC_HEAD_FRAME, offsetof(MonthPage, HeadFrameColour)},
                                            {IDC_HEAD_BACKGROUND, offsetof(MonthPage, HeadBackColour)}};
const ColourButtonBinding kDateColours[] = {{IDC_DATE_COLOUR, offsetof(MonthPage, DateFontColour)},
                                            {IDC_DATE_FRAME, offsetof(MonthPage, DateFrameColour)},
                                            {IDC_DATE_BACKGROUND, offsetof(MonthPage, DateBackColour)}};
const ColourButtonBinding kDaysColours[] = {{IDC_DAYS_COLOUR, offsetof(MonthPage, DaysFontColour)}};
const ColourButtonBinding kPictureColours[] = {{IDC_PICTURE_FRAME, offsetof(MonthPage, PictureFrameColour)}};
const ColourButtonBinding kCapColours[] = {{IDC_CAP_COLOUR, offsetof(MonthPage, CapFontColour)},
                                           {IDC_PAGE_BACKGROUND, offsetof(MonthPage, PageBackgroundColour)}};

}  // namespace

const SheetTab kPageTabs[kPageTabCount] = {
    {"PagePropertyOne", "Heading", kHeading, QUERNAL_COUNT(kHeading), kHeadFont, 1, kHeadColours,
     QUERNAL_COUNT(kHeadColours), IDC_HEAD_LEFT_GLYPH, IDC_HEAD_LEFT},
    {"PagePropertyTwo", "Dates", kDates, QUERNAL_COUNT(kDates), kDateFont, 1, kDateColours, QUERNAL_COUNT(kDateColours)},
    {"PagePropertyThree", "Events", kEvents, QUERNAL_COUNT(kEvents), kDaysFont, 1, kDaysColours,
     QUERNAL_COUNT(kDaysColours)},
    {"PagePropertyFour", "Picture", kPicture, QUERNAL_COUNT(kPicture), nullptr, 0, kPictureColours,
     QUERNAL_COUNT(kPictureColours), 0, 0, &kPictureBlock},
    {"PagePropertyFive", "Caption/Background", kCaption, QUERNAL_COUNT(kCaption), kCapFont, 1, kCapColours,
     QUERNAL_COUNT(kCapColours), IDC_CAP_LEFT_GLYPH, IDC_CAP_LEFT},
};
