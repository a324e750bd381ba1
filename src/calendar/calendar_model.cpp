#include "calendar/calendar_model.h"

#include <cstring>

#include "base/text.h"
#include "calendar/calendar_dates.h"
#include "calendar/event_list.h"
#include "config/settings.h"

namespace {

// A record field that carries the setting of the same name. Copying a new
// record's design from the settings reads `setting`; storing an edited
// record's design writes `storeInto`, which differs in one row only.
struct FieldBinding {
  size_t field;
  size_t size;  // kFontNameSize for texts, 4 for numbers and flags
  size_t setting;
  size_t storeInto;
};

#define BIND(Record, Name)                                                                \
  FieldBinding {                                                                          \
    offsetof(Record, Name), sizeof(Record::Name), offsetof(SettingsValues, Name), offsetof(SettingsValues, Name) \
  }

// Record order. The page's picture frame colour is stored into the
// PicturePlacement default, right after the placement itself, and the
// PictureFrameColour default is never updated from a page: a behaviour users
// of earlier versions rely on, kept on purpose.
const FieldBinding kMonthPageFields[] = {
    BIND(MonthPage, DateFontName), BIND(MonthPage, DateFontColour), BIND(MonthPage, DateFontSize),
    BIND(MonthPage, DateFontItal), BIND(MonthPage, DateFontBold), BIND(MonthPage, DateFontPlacement),
    BIND(MonthPage, DateFrameColour), BIND(MonthPage, DateBackColour), BIND(MonthPage, DateInteriorPadding),
    BIND(MonthPage, DateShadow), BIND(MonthPage, DateRound), BIND(MonthPage, DateShadowOffset),
    BIND(MonthPage, HeadFontName), BIND(MonthPage, HeadFontColour), BIND(MonthPage, HeadFontSize),
    BIND(MonthPage, HeadFontItal), BIND(MonthPage, HeadFontBold), BIND(MonthPage, HeadShadow),
    BIND(MonthPage, HeadPrevNext), BIND(MonthPage, HeadFrameColour), BIND(MonthPage, HeadBackColour),
    BIND(MonthPage, HeadPlacement), BIND(MonthPage, HeadInteriorPadding), BIND(MonthPage, HeadExteriorPadding),
    BIND(MonthPage, DaysShow), BIND(MonthPage, DaysName), BIND(MonthPage, DaysFontName),
    BIND(MonthPage, DaysFontColour), BIND(MonthPage, DaysFontSize), BIND(MonthPage, DaysFontItal),
    BIND(MonthPage, DaysFontBold), BIND(MonthPage, PicturePlacement),
    {offsetof(MonthPage, PictureFrameColour), 4, offsetof(SettingsValues, PictureFrameColour),
     offsetof(SettingsValues, PicturePlacement)},
    BIND(MonthPage, PictureShowPicture), BIND(MonthPage, PictureShowFrame), BIND(MonthPage, PictureDropShadow),
    BIND(MonthPage, PictureShadowOffset), BIND(MonthPage, PictureExteriorPadding), BIND(MonthPage, CapFontName),
    BIND(MonthPage, CapFontColour), BIND(MonthPage, CapFontSize), BIND(MonthPage, CapFontItal),
    BIND(MonthPage, CapFontBold), BIND(MonthPage, CapPlacement), BIND(MonthPage, PageBackgroundColour),
    BIND(MonthPage, PageMargin), BIND(MonthPage, Gutter), BIND(MonthPage, PictureShadowSoftness),
};

const FieldBinding kHeaderFields[] = {
    BIND(CalendarHeader, YagFontName), BIND(CalendarHeader, YagColour), BIND(CalendarHeader, TagFontItal),
    BIND(CalendarHeader, YagFontBold), BIND(CalendarHeader, YagTitleFontName), BIND(CalendarHeader, TagTitleColour),
    BIND(CalendarHeader, YagTitleFontSize), BIND(CalendarHeader, YagTitleFontItal),
    BIND(CalendarHeader, YagTitleFontBold), BIND(CalendarHeader, YagGutter), BIND(CalendarHeader, YagPageMargin),
    BIND(CalendarHeader, YagRound), BIND(CalendarHeader, YagShadow), BIND(CalendarHeader, YagShadowOffset),
    BIND(CalendarHeader, YagInteriorPadding), BIND(CalendarHeader, YagExteriorPadding),
    BIND(CalendarHeader, YagFrameColour), BIND(CalendarHeader, YagBackColour), BIND(CalendarHeader, YagPageColour),
    BIND(CalendarHeader, CoverFontName), BIND(CalendarHeader, CoverFontColour), BIND(CalendarHeader, CoverFontSize),
    BIND(CalendarHeader, CoverFontItal), BIND(CalendarHeader, CoverFontBold),
    BIND(CalendarHeader, CoverFontPlacement), BIND(CalendarHeader, CoverPictureShowFrame),
    BIND(CalendarHeader, CoverPictureDropShadow), BIND(CalendarHeader, CoverPictureShadowOffset),
    BIND(CalendarHeader, CoverPictureExteriorPadding), BIND(CalendarHeader, CoverPictureShowPicture),
    BIND(CalendarHeader, CoverPictureGutter), BIND(CalendarHeader, CoverPicturePlacement),
    BIND(CalendarHeader, CoverPictureBleed), BIND(CalendarHeader, CoverBackgroundColour),
    BIND(CalendarHeader, CoverPictureFrameColour),
};
#undef BIND

uint8_t* SettingAt(size_t offset) { return reinterpret_cast<uint8_t*>(&Settings) + offset; }

template <size_t N>
void CopyFromSettings(const FieldBinding (&fields)[N], void* record) {
  uint8_t* bytes = static_cast<uint8_t*>(record);
  for (const FieldBinding& f : fields) {
    if (f.size == kFontNameSize)
      CopyText(reinterpret_cast<char*>(bytes + f.field), f.size, reinterpret_cast<const char*>(SettingAt(f.setting)));
    else
      std::memcpy(bytes + f.field, SettingAt(f.setting), 4);
  }
}

template <size_t N>
void StoreIntoSettings(const FieldBinding (&fields)[N], const void* record) {
  const uint8_t* bytes = static_cast<const uint8_t*>(record);
  for (const FieldBinding& f : fields) {
    char* setting = reinterpret_cast<char*>(SettingAt(f.storeInto));
    if (f.size == kFontNameSize) {
      std::memset(setting, 0, kSettingTextSize);
      CopyText(setting, kSettingTextSize, reinterpret_cast<const char*>(bytes + f.field));
    } else {
      std::memcpy(setting, bytes + f.field, 4);
    }
  }
}

// Both records sit in the document block at fixed offsets.
constexpr uint32_t MonthOffset(int month) { return kHeaderSize + static_cast<uint32_t>(month) * kMonthPageSize; }

// Locks the document and checks its magic; null (and unlocked) on failure.
uint8_t* LockDocument(CalendarDocument document) {
  if (GlobalBlockSize(document) < kDocumentSize) return nullptr;
  uint8_t* bytes = static_cast<uint8_t*>(GlobalBlockLock(document));
  if (!bytes) return nullptr;
  uint32_t magic;
  std::memcpy(&magic, bytes, 4);
  if (magic != kHeaderMagic) {
    GlobalBlockUnlock(document);
    return nullptr;
  }
  return bytes;
}

bool CopyBlock(CalendarDocument document, uint32_t offset, void* to, const void* from, uint32_t size, bool in) {
  uint8_t* bytes = LockDocument(document);
  if (!bytes) return false;
  if (in)
    std::memcpy(bytes + offset, from, size);
  else
    std::memcpy(to, bytes + offset, size);
  GlobalBlockUnlock(document);
  return true;
}

}  // namespace

