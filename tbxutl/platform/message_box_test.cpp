#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "tbxutl/platform/message_box.h"
#include "tbxutl/platform/windows.h"

namespace {

tbx::MessageBoxPresenter Answering(int answer) {
  return [answer](HWND, const char*, const char*, UINT) { return answer; };
}

// Every test starts from a presenter of its own (never a real dialog) and
// restores the one before.
class Presenter : public ::testing::Test {
 protected:
  void SetUp() override { m_previous = tbx::SetMessageBoxPresenter(Answering(0)); }
  void TearDown() override { tbx::SetMessageBoxPresenter(m_previous); }

 private:
  tbx::MessageBoxPresenter m_previous;
};

}  // namespace

TEST_F(Presenter, BoxesReachTheCurrentPresenter) {
  std::string seen;
  tbx::SetMessageBoxPresenter([&](HWND owner, const char* text, const char* caption, UINT type) {
    seen = std::string(caption) + "|" + text + "|" + std::to_string(type) + "|" +
           std::to_string(reinterpret_cast<UINT_PTR>(owner));
    return IDIGNORE;
  });
  EXPECT_EQ(tbx::detail::ShowMessageBox(reinterpret_cast<HWND>(7), "File a.cpp, Line 3", "Assertion Failed!",
                                        MB_ABORTRETRYIGNORE),
            IDIGNORE);
  EXPECT_EQ(seen, "Assertion Failed!|File a.cpp, Line 3|" + std::to_string(MB_ABORTRETRYIGNORE) + "|7");
}

TEST_F(Presenter, SettingAnswersThePreviousPresenter) {
  tbx::SetMessageBoxPresenter(Answering(IDYES));
  tbx::MessageBoxPresenter previous = tbx::SetMessageBoxPresenter(Answering(IDNO));
  EXPECT_EQ(previous(nullptr, "", "", MB_YESNO), IDYES);
  EXPECT_EQ(tbx::detail::ShowMessageBox(nullptr, "", "", MB_YESNO), IDNO);
  tbx::SetMessageBoxPresenter(previous);
  EXPECT_EQ(tbx::detail::ShowMessageBox(nullptr, "", "", MB_YESNO), IDYES);

  tbx::SetMessageBoxPresenter(nullptr);
  EXPECT_TRUE(tbx::SetMessageBoxPresenter(Answering(IDOK))) << "the default presenter is never empty";
}

TEST_F(Presenter, SwapsWhileOtherThreadsShowBoxes) {
  std::atomic<bool> stop{false};
  std::atomic<int> unexpected{0};
  tbx::SetMessageBoxPresenter(Answering(IDNO));
  std::vector<std::thread> threads;
  for (int i = 0; i < 3; ++i) {
    threads.emplace_back([&] {
      while (!stop) {
        const int answer = tbx::detail::ShowMessageBox(nullptr, "t", "c", MB_YESNO);
        if (answer != IDYES && answer != IDNO) ++unexpected;
      }
    });
  }
  for (int i = 0; i < 2000; ++i) tbx::SetMessageBoxPresenter(Answering(i % 2 ? IDYES : IDNO));
  stop = true;
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(unexpected, 0);
}

TEST(MessageBoxDefaultAnswer, IsTheDefaultButtonOfTheSet) {
  const struct {
    UINT type;
    int answer;
  } cases[] = {
      {MB_OK, IDOK},
      {MB_ABORTRETRYIGNORE, IDABORT},
      {MB_RETRYCANCEL, IDRETRY},
      {MB_CANCELTRYCONTINUE, IDCANCEL},
      {MB_OKCANCEL | MB_DEFBUTTON2, IDCANCEL},
      {MB_CANCELTRYCONTINUE | MB_DEFBUTTON2, IDTRYAGAIN},
      {MB_YESNO | MB_DEFBUTTON2 | MB_ICONQUESTION | MB_SYSTEMMODAL | MB_SETFOREGROUND, IDNO},
      {MB_OK | MB_DEFBUTTON2, IDOK},               // beyond the buttons: the first
      {MB_YESNO | MB_HELP | MB_DEFBUTTON3, IDYES},  // Help does not close the box
      {7, 0},
  };
  for (const auto& c : cases) EXPECT_EQ(tbx::detail::DefaultAnswer(c.type), c.answer) << c.type;
}
