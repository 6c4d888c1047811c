// Expected values come from the real functions (run under Wine, which takes
// its code page tables from Windows's own); rows marked "Wine differs" follow
// Windows's documentation where Wine departs from it, and are skipped there.

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "tbxutl/platform/win32_testing.h"
#include "tbxutl/platform/windows.h"

namespace {

using tbx::testing::RunningUnderWine;
using tbx::testing::Wide;
using tbx::testing::WideOf;
using tbx::testing::WideString;

constexpr DWORD kUntouched = 0xBEEF;

// Bytes 0x80-0x9F of Windows-1252; 0xA0-0xFF are U+00A0-U+00FF. The five
// unassigned bytes map to the C1 controls of the same value.
constexpr char16_t k1252Low[32] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

// Bytes 0x80-0xFF of code page 437.
constexpr char16_t k437High[128] = {
    0x00C7, 0x00FC, 0x00E9, 0x00E2, 0x00E4, 0x00E0, 0x00E5, 0x00E7, 0x00EA, 0x00EB, 0x00E8, 0x00EF, 0x00EE,
    0x00EC, 0x00C4, 0x00C5, 0x00C9, 0x00E6, 0x00C6, 0x00F4, 0x00F6, 0x00F2, 0x00FB, 0x00F9, 0x00FF, 0x00D6,
    0x00DC, 0x00A2, 0x00A3, 0x00A5, 0x20A7, 0x0192, 0x00E1, 0x00ED, 0x00F3, 0x00FA, 0x00F1, 0x00D1, 0x00AA,
    0x00BA, 0x00BF, 0x2310, 0x00AC, 0x00BD, 0x00BC, 0x00A1, 0x00AB, 0x00BB, 0x2591, 0x2592, 0x2593, 0x2502,
    0x2524, 0x2561, 0x2562, 0x2556, 0x2555, 0x2563, 0x2551, 0x2557, 0x255D, 0x255C, 0x255B, 0x2510, 0x2514,
    0x2534, 0x252C, 0x251C, 0x2500, 0x253C, 0x255E, 0x255F, 0x255A, 0x2554, 0x2569, 0x2566, 0x2560, 0x2550,
    0x256C, 0x2567, 0x2568, 0x2564, 0x2565, 0x2559, 0x2558, 0x2552, 0x2553, 0x256B, 0x256A, 0x2518, 0x250C,
    0x2588, 0x2584, 0x258C, 0x2590, 0x2580, 0x03B1, 0x00DF, 0x0393, 0x03C0, 0x03A3, 0x03C3, 0x00B5, 0x03C4,
    0x03A6, 0x0398, 0x03A9, 0x03B4, 0x221E, 0x03C6, 0x03B5, 0x2229, 0x2261, 0x00B1, 0x2265, 0x2264, 0x2320,
    0x2321, 0x00F7, 0x2248, 0x00B0, 0x2219, 0x00B7, 0x221A, 0x207F, 0x00B2, 0x25A0, 0x00A0};

// MB_USEGLYPHCHARS on code page 437: bytes 0x00-0x1F, then 0x7F.
constexpr char16_t k437Glyphs[33] = {
    0x0000, 0x263A, 0x263B, 0x2665, 0x2666, 0x2663, 0x2660, 0x2022, 0x25D8, 0x25CB, 0x25D9,
    0x2642, 0x2640, 0x266A, 0x266B, 0x263C, 0x25BA, 0x25C4, 0x2195, 0x203C, 0x00B6, 0x00A7,
    0x25AC, 0x21A8, 0x2191, 0x2193, 0x2192, 0x2190, 0x221F, 0x2194, 0x25B2, 0x25BC, 0x2302};

std::string AllBytes(int first, int last) {
  std::string bytes;
  for (int b = first; b <= last; ++b) bytes += static_cast<char>(b);
  return bytes;
}

WideString ToWide(UINT cp, DWORD flags, const std::string& bytes) {
  WideString out(bytes.size() * 3, 0);
  int n = MultiByteToWideChar(cp, flags, bytes.data(), static_cast<int>(bytes.size()), out.data(),
                              static_cast<int>(out.size()));
  out.resize(n > 0 ? static_cast<std::size_t>(n) : 0);
  return out;
}

std::string ToBytes(UINT cp, DWORD flags, const WideString& units, BOOL* used = nullptr,
                    const char* defaultChar = nullptr) {
  std::string out(units.size() * 4, '\x55');
  int n = WideCharToMultiByte(cp, flags, units.data(), static_cast<int>(units.size()), out.data(),
                              static_cast<int>(out.size()), defaultChar, used);
  out.resize(n > 0 ? static_cast<std::size_t>(n) : 0);
  return out;
}

TEST(CodePages, AnsiIs1252AndOemIs437WithoutLeadBytes) {
  EXPECT_EQ(GetACP(), 1252u);
  EXPECT_EQ(GetOEMCP(), 437u);
  for (int b = 0; b < 256; ++b) {
    EXPECT_FALSE(IsDBCSLeadByte(static_cast<BYTE>(b))) << b;
    for (UINT cp : {0u, 1u, 3u, 437u, 1252u, 65001u}) EXPECT_FALSE(IsDBCSLeadByteEx(cp, static_cast<BYTE>(b))) << cp;
  }
}

TEST(CodePages, EveryByteOf1252And437MapsAndComesBack) {
  WideString ascii = ToWide(1252, 0, AllBytes(0, 0x7F));
  for (int b = 0; b < 0x80; ++b) EXPECT_EQ(ascii[static_cast<std::size_t>(b)], b);

  WideString expected1252 = WideOf(std::u16string_view(k1252Low, 32));
  for (char16_t u = 0xA0; u <= 0xFF; ++u) expected1252 += static_cast<WCHAR>(u);
  const WideString expected437 = WideOf(std::u16string_view(k437High, 128));
  const std::string high = AllBytes(0x80, 0xFF);
  for (UINT cp : {0u, 3u, 1252u, 1u, 437u}) {
    const WideString& expected = cp == 1u || cp == 437u ? expected437 : expected1252;
    SCOPED_TRACE(cp);
    EXPECT_EQ(ToWide(cp, 0, AllBytes(0, 0x7F)), ascii);
    EXPECT_EQ(ToWide(cp, 0, high), expected);
    // Every byte is defined, the five unassigned bytes of 1252 included.
    EXPECT_EQ(ToWide(cp, MB_ERR_INVALID_CHARS | MB_PRECOMPOSED, high), expected);
    BOOL used = TRUE;
    EXPECT_EQ(ToBytes(cp, WC_NO_BEST_FIT_CHARS, expected, &used), high);
    EXPECT_FALSE(used);
  }
}

TEST(CodePages, GlyphAndCompositeForms) {
  WideString glyphs = ToWide(437, MB_USEGLYPHCHARS, AllBytes(0, 0x1F) + "\x7F");
  EXPECT_EQ(glyphs, WideOf(std::u16string_view(k437Glyphs, 33)));
  EXPECT_EQ(ToWide(1252, MB_USEGLYPHCHARS, "\x01\x7F"), WideOf(u"\x0001\x007F"));

  EXPECT_EQ(ToWide(1252, MB_COMPOSITE, "\xE9\xC6\x9A\xFF"), WideOf(u"e\x0301\x00C6s\x030Cy\x0308"));
  EXPECT_EQ(ToWide(437, MB_COMPOSITE, "\x80\x90"), WideOf(u"C\x0327" u"E\x0301"));
  // A decomposition either fits whole or not at all.
  WCHAR out[3] = {0x7F7F, 0x7F7F, 0x7F7F};
  SetLastError(kUntouched);
  EXPECT_EQ(MultiByteToWideChar(1252, MB_COMPOSITE, "a\xE9", 2, out, 2), 0);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
  EXPECT_EQ(out[1], 0x7F7F);
  EXPECT_EQ(MultiByteToWideChar(1252, MB_COMPOSITE, "a\xE9", 2, nullptr, 0), 3);
}

struct BestFitCase {
  UINT cp;
  char16_t unit;
  DWORD flags;
  char byte;
  bool used;
};

TEST(CodePages, UnmappedCharactersTakeABestFitOrTheDefault) {
  const BestFitCase cases[] = {
      {1252, 0x0100, 0, 'A', false},                       // A with macron
      {1252, 0x0100, WC_NO_BEST_FIT_CHARS, '?', true},
      {1252, 0xFF21, 0, 'A', false},                       // fullwidth A
      {1252, 0x0191, 0, '\x83', false},                    // capital hooked f
      {1252, 0x039C, 0, '?', true},                        // Greek capital mu
      {1252, 0x0400, 0, '?', true},
      {1252, 0x0081, WC_NO_BEST_FIT_CHARS, '\x81', false},
      {1252, 0xD800, 0, '?', true},                        // a surrogate alone
      {437, 0x263A, 0, '\x01', false},                     // the glyph of 0x01
      {437, 0x263A, WC_NO_BEST_FIT_CHARS, '?', true},
      {437, 0x2302, 0, '\x7F', false},
      {437, 0x20AC, 0, '?', true},
      {437, 0x00C0, 0, 'A', false},
  };
  for (const BestFitCase& c : cases) {
    BOOL used = 7;
    EXPECT_EQ(ToBytes(c.cp, c.flags, WideString(1, static_cast<WCHAR>(c.unit)), &used), std::string(1, c.byte))
        << c.cp << " U+" << std::hex << static_cast<int>(c.unit);
    EXPECT_EQ(used, c.used ? TRUE : FALSE) << c.cp << " U+" << std::hex << static_cast<int>(c.unit);
  }
  // A surrogate pair is two units to a single-byte code page.
  EXPECT_EQ(ToBytes(1252, 0, WideOf(u"\xD83D\xDE00")), "??");
}

// Every UTF-16 unit through both single-byte code pages, with and without
// best fit: a digest of the byte and the used-default flag of each.
TEST(CodePages, EveryUnitConvertsAsWindowsDoes) {
  struct Expected {
    UINT cp;
    DWORD flags;
    std::uint32_t digest;
  };
  const Expected expected[] = {{1252, 0, 0x66034384u}, {1252, WC_NO_BEST_FIT_CHARS, 0x928DD0BDu},
                               {437, 0, 0x2AD0BC8Cu}, {437, WC_NO_BEST_FIT_CHARS, 0x612A4189u}};
  for (const Expected& e : expected) {
    std::uint32_t digest = 2166136261u;
    for (std::uint32_t u = 0; u < 0x10000; ++u) {
      WCHAR unit = static_cast<WCHAR>(u);
      char byte = 0;
      BOOL used = FALSE;
      int n = WideCharToMultiByte(e.cp, e.flags, &unit, 1, &byte, 1, nullptr, &used);
      for (std::uint32_t v : {static_cast<std::uint32_t>(n), static_cast<std::uint32_t>(static_cast<BYTE>(byte)),
                              static_cast<std::uint32_t>(used)}) {
        digest = (digest ^ v) * 16777619u;
      }
    }
    EXPECT_EQ(digest, e.digest) << e.cp << " flags " << e.flags << " digest 0x" << std::hex << digest;
  }
}

TEST(CodePages, DefaultCharacterAndItsReport) {
  BOOL used = 7;
  EXPECT_EQ(ToBytes(1252, 0, WideOf(u"a\x0400?"), &used, "*"), "a*?");
  EXPECT_TRUE(used);
  EXPECT_EQ(ToBytes(1252, 0, WideOf(u"a\x0400"), &used, ""), std::string("a\0", 2));
  EXPECT_TRUE(used);
  EXPECT_EQ(ToBytes(1252, WC_NO_BEST_FIT_CHARS, WideOf(u"a\x0100"), &used, "*"), "a*");
  EXPECT_TRUE(used);
  EXPECT_EQ(ToBytes(1252, 0, WideOf(u"abc?"), &used), "abc?");
  EXPECT_FALSE(used);

  // A size query reports too; a full buffer reports what it converted.
  used = 7;
  EXPECT_EQ(WideCharToMultiByte(1252, 0, Wide(u"a\x0400"), -1, nullptr, 0, nullptr, &used), 3);
  EXPECT_TRUE(used);
  char out[1];
  EXPECT_EQ(WideCharToMultiByte(1252, 0, Wide(u"a\x0400"), -1, out, 1, nullptr, &used), 0);
  EXPECT_FALSE(used);
  EXPECT_EQ(WideCharToMultiByte(1252, 0, Wide(u"\x0400"), -1, out, 1, nullptr, &used), 0);
  EXPECT_TRUE(used);
}

TEST(CodePages, CompositeCheckComposesWhatTheCodePageShows) {
  struct Case {
    std::u16string units;
    DWORD flags;
    std::string bytes;
    bool used;
  };
  const Case cases[] = {
      {u"e\x0301", 0, "e\xB4", false},
      {u"e\x0301", WC_COMPOSITECHECK, "\xE9", false},
      {u"Z\x030C", WC_COMPOSITECHECK, "\x8E", false},
      {u"e\x0301\x0301", WC_COMPOSITECHECK, "\xE9\xB4", false},
      {u"\x00E9\x0301", WC_COMPOSITECHECK, "\xE9\xB4", false},
      {u"A\x0304", WC_COMPOSITECHECK, "A", false},  // A with macron, by best fit
      {u"A\x0304", WC_COMPOSITECHECK | WC_NO_BEST_FIT_CHARS, "A?", true},
      {u"A\x0304", WC_COMPOSITECHECK | WC_NO_BEST_FIT_CHARS | WC_DEFAULTCHAR, "?", true},
      {u"e\x0327", WC_COMPOSITECHECK, "e\xB8", false},  // composes to U+0229, not in 1252
      {u"e\x0327", WC_COMPOSITECHECK | WC_SEPCHARS, "e\xB8", false},
      {u"e\x0327", WC_COMPOSITECHECK | WC_DISCARDNS, "e", false},
      {u"e\x0327", WC_COMPOSITECHECK | WC_DEFAULTCHAR, "?", true},
      {u"q\x0301", WC_COMPOSITECHECK | WC_DEFAULTCHAR, "q\xB4", false},  // no such composite
  };
  for (const Case& c : cases) {
    BOOL used = 7;
    EXPECT_EQ(ToBytes(1252, c.flags, WideOf(c.units), &used), c.bytes) << c.flags;
    EXPECT_EQ(used, c.used ? TRUE : FALSE) << c.flags;
  }
  EXPECT_EQ(ToBytes(437, WC_COMPOSITECHECK, WideOf(u"e\x0301")), "\x82");
}

TEST(CodePages, TruncationAndSizeQueries) {
  SetLastError(kUntouched);
  EXPECT_EQ(MultiByteToWideChar(1252, 0, "abc", -1, nullptr, 0), 4);
  EXPECT_EQ(MultiByteToWideChar(1252, 0, "abc", -5, nullptr, 0), 4);  // any negative length
  EXPECT_EQ(MultiByteToWideChar(1252, 0, "abc", 3, nullptr, 0), 3);
  EXPECT_EQ(MultiByteToWideChar(1252, 0, "abc\0def", 8, nullptr, 0), 8);
  EXPECT_EQ(WideCharToMultiByte(1252, 0, Wide(u"abc"), -1, nullptr, 0, nullptr, nullptr), 4);
  EXPECT_EQ(WideCharToMultiByte(1252, 0, Wide(u"abc"), -7, nullptr, 0, nullptr, nullptr), 4);
  EXPECT_EQ(GetLastError(), kUntouched);  // success leaves the last error alone

  WCHAR wide[4] = {0x7F7F, 0x7F7F, 0x7F7F, 0x7F7F};
  EXPECT_EQ(MultiByteToWideChar(1252, 0, "abc", -1, wide, 3), 0);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
  EXPECT_EQ(WideString(wide, 4), WideOf(u"abc\x7F7F"));  // what fitted is written
  EXPECT_EQ(MultiByteToWideChar(1252, 0, "abc", 3, wide, 3), 3);

  char bytes[4] = {'x', 'x', 'x', 'x'};
  SetLastError(kUntouched);
  EXPECT_EQ(WideCharToMultiByte(1252, 0, Wide(u"abc"), -1, bytes, 3, nullptr, nullptr), 0);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
  EXPECT_EQ(std::string(bytes, 4), "abcx");
}

// Bad calls, each one change from a good one: "abc" into a buffer of 8.
struct BadCall {
  const char* what;
  UINT cp = 1252;
  DWORD flags = 0;
  bool nullSource = false;
  int sourceLength = 3;
  bool nullBuffer = false;
  int bufferSize = 8;
  bool sameBuffer = false;
  const char* defaultChar = nullptr;
  bool usedFlag = false;
  DWORD error = ERROR_INVALID_PARAMETER;
  bool wineDiffers = false;  // Wine takes the call
};

TEST(CodePages, BadArgumentsAndFlags) {
  const BadCall toWide[] = {
      {.what = "null source", .nullSource = true},
      {.what = "zero length", .sourceLength = 0},
      {.what = "negative size", .bufferSize = -1},
      {.what = "size without buffer", .nullBuffer = true},
      {.what = "unknown code page", .cp = 12345},
      {.what = "unknown flag", .flags = 0x10, .error = ERROR_INVALID_FLAGS},
      {.what = "arguments before flags", .flags = 0x10, .nullSource = true},
      {.what = "same buffer", .sameBuffer = true, .wineDiffers = true},
      {.what = "precomposed and composite", .flags = MB_PRECOMPOSED | MB_COMPOSITE, .error = ERROR_INVALID_FLAGS,
       .wineDiffers = true},
      {.what = "UTF-8 with MB_PRECOMPOSED", .cp = CP_UTF8, .flags = MB_PRECOMPOSED, .error = ERROR_INVALID_FLAGS,
       .wineDiffers = true},
  };
  const BadCall toBytes[] = {
      {.what = "null source", .nullSource = true},
      {.what = "zero length", .sourceLength = 0},
      {.what = "negative size", .bufferSize = -1},
      {.what = "size without buffer", .nullBuffer = true},
      {.what = "unknown code page", .cp = 12345},
      {.what = "MB_ flag", .flags = MB_PRECOMPOSED, .error = ERROR_INVALID_FLAGS},
      {.what = "same buffer", .sameBuffer = true, .wineDiffers = true},
      {.what = "WC_ERR_INVALID_CHARS outside UTF-8", .flags = WC_ERR_INVALID_CHARS, .error = ERROR_INVALID_FLAGS,
       .wineDiffers = true},
      {.what = "WC_SEPCHARS alone", .flags = WC_SEPCHARS, .error = ERROR_INVALID_FLAGS, .wineDiffers = true},
      {.what = "two composite choices", .flags = WC_COMPOSITECHECK | WC_SEPCHARS | WC_DISCARDNS,
       .error = ERROR_INVALID_FLAGS, .wineDiffers = true},
      {.what = "UTF-8 with best-fit flag", .cp = CP_UTF8, .flags = WC_NO_BEST_FIT_CHARS, .error = ERROR_INVALID_FLAGS,
       .wineDiffers = true},
      {.what = "UTF-8 with a default", .cp = CP_UTF8, .defaultChar = "?", .wineDiffers = true},
      {.what = "UTF-8 with a used flag", .cp = CP_UTF8, .usedFlag = true, .wineDiffers = true},
  };
  alignas(WCHAR) char buffer[32] = "abc";
  WCHAR* wideBuffer = reinterpret_cast<WCHAR*>(buffer);
  for (const BadCall& c : toWide) {
    if (c.wineDiffers && RunningUnderWine()) continue;
    SetLastError(kUntouched);
    EXPECT_EQ(MultiByteToWideChar(c.cp, c.flags, c.nullSource ? nullptr : buffer, c.sourceLength,
                                  c.nullBuffer ? nullptr : c.sameBuffer ? wideBuffer : wideBuffer + 4, c.bufferSize),
              0)
        << c.what;
    EXPECT_EQ(GetLastError(), c.error) << c.what;
  }
  const WCHAR abc[] = {'a', 'b', 'c', 0};
  BOOL used;
  for (const BadCall& c : toBytes) {
    if (c.wineDiffers && RunningUnderWine()) continue;
    SetLastError(kUntouched);
    const WCHAR* source = c.nullSource ? nullptr : c.sameBuffer ? wideBuffer : abc;
    EXPECT_EQ(WideCharToMultiByte(c.cp, c.flags, source, c.sourceLength, c.nullBuffer ? nullptr : buffer,
                                  c.bufferSize, c.defaultChar, c.usedFlag ? &used : nullptr),
              0)
        << c.what;
    EXPECT_EQ(GetLastError(), c.error) << c.what;
  }
  // UTF-8 takes only the flags for invalid input.
  EXPECT_EQ(MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, "abc", 3, wideBuffer, 4), 3);
  EXPECT_EQ(WideCharToMultiByte(CP_UTF8, WC_ERR_INVALID_CHARS, abc, 3, buffer, 8, nullptr, nullptr), 3);
}