void InitMonthPage(MonthPage* page) {
  std::memset(page, 0, sizeof *page);
  page->Magic = kPageMagic;
  page->RecordSize = kMonthPageSize;
  CopyFromSettings(kMonthPageFields, page);
  page->Events = LoadEventList(page->DaysName);
}

CalendarDocument CreateCalendar(int year, int currentPage) {
  CalendarDocument document = GlobalBlockAlloc(kDocumentSize);
  if (!document) return 0;
  BlockLock lock(document);
  CalendarHeader* header = lock.as<CalendarHeader>();
  header->Magic = kHeaderMagic;
  header->RecordSize = kHeaderSize;
  header->Version = kRecordVersion;
  header->Year = year;
  header->CurrentPage = currentPage;
  CopyFromSettings(kHeaderFields, header);
  for (int month = 0; month < 12; ++month) {
    MonthPage page;
    InitMonthPage(&page);
    std::memcpy(lock.bytes() + MonthOffset(month), &page, sizeof page);
  }
  return document;
}

void StoreMonthPageAsDefaults(const MonthPage* page) { StoreIntoSettings(kMonthPageFields, page); }

void StoreHeaderAsDefaults(const CalendarHeader* header) { StoreIntoSettings(kHeaderFields, header); }

void FreeMonthPage(MonthPage* page) {
  if (page->Picture) GlobalBlockFree(page->Picture);
  if (page->Events) GlobalBlockFree(page->Events);
  std::memset(page, 0, sizeof *page);
}

