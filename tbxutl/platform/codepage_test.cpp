#include <gtest/gtest.h>

#include <string>

#include "tbxutl/platform/mbstring.h"
#include "tbxutl/platform/windows.h"

// What Windows gives for every byte of code page 1252: 0x80-0x9F through
// the code page's table, the rest unchanged.
TEST(CodePage1252, EveryHighByteToUtf16AndBack) {
  const WCHAR expected[32] = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                              0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                              0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                              0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};
  ASSERT_EQ(GetACP(), 1252u) << "the tests expect the Western code page";
  for (int byte = 0x80; byte <= 0xFF; ++byte) {
    char in = static_cast<char>(byte);
    WCHAR unit = 0;
    ASSERT_EQ(MultiByteToWideChar(CP_ACP, 0, &in, 1, &unit, 1), 1) << byte;
    WCHAR want = byte < 0xA0 ? expected[byte - 0x80] : static_cast<WCHAR>(byte);
    EXPECT_EQ(unit, want) << std::hex << byte;

    char back = 0;
    BOOL usedDefault = TRUE;
    ASSERT_EQ(WideCharToMultiByte(CP_ACP, 0, &unit, 1, &back, 1, nullptr, &usedDefault), 1) << byte;
    EXPECT_EQ(static_cast<unsigned char>(back), byte);
    EXPECT_FALSE(usedDefault);
  }
}

TEST(CodePage1252, SizesTerminatorsAndShortBuffers) {
  EXPECT_EQ(MultiByteToWideChar(CP_ACP, 0, "abc", -1, nullptr, 0), 4) << "the size counts the terminator";
  WCHAR wide[8] = {};
  EXPECT_EQ(MultiByteToWideChar(CP_ACP, 0, "abc", -1, wide, 8), 4);
  EXPECT_EQ(wide[3], 0);
  SetLastError(0);
  EXPECT_EQ(MultiByteToWideChar(CP_ACP, 0, "abc", -1, wide, 2), 0);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));

  const WCHAR text[] = {'x', 0x4E2D, 'y', 0};  // a character 1252 lacks
  EXPECT_EQ(WideCharToMultiByte(CP_ACP, 0, text, -1, nullptr, 0, nullptr, nullptr), 4);
  char narrow[8] = {};
  BOOL usedDefault = FALSE;
  EXPECT_EQ(WideCharToMultiByte(CP_ACP, 0, text, -1, narrow, 8, nullptr, &usedDefault), 4);
  EXPECT_STREQ(narrow, "x?y");
  EXPECT_TRUE(usedDefault);
  EXPECT_EQ(WideCharToMultiByte(CP_ACP, 0, text, -1, narrow, 8, "#", nullptr), 4);
  EXPECT_STREQ(narrow, "x#y");
  SetLastError(0);
  EXPECT_EQ(WideCharToMultiByte(CP_ACP, 0, text, -1, narrow, 2, nullptr, nullptr), 0);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
  EXPECT_EQ(MultiByteToWideChar(CP_ACP, 0, "", 0, wide, 8), 0) << "an empty input is an error";
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
}

// The run-time library's default locale maps and folds the ASCII letters only.
TEST(MultibyteStrings, CaseMappingAndFoldingInTheDefaultLocale) {
  unsigned char text[] = "Abc-\xE9\xC9-xYz";
  _mbsupr(text);
  EXPECT_STREQ(reinterpret_cast<char*>(text), "ABC-\xE9\xC9-XYZ");
  _mbslwr(text);
  EXPECT_STREQ(reinterpret_cast<char*>(text), "abc-\xE9\xC9-xyz");
  auto icmp = [](const char* a, const char* b) {
    return _mbsicmp(reinterpret_cast<const unsigned char*>(a), reinterpret_cast<const unsigned char*>(b));
  };
  EXPECT_EQ(icmp("HeLLo", "hello"), 0);
  EXPECT_LT(icmp("a", "B"), 0);
  EXPECT_LT(icmp("_", "a"), 0) << "letters fold to lower case before comparing";
  EXPECT_GT(icmp("\xE9", "\xC9"), 0);
  EXPECT_LT(icmp("ab", "abc"), 0);
}
