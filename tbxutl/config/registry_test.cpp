#include "tbxutl/config/registry.h"

#include <gtest/gtest.h>

#include <cstring>
#include <set>
#include <string>
#include <vector>

#include "tbxutl/config/registry_testing.h"

#if defined(_WIN32)
extern "C" int __cdecl _setmbcp(int codePage);
#endif

using tbx::testing::NamesOfList;
using tbx::testing::TestKey;

namespace {

std::string Location(WUTLRegistry& key) {
  CString location;
  EXPECT_EQ(key.GetCurrentKeyLocation(location), 1);
  return location.GetString();
}

std::string Read(WUTLRegistry& key, const char* name) {
  CString value;
  return key.GetValue(name, value) == ERROR_SUCCESS ? value.GetString() : "<missing>";
}

// What the platform holds for a value: its type and its bytes (a string's
// without the terminator).
struct Stored {
  LONG status = ERROR_FILE_NOT_FOUND;
  DWORD type = REG_NONE;
  std::string bytes;
};

Stored StoredValue(const std::string& path, const char* name) {
  Stored stored;
  HKEY key = nullptr;
  const std::string below = path.substr(std::strlen("HKEY_CURRENT_USER\\"));
  if (RegOpenKeyExA(HKEY_CURRENT_USER, below.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) return stored;
  char data[1024] = {};
  DWORD size = sizeof data;
  stored.status = RegQueryValueExA(key, name, nullptr, &stored.type, reinterpret_cast<BYTE*>(data), &size);
  if (stored.status == ERROR_SUCCESS) stored.bytes.assign(data, size);
  // The platform adds the terminator that SetValue leaves out.
  if (stored.type == REG_SZ && !stored.bytes.empty() && stored.bytes.back() == '\0') stored.bytes.pop_back();
  RegCloseKey(key);
  return stored;
}

std::set<std::string> SubkeyNames(WUTLRegistry& key) {
  std::set<std::string> names;
  CString name;
  DWORD index = 0;
  while (key.GetNextSubkey(name, index++) == ERROR_SUCCESS) names.insert(name.GetString());
  EXPECT_TRUE(name.IsEmpty());
  return names;
}

}  // namespace

TEST(RegistryTest, PathsBeginWithAnExactRootName) {
  TestKey test;
  ASSERT_EQ(WUTLRegistry::CreateKey(test.path(), KEY_ALL_ACCESS, 0), ERROR_SUCCESS);
  for (const char* path : {"HKEY_CURRENT_USER", "HKEY_LOCAL_MACHINE", "HKEY_CLASSES_ROOT", test.path()}) {
    WUTLRegistry key(path, KEY_READ);
    EXPECT_EQ(key.OpenKey(nullptr, 0, KEY_READ), ERROR_SUCCESS) << path;
    EXPECT_EQ(Location(key), path);
    EXPECT_EQ(WUTLRegistry::IsValid(path), ERROR_SUCCESS) << path;
  }
  const std::string below = std::string(test.path()).substr(std::strlen("HKEY_CURRENT_USER"));
  for (const std::string& path : {std::string("hkey_current_user"), std::string("HKCU") + below,
                                  std::string("HKEY_CURRENT_USER ") + below, below, std::string()}) {
    WUTLRegistry key(path.c_str(), KEY_READ);
    EXPECT_EQ(key.OpenKey(nullptr, 0, KEY_READ), ERROR_OPEN_FAILED) << path;
    EXPECT_EQ(Location(key), "");
    EXPECT_EQ(WUTLRegistry::IsValid(path.c_str()), ERROR_OPEN_FAILED) << path;
    EXPECT_EQ(WUTLRegistry::CreateKey(path.c_str(), KEY_ALL_ACCESS, 0), -1) << path;
  }
  EXPECT_EQ(WUTLRegistry::CreateKey(nullptr, KEY_ALL_ACCESS, 0), -1);
  EXPECT_EQ(WUTLRegistry::IsValid(test.path()), ERROR_SUCCESS);
  EXPECT_EQ(WUTLRegistry::IsValid((test / "Missing").c_str()), ERROR_FILE_NOT_FOUND);
}

TEST(RegistryTest, AFailedOpenKeepsTheOpenKeyAndRemembersItsStatus) {
  TestKey test;
  WUTLRegistry key(test.path(), KEY_READ | KEY_WRITE, 1);
  ASSERT_EQ(key.SetValue("v", "first"), ERROR_SUCCESS);
  EXPECT_EQ(key.OpenKey((test / "Missing").c_str(), 0, KEY_READ), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(key.OpenKey(nullptr, 0, KEY_READ), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(Location(key), test.path());
  EXPECT_EQ(Read(key, "v"), "first");
  EXPECT_EQ(key.OpenKey("HKEY_CURRENT_USER", 0, KEY_READ), ERROR_SUCCESS);
  EXPECT_EQ(Location(key), "HKEY_CURRENT_USER");
  EXPECT_EQ(Read(key, "v"), "<missing>");
}

TEST(RegistryTest, CreatingReopensForReadingAndWritingButKeepsTheAskedAccess) {
  TestKey test;
  const std::string path = test / "A\\B";
  WUTLRegistry key(path.c_str(), KEY_READ, 1);
  EXPECT_EQ(Location(key), path);
  // The key it had to create is open for writing too ...
  EXPECT_EQ(key.SetValue("v", "x"), ERROR_SUCCESS);
  // ... an existing one only as asked, and IsValid() reopens with the access
  // asked for.
  EXPECT_EQ(key.IsValid(), ERROR_SUCCESS);
  EXPECT_EQ(key.SetValue("v", "y"), ERROR_ACCESS_DENIED);
  WUTLRegistry again(path.c_str(), KEY_READ, 1);
  EXPECT_EQ(again.SetValue("v", "y"), ERROR_ACCESS_DENIED);
  EXPECT_EQ(Read(again, "v"), "x");
}

TEST(RegistryTest, IsValidFailsOnceTheKeyIsGone) {
  TestKey test;
  WUTLRegistry closed;
  EXPECT_EQ(closed.IsValid(), ERROR_OPEN_FAILED);
  WUTLRegistry key((test / "K").c_str(), KEY_READ, 1);
  EXPECT_EQ(key.IsValid(), ERROR_SUCCESS);
  ASSERT_EQ(WUTLRegistry::DeleteRegistryKey((test / "K").c_str()), ERROR_SUCCESS);
  EXPECT_EQ(key.IsValid(), ERROR_OPEN_FAILED);
}

TEST(RegistryTest, CopiesShareOneHandle) {
  TestKey test;
  WUTLRegistry key(test.path(), KEY_READ | KEY_WRITE, 1);
  ASSERT_EQ(key.SetValue("v", "x"), ERROR_SUCCESS);
  WUTLRegistry copy(key);
  EXPECT_EQ(Read(copy, "v"), "x");
  EXPECT_EQ(key.DeleteRegistryValue("missing"), ERROR_FILE_NOT_FOUND);
  // Closing through one object pulled the key from under the other.
  EXPECT_EQ(Location(copy), test.path());
  CString value;
  EXPECT_EQ(copy.GetValue("v", value), ERROR_INVALID_HANDLE);
}

TEST(RegistryTest, DeleteRegistryValueClosesTheKeyAndDeleteValueDoesNot) {
  TestKey test;
  WUTLRegistry key(test.path(), KEY_READ | KEY_WRITE, 1);
  ASSERT_EQ(key.SetValue("a", "1"), ERROR_SUCCESS);
  EXPECT_EQ(key.DeleteValue("missing"), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(key.DeleteValue("a"), ERROR_SUCCESS);
  EXPECT_EQ(Location(key), test.path());
  ASSERT_EQ(key.SetValue("a", "1"), ERROR_SUCCESS);
  EXPECT_EQ(key.DeleteRegistryValue("missing"), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(Location(key), "");
  EXPECT_EQ(key.DeleteRegistryValue("a"), -1);
  EXPECT_EQ(key.OpenKey(test.path(), 0, KEY_READ | KEY_WRITE), ERROR_SUCCESS);
  EXPECT_EQ(key.DeleteRegistryValue("a"), ERROR_SUCCESS);
  EXPECT_EQ(Location(key), "");
  EXPECT_EQ(StoredValue(test.path(), "a").status, ERROR_FILE_NOT_FOUND);
}

TEST(RegistryTest, StringsAreReadIntoA260ByteBuffer) {
  TestKey test;
  WUTLRegistry key(test.path(), KEY_READ | KEY_WRITE, 1);
  // 259 characters and their terminator fit. (Exactly 260 depends on
  // whether the platform stores the terminator that SetValue leaves out.)
  for (std::size_t length : {0, 1, 259, 261, 300}) {
    const std::string text(length, static_cast<char>('a' + length % 26));
    ASSERT_EQ(key.SetValue("s", text.c_str()), ERROR_SUCCESS);
    const Stored stored = StoredValue(test.path(), "s");
    EXPECT_EQ(stored.type, static_cast<DWORD>(REG_SZ));
    EXPECT_EQ(stored.bytes, text);
    CString value("old");
    EXPECT_EQ(key.GetValue("s", value), length < 260 ? ERROR_SUCCESS : ERROR_MORE_DATA) << length;
    EXPECT_EQ(std::string(value), length < 260 ? text : "") << length;
  }
  ASSERT_EQ(key.SetValue("n", DWORD{0x00434241}), ERROR_SUCCESS);
  EXPECT_EQ(StoredValue(test.path(), "n").type, static_cast<DWORD>(REG_DWORD));
  DWORD number = 0;
  EXPECT_EQ(key.GetValue("n", number), ERROR_SUCCESS);
  EXPECT_EQ(number, 0x00434241u);
  EXPECT_EQ(Read(key, "n"), "ABC") << "the type is not checked";
}

TEST(RegistryTest, DoubleByteStringsStoreOneBytePerCharacter) {
#if defined(_WIN32)
  ASSERT_EQ(_setmbcp(932), 0);
  TestKey test;
  WUTLRegistry key(test.path(), KEY_READ | KEY_WRITE, 1);
  const LONG status = key.SetValue("s", "\x82\xa0\x82\xa2");  // two characters, four bytes
  _setmbcp(-3);                                               // back to the ANSI code page
  ASSERT_EQ(status, ERROR_SUCCESS);
  EXPECT_EQ(StoredValue(test.path(), "s").bytes, "\x82\xa0");
#else
  GTEST_SKIP() << "the Linux platform has no double-byte code page";
#endif
}

TEST(RegistryTest, RenameValueMovesStringsAndNumbersOnly) {
  TestKey test;
  WUTLRegistry key(test.path(), KEY_READ | KEY_WRITE, 1);
  ASSERT_EQ(key.SetValue("text", "hello"), ERROR_SUCCESS);
  ASSERT_EQ(key.SetValue("number", DWORD{7}), ERROR_SUCCESS);
  ASSERT_EQ(WUTLRegistry::RegWriteBinary("", "binary", reinterpret_cast<const BYTE*>("\1\2"), 2, test.path()), 1);
  EXPECT_EQ(key.RenameValue("text", "text2"), ERROR_SUCCESS);
  EXPECT_EQ(key.RenameValue("number", "number2"), ERROR_SUCCESS);
  EXPECT_EQ(key.RenameValue("binary", "binary2"), ERROR_NO_MORE_ITEMS);
  EXPECT_EQ(key.RenameValue("missing", "missing2"), ERROR_FILE_NOT_FOUND);
  const struct {
    const char* name;
    LONG status;
  } after[] = {{"text", ERROR_FILE_NOT_FOUND},   {"text2", ERROR_SUCCESS},    {"number", ERROR_FILE_NOT_FOUND},
               {"number2", ERROR_SUCCESS},       {"binary", ERROR_SUCCESS},   {"binary2", ERROR_FILE_NOT_FOUND},
               {"missing2", ERROR_FILE_NOT_FOUND}};
  for (const auto& value : after) EXPECT_EQ(StoredValue(test.path(), value.name).status, value.status) << value.name;
  EXPECT_EQ(Read(key, "text2"), "hello");
  DWORD number = 0;
  EXPECT_EQ(key.GetValue("number2", number), ERROR_SUCCESS);
  EXPECT_EQ(number, 7u);
}

TEST(RegistryTest, EnumeratesSubkeysAndValues) {
  TestKey test;
  WUTLRegistry key(test.path(), KEY_READ | KEY_WRITE, 1);
  EXPECT_EQ(SubkeyNames(key), std::set<std::string>{});
  for (const char* name : {"One", "Two"}) ASSERT_EQ(WUTLRegistry::CreateKey((test / name).c_str(), KEY_WRITE, 0), 0);
  EXPECT_EQ(SubkeyNames(key), (std::set<std::string>{"One", "Two"}));

  ASSERT_EQ(key.SetValue("s", "text"), ERROR_SUCCESS);
  ASSERT_EQ(key.SetValue("n", DWORD{0x00005A59}), ERROR_SUCCESS);
  std::set<std::string> withData, withNumber, namesOnly;
  CString name, data;
  DWORD number = 0;
  for (DWORD index = 0; key.GetNextValue(name, data, index) == ERROR_SUCCESS; ++index) {
    withData.insert(std::string(name) + "=" + data.GetString());
  }
  EXPECT_TRUE(name.IsEmpty());
  // Raw bytes of any type, up to the first zero.
  EXPECT_EQ(withData, (std::set<std::string>{"s=text", "n=YZ"}));
  for (DWORD index = 0; key.GetNextValue(name, number, index) == ERROR_SUCCESS; ++index) {
    if (name == "n") withNumber.insert(std::to_string(number));
  }
  EXPECT_EQ(withNumber, std::set<std::string>{"23129"});
  for (DWORD index = 0; key.GetNextValue(name, index) == ERROR_SUCCESS; ++index) namesOnly.insert(name.GetString());
  EXPECT_EQ(namesOnly, (std::set<std::string>{"s", "n"}));
  EXPECT_EQ(key.GetNextValue(name, data, 2), ERROR_NO_MORE_ITEMS);
}

// Names are created in alphabetical order: that is the enumeration order of
// Windows (creation order for values, sorted for subkeys), Wine and Linux.
TEST(RegistryTest, NameListsEndInTwoZerosAndCutWhatDoesNotFit) {
  const struct {
    std::vector<std::string> names;
    int size;
    std::string expected;  // the whole buffer, '#' where nothing was written
  } cases[] = {
      {{}, 6, std::string("\0\0####", 6)},
      {{}, 2, std::string("\0\0", 2)},
      {{}, 1, std::string("\0", 1)},
      {{"a", "bb"}, 8, std::string("a\0bb\0\0##", 8)},
      {{"a", "bb"}, 6, std::string("a\0bb\0\0", 6)},
      {{"a", "bb"}, 5, std::string("a\0b\0\0", 5)},
      {{"abcdef"}, 5, std::string("abc\0\0", 5)},
      {{"abc"}, 5, std::string("abc\0\0", 5)},
      {{"abc", "d"}, 2, std::string("\0\0", 2)},
  };
  for (const auto& c : cases) {
    TestKey test;
    WUTLRegistry key(test.path(), KEY_READ | KEY_WRITE, 1);
    for (const std::string& name : c.names) {
      ASSERT_EQ(WUTLRegistry::CreateKey((test / name).c_str(), KEY_WRITE, 0), ERROR_SUCCESS);
      ASSERT_EQ(key.SetValue(name.c_str(), "v"), ERROR_SUCCESS);
    }
    for (bool values : {false, true}) {
      std::string buffer(static_cast<std::size_t>(c.size) + 4, '#');
      values ? key.GetValueNameList(buffer.data(), c.size) : key.GetSubkeyList(buffer.data(), c.size);
      EXPECT_EQ(buffer, c.expected + "####") << (values ? "values " : "subkeys ") << c.size;
    }
  }
}

TEST(RegistryTest, AValueTooLongToReadEndsTheValueNameList) {
  TestKey test;
  WUTLRegistry key(test.path(), KEY_READ | KEY_WRITE, 1);
  ASSERT_EQ(key.SetValue("a", "short"), ERROR_SUCCESS);
  ASSERT_EQ(key.SetValue("b", std::string(300, 'x').c_str()), ERROR_SUCCESS);
  char buffer[64];
  key.GetValueNameList(buffer, sizeof buffer);
  EXPECT_EQ(NamesOfList(buffer), std::multiset<std::string>{"a"});
}

TEST(RegistryTest, DeleteRegistryKeyRemovesTheWholeTree) {
  TestKey test;
  for (const char* path : {"T\\A\\A1", "T\\A\\A2\\Deep", "T\\B"}) {
    ASSERT_EQ(WUTLRegistry::RegWriteString((test / path).c_str(), "v", "x", ""), 1);
  }
  EXPECT_EQ(WUTLRegistry::DeleteRegistryKey((test / "T").c_str()), ERROR_SUCCESS);
  EXPECT_EQ(WUTLRegistry::IsValid((test / "T").c_str()), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(WUTLRegistry::IsValid(test.path()), ERROR_SUCCESS);
  EXPECT_EQ(WUTLRegistry::DeleteRegistryKey((test / "T").c_str()), ERROR_FILE_NOT_FOUND);
}

TEST(RegistryTest, RegReadIntStoresItsDefaultAsDecimalText) {
  TestKey test;
  // The base and the sub-key are simply joined.
  EXPECT_EQ(WUTLRegistry::RegReadInt("\\Sub", "n", -42, test.path()), -42);
  const Stored stored = StoredValue(test / "Sub", "n");
  EXPECT_EQ(stored.type, static_cast<DWORD>(REG_SZ));
  EXPECT_EQ(stored.bytes, "-42");
  EXPECT_EQ(WUTLRegistry::RegReadInt("\\Sub", "n", 5, test.path()), -42);
  EXPECT_EQ(WUTLRegistry::RegReadInt((test / "Sub").c_str(), "n", 5, nullptr), -42);

  const struct {
    const char* text;
    int value;
  } texts[] = {{"12abc", 12}, {" 7", 7}, {"abc", 0}, {"", 0}, {"-2147483648", -2147483647 - 1}};
  for (const auto& t : texts) {
    ASSERT_EQ(WUTLRegistry::RegWriteString("", "n", t.text, test.path()), 1);
    EXPECT_EQ(WUTLRegistry::RegReadInt("", "n", 99, test.path()), t.value) << t.text;
  }
}

TEST(RegistryTest, RegReadStringCopiesCutsAndDefaults) {
  TestKey test;
  ASSERT_EQ(WUTLRegistry::RegWriteString("", "v", "abcde", test.path()), 1);
  const struct {
    int size;
    std::string expected;  // '#' where nothing was written
    int result;
  } found[] = {
      {6, std::string("abcde\0##", 8), 5},
      // A value of `size` characters or more: size - 1 of them, and the zero
      // at index size.
      {5, std::string("abcd#\0##", 8), 5},
      {3, std::string("ab#\0####", 8), 3},
  };
  for (const auto& f : found) {
    char out[8];
    std::memset(out, '#', sizeof out);
    EXPECT_EQ(WUTLRegistry::RegReadString("", "v", "default", out, f.size, test.path()), f.result) << f.size;
    EXPECT_EQ(std::string(out, sizeof out), f.expected) << f.size;
  }

  // A missing value: the default is stored and copied, cut without a
  // terminator when it does not fit.
  char out[8];
  std::memset(out, '#', sizeof out);
  EXPECT_EQ(WUTLRegistry::RegReadString("\\New", "d", "xyz", out, 4, test.path()), 3);
  EXPECT_EQ(std::string(out, 4), std::string("xyz\0", 4));
  EXPECT_EQ(StoredValue(test / "New", "d").bytes, "xyz");
  std::memset(out, '#', sizeof out);
  EXPECT_EQ(WUTLRegistry::RegReadString("", "e", "longer", out, 4, test.path()), 4);
  EXPECT_EQ(std::string(out, sizeof out), "long####");
  EXPECT_EQ(StoredValue(test.path(), "e").bytes, "longer");

  // Without a sub-key the subkey names, without a value name the value names.
  char list[64];
  EXPECT_EQ(WUTLRegistry::RegReadString(nullptr, "x", "", list, sizeof list, test.path()), 3);
  EXPECT_EQ(NamesOfList(list), std::multiset<std::string>{"New"});
  WUTLRegistry::RegReadString("", nullptr, "", list, sizeof list, test.path());
  EXPECT_EQ(NamesOfList(list), (std::multiset<std::string>{"v", "e"}));
  // A missing key without a value name is not created.
  std::memset(list, '#', sizeof list);
  EXPECT_EQ(WUTLRegistry::RegReadString("\\Gone", nullptr, "d", list, sizeof list, test.path()), 0);
  EXPECT_EQ(list[0], '\0');
  EXPECT_EQ(WUTLRegistry::IsValid((test / "Gone").c_str()), ERROR_FILE_NOT_FOUND);
}

TEST(RegistryTest, BinaryValuesRoundTripAndMissingOnesStayMissing) {
  TestKey test;
  const BYTE bytes[] = {0, 1, 2, 0xFF};
  EXPECT_EQ(WUTLRegistry::RegWriteBinary("\\B", "bin", bytes, 4, test.path()), 1);
  EXPECT_EQ(StoredValue(test / "B", "bin").type, static_cast<DWORD>(REG_BINARY));
  BYTE out[8] = {};
  EXPECT_EQ(WUTLRegistry::RegReadBinary("\\B", "bin", out, sizeof out, test.path()), 4);
  EXPECT_EQ(std::memcmp(out, bytes, 4), 0);
  EXPECT_EQ(WUTLRegistry::RegReadBinary("\\B", "bin", out, 3, test.path()), -1);
  EXPECT_EQ(WUTLRegistry::RegReadBinary("\\B", "missing", out, sizeof out, test.path()), -1);
  EXPECT_EQ(WUTLRegistry::RegReadBinary("\\Missing", "bin", out, sizeof out, test.path()), -1);
  EXPECT_EQ(WUTLRegistry::IsValid((test / "Missing").c_str()), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(WUTLRegistry::RegReadBinary(nullptr, "bin", out, sizeof out, (test / "B").c_str()), -1);

  EXPECT_EQ(WUTLRegistry::RegWriteBinary("\\B", "bin", nullptr, 0, test.path()), 1);
  EXPECT_EQ(StoredValue(test / "B", "bin").status, ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(WUTLRegistry::RegWriteBinary("\\B", "bin", nullptr, 0, test.path()), 0);
}

TEST(RegistryTest, RegWriteStringCreatesDeletesValuesAndWholeKeys) {
  TestKey test;
  EXPECT_EQ(WUTLRegistry::RegWriteString("\\W\\X", "s", "text", test.path()), 1);
  EXPECT_EQ(StoredValue(test / "W\\X", "s").bytes, "text");
  EXPECT_EQ(WUTLRegistry::RegWriteString("\\W\\X", "s", "new", test.path()), 1);
  EXPECT_EQ(StoredValue(test / "W\\X", "s").bytes, "new");
  EXPECT_EQ(WUTLRegistry::RegWriteString("\\W\\X", "s", nullptr, test.path()), 1);
  EXPECT_EQ(StoredValue(test / "W\\X", "s").status, ERROR_FILE_NOT_FOUND);
  // Deleting what is not there fails and creates nothing.
  EXPECT_EQ(WUTLRegistry::RegWriteString("\\W\\X", "s", nullptr, test.path()), 0);
  EXPECT_EQ(WUTLRegistry::RegWriteString("\\None", "s", nullptr, test.path()), 0);
  EXPECT_EQ(WUTLRegistry::RegWriteString("\\None", nullptr, nullptr, test.path()), 0);
  EXPECT_EQ(WUTLRegistry::IsValid((test / "None").c_str()), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(WUTLRegistry::RegWriteString("\\W", nullptr, nullptr, test.path()), 1);
  EXPECT_EQ(WUTLRegistry::IsValid((test / "W").c_str()), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(WUTLRegistry::RegWriteString("\\W", "s", "x", "HKEY_NOWHERE"), 0);
}
