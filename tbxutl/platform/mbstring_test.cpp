// Expected values come from the real run-time library, run under Wine.

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "tbxutl/platform/mbstring.h"
#include "tbxutl/platform/win32_testing.h"
#include "tbxutl/platform/windows.h"

namespace {

using tbx::testing::RunningUnderWine;

const unsigned char* U(const char* text) { return reinterpret_cast<const unsigned char*>(text); }

int Sign(int value) { return (value > 0) - (value < 0); }

TEST(Mbstring, SearchFindsCharactersAndTheTerminator) {
  const unsigned char* text = U("abc\xE9" "bc");
  EXPECT_EQ(_mbschr(text, 'b'), text + 1);
  EXPECT_EQ(_mbschr(text, 0xE9), text + 3);
  EXPECT_EQ(_mbschr(text, 0), text + 6);
  EXPECT_EQ(_mbschr(text, 'z'), nullptr);
  EXPECT_EQ(_mbsrchr(text, 'b'), text + 4);
  EXPECT_EQ(_mbsrchr(text, 0), text + 6);
  EXPECT_EQ(_mbsrchr(text, 'z'), nullptr);
  EXPECT_EQ(_mbsstr(text, U("bc")), text + 1);
  EXPECT_EQ(_mbsstr(text, U("c\xE9")), text + 2);
  EXPECT_EQ(_mbsstr(text, U("")), text);
  EXPECT_EQ(_mbsstr(text, U("bcd")), nullptr);
  const unsigned char* empty = U("");
  EXPECT_EQ(_mbsstr(empty, empty), empty);
}

TEST(Mbstring, BoundedCopyPadsWithZeros) {
  unsigned char buffer[8];
  std::memset(buffer, 'x', sizeof buffer);
  EXPECT_EQ(_mbsnbcpy(buffer, U("ab"), 5), buffer);
  EXPECT_EQ(std::string(reinterpret_cast<char*>(buffer), 6), std::string("ab\0\0\0x", 6));
  std::memset(buffer, 'x', sizeof buffer);
  _mbsnbcpy(buffer, U("abcdef"), 3);  // no terminator when the source is longer
  EXPECT_EQ(std::string(reinterpret_cast<char*>(buffer), 4), "abcx");
}

TEST(Mbstring, Comparisons) {
  EXPECT_EQ(_mbsnbcmp(U("abc"), U("abd"), 2), 0);
  EXPECT_LT(_mbsnbcmp(U("abc"), U("abd"), 3), 0);
  EXPECT_GT(_mbsnbcmp(U("abd"), U("abc"), 3), 0);
  EXPECT_LT(_mbsnbcmp(U("ab"), U("abc"), 5), 0);
  EXPECT_EQ(_mbsnbcmp(U("ab"), U("ab"), 5), 0);
  EXPECT_GT(_mbsnbcmp(U("\xE9"), U("e"), 1), 0);  // bytes compare unsigned

  // _mbsicmp folds ASCII letters to small ones, and only those.
  EXPECT_EQ(_mbsicmp(U("abc"), U("ABC")), 0);
  EXPECT_LT(_mbsicmp(U("a"), U("B")), 0);
  EXPECT_LT(_mbsicmp(U("_"), U("A")), 0);  // '_' sorts before 'a', after 'A'
  EXPECT_GT(_mbsicmp(U("ab"), U("a")), 0);
  EXPECT_EQ(Sign(_mbsicmp(U("\xE9"), U("\xC9"))), 1);
  EXPECT_EQ(Sign(_mbsicmp(U("\x9A"), U("\x8A"))), 1);
  // Bytes compare unsigned. Wine differs: it compares them as signed chars.
  if (!RunningUnderWine()) {
    EXPECT_GT(_mbsicmp(U("\xE9"), U("a")), 0);
  }
}

TEST(Mbstring, CountingAndStepping) {
  const unsigned char* text = U("ab\xE9");
  EXPECT_EQ(_mbslen(text), 3u);
  EXPECT_EQ(_mbslen(U("")), 0u);
  EXPECT_EQ(_mbsinc(text), text + 1);
  EXPECT_EQ(_mbsinc(text + 3), text + 4);  // steps over the terminator too
  EXPECT_EQ(_mbsdec(text, text + 3), text + 2);
  EXPECT_EQ(_mbsdec(text, text + 1), text);
  EXPECT_EQ(_mbsdec(text, text), nullptr);
  EXPECT_EQ(_mbsdec(text + 1, text), nullptr);
  for (unsigned int b = 0; b < 0x200; ++b) EXPECT_EQ(_ismbblead(b), 0) << b;
}

TEST(Mbstring, CaseMapping) {
  unsigned char upper[] = "aB_z09";
  EXPECT_EQ(_mbsupr(upper), upper);
  EXPECT_STREQ(reinterpret_cast<char*>(upper), "AB_Z09");
  unsigned char lower[] = "aB_Z09";
  EXPECT_EQ(_mbslwr(lower), lower);
  EXPECT_STREQ(reinterpret_cast<char*>(lower), "ab_z09");

  // The run-time library builds its case tables from the code page, so the
  // letters of Windows-1252 map too, as with CharUpperA (sharp s and the
  // micro sign have no capital). Wine differs: it maps ASCII only.
  if (RunningUnderWine()) return;
  unsigned char accented[] = "\xE9\xFF\xDF\xB5\x9A\xC9";
  _mbsupr(accented);
  EXPECT_STREQ(reinterpret_cast<char*>(accented), "\xC9\x9F\xDF\xB5\x8A\xC9");
  _mbslwr(accented);
  EXPECT_STREQ(reinterpret_cast<char*>(accented), "\xE9\xFF\xDF\xB5\x9A\xE9");
  for (int b = 1; b < 256; ++b) {
    unsigned char one[2] = {static_cast<unsigned char>(b), 0};
    char expected[2] = {static_cast<char>(b), 0};
    CharUpperBuffA(expected, 1);
    EXPECT_EQ(_mbsupr(one)[0], static_cast<unsigned char>(expected[0])) << b;
    CharLowerBuffA(expected, 1);
    EXPECT_EQ(_mbslwr(one)[0], static_cast<unsigned char>(expected[0])) << b;
  }
}

}  // namespace
