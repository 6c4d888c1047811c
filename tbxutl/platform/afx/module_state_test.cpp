#include <gtest/gtest.h>

#include <string>

#include "tbxutl/platform/afx/module_state.h"
#include "tbxutl/platform/afx/winapp.h"

namespace {

// Restores the process's resource handle and chain after each test.
class ModuleState : public ::testing::Test {
 protected:
  void SetUp() override { saved_ = AfxGetModuleState()->m_hCurrentResourceHandle; }
  void TearDown() override { AfxSetResourceHandle(saved_); }
  HINSTANCE saved_ = nullptr;
};

HINSTANCE FakeModule(std::uintptr_t n) { return reinterpret_cast<HINSTANCE>(n * 0x10000); }

int ChainLength() {
  int n = 0;
  for (CDynLinkLibrary* dll = AfxGetModuleState()->m_pFirstDLL; dll != nullptr; dll = dll->m_pNextDLL) ++n;
  return n;
}

}  // namespace

TEST_F(ModuleState, ResourceHandleDefaultsToTheInstance) {
  AfxSetResourceHandle(nullptr);
  EXPECT_EQ(AfxGetResourceHandle(), AfxGetInstanceHandle());
  EXPECT_EQ(AfxGetInstanceHandle(), GetModuleHandleA(nullptr));
  AfxSetResourceHandle(FakeModule(7));
  EXPECT_EQ(AfxGetResourceHandle(), FakeModule(7));
}

TEST_F(ModuleState, ExtensionModulesChainAndUnchain) {
  AFX_EXTENSION_MODULE record{};
  ASSERT_TRUE(AfxInitExtensionModule(record, FakeModule(3)));
  EXPECT_TRUE(record.bInitialized);
  EXPECT_EQ(record.hModule, FakeModule(3));
  EXPECT_EQ(record.hResource, FakeModule(3));
  record.hResource = FakeModule(4);
  EXPECT_TRUE(AfxInitExtensionModule(record, FakeModule(5)));
  EXPECT_EQ(record.hModule, FakeModule(3)) << "a second initialisation changes nothing";

  int before = ChainLength();
  auto* first = new CDynLinkLibrary(record);
  auto* second = new CDynLinkLibrary(FakeModule(8), FakeModule(9));
  EXPECT_EQ(ChainLength(), before + 2);
  EXPECT_EQ(AfxGetModuleState()->m_pFirstDLL, second) << "newest first";
  EXPECT_EQ(first->m_hResource, FakeModule(4));
  EXPECT_TRUE(first->IsKindOf(RUNTIME_CLASS(CDynLinkLibrary)));
  delete second;
  EXPECT_EQ(ChainLength(), before + 1);
  AfxTermExtensionModule(record);
  EXPECT_EQ(ChainLength(), before);
}

TEST(WinApp, IsTheCurrentApplicationWhileItLives) {
  EXPECT_EQ(AfxGetApp(), nullptr);
  {
    CWinApp app("Sketch");
    EXPECT_EQ(AfxGetApp(), &app);
    EXPECT_STREQ(AfxGetAppName(), "Sketch");
    EXPECT_FALSE(app.OnIdle(0));
    CWnd main(reinterpret_cast<HWND>(0x1234));
    app.m_pMainWnd = &main;
    EXPECT_EQ(AfxGetApp()->GetMainWnd()->GetSafeHwnd(), reinterpret_cast<HWND>(0x1234));
  }
  EXPECT_EQ(AfxGetApp(), nullptr);
  CWinApp unnamed;
  EXPECT_STREQ(unnamed.m_pszAppName, "platform_afx_test") << "the program's file title";
}
