#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "tbxutl/frame/string_ids.h"
#include "tbxutl/platform/resource_files_testing.h"
#include "tbxutl/platform/testdata/test_resources_testing.h"
#include "tbxutl/platform/windows.h"

namespace {

using tbx::testing::LanguageLibraryPath;
using tbx::testing::TestLibraryPath;

constexpr DWORD kUntouched = 0xDEADBEEF;

// What windres writes for testdata/TbxResTest.rc: under Wine the test reads
// it through the real loader, on Linux through our reader.
constexpr const char* kStringBlock1 =
    "0b0053007400720069006e00670020007a00650072006f000b00480065006c006c006f00200057006f0072006c006400000000000000"
    "0400460069007600650000000c00530061007900200022006800690022000900410041005c000e0047007200f600df0065003a002000"
    "32003000b0002000ac202000350000000000000000000000000011004c0061007300740020006f006600200062006c006f0063006b00"
    "20006f006e006500";
constexpr const char* kStringBlock2 =
    "0000090053006500760065006e007400650065006e0000000000000000000000000000000000000000000000000000000000";
constexpr const char* kMenu =
    "0000000010002600460069006c00650000000000650026004f00700065006e0009004300740072006c002b004f000000000000000000"
    "09006600450026007800690074000000a200670042007200650061006b000000c04068002600480065006c0070000000";
constexpr const char* kMenuEx =
    "01000400000000000000000000000000c800000001002600450064006900740000000000050000000000000000000000c9000000000026"
    "0055006e0064006f0000000000000800000000000000000000000000000000000003000000ca00000080005200650064006f0000000000"
    "000000000000cb00000080005a000000";
constexpr const char* kNamedMenu = "00000000800001004f006e006c0079000000";

std::string Hex(const std::vector<unsigned char>& bytes) {
  std::string text;
  char pair[3];
  for (unsigned char byte : bytes) {
    std::snprintf(pair, sizeof pair, "%02x", byte);
    text += pair;
  }
  return text;
}

// The bytes of a resource as FindResourceA, SizeofResource, LoadResource and
// LockResource give them; empty when it is not found.
std::vector<unsigned char> ResourceBytes(HMODULE module, LPCSTR name, LPCSTR type) {
  HRSRC resource = FindResourceA(module, name, type);
  if (!resource) return {};
  DWORD size = SizeofResource(module, resource);
  const auto* data = static_cast<const unsigned char*>(LockResource(LoadResource(module, resource)));
  if (!data) return {};
  return std::vector<unsigned char>(data, data + size);
}

std::string LoadText(HMODULE module, UINT id) {
  char buffer[512];
  int length = LoadStringA(module, id, buffer, sizeof buffer);
  return length > 0 ? std::string(buffer, static_cast<std::size_t>(length)) : std::string();
}

class TestLibrary : public ::testing::Test {
 protected:
  void SetUp() override {
    module_ = LoadLibraryA(TestLibraryPath().c_str());
    ASSERT_NE(module_, nullptr) << TestLibraryPath() << ": error " << GetLastError();
  }
  void TearDown() override {
    if (module_) FreeLibrary(module_);
  }
  HMODULE module_ = nullptr;
};

TEST_F(TestLibrary, LoadStringReadsEveryStringOfABlockAndTheNext) {
  struct Case {
    UINT id;
    const char* text;
  };
  const Case cases[] = {
      {IDS_TEST_ZERO, "String zero"},
      {IDS_TEST_HELLO, "Hello World"},
      {IDS_TEST_FIVE, "Five"},
      {IDS_TEST_ESCAPES, "Say \"hi\"\tAA\\"},
      {IDS_TEST_ACCENTS, "Gr\xF6\xDF" "e: 20\xB0 \x80 5"},  // code page 1252 both ways
      {IDS_TEST_LAST_OF_BLOCK, "Last of block one"},
      {IDS_TEST_SECOND_BLOCK, "Seventeen"},
      {0xFFFF0000u | IDS_TEST_HELLO, "Hello World"},  // only the low word counts
      {IDS_TEST_LONG, "A wide text of more than sixty-four characters, to cut at any length?"},
  };
  for (const Case& c : cases) {
    char buffer[128];
    SetLastError(kUntouched);
    int length = LoadStringA(module_, c.id, buffer, sizeof buffer);
    EXPECT_EQ(length, static_cast<int>(std::strlen(c.text))) << c.id;
    EXPECT_STREQ(buffer, c.text) << c.id;
    EXPECT_EQ(GetLastError(), kUntouched) << c.id;
  }
}

TEST_F(TestLibrary, LoadStringOfAMissingStringGivesAnEmptyBuffer) {
  struct Case {
    UINT id;
    DWORD error;  // the last error after the call
  };
  const Case cases[] = {
      {2, kUntouched},                   // not defined, in a block that exists
      {IDS_TEST_EMPTY, kUntouched},      // defined empty
      {16, kUntouched},                  // first of the second block
      {48, ERROR_RESOURCE_NAME_NOT_FOUND},  // its block does not exist
      {0xFFFF, ERROR_RESOURCE_NAME_NOT_FOUND},
  };
  for (const Case& c : cases) {
    char buffer[16] = "untouched";
    SetLastError(kUntouched);
    EXPECT_EQ(LoadStringA(module_, c.id, buffer, sizeof buffer), 0) << c.id;
    EXPECT_STREQ(buffer, "") << c.id;
    EXPECT_EQ(GetLastError(), c.error) << c.id;
  }
}

TEST_F(TestLibrary, LoadStringCutsToTheBufferAndWritesNothingBeyond) {
  struct Case {
    int bufferMax;
    int result;
    const char* text;
  };
  const Case cases[] = {
      {64, 11, "Hello World"}, {12, 11, "Hello World"}, {11, 10, "Hello Worl"},
      {6, 5, "Hello"},         {2, 1, "H"},             {1, 0, ""},
  };
  for (const Case& c : cases) {
    char buffer[80];
    std::memset(buffer, 'X', sizeof buffer);
    SetLastError(kUntouched);
    EXPECT_EQ(LoadStringA(module_, IDS_TEST_HELLO, buffer, c.bufferMax), c.result) << c.bufferMax;
    EXPECT_STREQ(buffer, c.text) << c.bufferMax;
    for (std::size_t i = static_cast<std::size_t>(c.bufferMax); i < sizeof buffer; ++i) {
      ASSERT_EQ(buffer[i], 'X') << "written beyond the buffer of " << c.bufferMax;
    }
    EXPECT_EQ(GetLastError(), kUntouched) << c.bufferMax;
  }
  // A buffer of no characters is not written at all.
  char buffer[4] = "abc";
  EXPECT_EQ(LoadStringA(module_, IDS_TEST_HELLO, buffer, 0), -1);
  EXPECT_STREQ(buffer, "abc");
}

TEST_F(TestLibrary, AStringInAnotherLanguageOnlyIsFound) {
  EXPECT_EQ(LoadText(module_, IDS_TEST_GERMAN_ONLY), "Nur auf Deutsch");
}

TEST_F(TestLibrary, StringBlocksHoldTheBytesOfTheResourceCompiler) {
  EXPECT_EQ(Hex(ResourceBytes(module_, MAKEINTRESOURCEA(1), RT_STRING)), kStringBlock1);
  EXPECT_EQ(Hex(ResourceBytes(module_, MAKEINTRESOURCEA(2), RT_STRING)), kStringBlock2);
  EXPECT_EQ(ResourceBytes(module_, MAKEINTRESOURCEA(1), RT_STRING).size(), 170u);
}

TEST_F(TestLibrary, MenusHoldTheBytesOfTheResourceCompiler) {
  EXPECT_EQ(Hex(ResourceBytes(module_, MAKEINTRESOURCEA(IDM_TEST_MENU), RT_MENU)), kMenu);
  EXPECT_EQ(Hex(ResourceBytes(module_, MAKEINTRESOURCEA(IDM_TEST_MENUEX), RT_MENU)), kMenuEx);
  EXPECT_EQ(Hex(ResourceBytes(module_, "#2", RT_MENU)), kMenuEx);
  EXPECT_EQ(Hex(ResourceBytes(module_, MAKEINTRESOURCEA(1), "#4")), kMenu);
  // Names compare without regard to case.
  EXPECT_EQ(Hex(ResourceBytes(module_, "NamedMenu", RT_MENU)), kNamedMenu);
  EXPECT_EQ(Hex(ResourceBytes(module_, "namedmenu", RT_MENU)), kNamedMenu);
}

TEST_F(TestLibrary, LookupFailuresSayWhatIsMissing) {
  struct Case {
    const char* what;
    LPCSTR type;
    LPCSTR name;
    WORD language;
    DWORD error;
  };
  const Case cases[] = {
      {"type", RT_BITMAP, MAKEINTRESOURCEA(1), 0, ERROR_RESOURCE_TYPE_NOT_FOUND},
      {"number", RT_MENU, MAKEINTRESOURCEA(9), 0, ERROR_RESOURCE_NAME_NOT_FOUND},
      {"name", RT_MENU, "OtherMenu", 0, ERROR_RESOURCE_NAME_NOT_FOUND},
      {"language", RT_MENU, MAKEINTRESOURCEA(1), MAKELANGID(0x07, 0x01), ERROR_RESOURCE_LANG_NOT_FOUND},
  };
  for (const Case& c : cases) {
    SetLastError(kUntouched);
    EXPECT_EQ(FindResourceExA(module_, c.type, c.name, c.language), nullptr) << c.what;
    EXPECT_EQ(GetLastError(), c.error) << c.what;
  }
  EXPECT_NE(FindResourceExA(module_, RT_MENU, MAKEINTRESOURCEA(1), MAKELANGID(0x09, 0x01)), nullptr);
  EXPECT_NE(FindResourceExA(module_, RT_STRING, MAKEINTRESOURCEA(3), MAKELANGID(0x07, 0x01)), nullptr);

  // The program has no resources at all.
  SetLastError(kUntouched);
  EXPECT_EQ(FindResourceA(nullptr, MAKEINTRESOURCEA(1), RT_STRING), nullptr);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_RESOURCE_DATA_NOT_FOUND));
  char buffer[8] = "x";
  EXPECT_EQ(LoadStringA(nullptr, 1, buffer, sizeof buffer), 0);
  EXPECT_STREQ(buffer, "");
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_RESOURCE_DATA_NOT_FOUND));
}

