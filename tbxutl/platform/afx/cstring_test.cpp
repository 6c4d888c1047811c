#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <string>
#include <utility>

#include "tbxutl/platform/afx/cstring.h"
#include "tbxutl/platform/afx/exceptions.h"

TEST(CString, ValueSemanticsAndSelfReference) {
  CString a("alpha");
  CString b = a;
  b += "-beta";
  EXPECT_STREQ(a, "alpha");
  EXPECT_STREQ(b, "alpha-beta");

  CString moved = std::move(b);
  EXPECT_STREQ(moved, "alpha-beta");
  EXPECT_TRUE(b.IsEmpty());  // NOLINT(bugprone-use-after-move): moved-from is empty

  // Appending or assigning a string to itself, or a part of itself.
  a += a;
  EXPECT_STREQ(a, "alphaalpha");
  a = static_cast<const char*>(a) + 5;
  EXPECT_STREQ(a, "alpha");
  a = a;  // NOLINT: self-assignment
  EXPECT_STREQ(a, "alpha");

  CString empty;
  EXPECT_EQ(empty.GetLength(), 0);
  EXPECT_STREQ(empty, "");
  EXPECT_STREQ(CString(static_cast<const char*>(nullptr)), "");
  EXPECT_STREQ(CString('x', 3), "xxx");
  EXPECT_STREQ(CString("abcdef", 3), "abc");
}

TEST(CString, IndexingIsChecked) {
  CString s("abc");
  EXPECT_EQ(s.GetAt(0), 'a');
  EXPECT_EQ(s[2], 'c');
  s.SetAt(1, 'X');
  EXPECT_STREQ(s, "aXc");
  EXPECT_THROW(s.GetAt(3), CInvalidArgException);
  EXPECT_THROW(s.GetAt(-1), CInvalidArgException);
  EXPECT_THROW(s.SetAt(3, 'y'), CInvalidArgException);
  EXPECT_THROW(CString().GetAt(0), CInvalidArgException);
}

TEST(CString, SearchCornerCases) {
  CString s("a.b.c");
  EXPECT_EQ(s.Find('.'), 1);
  EXPECT_EQ(s.Find('.', 2), 3);
  EXPECT_EQ(s.Find('.', 4), -1);
  EXPECT_EQ(s.Find('.', 99), -1);
  EXPECT_EQ(s.Find('.', -5), 1);
  EXPECT_EQ(s.Find('\0'), -1) << "the terminator is not part of the string";
  EXPECT_EQ(s.Find("b.c"), 2);
  EXPECT_EQ(s.Find(""), 0);
  EXPECT_EQ(s.Find("", 5), 5);
  EXPECT_EQ(s.Find("", 6), -1);
  EXPECT_EQ(s.Find(static_cast<const char*>(nullptr)), -1);
  EXPECT_EQ(s.ReverseFind('.'), 3);
  EXPECT_EQ(s.ReverseFind('z'), -1);
  EXPECT_EQ(s.FindOneOf("cb"), 2);
  EXPECT_EQ(s.FindOneOf("xyz"), -1);
  EXPECT_EQ(CString().Find('a'), -1);
}

TEST(CString, ExtractionIsClamped) {
  CString s("Hello");
  EXPECT_STREQ(s.Left(2), "He");
  EXPECT_STREQ(s.Left(99), "Hello");
  EXPECT_STREQ(s.Left(-1), "");
  EXPECT_STREQ(s.Mid(3), "lo");
  EXPECT_STREQ(s.Mid(1, 3), "ell");
  EXPECT_STREQ(s.Mid(4, 99), "o");
  EXPECT_STREQ(s.Mid(9), "");
  EXPECT_STREQ(s.Mid(-2, 2), "He");
  EXPECT_STREQ(s.Right(3), "llo");
  EXPECT_STREQ(s.Right(9), "Hello");
  EXPECT_STREQ(s.Right(-3), "");
  EXPECT_STREQ(s.SpanIncluding("eHl"), "Hell");
  EXPECT_STREQ(s.SpanExcluding("o"), "Hell");
}

TEST(CString, TrimAndCase) {
  CString s(" \t\r\n text \v\f");
  EXPECT_STREQ(s.Trim(), "text");
  CString t("xxabcxx");
  EXPECT_STREQ(CString(t).Trim('x'), "abc");
  EXPECT_STREQ(CString(t).TrimLeft('x'), "abcxx");
  EXPECT_STREQ(CString(t).TrimRight("xc"), "xxab");
  EXPECT_STREQ(CString("xxxx").Trim('x'), "");
  EXPECT_STREQ(CString(t).Trim(""), "xxabcxx");

  CString mixed("Mixed Case 123");
  EXPECT_STREQ(CString(mixed).MakeUpper(), "MIXED CASE 123");
  EXPECT_STREQ(CString(mixed).MakeLower(), "mixed case 123");
  EXPECT_STREQ(CString("abc").MakeReverse(), "cba");
  EXPECT_EQ(CString("Apple").CompareNoCase("aPPLE"), 0);
  EXPECT_LT(CString("apple").CompareNoCase("BANANA"), 0);
  EXPECT_LT(CString("B").Compare("a"), 0) << "Compare is case-sensitive, by byte";
  EXPECT_EQ(CString().Compare(nullptr), 0);
}

