#include "calendar/record_fields.h"

#include <cstring>
#include <type_traits>

namespace {

constexpr RecordField Describe(const char* name, uint32_t offset, uint32_t size, FieldKind kind, bool isSigned,
                               DefaultBinding binding) {
  return {name, offset, size, kind, isSigned, binding.fromSetting ? name : nullptr,
          binding.fromSetting ? (binding.storedAs ? binding.storedAs : name) : nullptr};
}

#define QUERNAL_DESCRIBE(Record, name, T, offset, kind, binding)                                         \
  Describe(#name, offset, sizeof(Record::name), FieldKind::kind, std::is_signed<T>::value, \
           field_default::binding),
#define QUERNAL_HEADER_FIELD(name, T, length, offset, kind, binding) \
  QUERNAL_DESCRIBE(CalendarHeader, name, T, offset, kind, binding)
#define QUERNAL_PAGE_FIELD(name, T, length, offset, kind, binding) \
  QUERNAL_DESCRIBE(MonthPage, name, T, offset, kind, binding)

const RecordField kHeaderFields[] = {QUERNAL_CALENDAR_HEADER_FIELDS(QUERNAL_HEADER_FIELD)};
const RecordField kMonthPageFields[] = {QUERNAL_MONTH_PAGE_FIELDS(QUERNAL_PAGE_FIELD)};

}  // namespace

RecordFieldList HeaderFields() { return {kHeaderFields, sizeof kHeaderFields / sizeof kHeaderFields[0]}; }
RecordFieldList MonthPageFields() { return {kMonthPageFields, sizeof kMonthPageFields / sizeof kMonthPageFields[0]}; }

const RecordField* FindField(const RecordFieldList& list, const char* name) {
  for (const RecordField& field : list)
    if (std::strcmp(field.name, name) == 0) return &field;
  return nullptr;
}
