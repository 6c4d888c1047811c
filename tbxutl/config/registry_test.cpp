#include "tbxutl/config/registry.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <set>
#include <string>
#include <vector>

#include "tbxutl/config/registry_testing.h"

#if defined(_WIN32)
extern "C" int __cdecl _setmbcp(int codePage);
#endif

using tbx::testing::TestKey;

namespace {

constexpr REGSAM kReadWrite = KEY_READ | KEY_WRITE;

std::string Location(WUTLRegistry& key) {
  CString location;
  key.GetCurrentKeyLocation(location);
  return location.GetString();
}

std::string Read(WUTLRegistry& key, const char* name) {
  CString value;
  return key.GetValue(name, value) == ERROR_SUCCESS ? value.GetString() : "<missing>";
}

// The type and bytes the platform holds for a value below HKEY_CURRENT_USER
// (a string's without the terminator that the platform adds); type 0 when
// there is none.
std::pair<DWORD, std::string> Stored(const std::string& path, const char* name) {
  HKEY key = nullptr;
  DWORD type = REG_NONE;
  char data[512];
  DWORD size = sizeof data;
  if (RegOpenKeyExA(HKEY_CURRENT_USER, path.c_str() + std::strlen("HKEY_CURRENT_USER\\"), 0, KEY_READ, &key) ||
      RegQueryValueExA(key, name, nullptr, &type, reinterpret_cast<BYTE*>(data), &size)) {
    type = REG_NONE;
    size = 0;
  }
  RegCloseKey(key);
  if (type == REG_SZ && size > 0 && data[size - 1] == '\0') --size;
  return {type, std::string(data, size)};
}

std::multiset<std::string> NamesOfList(const char* list) {
  std::multiset<std::string> names;
  for (const char* p = list; *p != '\0'; p += std::strlen(p) + 1) names.insert(p);
  return names;
}

}  // namespace

TEST(RegistryTest, PathsBeginWithAnExactRootName) {
  TestKey test;
  ASSERT_EQ(WUTLRegistry::CreateKey(test.path(), KEY_WRITE, 0), ERROR_SUCCESS);
  for (const char* path : {"HKEY_CURRENT_USER", "HKEY_LOCAL_MACHINE", "HKEY_CLASSES_ROOT", test.path()}) {
    WUTLRegistry key(path, KEY_READ);
    EXPECT_EQ(key.OpenKey(nullptr, 0, KEY_READ), ERROR_SUCCESS) << path;
    EXPECT_EQ(Location(key), path);
  }
  const std::string below = test.path() + std::strlen("HKEY_CURRENT_USER");
  for (const std::string& path : {std::string("hkey_current_user"), "HKCU" + below, "HKEY_CURRENT_USER " + below,
                                  below, std::string()}) {
    WUTLRegistry key(path.c_str(), KEY_READ);
    EXPECT_EQ(key.OpenKey(nullptr, 0, KEY_READ), ERROR_OPEN_FAILED) << path;
    EXPECT_EQ(WUTLRegistry::IsValid(path.c_str()), ERROR_OPEN_FAILED) << path;
    EXPECT_EQ(WUTLRegistry::CreateKey(path.c_str(), KEY_WRITE, 0), -1) << path;
  }
  EXPECT_EQ(WUTLRegistry::CreateKey(nullptr, KEY_WRITE, 0), -1);
  EXPECT_EQ(WUTLRegistry::IsValid((test / "Missing").c_str()), ERROR_FILE_NOT_FOUND);
}

