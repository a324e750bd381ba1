#include "editors/page_tabs.h"

#include "calendar/records.h"

namespace {

#define FIELD(f) QUERNAL_FIELD(MonthPage, f)
#define FONT(prefix) offsetof(MonthPage, prefix##FontName), offsetof(MonthPage, prefix##FontBold), \
    offsetof(MonthPage, prefix##FontItal), offsetof(MonthPage, prefix##FontSize)

// Radio groups: the buttons in the order reading back tests them, then the
// button of every other stored value and what it reads back as.
const RadioChoice kHeadPlaces[] = {{119, 2}, {118, 1}};
const RadioChoice kDatePlaces[] = {{105, 0}, {106, 2}, {107, 8}, {108, 10}};
const RadioChoice kPicturePlaces[] = {{143, 0}, {144, 2}, {145, 8}, {146, 10}};
const RadioChoice kCaptionPlaces[] = {{156, 2}, {155, 1}};

// Round corners and shadow offset of the dates are edited with the heading.
const ControlBinding kHeading[] = {
    {117, ControlKind::Radio, FIELD(HeadPlacement), kHeadPlaces, 2, {117, 0}},
    {123, ControlKind::Check, FIELD(HeadPrevNext)},
    {131, ControlKind::Check, FIELD(HeadShadow)},
    {135, ControlKind::Number, FIELD(HeadInteriorPadding)},
    {136, ControlKind::Number, FIELD(HeadExteriorPadding)},
    {165, ControlKind::Number, FIELD(DateRound)},
    {166, ControlKind::Number, FIELD(DateShadowOffset)},
};
const ControlBinding kDates[] = {
    {105, ControlKind::Radio, FIELD(DateFontPlacement), kDatePlaces, 4, {109, 1}},
    {112, ControlKind::Number, FIELD(DateInteriorPadding)},
    {130, ControlKind::Check, FIELD(DateShadow)},
};
// The list of event lists (127) is filled and read by the tab itself.
const ControlBinding kEvents[] = {
    {124, ControlKind::Check, FIELD(DaysShow)},
};
// The template leaves the three check boxes clear; loading only sets them.
const ControlBinding kPicture[] = {
    {137, ControlKind::CheckSetOnly, FIELD(PictureShowPicture)},
    {142, ControlKind::CheckSetOnly, FIELD(PictureShowFrame)},
    {148, ControlKind::CheckSetOnly, FIELD(PictureDropShadow)},
    {143, ControlKind::Radio, FIELD(PicturePlacement), kPicturePlaces, 4, {147, 147}},
    {149, ControlKind::Number, FIELD(PictureShadowOffset)},
    {150, ControlKind::Number, FIELD(PictureExteriorPadding)},
    {163, ControlKind::Number, FIELD(Gutter)},
    {167, ControlKind::Number, FIELD(PictureShadowSoftness)},
};
const ControlBinding kCaption[] = {
    {154, ControlKind::Radio, FIELD(CapPlacement), kCaptionPlaces, 2, {154, 0}},
    {140, ControlKind::Text, FIELD(LeftCaption), nullptr, 0, {0, 0}, 2048},
    {160, ControlKind::Text, FIELD(RightCaption), nullptr, 0, {0, 0}, 2048},
    {162, ControlKind::Number, FIELD(PageMargin)},
};

const FontButtonBinding kHeadFont{115, 129, FONT(Head)};
const FontButtonBinding kDateFont{102, 104, FONT(Date)};
const FontButtonBinding kDaysFont{125, 132, FONT(Days)};
const FontButtonBinding kCapFont{151, 152, FONT(Cap)};

const ColourButtonBinding kHeadColours[] = {{116, offsetof(MonthPage, HeadFontColour)},
                                            {134, offsetof(MonthPage, HeadFrameColour)},
                                            {133, offsetof(MonthPage, HeadBackColour)}};
const ColourButtonBinding kDateColours[] = {{103, offsetof(MonthPage, DateFontColour)},
                                            {110, offsetof(MonthPage, DateFrameColour)},
                                            {111, offsetof(MonthPage, DateBackColour)}};
const ColourButtonBinding kDaysColours[] = {{126, offsetof(MonthPage, DaysFontColour)}};
const ColourButtonBinding kPictureColours[] = {{141, offsetof(MonthPage, PictureFrameColour)}};
const ColourButtonBinding kCapColours[] = {{153, offsetof(MonthPage, CapFontColour)},
                                           {128, offsetof(MonthPage, PageBackgroundColour)}};

#define COUNT(a) sizeof(a) / sizeof(a[0])

}  // namespace

const PageTab kPageTabs[kPageTabCount] = {
    {"PagePropertyOne", "Heading", kHeading, COUNT(kHeading), &kHeadFont, kHeadColours, COUNT(kHeadColours)},
    {"PagePropertyTwo", "Dates", kDates, COUNT(kDates), &kDateFont, kDateColours, COUNT(kDateColours)},
    {"PagePropertyThree", "Events", kEvents, COUNT(kEvents), &kDaysFont, kDaysColours, COUNT(kDaysColours)},
    {"PagePropertyFour", "Picture", kPicture, COUNT(kPicture), nullptr, kPictureColours, COUNT(kPictureColours)},
    {"PagePropertyFive", "Caption/Background", kCaption, COUNT(kCaption), &kCapFont, kCapColours,
     COUNT(kCapColours)},
};
