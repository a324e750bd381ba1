#include "app/string_table_win32.h"

std::string StringTableText(HINSTANCE instance, UINT id) {
  char text[1024];
  if (LoadStringA(instance, id, text, sizeof text) > 0) return text;
  return "String table error - this application may be damaged";
}