TEST(RegistryTest, OpeningKeepsTheOldKeyOnFailureAndCreatingGivesWriteAccess) {
  TestKey test;
  const std::string path = test / "A\\B";
  // Created keys are reopened for reading and writing whatever was asked ...
  WUTLRegistry key(path.c_str(), KEY_READ, 1);
  EXPECT_EQ(key.SetValue("v", "x"), ERROR_SUCCESS);
  EXPECT_EQ(key.OpenKey((test / "Missing").c_str(), 0, KEY_READ), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(key.OpenKey(nullptr, 0, kReadWrite), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(Location(key), path);
  EXPECT_EQ(Read(key, "v"), "x");
  // ... but the access asked for is what IsValid() reopens with.
  EXPECT_EQ(key.IsValid(), ERROR_SUCCESS);
  EXPECT_EQ(key.SetValue("v", "y"), ERROR_ACCESS_DENIED);
  EXPECT_EQ(WUTLRegistry(path.c_str(), KEY_READ, 1).SetValue("v", "y"), ERROR_ACCESS_DENIED);
  ASSERT_EQ(WUTLRegistry::DeleteRegistryKey((test / "A").c_str()), ERROR_SUCCESS);
  EXPECT_EQ(key.IsValid(), ERROR_OPEN_FAILED);
  EXPECT_EQ(WUTLRegistry().IsValid(), ERROR_OPEN_FAILED);
}

TEST(RegistryTest, DeleteRegistryValueClosesTheSharedKeyAndDeleteValueDoesNot) {
  TestKey test;
  WUTLRegistry key(test.path(), kReadWrite, 1);
  ASSERT_EQ(key.SetValue("a", "1"), ERROR_SUCCESS);
  EXPECT_EQ(key.DeleteValue("missing"), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(Location(key), test.path());
  WUTLRegistry copy(key);
  EXPECT_EQ(key.DeleteRegistryValue("missing"), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(Location(key), "");
  EXPECT_EQ(key.DeleteRegistryValue("a"), -1);
  // The copy's handle was the same one.
  EXPECT_EQ(Location(copy), test.path());
  EXPECT_EQ(Read(copy, "a"), "<missing>");
  ASSERT_EQ(key.OpenKey(test.path(), 0, kReadWrite), ERROR_SUCCESS);
  EXPECT_EQ(key.DeleteRegistryValue("a"), ERROR_SUCCESS);
  EXPECT_EQ(Stored(test.path(), "a").first, static_cast<DWORD>(REG_NONE));
}

TEST(RegistryTest, ValuesAreReadIntoFixedBuffersWhateverTheirType) {
  TestKey test;
  WUTLRegistry key(test.path(), kReadWrite, 1);
  // 259 characters and their terminator fit. (Exactly 260 depends on
  // whether the platform stores the terminator that SetValue leaves out.)
  for (std::size_t length : {0, 259, 261}) {
    const std::string text(length, 'a');
    ASSERT_EQ(key.SetValue("s", text.c_str()), ERROR_SUCCESS);
    EXPECT_EQ(Stored(test.path(), "s"), std::make_pair(DWORD{REG_SZ}, text));
    CString value("old");
    EXPECT_EQ(key.GetValue("s", value), length < 260 ? ERROR_SUCCESS : ERROR_MORE_DATA) << length;
    EXPECT_EQ(std::string(value), length < 260 ? text : "") << length;
  }
  ASSERT_EQ(key.SetValue("n", DWORD{0x00434241}), ERROR_SUCCESS);
  EXPECT_EQ(Stored(test.path(), "n").first, static_cast<DWORD>(REG_DWORD));
  DWORD number = 0;
  EXPECT_EQ(key.GetValue("n", number), ERROR_SUCCESS);
  EXPECT_EQ(number, 0x00434241u);
  EXPECT_EQ(Read(key, "n"), "ABC");
}

TEST(RegistryTest, DoubleByteStringsStoreOneBytePerCharacter) {
#if defined(_WIN32)
  ASSERT_EQ(_setmbcp(932), 0);
  TestKey test;
  const LONG status = WUTLRegistry(test.path(), kReadWrite, 1).SetValue("s", "\x82\xa0\x82\xa2");
  _setmbcp(-3);  // the ANSI code page again
  ASSERT_EQ(status, ERROR_SUCCESS);
  EXPECT_EQ(Stored(test.path(), "s").second, "\x82\xa0");
#else
  GTEST_SKIP() << "the Linux platform has no double-byte code page";
#endif
}

TEST(RegistryTest, RenameValueMovesStringsAndNumbersOnly) {
  TestKey test;
  WUTLRegistry key(test.path(), kReadWrite, 1);
  ASSERT_EQ(key.SetValue("text", "hello"), ERROR_SUCCESS);
  ASSERT_EQ(key.SetValue("number", DWORD{7}), ERROR_SUCCESS);
  ASSERT_EQ(WUTLRegistry::RegWriteBinary("", "binary", reinterpret_cast<const BYTE*>("\1\2"), 2, test.path()), 1);
  EXPECT_EQ(key.RenameValue("text", "text2"), ERROR_SUCCESS);
  EXPECT_EQ(key.RenameValue("number", "number2"), ERROR_SUCCESS);
  EXPECT_EQ(key.RenameValue("binary", "binary2"), ERROR_NO_MORE_ITEMS);
  EXPECT_EQ(key.RenameValue("missing", "missing2"), ERROR_FILE_NOT_FOUND);
  std::multiset<std::string> names;
  CString name;
  for (DWORD index = 0; key.GetNextValue(name, index) == ERROR_SUCCESS; ++index) names.insert(name.GetString());
  EXPECT_EQ(names, (std::multiset<std::string>{"text2", "number2", "binary"}));
  EXPECT_EQ(Stored(test.path(), "text2").second, "hello");
  EXPECT_EQ(Stored(test.path(), "number2"), std::make_pair(DWORD{REG_DWORD}, std::string("\7\0\0\0", 4)));
}

TEST(RegistryTest, EnumeratesNamesAndRawData) {
  TestKey test;
  WUTLRegistry key(test.path(), kReadWrite, 1);
  ASSERT_EQ(WUTLRegistry::CreateKey((test / "Sub").c_str(), KEY_WRITE, 0), ERROR_SUCCESS);
  ASSERT_EQ(key.SetValue("n", DWORD{0x00005A59}), ERROR_SUCCESS);
  CString name, data;
  DWORD number = 0;
  EXPECT_EQ(key.GetNextSubkey(name, 1), ERROR_NO_MORE_ITEMS);
  EXPECT_TRUE(name.IsEmpty());
  EXPECT_EQ(key.GetNextValue(name, data, 0), ERROR_SUCCESS);
  EXPECT_EQ(std::string(name) + "=" + data.GetString(), "n=YZ");
  EXPECT_EQ(key.GetNextValue(name, number, 0), ERROR_SUCCESS);
  EXPECT_EQ(number, 0x5A59u);
  EXPECT_EQ(key.GetNextValue(name, data, 1), ERROR_NO_MORE_ITEMS);
  // A value too long for the 260-byte data buffer ends the value-name list.
  ASSERT_EQ(key.SetValue("o", std::string(300, 'x').c_str()), ERROR_SUCCESS);
  char list[32];
  key.GetValueNameList(list, sizeof list);
  EXPECT_EQ(NamesOfList(list), std::multiset<std::string>{"n"});
}

// The names are created in alphabetical order, which is also the order in
// which Windows, Wine and Linux enumerate them.
TEST(RegistryTest, NameListsEndInTwoZerosAndCutWhatDoesNotFit) {
  const struct {
    std::vector<std::string> names;
    int size;
    std::string expected;  // the buffer, '#' where nothing was written
  } cases[] = {
      {{}, 6, std::string("\0\0####", 6)},          {{}, 1, std::string("\0", 1)},
      {{"a", "bb"}, 8, std::string("a\0bb\0\0##", 8)}, {{"a", "bb"}, 6, std::string("a\0bb\0\0", 6)},
      {{"a", "bb"}, 5, std::string("a\0b\0\0", 5)},    {{"abcdef"}, 5, std::string("abc\0\0", 5)},
      {{"abc", "d"}, 2, std::string("\0\0", 2)},
  };
  for (const auto& c : cases) {
    TestKey test;
    WUTLRegistry key(test.path(), kReadWrite, 1);
    for (const std::string& name : c.names) {
      ASSERT_EQ(WUTLRegistry::CreateKey((test / name).c_str(), KEY_WRITE, 0), ERROR_SUCCESS);
      ASSERT_EQ(key.SetValue(name.c_str(), "v"), ERROR_SUCCESS);
    }
    for (bool values : {false, true}) {
      std::string buffer(static_cast<std::size_t>(c.size) + 2, '#');
      values ? key.GetValueNameList(buffer.data(), c.size) : key.GetSubkeyList(buffer.data(), c.size);
      EXPECT_EQ(buffer, c.expected + "##") << (values ? "values, size " : "subkeys, size ") << c.size;
    }
  }
}

TEST(RegistryTest, RegReadIntStoresItsDefaultAsDecimalText) {
  TestKey test;
  EXPECT_EQ(WUTLRegistry::RegReadInt("\\Sub", "n", -42, test.path()), -42);  // base and sub simply joined
  EXPECT_EQ(Stored(test / "Sub", "n"), std::make_pair(DWORD{REG_SZ}, std::string("-42")));
  EXPECT_EQ(WUTLRegistry::RegReadInt((test / "Sub").c_str(), "n", 5, nullptr), -42);
  for (const auto& [text, value] : {std::pair{"12abc", 12}, {" 7", 7}, {"abc", 0}, {"-2147483648", INT_MIN}}) {
    ASSERT_EQ(WUTLRegistry::RegWriteString("", "n", text, test.path()), 1);
    EXPECT_EQ(WUTLRegistry::RegReadInt("", "n", 99, test.path()), value) << text;
  }
}

TEST(RegistryTest, RegReadStringCopiesCutsListsAndDefaults) {
  TestKey test;
  ASSERT_EQ(WUTLRegistry::RegWriteString("", "v", "abcde", test.path()), 1);
  const struct {
    const char* sub;
    const char* name;
    int size;
    std::string expected;  // the buffer, '#' where nothing was written
    int result;
  } cases[] = {
      {"", "v", 6, std::string("abcde\0##", 8), 5},
      // size - 1 characters, and the zero at index size.
      {"", "v", 5, std::string("abcd#\0##", 8), 5},
      {"", "v", 3, std::string("ab#\0####", 8), 3},
      // Missing: the default, without a terminator when it does not fit.
      {"\\New", "d", 8, std::string("default\0", 8), 7},
      {"", "e", 4, "defa####", 4},
      // Without a sub-key the subkey list, without a name the value list.
      {nullptr, "v", 8, std::string("New\0\0###", 8), 3},
      {"\\New", nullptr, 8, std::string("d\0\0#####", 8), 1},
      {"\\Gone", nullptr, 8, std::string("\0#######", 8), 0},
  };
  for (const auto& c : cases) {
    char out[8];
    std::memset(out, '#', sizeof out);
    EXPECT_EQ(WUTLRegistry::RegReadString(c.sub, c.name, "default", out, c.size, test.path()), c.result) << c.size;
    EXPECT_EQ(std::string(out, sizeof out), c.expected) << c.size;
  }
  EXPECT_EQ(Stored(test / "New", "d").second, "default");
  EXPECT_EQ(Stored(test.path(), "e").second, "default");
  EXPECT_EQ(WUTLRegistry::IsValid((test / "Gone").c_str()), ERROR_FILE_NOT_FOUND);
}

TEST(RegistryTest, WriteHelpersCreateAndDeleteValuesAndWholeTrees) {
  TestKey test;
  const BYTE bytes[] = {0, 1, 2, 0xFF};
  BYTE out[8] = {};
  EXPECT_EQ(WUTLRegistry::RegWriteBinary("\\T\\B", "bin", bytes, 4, test.path()), 1);
  EXPECT_EQ(Stored(test / "T\\B", "bin").first, static_cast<DWORD>(REG_BINARY));
  EXPECT_EQ(WUTLRegistry::RegReadBinary("\\T\\B", "bin", out, sizeof out, test.path()), 4);
  EXPECT_EQ(std::memcmp(out, bytes, 4), 0);
  EXPECT_EQ(WUTLRegistry::RegReadBinary("\\T\\B", "bin", out, 3, test.path()), -1);
  EXPECT_EQ(WUTLRegistry::RegReadBinary("\\Missing", "bin", out, sizeof out, test.path()), -1);
  EXPECT_EQ(WUTLRegistry::RegWriteBinary("\\T\\B", "bin", nullptr, 0, test.path()), 1);
  EXPECT_EQ(WUTLRegistry::RegWriteBinary("\\T\\B", "bin", nullptr, 0, test.path()), 0);

  EXPECT_EQ(WUTLRegistry::RegWriteString("\\T\\S\\Deep", "s", "text", test.path()), 1);
  EXPECT_EQ(WUTLRegistry::RegWriteString("\\T\\S\\Deep", "s", "new", test.path()), 1);
  EXPECT_EQ(Stored(test / "T\\S\\Deep", "s").second, "new");
  EXPECT_EQ(WUTLRegistry::RegWriteString("\\T\\S\\Deep", "s", nullptr, test.path()), 1);
  EXPECT_EQ(Stored(test / "T\\S\\Deep", "s").first, static_cast<DWORD>(REG_NONE));
  // Deleting what is not there fails and creates nothing.
  EXPECT_EQ(WUTLRegistry::RegWriteString("\\None", "s", nullptr, test.path()), 0);
  EXPECT_EQ(WUTLRegistry::RegWriteString("\\None", nullptr, nullptr, test.path()), 0);
  EXPECT_EQ(WUTLRegistry::IsValid((test / "None").c_str()), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(WUTLRegistry::RegWriteString("\\T", nullptr, nullptr, test.path()), 1);
  EXPECT_EQ(WUTLRegistry::IsValid((test / "T").c_str()), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(WUTLRegistry::DeleteRegistryKey((test / "T").c_str()), ERROR_FILE_NOT_FOUND);
}
