#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "tbxutl/platform/windows.h"

namespace {

namespace fs = std::filesystem;

constexpr const char* kScript = "STRINGTABLE { 1 \"from the script\" }\n";

fs::path TestFolder(const std::string& name) {
  const char* root = std::getenv("TBXUTL_TEST_TMP");
  fs::path folder = fs::path(root ? root : fs::temp_directory_path().string()) / "modules" / name;
  fs::remove_all(folder);
  fs::create_directories(folder);
  return fs::canonical(folder);
}

void WriteFile(const fs::path& path, const std::string& text) {
  fs::create_directories(path.parent_path());
  std::ofstream(path, std::ios::binary) << text;
}

std::string FileName(HMODULE module) {
  char name[MAX_PATH] = {};
  GetModuleFileNameA(module, name, MAX_PATH);
  return name;
}

std::string Text(HMODULE module) {
  char text[64] = {};
  LoadStringA(module, 1, text, sizeof text);
  return text;
}

TEST(ResourceLibraries, AreScriptsBesideTheirDllName) {
  fs::path folder = TestFolder("beside");
  WriteFile(folder / "Lower.RC", kScript);  // the case of the name may differ
  HMODULE module = LoadLibraryA((folder / "lower.dll").c_str());
  ASSERT_NE(module, nullptr) << GetLastError();
  EXPECT_EQ(Text(module), "from the script");
  EXPECT_EQ(FileName(module), (folder / "Lower.dll").string());
  EXPECT_EQ(GetModuleHandleA((folder / "Lower.dll").c_str()), module);
  EXPECT_TRUE(FreeLibrary(module));

  // Only .dll names stand for scripts.
  SetLastError(0);
  EXPECT_EQ(LoadLibraryA((folder / "Lower.exe").c_str()), nullptr);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_MOD_NOT_FOUND));
}

TEST(ResourceLibraries, DriveLettersMapThroughTheDriveTable) {
  fs::path folder = TestFolder("drive");
  WriteFile(folder / "lib" / "Drive.rc", kScript);
  setenv("TBXUTL_DRIVES", ("Q=" + folder.string()).c_str(), 1);
  HMODULE module = LoadLibraryA("q:\\lib\\Drive.dll");
  unsetenv("TBXUTL_DRIVES");
  ASSERT_NE(module, nullptr) << GetLastError();
  EXPECT_EQ(FileName(module), (folder / "lib" / "Drive.dll").string());
  EXPECT_EQ(Text(module), "from the script");
  EXPECT_TRUE(FreeLibrary(module));
}

TEST(ResourceLibraries, NamesWithoutFolderAreLookedForInTheCurrentFolder) {
  fs::path folder = TestFolder("current");
  WriteFile(folder / "Current.rc", kScript);
  fs::path previous = fs::current_path();
  fs::current_path(folder);
  HMODULE module = LoadLibraryA("Current");
  fs::current_path(previous);
  ASSERT_NE(module, nullptr) << GetLastError();
  EXPECT_EQ(FileName(module), (folder / "Current.dll").string());
  EXPECT_TRUE(FreeLibrary(module));
}

TEST(ResourceLibraries, AFaultyScriptDoesNotLoad) {
  fs::path folder = TestFolder("faulty");
  WriteFile(folder / "Faulty.rc", "STRINGTABLE\nBEGIN\n 1 \"fine\"\n 2 \"not closed\nEND\n");
  SetLastError(0);
  EXPECT_EQ(LoadLibraryA((folder / "Faulty.dll").c_str()), nullptr);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_BAD_EXE_FORMAT));
  EXPECT_EQ(GetModuleHandleA("Faulty.dll"), nullptr);
}

TEST(ResourceLibraries, TheLibraryTextsAreRead) {
  DWORD error = 0;
  const auto* resources = tbx::win32::ModuleResources(GetModuleHandleA("tbxutl.dll"), error);
  ASSERT_NE(resources, nullptr) << "the built-in script has a fault (see the standard error)";
  EXPECT_GT(resources->size(), 10u);
  EXPECT_EQ(tbx::win32::ModuleResources(nullptr, error), nullptr) << "the program has no resources";
  EXPECT_EQ(error, static_cast<DWORD>(ERROR_RESOURCE_DATA_NOT_FOUND));
}

}  // namespace