void FreeHeader(CalendarHeader* header) {
  if (header->CoverPicture) GlobalBlockFree(header->CoverPicture);
  std::memset(header, 0, sizeof *header);
}

bool CopyMonthPage(MonthPage* dst, const MonthPage* src) {
  std::memcpy(dst, src, sizeof *dst);
  dst->Picture = dst->Events = 0;
  bool ok = true;
  if (src->Picture && !(dst->Picture = DuplicateBlock(src->Picture))) ok = false;
  if (ok && src->Events && !(dst->Events = DuplicateBlock(src->Events))) ok = false;
  if (!ok) FreeMonthPage(dst);
  return ok;
}

bool CopyHeader(CalendarHeader* dst, const CalendarHeader* src) {
  std::memcpy(dst, src, sizeof *dst);
  dst->CoverPicture = 0;
  if (src->CoverPicture && !(dst->CoverPicture = DuplicateBlock(src->CoverPicture))) {
    FreeHeader(dst);
    return false;
  }
  return true;
}

bool FreeCalendar(CalendarDocument document) {
  uint8_t* bytes = LockDocument(document);
  if (!bytes) return false;
  for (int month = 0; month < 12; ++month) FreeMonthPage(reinterpret_cast<MonthPage*>(bytes + MonthOffset(month)));
  FreeHeader(reinterpret_cast<CalendarHeader*>(bytes));
  GlobalBlockUnlock(document);
  GlobalBlockFree(document);
  return true;
}

int CalendarYear(const CalendarHeader* header) { return header->UseCurrentYear ? Today().year : header->Year; }

bool GetHeader(CalendarDocument document, CalendarHeader* out) {
  return CopyBlock(document, 0, out, nullptr, kHeaderSize, false);
}

bool PutHeader(CalendarDocument document, const CalendarHeader* in) {
  return in->Magic == kHeaderMagic && CopyBlock(document, 0, nullptr, in, kHeaderSize, true);
}

bool GetMonthPage(CalendarDocument document, int month, MonthPage* out) {
  return month >= 0 && month < 12 && CopyBlock(document, MonthOffset(month), out, nullptr, kMonthPageSize, false);
}

bool PutMonthPage(CalendarDocument document, int month, const MonthPage* in) {
  return month >= 0 && month < 12 && CopyBlock(document, MonthOffset(month), nullptr, in, kMonthPageSize, true);
}

void TerminateTexts(CalendarHeader* h) {
  h->YagFontName[kFontNameSize - 1] = h->YagTitleFontName[kFontNameSize - 1] = 0;
  h->CoverFontName[kFontNameSize - 1] = h->CoverTitle[kFontNameSize - 1] = 0;
}

void TerminateTexts(MonthPage* p) {
  p->DateFontName[kFontNameSize - 1] = p->HeadFontName[kFontNameSize - 1] = 0;
  p->DaysName[kFontNameSize - 1] = p->DaysFontName[kFontNameSize - 1] = p->CapFontName[kFontNameSize - 1] = 0;
  p->LeftCaption[kCaptionSize - 1] = p->RightCaption[kCaptionSize - 1] = 0;
}
