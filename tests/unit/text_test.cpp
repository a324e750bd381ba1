// Texts between the program's Windows-1252 and UTF-8.
#include <gtest/gtest.h>

#include <string>

#include "base/text.h"

TEST(Text, EveryWindows1252CharacterGoesToUtf8AndBack) {
  for (int byte = 1; byte < 256; ++byte) {
    if (byte == 0x81 || byte == 0x8D || byte == 0x8F || byte == 0x90 || byte == 0x9D) continue;  // unassigned
    const std::string one(1, static_cast<char>(byte));
    std::string back;
    EXPECT_TRUE(Utf8ToCp1252(Cp1252ToUtf8(one), &back)) << byte;
    EXPECT_EQ(back, one) << byte;
  }
}

TEST(Text, WhatWindows1252CannotHoldBecomesAQuestionMark) {
  const struct {
    const char* utf8;
    bool whole;
    const char* cp1252;
  } cases[] = {
      {"Caf\xC3\xA9 \xE2\x82\xAC", true, "Caf\xE9 \x80"},
      {"\xC5\x81\xC3\xB3\x64\xC5\xBA", false, "?\xF3\x64?"},  // Lodz with its Polish letters
      {"\xF0\x9F\x8E\x89!", false, "?!"},                    // a character beyond 16 bits
      {"\xC0\xAF", false, "??"},                              // an overlong slash
      {"\xED\xA0\x80", false, "???"},                         // a surrogate
      {"ab\xE2\x82", false, "ab??"},                          // cut short
      {"\xC2\x81", false, "?"},                               // a control Windows-1252 leaves out
  };
  for (const auto& c : cases) {
    std::string out;
    EXPECT_EQ(Utf8ToCp1252(c.utf8, &out), c.whole) << c.utf8;
    EXPECT_EQ(out, c.cp1252) << c.utf8;
  }
}