TEST_F(TestLibrary, LoadResourceAndLockResourceGiveTheData) {
  HRSRC resource = FindResourceA(module_, MAKEINTRESOURCEA(IDM_TEST_MENU), RT_MENU);
  ASSERT_NE(resource, nullptr);
  HGLOBAL data = LoadResource(module_, resource);
  ASSERT_NE(data, nullptr);
  EXPECT_EQ(LockResource(data), data);
  EXPECT_EQ(LoadResource(module_, resource), data) << "the same resource gives the same data";
  EXPECT_FALSE(FreeResource(data));
  EXPECT_EQ(LoadResource(module_, nullptr), nullptr);
  EXPECT_EQ(SizeofResource(module_, nullptr), 0u);
  EXPECT_EQ(LockResource(nullptr), nullptr);
}

TEST(LibraryTexts, AreBuiltIntoTheLibrary) {
  HMODULE library = GetModuleHandleA("tbxutl.dll");
  ASSERT_NE(library, nullptr);
  struct Case {
    UINT id;
    const char* text;
  };
  const Case cases[] = {
      {IDS_UTL_TOKEN_PLUS, "+"},
      {IDS_UTL_TOKEN_MINUS, "-"},
      {IDS_UTL_TOKEN_MULTIPLY, "*"},
      {IDS_UTL_TOKEN_DIVIDE, "/"},
      {IDS_UTL_TOKEN_POWER, "^"},
      {IDS_UTL_TOKEN_SQRT, "sqrt"},
      {IDS_UTL_TOKEN_ACOT, "acot"},
      {IDS_UTL_UNIT_INCH_SYMBOL, "\""},
      {IDS_UTL_UNIT_DEGREE_SYMBOL, "\xB0"},
      {IDS_UTL_UNIT_FEET, "feet"},
      {IDS_UTL_UNIT_QUARTER_MM_2, "H"},
      {IDS_UTL_APP_NAME, "Tobix Suite\nTobix"},
      {IDS_UTL_NOT_READY_CAPTION, "Not Available"},
  };
  for (const Case& c : cases) EXPECT_EQ(LoadText(library, c.id), c.text) << c.id;

  // The fatal-error format takes the text, the code, the module and the line.
  std::string format = LoadText(library, IDS_UTL_FATAL_ERROR_FORMAT);
  char message[256];
  std::snprintf(message, sizeof message, format.c_str(), "Out of memory", 1000, "LISTMAN", 42);
  EXPECT_STREQ(message, "Out of memory\n\nError code: 1000\nModule: LISTMAN\nLine: 42");
}