struct Utf8Case {
  std::string bytes;
  std::u16string units;
  bool invalid;
  bool wineDiffers = false;
};

TEST(CodePages, Utf8ToUtf16) {
  const Utf8Case cases[] = {
      {"\x7F", u"\x007F", false},          {"\xC2\x80", u"\x0080", false},
      {"\xDF\xBF", u"\x07FF", false},      {"\xE0\xA0\x80", u"\x0800", false},
      {"\xED\x9F\xBF", u"\xD7FF", false},  {"\xEF\xBF\xBF", u"\xFFFF", false},
      {"\xF0\x90\x80\x80", u"\xD800\xDC00", false},
      {"\xF4\x8F\xBF\xBF", u"\xDBFF\xDFFF", false},
      {"\xEF\xBB\xBF" "A", u"\xFEFF" u"A", false},  // a byte-order mark stays
      // Overlong forms: C0 and C1 are never leads; for the longer forms the
      // lead and the out-of-range second byte give one U+FFFD.
      {"\xC0\x80", u"\xFFFD\xFFFD", true},
      {"\xE0\x80\x80", u"\xFFFD\xFFFD", true},
      {"\xF0\x80\x80\x80", u"\xFFFD\xFFFD\xFFFD", true},
      // Surrogates, and beyond U+10FFFF.
      {"\xED\xA0\x80", u"\xFFFD\xFFFD", true},
      {"\xED\xA0\x80\xED\xB0\x80", u"\xFFFD\xFFFD\xFFFD\xFFFD", true},
      {"\xF4\x90\x80\x80", u"\xFFFD\xFFFD\xFFFD", true},
      {"\xF5\x80\x80\x80", u"\xFFFD\xFFFD\xFFFD\xFFFD", true},
      {"\xF8\x88\x80\x80\x80", u"\xFFFD\xFFFD\xFFFD\xFFFD\xFFFD", true},
      {"\xFE", u"\xFFFD", true},
      // Truncated sequences: one U+FFFD, and the byte that broke it counts.
      {"\xC3", u"\xFFFD", true},
      {"\xE6\x97", u"\xFFFD", true},
      {"\xF0\x90\x80", u"\xFFFD", true},
      {"\xE6\x97" "A", u"\xFFFD" u"A", true},
      {"\xE6\xC3\xA9", u"\xFFFD\x00E9", true},
      {"\xE0\x20\xC0", u"\xFFFD\x0020\xFFFD", true},
      // Wine differs: a sequence cut by the end of the input takes all the
      // bytes left, so it swallows the "A".
      {"\xF0\x90" "A", u"\xFFFD" u"A", true, true},
      {"\xBF" "A", u"\xFFFD" u"A", true},
  };
  for (const Utf8Case& c : cases) {
    if (c.wineDiffers && RunningUnderWine()) continue;
    const int length = static_cast<int>(c.bytes.size());
    SCOPED_TRACE(testing::PrintToString(c.bytes));
    EXPECT_EQ(ToWide(CP_UTF8, 0, c.bytes), WideOf(c.units));
    EXPECT_EQ(MultiByteToWideChar(CP_UTF8, 0, c.bytes.data(), length, nullptr, 0), static_cast<int>(c.units.size()));
    WCHAR out[8];
    SetLastError(kUntouched);
    int strict = MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, c.bytes.data(), length, out, 8);
    EXPECT_EQ(strict, c.invalid ? 0 : static_cast<int>(c.units.size()));
    EXPECT_EQ(GetLastError(), c.invalid ? static_cast<DWORD>(ERROR_NO_UNICODE_TRANSLATION) : kUntouched);
    if (c.invalid) {
      EXPECT_EQ(MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, c.bytes.data(), length, nullptr, 0), 0);
    }
  }
  // A full buffer wins over invalid input.
  WCHAR out[2] = {0x7F7F, 0x7F7F};
  SetLastError(kUntouched);
  EXPECT_EQ(MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, "a\xC0", 2, out, 1), 0);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
  if (!RunningUnderWine()) {  // Wine differs: it writes half the pair and succeeds
    EXPECT_EQ(MultiByteToWideChar(CP_UTF8, 0, "a\xF0\x90\x80\x80", 5, out, 2), 0);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
    EXPECT_EQ(WideString(out, 2), WideOf(u"a\x7F7F"));
  }
}

