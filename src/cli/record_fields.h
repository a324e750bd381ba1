// Every field of the calendar's records by name, in file order (the
// reserved areas left out): how `info` shows them and `set` changes them.
#pragma once
#include <cstddef>

#include "calendar/records.h"

enum FieldKind { kMagic, kU32, kI32, kU16, kText, kPicture, kEvents };

struct Field {
  const char* name;
  size_t offset;
  size_t size;
  FieldKind kind;
};

struct FieldList {
  const Field* fields;
  size_t count;
};

FieldList HeaderFields();
FieldList MonthPageFields();
// The field called `name` (case matters, as info writes it), or nullptr.
const Field* FindField(const FieldList& list, const char* name);
