#include <gtest/gtest.h>

#include "tbxutl/platform/fatal_error.h"

TEST(FatalErrorHandler, SetRunRestoreAndReplaceFromInside) {
  tbx::FatalErrorHandler original = tbx::SetFatalErrorHandler(nullptr);
  tbx::detail::RunFatalErrorHandler();  // the default does nothing
  int first = 0;
  int second = 0;
  EXPECT_FALSE(tbx::SetFatalErrorHandler([&] { ++first; })) << "the default is reported as empty";
  tbx::detail::RunFatalErrorHandler();
  tbx::FatalErrorHandler previous = tbx::SetFatalErrorHandler([&] {
    ++second;
    tbx::SetFatalErrorHandler(nullptr);  // safe while it runs
  });
  tbx::detail::RunFatalErrorHandler();
  tbx::detail::RunFatalErrorHandler();
  tbx::SetFatalErrorHandler(previous);
  tbx::detail::RunFatalErrorHandler();
  EXPECT_EQ(first, 2);
  EXPECT_EQ(second, 1);
  tbx::SetFatalErrorHandler(original);
}