TEST(CodePages, Utf16ToUtf8) {
  const Utf8Case cases[] = {
      {"A", u"A", false},
      {"\x7F\xC2\x80", u"\x007F\x0080", false},
      {"\xDF\xBF\xE0\xA0\x80", u"\x07FF\x0800", false},
      {"\xEF\xBF\xBF", u"\xFFFF", false},
      {"\xEF\xBF\xBE\xEF\xBB\xBF", u"\xFFFE\xFEFF", false},
      {"\xF0\x90\x80\x80", u"\xD800\xDC00", false},
      {"\xF4\x8F\xBF\xBF", u"\xDBFF\xDFFF", false},
      // A lone or reversed surrogate becomes U+FFFD.
      {"\xEF\xBF\xBD", u"\xD800", true},
      {"\xEF\xBF\xBD", u"\xDC00", true},
      {"\xEF\xBF\xBD-", u"\xD800-", true},
      {"\xEF\xBF\xBD\xEF\xBF\xBD", u"\xDFFF\xDBFF", true},
  };
  for (const Utf8Case& c : cases) {
    const WideString units = WideOf(c.units);
    const int length = static_cast<int>(units.size());
    SCOPED_TRACE(testing::PrintToString(c.bytes));
    EXPECT_EQ(ToBytes(CP_UTF8, 0, units), c.bytes);
    char out[16];
    SetLastError(kUntouched);
    int strict = WideCharToMultiByte(CP_UTF8, WC_ERR_INVALID_CHARS, units.data(), length, out, 16, nullptr, nullptr);
    EXPECT_EQ(strict, c.invalid ? 0 : static_cast<int>(c.bytes.size()));
    EXPECT_EQ(GetLastError(), c.invalid ? static_cast<DWORD>(ERROR_NO_UNICODE_TRANSLATION) : kUntouched);
  }
  // Only whole sequences are written.
  char out[4] = {'x', 'x', 'x', 'x'};
  EXPECT_EQ(WideCharToMultiByte(CP_UTF8, 0, Wide(u"a\x00E9"), 2, out, 2, nullptr, nullptr), 0);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
  EXPECT_EQ(std::string(out, 4), "axxx");
  EXPECT_EQ(WideCharToMultiByte(CP_UTF8, 0, Wide(u"a\xD800\xDC00"), 3, out, 4, nullptr, nullptr), 0);
  EXPECT_EQ(std::string(out, 4), "axxx");
}

}  // namespace
