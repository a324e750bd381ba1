#include "calendar/calendar_model.h"

#include <cstring>
#include <vector>

#include "base/text.h"
#include "calendar/calendar_dates.h"
#include "calendar/event_list.h"
#include "calendar/record_fields.h"
#include "config/settings.h"

namespace {

// A record field bound to the settings variables it is copied from and
// stored into. The names in the records' lists are those of the settings
// table, so the binding is looked up once by name.
struct FieldBinding {
  const RecordField* field;
  const uint8_t* from;
  uint8_t* into;
};

uint8_t* SettingNamed(const char* key) {
  const SettingsRow* row = key ? FindSettingsRow(key) : nullptr;
  return row ? static_cast<uint8_t*>(row->variable) : nullptr;
}

std::vector<FieldBinding> BindToSettings(RecordFieldList fields) {
  std::vector<FieldBinding> bound;
  for (const RecordField& field : fields) {
    const uint8_t* from = SettingNamed(field.copiedFrom);
    uint8_t* into = SettingNamed(field.storedInto);
    if (from && into) bound.push_back({&field, from, into});
  }
  return bound;
}

const std::vector<FieldBinding>& MonthPageBindings() {
  static const std::vector<FieldBinding> bound = BindToSettings(MonthPageFields());
  return bound;
}

const std::vector<FieldBinding>& HeaderBindings() {
  static const std::vector<FieldBinding> bound = BindToSettings(HeaderFields());
  return bound;
}

void CopyFromSettings(const std::vector<FieldBinding>& bindings, void* record) {
  uint8_t* bytes = static_cast<uint8_t*>(record);
  for (const FieldBinding& b : bindings) {
    if (b.field->kind == FieldKind::Text)
      CopyText(reinterpret_cast<char*>(bytes + b.field->offset), b.field->size, reinterpret_cast<const char*>(b.from));
    else
      std::memcpy(bytes + b.field->offset, b.from, 4);
  }
}

// In record order, so a field stored into another's setting wins over it.
void StoreIntoSettings(const std::vector<FieldBinding>& bindings, const void* record) {
  const uint8_t* bytes = static_cast<const uint8_t*>(record);
  for (const FieldBinding& b : bindings) {
    if (b.field->kind == FieldKind::Text) {
      char* setting = reinterpret_cast<char*>(b.into);
      std::memset(setting, 0, kSettingTextSize);
      CopyText(setting, kSettingTextSize, reinterpret_cast<const char*>(bytes + b.field->offset));
    } else {
      std::memcpy(b.into, bytes + b.field->offset, 4);
    }
  }
}

void TerminateTextFields(RecordFieldList fields, void* record) {
  for (const RecordField& field : fields)
    if (field.kind == FieldKind::Text) static_cast<char*>(record)[field.offset + field.size - 1] = 0;
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
  CopyFromSettings(MonthPageBindings(), page);
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
  CopyFromSettings(HeaderBindings(), header);
  for (int month = 0; month < 12; ++month) {
    MonthPage page;
    InitMonthPage(&page);
    std::memcpy(lock.bytes() + MonthOffset(month), &page, sizeof page);
  }
  return document;
}

void StoreMonthPageAsDefaults(const MonthPage* page) { StoreIntoSettings(MonthPageBindings(), page); }

void StoreHeaderAsDefaults(const CalendarHeader* header) { StoreIntoSettings(HeaderBindings(), header); }

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

void TerminateTexts(CalendarHeader* header) { TerminateTextFields(HeaderFields(), header); }

void TerminateTexts(MonthPage* page) { TerminateTextFields(MonthPageFields(), page); }