TEST(LanguageLibraries, GermanAndEnglishHoldTheirTexts) {
  HMODULE library = GetModuleHandleA("tbxutl.dll");
  HMODULE english = LoadLibraryA(LanguageLibraryPath("EN").c_str());
  HMODULE german = LoadLibraryA(LanguageLibraryPath("DE").c_str());
  ASSERT_NE(english, nullptr) << LanguageLibraryPath("EN");
  ASSERT_NE(german, nullptr) << LanguageLibraryPath("DE");
  EXPECT_NE(english, german) << "two files of the same name are two modules";

  struct Case {
    UINT id;
    const char* german;
  };
  const Case cases[] = {
      {IDS_UTL_NOT_READY_CAPTION, "Nicht verf\xFCgbar"},
      {IDS_UTL_FATAL_ERROR_CAPTION, "Schwerer Fehler"},
      {IDS_UTL_UNIT_FOOT, "Fu\xDF"},
      {IDS_UTL_UNIT_FRACTION_SUFFIX, " (Br\xFC" "che)"},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(LoadText(german, c.id), c.german) << c.id;
    EXPECT_EQ(LoadText(english, c.id), LoadText(library, c.id)) << "English is the library's own text, " << c.id;
    EXPECT_NE(LoadText(english, c.id), c.german) << c.id;
  }
  // The German library leaves the token symbols to the library's texts.
  EXPECT_EQ(LoadText(german, IDS_UTL_TOKEN_PLUS), "");
  EXPECT_EQ(LoadText(english, IDS_UTL_TOKEN_PLUS), "+");

  EXPECT_TRUE(FreeLibrary(english));
  EXPECT_TRUE(FreeLibrary(german));
}

}  // namespace
