#include <gtest/gtest.h>

#include <thread>

#include "tbxutl/platform/windows.h"

TEST(LastError, IsKeptPerThread) {
  SetLastError(ERROR_ACCESS_DENIED);
  DWORD seenByOtherThread = 12345;
  std::thread([&] {
    SetLastError(ERROR_FILE_NOT_FOUND);
    seenByOtherThread = GetLastError();
  }).join();
  EXPECT_EQ(seenByOtherThread, static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ACCESS_DENIED));
}
