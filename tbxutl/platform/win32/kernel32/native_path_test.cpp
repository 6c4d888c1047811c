#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>
#include <string>

#include "tbxutl/platform/windows.h"

namespace {

TEST(NativePath, SeparatorsAndDriveLetters) {
  setenv("TBXUTL_DRIVES", "C=/srv/c;d=/mnt/d/;X=", 1);
  struct Case {
    const char* windows;
    std::optional<std::string> native;
  };
  const Case cases[] = {
      {"C:\\dir\\file.dll", "/srv/c/dir/file.dll"},
      {"c:/dir/sub\\file", "/srv/c/dir/sub/file"},
      {"D:\\x", "/mnt/d/x"},      // the table's trailing "/" is dropped
      {"X:\\x", "/x"},            // mapped to nothing: the root
      {"E:\\not\\mapped", "/not/mapped"},
      {"C:", "/srv/c/"},
      {"C:relative", "/srv/c/relative"},
      {"dir\\sub/file", "dir/sub/file"},
      {"/native/path", "/native/path"},
      {"\\rooted", "/rooted"},
      {"", ""},
      {"\\\\server\\share\\file", std::nullopt},  // UNC paths reach no file
      {"//server/share", std::nullopt},
  };
  for (const Case& c : cases) EXPECT_EQ(tbx::win32::ToNativePath(c.windows), c.native) << c.windows;
  unsetenv("TBXUTL_DRIVES");
  EXPECT_EQ(tbx::win32::ToNativePath("C:\\dir"), "/dir");
}

}  // namespace
