#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "tbxutl/platform/resource_files_testing.h"
#include "tbxutl/platform/testdata/test_resources_testing.h"
#include "tbxutl/platform/windows.h"

namespace {

using tbx::testing::ProgramFolder;
using tbx::testing::RunningUnderWine;
using tbx::testing::TestLibraryPath;

constexpr DWORD kUntouched = 0xDEADBEEF;

bool IsLoaded(const char* name) { return GetModuleHandleA(name) != nullptr; }

std::string ForwardSlashes(std::string path) {
  for (char& c : path) {
    if (c == '\\') c = '/';
  }
  return path;
}

std::uintptr_t Bits(HMODULE module) { return reinterpret_cast<std::uintptr_t>(module); }

TEST(Modules, TheSameFileGivesTheSameHandleUntilTheLastFree) {
  ASSERT_FALSE(IsLoaded("TbxResTest.dll"));
  HMODULE first = LoadLibraryA(TestLibraryPath().c_str());
  ASSERT_NE(first, nullptr) << GetLastError();
  HMODULE second = LoadLibraryA(ForwardSlashes(TestLibraryPath()).c_str());
  HMODULE third = LoadLibraryA((ProgramFolder() + "testdata\\tbxrestest.DLL").c_str());
  HMODULE byName = LoadLibraryA("TbxResTest");  // loaded already: found by its name alone
  EXPECT_EQ(second, first);
  EXPECT_EQ(third, first);
  EXPECT_EQ(byName, first);
  EXPECT_EQ(GetModuleHandleA("TbxResTest.dll"), first);
  EXPECT_EQ(GetModuleHandleA("tbxrestest"), first);

  for (int i = 0; i < 3; ++i) {
    EXPECT_TRUE(FreeLibrary(first));
    EXPECT_TRUE(IsLoaded("TbxResTest.dll")) << "after " << i + 1 << " of 4 frees";
  }
  EXPECT_TRUE(FreeLibrary(first));
  SetLastError(kUntouched);
  EXPECT_EQ(GetModuleHandleA("TbxResTest.dll"), nullptr);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_MOD_NOT_FOUND));
}

TEST(Modules, WhatDoesNotExistDoesNotLoad) {
  struct Case {
    std::string name;
    DWORD flags;
    DWORD error;
  };
  const Case cases[] = {
      {"NoSuchLibrary.dll", 0, ERROR_MOD_NOT_FOUND},
      {"NoSuchLibrary", 0, ERROR_MOD_NOT_FOUND},
      {ProgramFolder() + "no-such-folder\\TbxResTest.dll", 0, ERROR_MOD_NOT_FOUND},
      {ProgramFolder() + "testdata\\TbxResTest.", 0, ERROR_MOD_NOT_FOUND},  // "." means: no extension
      {"", 0, ERROR_MOD_NOT_FOUND},
      {ProgramFolder() + "NoSuchLibrary.dll", LOAD_LIBRARY_AS_DATAFILE, ERROR_FILE_NOT_FOUND},
  };
  for (const Case& c : cases) {
    SetLastError(kUntouched);
    EXPECT_EQ(LoadLibraryExA(c.name.c_str(), nullptr, c.flags), nullptr) << c.name;
    EXPECT_EQ(GetLastError(), c.error) << c.name;
  }
  SetLastError(kUntouched);
  EXPECT_EQ(GetModuleHandleA("NoSuchLibrary.dll"), nullptr);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_MOD_NOT_FOUND));
  EXPECT_FALSE(FreeLibrary(nullptr));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_HANDLE));
}

TEST(Modules, TheProgramAndTheLibraryAreModules) {
  HMODULE program = GetModuleHandleA(nullptr);
  ASSERT_NE(program, nullptr);
  char byNull[MAX_PATH];
  char byHandle[MAX_PATH];
  ASSERT_GT(GetModuleFileNameA(nullptr, byNull, MAX_PATH), 0u);
  ASSERT_GT(GetModuleFileNameA(program, byHandle, MAX_PATH), 0u);
  EXPECT_STREQ(byNull, byHandle);

  HMODULE library = GetModuleHandleA("tbxutl.dll");
  ASSERT_NE(library, nullptr);
  EXPECT_NE(library, program);
  EXPECT_EQ(GetModuleHandleA("TBXUTL"), library);
  EXPECT_EQ(LoadLibraryA("tbxutl.dll"), library);
  EXPECT_TRUE(FreeLibrary(library));
  EXPECT_EQ(GetModuleHandleA("tbxutl.dll"), library) << "still loaded: the program links it";
  char name[MAX_PATH];
  EXPECT_GT(GetModuleFileNameA(library, name, MAX_PATH), 0u);
}

