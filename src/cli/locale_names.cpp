#include "cli/locale_names.h"

#include <iconv.h>
#include <langinfo.h>
#include <locale.h>

#include <cerrno>
#include <cstdio>
#include <string>

#include "base/text.h"
#include "config/settings.h"

namespace {

// The settings that hold the names, in the locale data's order.
char* const kMonthSettings[12] = {Settings.MonthJanuary, Settings.MonthFebruary, Settings.MonthMarch,
                                  Settings.MonthApril,   Settings.MonthMay,      Settings.MonthJune,
                                  Settings.MonthJuly,    Settings.MonthAugust,   Settings.MonthSeptember,
                                  Settings.MonthOctober, Settings.MonthNovember, Settings.MonthDecember};
char* const kDaySettings[7] = {Settings.DaySunday,   Settings.DayMonday, Settings.DayTuesday, Settings.DayWednesday,
                               Settings.DayThursday, Settings.DayFriday, Settings.DaySaturday};

// The locale's text in UTF-8, whatever the locale's own character set; empty
// when it cannot be converted.
std::string ToUtf8(const char* text, const char* codeset) {
  iconv_t convert = iconv_open("UTF-8", codeset);
  if (convert == reinterpret_cast<iconv_t>(-1)) return "";
  std::string in = text, out(in.size() * 4 + 4, '\0');
  char* from = &in[0];
  char* to = &out[0];
  size_t left = in.size(), room = out.size();
  const bool ok = iconv(convert, &from, &left, &to, &room) != static_cast<size_t>(-1);
  iconv_close(convert);
  return ok ? out.substr(0, out.size() - room) : "";
}

// A name heads a page or a column, as the English names do: its first letter
// a capital (janvier becomes Janvier).
void CapitaliseFirst(std::string* name) {
  if (name->empty()) return;
  unsigned char& c = reinterpret_cast<unsigned char&>((*name)[0]);
  if ((c >= 'a' && c <= 'z') || (c >= 0xE0 && c <= 0xFE && c != 0xF7)) c -= 0x20;
}

struct Names {
  std::string months[12], days[7];
};

// Reads the names; false with the names Windows-1252 cannot hold in *lost.
bool ReadNames(locale_t locale, Names* names, std::string* lost) {
  const char* codeset = nl_langinfo_l(CODESET, locale);
  auto take = [&](nl_item item, nl_item fallback, std::string* into) {
    const char* text = nl_langinfo_l(item, locale);
    if (!*text) text = nl_langinfo_l(fallback, locale);
    const std::string utf8 = ToUtf8(text, codeset);
    if (utf8.empty() || !Utf8ToCp1252(utf8, into)) lost->append(lost->empty() ? "" : ", ").append(utf8);
    CapitaliseFirst(into);
  };
  // Stand-alone month names ("Januar" as a heading, not the "Januars" of a date) where the locale has them.
  for (int i = 0; i < 12; ++i) take(ALTMON_1 + i, MON_1 + i, &names->months[i]);
  for (int i = 0; i < 7; ++i) take(DAY_1 + i, DAY_1 + i, &names->days[i]);
  return lost->empty();
}

}  // namespace

int ApplyLocaleOption(const Arguments& args) {
  if (!args.Has("--locale")) return -1;
  const std::string& name = args.options.at("--locale");
  locale_t locale = name.empty() ? nullptr : newlocale(LC_TIME_MASK | LC_CTYPE_MASK, name.c_str(), nullptr);
  if (!locale) {
    std::fprintf(stderr, "quernal-cli: this system has no locale \"%s\" (`locale -a` lists those it has)\n",
                 name.c_str());
    return 2;
  }
  Names names;
  std::string lost;
  const bool ok = ReadNames(locale, &names, &lost);
  freelocale(locale);
  if (!ok) {
    std::fprintf(stderr, "quernal-cli: the day and month names of the locale \"%s\" cannot be written in "
                 "Windows-1252, which the program's names are kept in: %s\n", name.c_str(), lost.c_str());
    return 2;
  }
  for (int i = 0; i < 12; ++i) CopyText(kMonthSettings[i], kSettingTextSize, names.months[i].c_str());
  for (int i = 0; i < 7; ++i) CopyText(kDaySettings[i], kSettingTextSize, names.days[i].c_str());
  return -1;
}