TEST(CString, ComparisonOperators) {
  CString s("beta");
  EXPECT_TRUE(s == "beta");
  EXPECT_TRUE("beta" == s);
  EXPECT_TRUE(s != "alpha");
  EXPECT_TRUE(s > "alpha");
  EXPECT_TRUE("alpha" < s);
  EXPECT_TRUE(s <= CString("beta"));
  EXPECT_TRUE(s >= "beta");
  EXPECT_STREQ(s + "-" + CString("gamma") + '!', "beta-gamma!");
  EXPECT_STREQ('>' + s, ">beta");
}

TEST(CString, EditingOperations) {
  CString s("one two two three");
  EXPECT_EQ(s.Replace("two", "2"), 2);
  EXPECT_STREQ(s, "one 2 2 three");
  EXPECT_EQ(s.Replace("", "x"), 0);
  EXPECT_EQ(s.Replace("absent", "x"), 0);
  EXPECT_EQ(s.Replace(' ', '_'), 3);
  EXPECT_STREQ(s, "one_2_2_three");
  EXPECT_EQ(s.Replace("_", ""), 3);
  EXPECT_STREQ(s, "one22three");
  EXPECT_EQ(CString("aaa").Replace("a", "aa"), 3) << "replacement text is not searched again";

  CString t("ace");
  EXPECT_EQ(t.Insert(1, 'b'), 4);
  EXPECT_EQ(t.Insert(3, "d"), 5);
  EXPECT_STREQ(t, "abcde");
  EXPECT_EQ(t.Insert(99, "!"), 6);
  EXPECT_EQ(t.Insert(-3, "<"), 7);
  EXPECT_STREQ(t, "<abcde!");
  EXPECT_EQ(t.Delete(0), 6);
  EXPECT_EQ(t.Delete(4, 99), 4);
  EXPECT_STREQ(t, "abcd");
  EXPECT_EQ(t.Delete(9, 1), 4);
  EXPECT_EQ(t.Delete(1, 0), 4);
  EXPECT_EQ(t.Remove('b'), 1);
  EXPECT_STREQ(t, "acd");
}

TEST(CString, BufferAccess) {
  CString s("abc");
  char* buffer = s.GetBuffer(10);
  std::strcpy(buffer, "0123456789");
  s.ReleaseBuffer();
  EXPECT_EQ(s.GetLength(), 10);

  buffer = s.GetBuffer(4);
  buffer[2] = '\0';
  s.ReleaseBuffer();
  EXPECT_STREQ(s, "01");

  buffer = s.GetBufferSetLength(3);
  buffer[2] = 'z';
  s.ReleaseBuffer(3);
  EXPECT_STREQ(s, "01z");

  // A caller that wrote no terminator: the length stops at the buffer's end.
  CString u;
  buffer = u.GetBuffer(4);
  std::memset(buffer, 'q', 5);
  u.ReleaseBuffer();
  EXPECT_GE(u.GetLength(), 4);
  EXPECT_EQ(u.GetLength(), static_cast<int>(std::strlen(u))) << "the terminator is restored";

  EXPECT_THROW(s.GetBuffer(-1), CInvalidArgException);
  EXPECT_THROW(s.ReleaseBuffer(INT_MAX / 2), CInvalidArgException);
}

TEST(CString, FormatFollowsPrintfRules) {
  CString s;
  s.Format("%d|%5d|%-5d|%05d|%+d|%x|%X|%o|%u", 42, 42, 42, 42, 42, 255, 255, 8, 7u);
  EXPECT_STREQ(s, "42|   42|42   |00042|+42|ff|FF|10|7");
  s.Format("%s|%hs|%10s|%-6s|%.2s|%c|%hc|%%", "abc", "narrow", "right", "left", "truncate", 'x', 'y');
  EXPECT_STREQ(s, "abc|narrow|     right|left  |tr|x|y|%");
  s.Format("%*d|%-*d|%.*f", 4, 7, 3, 8, 2, 3.14159);
  EXPECT_STREQ(s, "   7|8  |3.14");
  s.Format("%.3f|%e|%g|%G", 2.0, 12345.678, 0.0001, 1e20);
  EXPECT_STREQ(s, "2.000|1.234568e+04|0.0001|1E+20");
  s.Format("%ld|%lu|%I64d|%I64u|%lld|%I32d", static_cast<LONG>(-5), static_cast<DWORD>(4000000000u),
           static_cast<LONGLONG>(-9000000000LL), static_cast<ULONGLONG>(18000000000ULL), -1LL, -7);
  EXPECT_STREQ(s, "-5|4000000000|-9000000000|18000000000|-1|-7");
  s.Format("%hd|%hu|%hhd", 70000, 70000, 300);
  EXPECT_STREQ(s, "4464|4464|44");
  s.Format("%s", static_cast<const char*>(nullptr));
  EXPECT_STREQ(s, "(null)");
  s.Format("");
  EXPECT_TRUE(s.IsEmpty());

  // Format replaces, AppendFormat appends; the arguments may be the string itself.
  s = "base";
  s.AppendFormat("+%d", 1);
  EXPECT_STREQ(s, "base+1");
  s.Format("[%s]", static_cast<const char*>(s));
  EXPECT_STREQ(s, "[base+1]");

  // Long results are not cut.
  s.Format("%500d", 1);
  EXPECT_EQ(s.GetLength(), 500);
}

TEST(CString, FormatWideArguments) {
  const WCHAR wide[] = {'w', 'i', 'd', 'e', 0xE9, 0};
  CString s;
  s.Format("%ls|%S|%lc", wide, wide, static_cast<int>('z'));
  EXPECT_STREQ(s, "wide\xE9|wide\xE9|z");
}
