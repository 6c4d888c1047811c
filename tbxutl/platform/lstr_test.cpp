// Expected values come from the real functions, run under Wine.

#include <gtest/gtest.h>

#include <cstring>
#include <sstream>
#include <string>
#include <vector>

#include "tbxutl/platform/windows.h"

namespace {

constexpr DWORD kUntouched = 0xBEEF;

TEST(Lstr, LengthCopyAndConcatenation) {
  EXPECT_EQ(lstrlenA("abc"), 3);
  EXPECT_EQ(lstrlenA(""), 0);
  EXPECT_EQ(lstrlenA(nullptr), 0);

  char buffer[8];
  EXPECT_EQ(lstrcpyA(buffer, "ab"), buffer);
  EXPECT_EQ(lstrcatA(buffer, "cd"), buffer);
  EXPECT_STREQ(buffer, "abcd");

  SetLastError(kUntouched);
  EXPECT_EQ(lstrcpyA(nullptr, "a"), nullptr);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
  EXPECT_EQ(lstrcpyA(buffer, nullptr), nullptr);
  EXPECT_EQ(lstrcatA(nullptr, "a"), nullptr);
  EXPECT_EQ(lstrcatA(buffer, nullptr), nullptr);
  EXPECT_STREQ(buffer, "abcd");
}

TEST(Lstr, BoundedCopyAlwaysTerminates) {
  struct Case {
    const char* source;
    int size;
    const char* expected;  // the buffer afterwards, x for bytes not written
  };
  const Case cases[] = {
      {"hello", 3, "he\0xxxxx"}, {"hello", 1, "\0xxxxxxx"}, {"hello", 0, "xxxxxxxx"},
      {"hi", 8, "hi\0xxxxx"},    {"hello", 6, "hello\0xx"},
  };
  for (const Case& c : cases) {
    char buffer[8];
    std::memset(buffer, 'x', sizeof buffer);
    EXPECT_EQ(lstrcpynA(buffer, c.source, c.size), buffer) << c.size;
    EXPECT_EQ(std::string(buffer, 8), std::string(c.expected, 8)) << c.size;
  }
  char buffer[4] = {'x', 'x', 'x', 'x'};
  SetLastError(kUntouched);
  EXPECT_EQ(lstrcpynA(buffer, nullptr, 4), nullptr);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
  EXPECT_EQ(buffer[0], 'x');
  EXPECT_EQ(lstrcpynA(nullptr, "a", 4), nullptr);
}

int Sign(int value) { return (value > 0) - (value < 0); }

TEST(Lstr, CompareByWordSortRules) {
  struct Case {
    const char* a;
    const char* b;
    int order;            // lstrcmpA
    int orderIgnoreCase;  // lstrcmpiA
  };
  const Case cases[] = {
      {"a", "A", -1, 0},                    // small before capital
      {"ab", "aB", -1, 0},
      {"Ab", "aB", 1, 0},                   // the first case difference decides
      {"Zebra", "apple", 1, 1},             // letters before case
      {"\xE9", "e", 1, 1},                  // an accent after no accent
      {"\xE9" "a", "eb", -1, -1},           // letters before accents
      {"e\xE9", "\xE9" "e", -1, -1},        // the first accent difference decides
      {"a\xE9", "\xE9" "a", -1, -1},
      {"r\xE9sum\xE9", "Resume", 1, 1},     // accents before case
      {"\xC6", "AE", 0, 0},                 // ligatures expand
      {"\xE6", "ae", 0, 0},
      {"\xDF", "ss", 0, 0},
      {"\xDF", "st", -1, -1},
      {"\xFE", "th", 0, 0},
      {"\x8A", "S", 1, 1},
      {"co-op", "coop", 1, 1},              // a hyphen counts only on a tie
      {"coop", "co-oq", -1, -1},
      {"co-op", "co-op", 0, 0},
      {"a-b", "ab", 1, 1},
      {"a'b", "a-b", -1, -1},
      {"a-", "-a", -1, -1},                 // by position: later sorts first
      {"-", "--", -1, -1},
      {"a\x01" "b", "ab", 1, 1},            // controls sort like hyphens
      {"a\xAD" "b", "ab", 0, 0},            // the soft hyphen does not count
      {"", "\xAD", 0, 0},
      {"", "-", -1, -1},
      {"", "a", -1, -1},
      {"a b", "ab", -1, -1},                // a space is a character
      {"a b", "a-b", -1, -1},
      {"10", "9", -1, -1},                  // digits are characters, not numbers
      {"\xBD", "1/2", -1, -1},
      {"\xB2", "2", 1, 1},
      {"\x85", "...", 1, 1},
      {"\x99", "TM", 1, 1},
      {"\xAA", "a", 1, 1},
      {"\x80", "$", 1, 1},
      {"z", "\xE0", 1, 1},
      {"ab", "a\xE0", 1, 1},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(Sign(lstrcmpA(c.a, c.b)), c.order) << c.a << " | " << c.b;
    EXPECT_EQ(Sign(lstrcmpA(c.b, c.a)), -c.order) << c.b << " | " << c.a;
    EXPECT_EQ(Sign(lstrcmpiA(c.a, c.b)), c.orderIgnoreCase) << c.a << " | " << c.b;
  }
  EXPECT_EQ(lstrcmpA(nullptr, nullptr), 0);
  EXPECT_EQ(lstrcmpA(nullptr, ""), -1);
  EXPECT_EQ(lstrcmpA("", nullptr), 1);
  EXPECT_EQ(lstrcmpiA(nullptr, "a"), -1);
  EXPECT_EQ(lstrcmpiA("a", nullptr), 1);
}

// The order of the 255 one-character strings: bytes in hex, ascending, "="
// between equal ones.
constexpr const char* kOrder =
    "ad 01 02 03 04 05 06 07 08 0e 0f 10 11 12 13 14 15 16 17 18 19 1a 1b 1c 1d 1e 1f 7f 27 2d 96 97 "
    "20 a0 09 0a 0b 0c 0d 21 22 23 24 25 26 28 29 2a 2c 2e 2f 3a 3b 3f 40 5b 5c 5d 5e=88 5f 60 7b 7c "
    "7d 7e a1 a6 a8 af b4 b8 bf 98 91 92 82 93 94 84 8b 9b a2 a3 a4 a5 80 2b 3c 3d 3e b1 ab bb d7 f7 "
    "a7 a9 ac ae b0 b5 b6 b7 85 86 87 95 89 81 8d 8f 90 9d 30 bc bd be 31 b9 32 b2 33 b3 34 35 36 37 "
    "38 39 61 41 aa e1 c1 e0 c0 e2 c2 e4 c4 e3 c3 e5 c5 e6 c6 62 42 63 43 e7 c7 64 44 f0 d0 65 45 e9 "
    "c9 e8 c8 ea ca eb cb 66 46 83 67 47 68 48 69 49 ed cd ec cc ee ce ef cf 6a 4a 6b 4b 6c 4c 6d 4d "
    "6e 4e f1 d1 6f 4f ba f3 d3 f2 d2 f4 d4 f6 d6 f5 d5 f8 d8 9c 8c 70 50 71 51 72 52 73 53 9a 8a df "
    "74 54 fe de 99 75 55 fa da f9 d9 fb db fc dc 76 56 77 57 78 58 79 59 fd dd ff 9f 7a 5a 9e 8e";

// The same, ignoring case.
constexpr const char* kOrderIgnoreCase =
    "ad 01 02 03 04 05 06 07 08 0e 0f 10 11 12 13 14 15 16 17 18 19 1a 1b 1c 1d 1e 1f 7f 27 2d 96 97 "
    "20 a0 09 0a 0b 0c 0d 21 22 23 24 25 26 28 29 2a 2c 2e 2f 3a 3b 3f 40 5b 5c 5d 5e=88 5f 60 7b 7c "
    "7d 7e a1 a6 a8 af b4 b8 bf 98 91 92 82 93 94 84 8b 9b a2 a3 a4 a5 80 2b 3c 3d 3e b1 ab bb d7 f7 "
    "a7 a9 ac ae b0 b5 b6 b7 85 86 87 95 89 81 8d 8f 90 9d 30 bc bd be 31 b9 32 b2 33 b3 34 35 36 37 "
    "38 39 41=61 aa c1=e1 c0=e0 c2=e2 c4=e4 c3=e3 c5=e5 c6=e6 42=62 43=63 c7=e7 44=64 d0=f0 45=65 "
    "c9=e9 c8=e8 ca=ea cb=eb 46=66 83 47=67 48=68 49=69 cd=ed cc=ec ce=ee cf=ef 4a=6a 4b=6b 4c=6c "
    "4d=6d 4e=6e d1=f1 4f=6f ba d3=f3 d2=f2 d4=f4 d6=f6 d5=f5 d8=f8 8c=9c 50=70 51=71 52=72 53=73 "
    "8a=9a df 54=74 de=fe 99 55=75 da=fa d9=f9 db=fb dc=fc 56=76 57=77 58=78 59=79 dd=fd 9f=ff 5a=7a "
    "8e=9e";

// Groups of equal one-character strings, in ascending order.
std::vector<std::vector<std::string>> ParseOrder(const char* order) {
  std::vector<std::vector<std::string>> groups;
  std::istringstream words(order);
  for (std::string word; words >> word;) {
    groups.emplace_back();
    std::istringstream members(word);
    for (std::string hex; std::getline(members, hex, '=');) {
      groups.back().push_back(std::string(1, static_cast<char>(std::stoi(hex, nullptr, 16))));
    }
  }
  return groups;
}

void ExpectOrder(const char* order, int(WINAPI* compare)(LPCSTR, LPCSTR)) {
  auto groups = ParseOrder(order);
  std::size_t members = 0;
  for (std::size_t g = 0; g < groups.size(); ++g) {
    members += groups[g].size();
    for (const std::string& s : groups[g]) EXPECT_EQ(compare(s.c_str(), groups[g][0].c_str()), 0) << std::hex << +static_cast<BYTE>(s[0]);
    if (g + 1 == groups.size()) break;
    const std::string& last = groups[g].back();
    const std::string& next = groups[g + 1].front();
    EXPECT_LT(compare(last.c_str(), next.c_str()), 0) << std::hex << +static_cast<BYTE>(last[0]) << " < " << +static_cast<BYTE>(next[0]);
    EXPECT_GT(compare(next.c_str(), last.c_str()), 0) << std::hex << +static_cast<BYTE>(next[0]) << " > " << +static_cast<BYTE>(last[0]);
  }
  EXPECT_EQ(members, 255u);
}

TEST(Lstr, OrderOfEveryCharacter) {
  ExpectOrder(kOrder, lstrcmpA);
  ExpectOrder(kOrderIgnoreCase, lstrcmpiA);
}

}  // namespace