TEST(Modules, GetModuleFileNameCutsTheNameToTheBuffer) {
  HMODULE module = LoadLibraryA(TestLibraryPath().c_str());
  ASSERT_NE(module, nullptr);
  char full[MAX_PATH];
  const DWORD length = GetModuleFileNameA(module, full, MAX_PATH);
  ASSERT_GT(length, 15u);
  EXPECT_EQ(std::strlen(full), length);
  EXPECT_STREQ(full + length - 14, "TbxResTest.dll") << "the name as the file has it";
  EXPECT_TRUE(full[length - 15] == '\\' || full[length - 15] == '/') << full;

  struct Case {
    DWORD size;
    DWORD result;
    DWORD error;
  };
  const Case cases[] = {
      {MAX_PATH, length, kUntouched},
      {length + 1, length, kUntouched},
      {length, length, ERROR_INSUFFICIENT_BUFFER},
      {5, 5, ERROR_INSUFFICIENT_BUFFER},
      {1, 1, ERROR_INSUFFICIENT_BUFFER},
      {0, 0, ERROR_INSUFFICIENT_BUFFER},
  };
  for (const Case& c : cases) {
    char buffer[MAX_PATH + 8];
    std::memset(buffer, 'X', sizeof buffer);
    SetLastError(kUntouched);
    DWORD result = GetModuleFileNameA(module, buffer, c.size);
    EXPECT_EQ(result, c.result) << c.size;
    if (c.error != kUntouched) {
      EXPECT_EQ(GetLastError(), c.error) << c.size;
    }
    for (std::size_t i = c.size; i < sizeof buffer; ++i) ASSERT_EQ(buffer[i], 'X') << "written beyond " << c.size;
    if (c.size == 0) continue;
    DWORD kept = std::min(c.size - 1, length);
    EXPECT_EQ(std::string(buffer, kept), std::string(full, kept)) << c.size;
    // Windows cuts a name that does not fit to size - 1 characters and a
    // terminator; Wine fills the whole buffer with characters.
    if (!RunningUnderWine() || result < c.size) {
      EXPECT_EQ(buffer[kept], '\0') << c.size;
    }
  }

  char untouched[8] = "keep";
  SetLastError(kUntouched);
  EXPECT_EQ(GetModuleFileNameA(reinterpret_cast<HMODULE>(0x12345000), untouched, sizeof untouched), 0u);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_MOD_NOT_FOUND));
  EXPECT_STREQ(untouched, "keep");
  EXPECT_TRUE(FreeLibrary(module));
}

TEST(Modules, DataFileLoadsArePrivateCopies) {
  const std::string path = TestLibraryPath();
  HMODULE data1 = LoadLibraryExA(path.c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
  HMODULE data2 = LoadLibraryExA(path.c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
  HMODULE image = LoadLibraryExA(path.c_str(), nullptr, LOAD_LIBRARY_AS_IMAGE_RESOURCE);
  ASSERT_NE(data1, nullptr);
  ASSERT_NE(data2, nullptr);
  ASSERT_NE(image, nullptr);
  EXPECT_NE(data1, data2);
  EXPECT_EQ(Bits(data1) & 3, 1u);
  EXPECT_EQ(Bits(data2) & 3, 1u);
  EXPECT_EQ(Bits(image) & 3, 2u);

  char buffer[32];
  EXPECT_EQ(LoadStringA(data1, IDS_TEST_HELLO, buffer, sizeof buffer), 11);
  EXPECT_EQ(LoadStringA(image, IDS_TEST_FIVE, buffer, sizeof buffer), 4);
  EXPECT_NE(FindResourceA(data2, MAKEINTRESOURCEA(IDM_TEST_MENU), RT_MENU), nullptr);

  EXPECT_FALSE(IsLoaded("TbxResTest.dll")) << "data files are no loaded modules";
  SetLastError(kUntouched);
  EXPECT_EQ(GetModuleFileNameA(data1, buffer, sizeof buffer), 0u);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_MOD_NOT_FOUND));

  EXPECT_TRUE(FreeLibrary(data1));
  EXPECT_TRUE(FreeLibrary(data2));
  EXPECT_TRUE(FreeLibrary(image));

  // A file that is loaded already gives its module, with one more reference.
  HMODULE loaded = LoadLibraryA(path.c_str());
  HMODULE asData = LoadLibraryExA(path.c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
  EXPECT_EQ(asData, loaded);
  EXPECT_TRUE(FreeLibrary(loaded));
  EXPECT_TRUE(IsLoaded("TbxResTest.dll"));
  EXPECT_TRUE(FreeLibrary(asData));
  EXPECT_FALSE(IsLoaded("TbxResTest.dll"));
}

TEST(Modules, ThreadsLoadAndFreeTheSameLibrary) {
  const std::string path = TestLibraryPath();
  std::vector<std::thread> threads;
  std::vector<int> failures(4, 0);
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([&, t] {
      for (int i = 0; i < 50; ++i) {
        HMODULE module = LoadLibraryA(path.c_str());
        char buffer[32];
        if (!module || LoadStringA(module, IDS_TEST_SECOND_BLOCK, buffer, sizeof buffer) != 9 ||
            !FreeLibrary(module)) {
          ++failures[static_cast<std::size_t>(t)];
        }
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(failures, std::vector<int>(4, 0));
  EXPECT_FALSE(IsLoaded("TbxResTest.dll"));
}

}  // namespace
