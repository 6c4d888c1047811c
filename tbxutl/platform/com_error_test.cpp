#include <gtest/gtest.h>

#include <string>

#include "tbxutl/platform/com_error.h"
#include "tbxutl/platform/windows.h"

TEST(ComError, MessagesForSystemDispatchAndUnknownCodes) {
  EXPECT_EQ(_com_error(E_FAIL).Error(), E_FAIL);

  std::string system = _com_error(E_INVALIDARG).ErrorMessage();
  ASSERT_FALSE(system.empty());
  EXPECT_NE(system.back(), '\n') << "the trailing line break is cut";
  EXPECT_NE(system.back(), '\r');

  _com_error dispatch(static_cast<HRESULT>(0x80040205));
  EXPECT_EQ(dispatch.WCode(), 5);
  EXPECT_STREQ(dispatch.ErrorMessage(), "IDispatch error #5");
  EXPECT_EQ(_com_error::WCodeToHRESULT(5), static_cast<HRESULT>(0x80040205));

  _com_error unknown(static_cast<HRESULT>(0x8FFF1234));
  EXPECT_EQ(unknown.WCode(), 0);
  EXPECT_STREQ(unknown.ErrorMessage(), "Unknown error 0x8FFF1234");

  _com_error copy = unknown;
  EXPECT_STREQ(copy.ErrorMessage(), "Unknown error 0x8FFF1234");
}

#if !defined(_WIN32)
// Wine words its system messages differently; these are Windows's texts.
TEST(ComError, SystemTextsAreWindowsWording) {
  EXPECT_STREQ(_com_error(E_FAIL).ErrorMessage(), "Unspecified error");
  EXPECT_STREQ(_com_error(HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND)).ErrorMessage(),
               "The system cannot find the file specified.");
}
#endif
