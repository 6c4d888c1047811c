// Expected values come from the real functions, run under Wine.

#include <gtest/gtest.h>

#include <string>

#include "tbxutl/platform/windows.h"

namespace {

// The case pairs of Windows-1252, capital and small letter at the same index.
const std::string kCapitals =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZ\x8A\x8C\x8E\x9F"
    "\xC0\xC1\xC2\xC3\xC4\xC5\xC6\xC7\xC8\xC9\xCA\xCB\xCC\xCD\xCE\xCF\xD0\xD1\xD2\xD3\xD4\xD5\xD6"
    "\xD8\xD9\xDA\xDB\xDC\xDD\xDE";
const std::string kSmall =
    "abcdefghijklmnopqrstuvwxyz\x9A\x9C\x9E\xFF"
    "\xE0\xE1\xE2\xE3\xE4\xE5\xE6\xE7\xE8\xE9\xEA\xEB\xEC\xED\xEE\xEF\xF0\xF1\xF2\xF3\xF4\xF5\xF6"
    "\xF8\xF9\xFA\xFB\xFC\xFD\xFE";
// Small letters without a capital in the code page (f with hook, the
// ordinal indicators, micro sign, sharp s), and a letter without case
// (modifier circumflex).
const std::string kSmallOnly = "\x83\xAA\xB5\xBA\xDF";
const std::string kCaseless = "\x88";
// Digits: the ASCII ones and the superscripts.
const std::string kDigits = "0123456789\xB2\xB3\xB9";

bool Contains(const std::string& set, int byte) { return set.find(static_cast<char>(byte)) != std::string::npos; }

int ExpectedUpper(int byte) {
  std::size_t i = kSmall.find(static_cast<char>(byte));
  return i == std::string::npos ? byte : static_cast<BYTE>(kCapitals[i]);
}

int ExpectedLower(int byte) {
  std::size_t i = kCapitals.find(static_cast<char>(byte));
  return i == std::string::npos ? byte : static_cast<BYTE>(kSmall[i]);
}

int OneCharacter(LPSTR result) { return static_cast<int>(reinterpret_cast<UINT_PTR>(result)); }

LPSTR AsCharacter(int byte) { return reinterpret_cast<LPSTR>(static_cast<UINT_PTR>(byte)); }

TEST(CharString, CaseMappingOfEveryByteInEveryForm) {
  for (int b = 0; b < 256; ++b) {
    SCOPED_TRACE(b);
    EXPECT_EQ(OneCharacter(CharUpperA(AsCharacter(b))), ExpectedUpper(b));
    EXPECT_EQ(OneCharacter(CharLowerA(AsCharacter(b))), ExpectedLower(b));
    char buffer[2] = {static_cast<char>(b), 0};
    EXPECT_EQ(CharUpperBuffA(buffer, 1), 1u);
    EXPECT_EQ(static_cast<BYTE>(buffer[0]), ExpectedUpper(b));
    buffer[0] = static_cast<char>(b);
    EXPECT_EQ(CharLowerBuffA(buffer, 1), 1u);
    EXPECT_EQ(static_cast<BYTE>(buffer[0]), ExpectedLower(b));
  }
  // Only the low byte of a one-character argument counts.
  EXPECT_EQ(OneCharacter(CharUpperA(AsCharacter(0x161))), 'A');
  EXPECT_EQ(OneCharacter(CharUpperA(AsCharacter(0xFFFF))), 0x9F);
  EXPECT_EQ(CharUpperA(nullptr), nullptr);
}

TEST(CharString, StringAndBufferForms) {
  char text[] = "aB\xE9\xFF\xDF_z";
  EXPECT_EQ(CharUpperA(text), text);
  EXPECT_STREQ(text, "AB\xC9\x9F\xDF_Z");
  EXPECT_EQ(CharLowerA(text), text);
  EXPECT_STREQ(text, "ab\xE9\xFF\xDF_z");
  // The buffer forms take terminators as characters.
  char buffer[] = {'a', 'b', '\0', 'c', 'd'};
  EXPECT_EQ(CharUpperBuffA(buffer, 5), 5u);
  EXPECT_EQ(std::string(buffer, 5), std::string("AB\0CD", 5));
  EXPECT_EQ(CharUpperBuffA(buffer, 0), 0u);
}

TEST(CharString, ClassificationOfEveryByte) {
  for (int b = 0; b < 256; ++b) {
    SCOPED_TRACE(b);
    const bool capital = Contains(kCapitals, b);
    const bool small = Contains(kSmall, b) || Contains(kSmallOnly, b);
    const bool alpha = capital || small || Contains(kCaseless, b);
    const CHAR ch = static_cast<CHAR>(b);
    EXPECT_EQ(IsCharUpperA(ch) != FALSE, capital);
    EXPECT_EQ(IsCharLowerA(ch) != FALSE, small);
    EXPECT_EQ(IsCharAlphaA(ch) != FALSE, alpha);
    EXPECT_EQ(IsCharAlphaNumericA(ch) != FALSE, alpha || Contains(kDigits, b));
  }
}

TEST(CharString, StepsStopAtTheEnds) {
  const char* text = "ab";
  EXPECT_EQ(CharNextA(text), text + 1);
  EXPECT_EQ(CharNextA(text + 1), text + 2);
  EXPECT_EQ(CharNextA(text + 2), text + 2);  // not past the terminator
  const char* high = "\x81\x40";
  EXPECT_EQ(CharNextA(high), high + 1);  // Windows-1252 has no lead bytes

  EXPECT_EQ(CharPrevA(text, text), text);  // not before the start
  EXPECT_EQ(CharPrevA(text, text + 1), text);
  EXPECT_EQ(CharPrevA(text, text + 2), text + 1);
  EXPECT_EQ(CharPrevA(text, text + 3), text + 2);
  const char* empty = "";
  EXPECT_EQ(CharPrevA(empty, empty + 1), empty);
  const char* stopped = "a\0bc";
  EXPECT_EQ(CharPrevA(stopped, stopped + 3), stopped + 1);  // stops at a terminator
}

}  // namespace
