#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "tbxutl/platform/windows.h"

namespace {

const LCTYPE kItems[] = {LOCALE_SDECIMAL,        LOCALE_STHOUSAND,        LOCALE_ILZERO,
                         LOCALE_SNEGATIVESIGN,   LOCALE_IMEASURE,         LOCALE_SLANGUAGE,
                         LOCALE_SENGLANGUAGE,    LOCALE_SISO639LANGNAME,  LOCALE_SISO3166CTRYNAME,
                         LOCALE_IDEFAULTANSICODEPAGE, LOCALE_SLIST,       LOCALE_ILANGUAGE};

std::string Item(LCID lcid, LCTYPE type) {
  char buffer[128];
  const int written = GetLocaleInfoA(lcid, type, buffer, sizeof buffer);
  if (written <= 0) return "<failed " + std::to_string(GetLastError()) + ">";
  return std::string(buffer, static_cast<std::size_t>(written - 1));
}

}  // namespace

TEST(LocaleInfo, SizeQueryExactBufferAndShortBuffer) {
  for (LCTYPE item : kItems) {
    SCOPED_TRACE(item);
    const int needed = GetLocaleInfoA(LOCALE_USER_DEFAULT, item, nullptr, 0);
    ASSERT_GE(needed, 1);
    std::vector<char> buffer(static_cast<std::size_t>(needed) + 1, 'X');
    EXPECT_EQ(GetLocaleInfoA(LOCALE_USER_DEFAULT, item, buffer.data(), needed), needed);
    EXPECT_EQ(std::strlen(buffer.data()) + 1, static_cast<std::size_t>(needed));
    EXPECT_EQ(buffer.back(), 'X') << "nothing written beyond the terminator";
    if (needed == 1) continue;  // an empty text (a size of 0 would be a query)
    SetLastError(0);
    EXPECT_EQ(GetLocaleInfoA(LOCALE_USER_DEFAULT, item, buffer.data(), needed - 1), 0);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
  }
}

TEST(LocaleInfo, RefusedArguments) {
  char buffer[32];
  const struct {
    LCID lcid;
    LCTYPE type;
    char* buffer;
    int size;
    DWORD error;
  } cases[] = {
      {LOCALE_USER_DEFAULT, 0x7777, buffer, 32, ERROR_INVALID_FLAGS},
      {LOCALE_USER_DEFAULT, LOCALE_SDECIMAL | LOCALE_RETURN_NUMBER, buffer, 32, ERROR_INVALID_FLAGS},
      {LOCALE_USER_DEFAULT, LOCALE_SDECIMAL, buffer, -1, ERROR_INVALID_PARAMETER},
      {LOCALE_USER_DEFAULT, LOCALE_SDECIMAL, nullptr, 5, ERROR_INVALID_PARAMETER},
      {0x1234, LOCALE_SDECIMAL, buffer, 32, ERROR_INVALID_PARAMETER},
      {0x1800, LOCALE_SDECIMAL, buffer, 32, ERROR_INVALID_PARAMETER},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << std::hex << c.lcid << " " << c.type << " " << c.size);
    SetLastError(0);
    EXPECT_EQ(GetLocaleInfoA(c.lcid, c.type, c.buffer, c.size), 0);
    EXPECT_EQ(GetLastError(), c.error);
  }
}

// Windows's own values of named locales, whatever the user's locale is.
TEST(LocaleInfo, ValuesOfNamedLocales) {
  const struct {
    LCID lcid;
    LCTYPE type;
    const char* value;
  } cases[] = {
      {0x0409, LOCALE_STHOUSAND, ","},          {0x0409, LOCALE_IMEASURE, "1"},
      {0x0409, LOCALE_SLANGUAGE, "English (United States)"},
      {0x0409, LOCALE_SENGLANGUAGE, "English"}, {0x0409, LOCALE_SISO3166CTRYNAME, "US"},
      {0x0407, LOCALE_SDECIMAL, ","},           {0x0407, LOCALE_IMEASURE, "0"},
      {0x0407, LOCALE_SISO639LANGNAME, "de"},  {0x0007, LOCALE_ILANGUAGE, "0407"},
      {0x040C, LOCALE_ILANGUAGE, "040c"},       {0x0419, LOCALE_IDEFAULTANSICODEPAGE, "1251"},
      {LOCALE_INVARIANT, LOCALE_SLANGUAGE, "Invariant Language (Invariant Country)"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << std::hex << c.lcid << " " << c.type);
    EXPECT_EQ(Item(c.lcid, c.type | LOCALE_NOUSEROVERRIDE), c.value);
  }
}

TEST(LocaleInfo, NumbersAsDoubleWords) {
  DWORD value = 0;
  auto number = [&](LCID lcid, LCTYPE type, int size) {
    value = 0xCCCCCCCC;
    return GetLocaleInfoA(lcid, type | LOCALE_RETURN_NUMBER, reinterpret_cast<LPSTR>(&value), size);
  };
  EXPECT_EQ(number(0x0409, LOCALE_IDEFAULTANSICODEPAGE, 4), 4);
  EXPECT_EQ(value, 1252u);
  EXPECT_EQ(number(0x040C, LOCALE_ILANGUAGE, 4), 4);
  EXPECT_EQ(value, 0x040Cu) << "the language is read as hexadecimal";
  EXPECT_EQ(number(0x0409, LOCALE_ILZERO, 0), 4) << "a size query answers the DWORD's characters";
  SetLastError(0);
  EXPECT_EQ(number(0x0409, LOCALE_ILZERO, 3), 0);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
}

TEST(LocaleInfo, DefaultLocalesAgree) {
  const LCID user = GetUserDefaultLCID();
  EXPECT_EQ(GetUserDefaultLangID(), LANGIDFROMLCID(user));
  EXPECT_EQ(GetThreadLocale(), user);
  for (LCTYPE item : kItems) {
    EXPECT_EQ(Item(LOCALE_USER_DEFAULT, item), Item(user, item)) << item;
  }
  EXPECT_EQ(Item(LOCALE_USER_DEFAULT, LOCALE_ILANGUAGE | LOCALE_NOUSEROVERRIDE).size(), 4u);
}
