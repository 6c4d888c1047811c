#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "tbxutl/platform/windows.h"

// Two threads set different codes, then each reads its own back. The
// hand-over uses atomics only: no platform call that could touch the
// last error runs in between.
TEST(LastError, IsKeptPerThread) {
  std::atomic<int> stage{0};
  DWORD seenByOther = 0;
  std::thread other([&] {
    while (stage.load() != 1) {
    }
    SetLastError(ERROR_FILE_NOT_FOUND);
    stage.store(2);
    while (stage.load() != 3) {
    }
    seenByOther = GetLastError();
  });
  SetLastError(ERROR_ACCESS_DENIED);
  stage.store(1);
  while (stage.load() != 2) {
  }
  DWORD seenByMain = GetLastError();
  stage.store(3);
  other.join();
  EXPECT_EQ(seenByMain, static_cast<DWORD>(ERROR_ACCESS_DENIED));
  EXPECT_EQ(seenByOther, static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
}
