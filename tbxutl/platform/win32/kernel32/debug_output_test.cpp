#include <gtest/gtest.h>

#include <string>

#include "tbxutl/platform/scoped_env_testing.h"
#include "tbxutl/platform/windows.h"

using tbx::testing::ScopedEnv;

TEST(DebugOutput, ReachesStandardErrorOnlyWhenAskedFor) {
  struct Case {
    const char* setting;
    bool shown;
  };
  const Case cases[] = {{nullptr, false}, {"", false}, {"0", false}, {"yes", false}, {"1", true}};
  const std::string text = "first line\nsecond, no line break at the end";
  for (const Case& c : cases) {
    SCOPED_TRACE(c.setting ? c.setting : "unset");
    ScopedEnv env("TBXUTL_DEBUG_OUTPUT", c.setting);
    testing::internal::CaptureStderr();
    OutputDebugStringA(text.c_str());
    OutputDebugStringA(nullptr);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), c.shown ? text : "");
  }
}
