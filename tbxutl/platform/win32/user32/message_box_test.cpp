#include <gtest/gtest.h>

#include <string>

#include "tbxutl/platform/message_box.h"
#include "tbxutl/platform/windows.h"

TEST(MessageBoxLinux, DefaultPresenterWritesCaptionAndTextAndAnswersTheDefaultButton) {
  const struct {
    const char* text;
    const char* caption;
    UINT type;
    int answer;
    const char* written;
  } cases[] = {
      {"Disk full", "Save", MB_OK | MB_ICONSTOP, IDOK, "Save: Disk full\n"},
      {"Go on?", "Question", MB_YESNO | MB_DEFBUTTON2 | MB_TASKMODAL, IDNO, "Question: Go on?\n"},
      {"two\nlines", nullptr, MB_OKCANCEL, IDOK, "Error: two\nlines\n"},
      {nullptr, "Empty", MB_RETRYCANCEL, IDRETRY, "Empty: \n"},
      {"text", "caption", 7, 0, ""},  // no such button set
  };
  tbx::MessageBoxPresenter previous = tbx::SetMessageBoxPresenter(nullptr);
  for (const auto& c : cases) {
    SCOPED_TRACE(c.written);
    testing::internal::CaptureStderr();
    SetLastError(0);
    EXPECT_EQ(MessageBoxA(nullptr, c.text, c.caption, c.type), c.answer);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(c.answer ? 0 : ERROR_INVALID_MSGBOX_STYLE));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), c.written);
  }
  tbx::SetMessageBoxPresenter(previous);
}

TEST(MessageBoxLinux, ReachesTheHostsPresenter) {
  std::string seen;
  tbx::MessageBoxPresenter previous =
      tbx::SetMessageBoxPresenter([&](HWND owner, const char* text, const char* caption, UINT type) {
        seen = std::string(caption) + "|" + text + "|" + std::to_string(type) + "|" +
               std::to_string(reinterpret_cast<UINT_PTR>(owner));
        return IDRETRY;
      });
  EXPECT_EQ(MessageBox(reinterpret_cast<HWND>(9), "text", "caption", MB_RETRYCANCEL), IDRETRY);
  tbx::SetMessageBoxPresenter(previous);
  EXPECT_EQ(seen, "caption|text|" + std::to_string(MB_RETRYCANCEL) + "|9");
  EXPECT_EQ(MessageBeep(MB_ICONHAND), TRUE);
}
