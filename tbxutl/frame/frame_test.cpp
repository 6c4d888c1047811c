#include <gtest/gtest.h>

#include <string>

#include "tbxutl/frame/app_callbacks.h"
#include "tbxutl/frame/fixed_strings.h"
#include "tbxutl/frame/library_version.h"

TEST(FixedStrings, KnownSelectorsAndFallback) {
  EXPECT_STREQ(UTLGetString(1), "Network\\Logon");
  EXPECT_STREQ(UTLGetString(2), "UserProfiles");
  EXPECT_STREQ(UTLGetString(3), "Software\\Microsoft\\Windows\\CurrentVersion\\ProfileList");
  EXPECT_STREQ(UTLGetString(4), "ProfileImagePath");
  EXPECT_STREQ(UTLGetString(5), "\\");
  for (int selector : {0, 6, -1, 1000}) {
    EXPECT_STREQ(UTLGetString(selector), "\\Application Data") << selector;
  }
}

TEST(AppCallbacks, RecordLifecycle) {
  EXPECT_EQ(UTLGetAppCallbacks(), nullptr);
  UTLShutdownAppCallbacks();  // no record: no effect

  VKDUTLAPPCB* record = UTLInitializeAppCallbacks();
  ASSERT_NE(record, nullptr);
  EXPECT_EQ(record->pfnGetApp, nullptr) << "a new record is zero-filled";
  record->pfnGetApp = [] { return static_cast<CWinApp*>(nullptr); };
  EXPECT_EQ(UTLInitializeAppCallbacks(), record) << "the second call returns the existing record";
  EXPECT_EQ(UTLGetAppCallbacks(), record);
  EXPECT_NE(UTLGetAppCallbacks()->pfnGetApp, nullptr);

  UTLShutdownAppCallbacks();
  EXPECT_EQ(UTLGetAppCallbacks(), nullptr);
}

TEST(LibraryVersion, MatchesTheHeaders) {
  EXPECT_EQ(std::string(tbx::LibraryVersion()), TBXUTL_VERSION_STRING);
}
