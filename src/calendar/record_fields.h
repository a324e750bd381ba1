// Every field of the calendar's records by name, in file order, as the
// records' field lists describe them.
#pragma once
#include <cstddef>
#include <cstdint>

#include "calendar/records.h"

struct RecordField {
  const char* name;
  uint32_t offset;
  uint32_t size;
  FieldKind kind;
  bool isSigned;
  const char* copiedFrom;  // the setting a new record takes it from, or null
  const char* storedInto;  // the setting an edited record stores it into, or null
};

struct RecordFieldList {
  const RecordField* fields;
  size_t count;
  const RecordField* begin() const { return fields; }
  const RecordField* end() const { return fields + count; }
};

RecordFieldList HeaderFields();
RecordFieldList MonthPageFields();
// The field called `name` (case matters), or nullptr.
const RecordField* FindField(const RecordFieldList& list, const char* name);
