#include <gtest/gtest.h>

#include <string>

#include "tbxutl/frame/string_ids.h"
#include "tbxutl/platform/afx/afx_message_box.h"
#include "tbxutl/platform/afx/cstring.h"
#include "tbxutl/platform/afx/module_state.h"
#include "tbxutl/platform/afx/winapp.h"
#include "tbxutl/platform/message_box.h"

namespace {

struct Shown {
  HWND owner = nullptr;
  std::string text, caption;
  UINT type = 0;
  int calls = 0;
};

// Answers every box with IDNO and records it.
class RecordedBoxes {
 public:
  RecordedBoxes() {
    previous_ = tbx::SetMessageBoxPresenter([this](HWND owner, const char* text, const char* caption, UINT type) {
      shown = {owner, text, caption, type, shown.calls + 1};
      return IDNO;
    });
  }
  ~RecordedBoxes() { tbx::SetMessageBoxPresenter(previous_); }
  Shown shown;

 private:
  tbx::MessageBoxPresenter previous_;
};

}  // namespace

TEST(AfxMessageBox, OwnedByTheMainWindowAndCaptionedWithTheAppName) {
  RecordedBoxes boxes;
  EXPECT_EQ(AfxMessageBox("No app yet", MB_YESNO), IDNO);
  EXPECT_EQ(boxes.shown.owner, nullptr);
  EXPECT_EQ(boxes.shown.caption, "");

  CWinApp app("Sketch");
  CWnd mainWindow(reinterpret_cast<HWND>(0x5678));
  app.m_pMainWnd = &mainWindow;
  EXPECT_EQ(AfxMessageBox("Save changes?", MB_YESNOCANCEL | MB_ICONQUESTION), IDNO);
  EXPECT_EQ(boxes.shown.owner, reinterpret_cast<HWND>(0x5678));
  EXPECT_EQ(boxes.shown.text, "Save changes?");
  EXPECT_EQ(boxes.shown.caption, "Sketch");
  EXPECT_EQ(boxes.shown.type, static_cast<UINT>(MB_YESNOCANCEL | MB_ICONQUESTION));
  EXPECT_EQ(boxes.shown.calls, 2);
}

// The library's texts live in the library's module, which the resource chain
// reaches once the library has chained itself in.
TEST(AfxMessageBox, LoadsItsTextThroughTheResourceChain) {
  HMODULE library = GetModuleHandleA("tbxutl.dll");
  ASSERT_NE(library, nullptr);
  CString expected;
  char buffer[512];
  ASSERT_GT(LoadStringA(library, IDS_UTL_NOT_READY_TEXT, buffer, sizeof buffer), 0);
  expected = buffer;

  CString text;
  {
    CDynLinkLibrary entry(library, library);
    EXPECT_TRUE(text.LoadString(IDS_UTL_NOT_READY_TEXT));
    EXPECT_EQ(text, expected);

    RecordedBoxes boxes;
    AfxMessageBox(IDS_UTL_NOT_READY_TEXT);
    EXPECT_EQ(boxes.shown.text, std::string(expected));
    EXPECT_EQ(boxes.shown.type, static_cast<UINT>(MB_OK));
  }
  EXPECT_FALSE(text.LoadString(IDS_UTL_NOT_READY_TEXT)) << "unchained, nothing holds it";
  EXPECT_TRUE(text.IsEmpty());
}
