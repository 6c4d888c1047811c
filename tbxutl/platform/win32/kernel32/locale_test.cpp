#include <gtest/gtest.h>
#include <langinfo.h>
#include <locale.h>

#include <list>
#include <string>

#include "tbxutl/platform/scoped_env_testing.h"
#include "tbxutl/platform/windows.h"

using tbx::testing::ScopedEnv;

namespace {

std::string Item(LCID lcid, LCTYPE type) {
  char buffer[128];
  const int written = GetLocaleInfoA(lcid, type, buffer, sizeof buffer);
  if (written <= 0) return "<failed " + std::to_string(GetLastError()) + ">";
  return std::string(buffer, static_cast<std::size_t>(written - 1));
}

std::string User(LCTYPE type) { return Item(LOCALE_USER_DEFAULT, type); }

// LC_ALL, LC_NUMERIC, LC_MESSAGES and LANG for one case; null leaves one unset.
class UserLocale : public ::testing::Test {
 protected:
  void Use(const char* all, const char* numeric, const char* messages, const char* lang) {
    m_env.clear();
    m_env.emplace_back("LC_ALL", all);
    m_env.emplace_back("LC_NUMERIC", numeric);
    m_env.emplace_back("LC_MESSAGES", messages);
    m_env.emplace_back("LANG", lang);
  }
  void SetUp() override { Use(nullptr, nullptr, nullptr, "C"); }
  void TearDown() override {
    for (LCTYPE item : {LOCALE_SDECIMAL, LOCALE_ILZERO, LOCALE_SLANGUAGE}) {
      tbx::SetUserLocaleInfo(item, nullptr);
    }
  }

 private:
  std::list<ScopedEnv> m_env;  // distinct variables: any order restores them
};

}  // namespace

TEST_F(UserLocale, IdentifierFollowsTheLanguageOfTheEnvironment) {
  const struct {
    const char *all, *numeric, *messages, *lang;
    LCID lcid;
  } cases[] = {
      {nullptr, nullptr, nullptr, nullptr, 0x0409},
      {nullptr, nullptr, nullptr, "C.UTF-8", 0x0409},
      {nullptr, nullptr, nullptr, "de_DE.UTF-8", 0x0407},
      {nullptr, nullptr, nullptr, "fr_FR.ISO-8859-1@euro", 0x040C},
      {nullptr, nullptr, nullptr, "de", 0x0407},           // the language alone
      {nullptr, nullptr, nullptr, "de_LU.UTF-8", 0x0407},  // a country we do not list
      {nullptr, nullptr, nullptr, "xh_ZA.UTF-8", 0x0409},  // a language we do not know
      {nullptr, "", "", "fr_FR", 0x040C},                  // empty counts as unset
      {nullptr, "de_DE", nullptr, "en_US", 0x0407},
      {nullptr, nullptr, "fr_FR", "en_US", 0x040C},
      {"ja_JP", "it_IT", "fr_FR", "en_US", 0x0411},
  };
  for (const auto& c : cases) {
    Use(c.all, c.numeric, c.messages, c.lang);
    SCOPED_TRACE(testing::Message() << "case " << &c - cases);
    EXPECT_EQ(GetUserDefaultLCID(), c.lcid);
    EXPECT_EQ(GetSystemDefaultLCID(), c.lcid);
    EXPECT_EQ(User(LOCALE_ILANGUAGE | LOCALE_NOUSEROVERRIDE), Item(c.lcid, LOCALE_ILANGUAGE));
  }
}

TEST_F(UserLocale, SeparatorsComeFromLcNumeric) {
  const struct {
    const char *all, *numeric, *lang;
    const char *decimal, *thousand;
  } cases[] = {
      {nullptr, nullptr, "C", ".", ","},  // C and POSIX have no thousands separator: en-US's
      {nullptr, nullptr, "C.UTF-8", ".", ","},
      // German whether the system has the locale (its data) or not (Windows's values).
      {nullptr, nullptr, "de_DE.UTF-8", ",", "."},
      {nullptr, "C", "de_DE.UTF-8", ".", ","},
      {"C", "de_DE.UTF-8", nullptr, ".", ","},
  };
  for (const auto& c : cases) {
    Use(c.all, c.numeric, nullptr, c.lang);
    SCOPED_TRACE(testing::Message() << "case " << &c - cases);
    EXPECT_EQ(User(LOCALE_SDECIMAL), c.decimal);
    EXPECT_EQ(User(LOCALE_STHOUSAND), c.thousand);
  }
}

TEST_F(UserLocale, InstalledLocaleIsReadThroughItsOwnData) {
  const char* name = "fr_FR.UTF-8";
  locale_t locale = newlocale(LC_NUMERIC_MASK, name, nullptr);
  if (locale == nullptr) GTEST_SKIP() << name << " is not installed on this system";
  const std::string thousand = nl_langinfo_l(THOUSEP, locale);
  freelocale(locale);
  Use(nullptr, nullptr, nullptr, name);
  EXPECT_EQ(User(LOCALE_STHOUSAND), thousand) << "glibc's, where Windows has a no-break space";
}

TEST_F(UserLocale, OverridesReplaceSingleItemsOfTheUserLocale) {
  ASSERT_TRUE(tbx::SetUserLocaleInfo(LOCALE_SDECIMAL, "<,>"));
  ASSERT_TRUE(tbx::SetUserLocaleInfo(LOCALE_SLANGUAGE, "Mine"));
  ASSERT_TRUE(tbx::SetUserLocaleInfo(LOCALE_ILZERO, "0"));
  EXPECT_EQ(User(LOCALE_SDECIMAL), "<,>");
  EXPECT_EQ(Item(LOCALE_SYSTEM_DEFAULT, LOCALE_SDECIMAL), "<,>");
  EXPECT_EQ(User(LOCALE_SDECIMAL | LOCALE_NOUSEROVERRIDE), ".");
  EXPECT_EQ(User(LOCALE_STHOUSAND), ",") << "other items keep their values";
  EXPECT_EQ(Item(0x0407, LOCALE_SLANGUAGE), "German (Germany)") << "other locales keep theirs";
  EXPECT_EQ(GetLocaleInfoA(LOCALE_USER_DEFAULT, LOCALE_SDECIMAL, nullptr, 0), 4) << "sized as any text";
  DWORD zero = 1;
  GetLocaleInfoA(LOCALE_USER_DEFAULT, LOCALE_ILZERO | LOCALE_RETURN_NUMBER,
                 reinterpret_cast<LPSTR>(&zero), sizeof zero);
  EXPECT_EQ(zero, 0u);

  ASSERT_TRUE(tbx::SetUserLocaleInfo(LOCALE_SDECIMAL, nullptr));
  EXPECT_EQ(User(LOCALE_SDECIMAL), ".") << "null removes the override";

  const struct {
    LCTYPE type;
    const char* value;
    DWORD error;
  } refused[] = {
      {0x7777, "x", ERROR_INVALID_FLAGS},
      {LOCALE_SDECIMAL | LOCALE_NOUSEROVERRIDE, ",", ERROR_INVALID_FLAGS},
      {LOCALE_ILZERO, "x", ERROR_INVALID_PARAMETER},
      {LOCALE_ILANGUAGE, "04G9", ERROR_INVALID_PARAMETER},
  };
  for (const auto& c : refused) {
    SetLastError(0);
    EXPECT_FALSE(tbx::SetUserLocaleInfo(c.type, c.value)) << c.value;
    EXPECT_EQ(GetLastError(), c.error) << c.value;
  }
  EXPECT_EQ(User(LOCALE_ILZERO), "0") << "a refused override leaves the one before";
}
