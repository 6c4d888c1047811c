#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "tbxutl/platform/windows.h"
#include "tbxutl/testing/temp_folder_testing.h"

// Every test works in a key of its own below the user's
// "Software\TbxutlTest" and deletes it afterwards. On Linux this program's registry
// lives in a temporary folder; under Wine it is Wine's registry.

namespace {

#if !defined(_WIN32)
class RegistryFolder : public ::testing::Environment {
 public:
  void SetUp() override {
    m_folder = std::make_unique<tbx::testing::TempFolder>();
    setenv("TBXUTL_REGISTRY_DIR", m_folder->path().c_str(), 1);
  }
  void TearDown() override { m_folder.reset(); }

 private:
  std::unique_ptr<tbx::testing::TempFolder> m_folder;
};
::testing::Environment* const kRegistryFolder = ::testing::AddGlobalTestEnvironment(new RegistryFolder);
#endif

const BYTE kFill = 0xBD;

// Deletes a key with everything below it (RegDeleteKeyA deletes one level).
void DeleteTree(HKEY parent, const std::string& name) {
  HKEY key = nullptr;
  if (RegOpenKeyExA(parent, name.c_str(), 0, KEY_ALL_ACCESS, &key) != ERROR_SUCCESS) return;
  char child[256];
  while (RegEnumKeyA(key, 0, child, sizeof child) == ERROR_SUCCESS) DeleteTree(key, child);
  RegCloseKey(key);
  RegDeleteKeyA(parent, name.c_str());
}

std::vector<std::string> SubkeyNames(HKEY key) {
  std::vector<std::string> names;
  char name[256];
  for (DWORD i = 0;; ++i) {
    DWORD length = sizeof name;
    LONG status = RegEnumKeyExA(key, i, name, &length, nullptr, nullptr, nullptr, nullptr);
    if (status != ERROR_SUCCESS) {
      EXPECT_EQ(status, ERROR_NO_MORE_ITEMS);
      break;
    }
    names.emplace_back(name, length);
  }
  return names;
}

std::set<std::string> ValueNames(HKEY key) {
  std::set<std::string> names;
  char name[256];
  for (DWORD i = 0;; ++i) {
    DWORD length = sizeof name;
    LONG status = RegEnumValueA(key, i, name, &length, nullptr, nullptr, nullptr, nullptr);
    if (status != ERROR_SUCCESS) {
      EXPECT_EQ(status, ERROR_NO_MORE_ITEMS);
      break;
    }
    names.emplace(name, length);
  }
  return names;
}

class Registry : public ::testing::Test {
 protected:
  void SetUp() override {
    const auto* test = ::testing::UnitTest::GetInstance()->current_test_info();
    m_path = std::string("Software\\TbxutlTest\\") + test->test_suite_name() + "." + test->name();
    DeleteTree(HKEY_CURRENT_USER, m_path);
    ASSERT_EQ(RegCreateKeyExA(HKEY_CURRENT_USER, m_path.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &m_key,
                              nullptr),
              ERROR_SUCCESS);
  }
  void TearDown() override {
    RegCloseKey(m_key);
    DeleteTree(HKEY_CURRENT_USER, m_path);
    RegDeleteKeyA(HKEY_CURRENT_USER, "Software\\TbxutlTest");  // refused while other tests' keys remain
  }

  HKEY Create(const std::string& path, REGSAM access = KEY_ALL_ACCESS, DWORD* disposition = nullptr) {
    HKEY key = nullptr;
    EXPECT_EQ(RegCreateKeyExA(m_key, path.c_str(), 0, nullptr, 0, access, nullptr, &key, disposition), ERROR_SUCCESS)
        << path;
    return key;
  }
  HKEY Open(const std::string& path, REGSAM access) {
    HKEY key = nullptr;
    EXPECT_EQ(RegOpenKeyExA(m_key, path.c_str(), 0, access, &key), ERROR_SUCCESS) << path;
    return key;
  }
  LONG Set(HKEY key, const char* name, DWORD type, const std::string& bytes) {
    return RegSetValueExA(key, name, 0, type, reinterpret_cast<const BYTE*>(bytes.data()),
                          static_cast<DWORD>(bytes.size()));
  }
  LONG SetDword(HKEY key, const char* name, DWORD value) {
    return RegSetValueExA(key, name, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&value), sizeof value);
  }
  // The value's type and bytes, or its status.
  LONG Get(HKEY key, const char* name, DWORD* type, std::string* bytes) {
    std::vector<BYTE> buffer(200000);
    DWORD size = static_cast<DWORD>(buffer.size());
    LONG status = RegQueryValueExA(key, name, nullptr, type, buffer.data(), &size);
    if (status == ERROR_SUCCESS) bytes->assign(reinterpret_cast<const char*>(buffer.data()), size);
    return status;
  }

  std::string m_path;
  HKEY m_key = nullptr;
};

using RegistryNames = Registry;
using RegistryAccess = Registry;
using RegistryBuffers = Registry;
using RegistryEnumeration = Registry;
using RegistryDeletion = Registry;
using RegistryDefaultValue = Registry;
using RegistryData = Registry;

}  // namespace

// --- Names and case -------------------------------------------------------

TEST_F(RegistryNames, KeyNamesAreCaseBlindAndKeepTheirCase) {
  // ASCII, then letters of the ANSI code page: e acute, s caron, y diaeresis.
  const std::pair<std::string, std::string> kPairs[] = {
      {"MixedCase", "mIXEDcASE"}, {"\xE9t\xE9", "\xC9T\xC9"}, {"\x9A", "\x8A"}, {"\xFF", "\x9F"}};
  for (const auto& [created, other] : kPairs) {
    DWORD disposition = 0;
    RegCloseKey(Create(created, KEY_ALL_ACCESS, &disposition));
    EXPECT_EQ(disposition, REG_CREATED_NEW_KEY);
    RegCloseKey(Create(other, KEY_ALL_ACCESS, &disposition));
    EXPECT_EQ(disposition, REG_OPENED_EXISTING_KEY) << "the same key under another case";
    RegCloseKey(Open(other, KEY_READ));
  }
  std::vector<std::string> names = SubkeyNames(m_key);
  std::set<std::string> expected;
  for (const auto& pair : kPairs) expected.insert(pair.first);
  EXPECT_EQ(std::set<std::string>(names.begin(), names.end()), expected) << "names keep their first case";
}

TEST_F(RegistryNames, ValueNamesAreCaseBlindAndKeepTheirCase) {
  ASSERT_EQ(SetDword(m_key, "Colour", 1), ERROR_SUCCESS);
  ASSERT_EQ(SetDword(m_key, "COLOUR", 2), ERROR_SUCCESS);
  ASSERT_EQ(SetDword(m_key, "\xE9t\xE9", 3), ERROR_SUCCESS);
  EXPECT_EQ(ValueNames(m_key), (std::set<std::string>{"Colour", "\xE9t\xE9"}));
  DWORD type = 0;
  std::string bytes;
  ASSERT_EQ(Get(m_key, "colour", &type, &bytes), ERROR_SUCCESS);
  EXPECT_EQ(bytes, std::string("\x02\0\0\0", 4)) << "the second write replaced the data";
  EXPECT_EQ(Get(m_key, "\xC9T\xC9", &type, &bytes), ERROR_SUCCESS);
  EXPECT_EQ(RegDeleteValueA(m_key, "COLOUR"), ERROR_SUCCESS);
  EXPECT_EQ(ValueNames(m_key), (std::set<std::string>{"\xE9t\xE9"}));
}

TEST_F(RegistryNames, PathsSplitAtBackslashes) {
  RegCloseKey(Create("A\\B\\C"));
  RegCloseKey(Open("a\\b\\c", KEY_READ));
  RegCloseKey(Open("A\\B\\C\\", KEY_READ));
  RegCloseKey(Open("A\\\\B", KEY_READ));
  HKEY a = Open("A", KEY_READ);
  EXPECT_EQ(SubkeyNames(a), std::vector<std::string>{"B"}) << "no empty names";
  RegCloseKey(a);

  HKEY key = reinterpret_cast<HKEY>(1);
  EXPECT_EQ(RegOpenKeyExA(m_key, "\\A", 0, KEY_READ, &key), ERROR_BAD_PATHNAME);
  EXPECT_EQ(key, nullptr);
  EXPECT_EQ(RegCreateKeyExA(m_key, "\\D", 0, nullptr, 0, KEY_READ, nullptr, &key, nullptr), ERROR_BAD_PATHNAME);
  EXPECT_EQ(RegDeleteKeyA(m_key, "\\A\\B\\C"), ERROR_BAD_PATHNAME);

  // A slash is part of a name; a value name may hold backslashes.
  RegCloseKey(Create("x/y"));
  EXPECT_EQ(RegOpenKeyExA(m_key, "x", 0, KEY_READ, &key), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(SetDword(m_key, "p\\q", 7), ERROR_SUCCESS);
  EXPECT_EQ(ValueNames(m_key), std::set<std::string>{"p\\q"});
  EXPECT_EQ(SubkeyNames(m_key), (std::vector<std::string>{"A", "x/y"}));
}

TEST_F(RegistryNames, LongestNamesAreAccepted) {
  const std::string keyName(255, 'k');
  RegCloseKey(Create(keyName));
  RegCloseKey(Open(keyName, KEY_READ));

  const std::string valueName(16383, 'v');
  EXPECT_EQ(SetDword(m_key, valueName.c_str(), 1), ERROR_SUCCESS);
  DWORD type = 0;
  std::string bytes;
  EXPECT_EQ(Get(m_key, valueName.c_str(), &type, &bytes), ERROR_SUCCESS);
  const std::string tooLong(16384, 'v');
  EXPECT_EQ(SetDword(m_key, tooLong.c_str(), 1), ERROR_INVALID_PARAMETER);
  EXPECT_EQ(Get(m_key, tooLong.c_str(), &type, &bytes), ERROR_FILE_NOT_FOUND);
}

TEST_F(RegistryNames, MissingKeysAndValuesAreNotFound) {
  HKEY key = reinterpret_cast<HKEY>(1);
  EXPECT_EQ(RegOpenKeyExA(m_key, "Missing", 0, KEY_READ, &key), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(key, nullptr);
  RegCloseKey(Create("Present"));
  EXPECT_EQ(RegOpenKeyExA(m_key, "Present\\Missing", 0, KEY_READ, &key), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(RegDeleteKeyA(m_key, "Missing"), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(RegDeleteValueA(m_key, "Missing"), ERROR_FILE_NOT_FOUND);

  DWORD size = 77;
  EXPECT_EQ(RegQueryValueExA(m_key, "Missing", nullptr, nullptr, nullptr, &size), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(size, 0u) << "a size query of a missing value answers 0";
  BYTE buffer[4];
  size = sizeof buffer;
  EXPECT_EQ(RegQueryValueExA(m_key, "Missing", nullptr, nullptr, buffer, &size), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(size, sizeof buffer);
}

TEST_F(RegistryNames, HandlesAndParameters) {
  HKEY key = nullptr;
  EXPECT_EQ(RegOpenKeyExA(HKEY_CURRENT_USER, nullptr, 0, KEY_READ, &key), ERROR_SUCCESS);
  EXPECT_EQ(key, HKEY_CURRENT_USER) << "a root opens as itself";
  EXPECT_EQ(RegOpenKeyExA(HKEY_CURRENT_USER, "", 0, KEY_READ, &key), ERROR_SUCCESS);
  EXPECT_EQ(key, HKEY_CURRENT_USER);
  EXPECT_EQ(RegCloseKey(HKEY_CURRENT_USER), ERROR_SUCCESS);

  ASSERT_EQ(RegOpenKeyExA(m_key, "", 0, KEY_READ, &key), ERROR_SUCCESS);
  EXPECT_NE(key, m_key) << "another handle of the same key";
  EXPECT_EQ(RegCloseKey(key), ERROR_SUCCESS);
  EXPECT_EQ(RegCloseKey(key), ERROR_INVALID_HANDLE);
  EXPECT_EQ(RegOpenKeyA(m_key, nullptr, &key), ERROR_SUCCESS);
  EXPECT_EQ(key, m_key) << "RegOpenKeyA without a subkey gives the same handle";

  EXPECT_EQ(RegCloseKey(nullptr), ERROR_INVALID_HANDLE);
  EXPECT_EQ(RegOpenKeyExA(nullptr, "x", 0, KEY_READ, &key), ERROR_INVALID_HANDLE);
  EXPECT_EQ(RegCreateKeyExA(m_key, "x", 1, nullptr, 0, KEY_READ, nullptr, &key, nullptr), ERROR_INVALID_PARAMETER);
  EXPECT_EQ(RegDeleteKeyA(m_key, nullptr), ERROR_INVALID_PARAMETER);

  SetLastError(0xDEAD);
  RegCloseKey(Create("y"));
  RegOpenKeyExA(m_key, "Missing", 0, KEY_READ, &key);
  EXPECT_EQ(GetLastError(), 0xDEADu) << "registry functions leave the last error alone";
}

// --- Access rights --------------------------------------------------------

TEST_F(RegistryAccess, HandleCanDoWhatItWasOpenedFor) {
  struct Case {
    REGSAM access;
    LONG query, set, enumKeys, enumValues;
  };
  const LONG ok = ERROR_SUCCESS, no = ERROR_ACCESS_DENIED;
  const Case kCases[] = {
      {KEY_READ, ok, no, ok, ok},
      {KEY_WRITE, no, ok, no, no},
      {KEY_QUERY_VALUE, ok, no, no, ok},
      {KEY_SET_VALUE, no, ok, no, no},
      {KEY_ENUMERATE_SUB_KEYS, no, no, ok, no},
      {GENERIC_READ, ok, no, ok, ok},
      {GENERIC_WRITE, no, ok, no, no},
      {KEY_READ | KEY_WOW64_64KEY, ok, no, ok, ok},
      {KEY_WRITE | KEY_WOW64_32KEY, no, ok, no, no},
      {0, no, no, no, no},
      {KEY_ALL_ACCESS, ok, ok, ok, ok},
  };
  for (const Case& c : kCases) {
    SCOPED_TRACE(testing::Message() << "access 0x" << std::hex << c.access);
    RegCloseKey(Create("Target\\Child"));
    HKEY all = Open("Target", KEY_ALL_ACCESS);
    ASSERT_EQ(SetDword(all, "v", 1), ERROR_SUCCESS);
    RegCloseKey(all);
    HKEY key = Open("Target", c.access);
    DWORD value = 0, size = sizeof value;
    EXPECT_EQ(RegQueryValueExA(key, "v", nullptr, nullptr, reinterpret_cast<BYTE*>(&value), &size), c.query);
    EXPECT_EQ(SetDword(key, "v", 2), c.set);
    EXPECT_EQ(RegDeleteValueA(key, "none"), c.set == ok ? ERROR_FILE_NOT_FOUND : no);
    char name[16];
    DWORD length = sizeof name;
    EXPECT_EQ(RegEnumKeyExA(key, 0, name, &length, nullptr, nullptr, nullptr, nullptr), c.enumKeys);
    length = sizeof name;
    EXPECT_EQ(RegEnumValueA(key, 0, name, &length, nullptr, nullptr, nullptr, nullptr), c.enumValues);
    // Keys are created and deleted whatever the handle may do.
    HKEY sub = nullptr;
    EXPECT_EQ(RegCreateKeyExA(key, "New", 0, nullptr, 0, KEY_READ, nullptr, &sub, nullptr), ERROR_SUCCESS);
    RegCloseKey(sub);
    EXPECT_EQ(RegDeleteKeyA(key, "New"), ERROR_SUCCESS);
    EXPECT_EQ(RegDeleteKeyA(key, "Child"), ERROR_SUCCESS);
    EXPECT_EQ(RegDeleteKeyA(key, ""), ERROR_SUCCESS);
    RegCloseKey(key);
  }
}

// --- Buffer sizes ---------------------------------------------------------

TEST_F(RegistryBuffers, QueryValueTellsTheSizeItNeeds) {
  ASSERT_EQ(SetDword(m_key, "d", 0x11223344), ERROR_SUCCESS);
  DWORD type = 0, size = 0;
  EXPECT_EQ(RegQueryValueExA(m_key, "d", nullptr, &type, nullptr, &size), ERROR_SUCCESS);
  EXPECT_EQ(type, static_cast<DWORD>(REG_DWORD));
  EXPECT_EQ(size, 4u);
  BYTE buffer[8];
  std::memset(buffer, kFill, sizeof buffer);
  size = 3;
  type = 0;
  EXPECT_EQ(RegQueryValueExA(m_key, "d", nullptr, &type, buffer, &size), ERROR_MORE_DATA);
  EXPECT_EQ(size, 4u);
  EXPECT_EQ(type, static_cast<DWORD>(REG_DWORD));
  EXPECT_EQ(buffer[0], kFill) << "a short buffer is left alone";
  EXPECT_EQ(RegQueryValueExA(m_key, "d", nullptr, nullptr, nullptr, nullptr), ERROR_SUCCESS);
  EXPECT_EQ(RegQueryValueExA(m_key, "d", nullptr, nullptr, buffer, nullptr), ERROR_INVALID_PARAMETER);
  DWORD reserved = 0;
  EXPECT_EQ(RegQueryValueExA(m_key, "d", &reserved, nullptr, nullptr, &size), ERROR_INVALID_PARAMETER);
}

TEST_F(RegistryBuffers, StringsKeepTheSizeTheyWereStoredWith) {
  struct Case {
    DWORD type;
    std::string stored;
    DWORD buffer;  // the caller's buffer size
    LONG status;
    std::string seen;  // the buffer's first bytes afterwards (0xBD: untouched)
  };
  const std::string fill(1, static_cast<char>(kFill));
  const Case kCases[] = {
      // No terminator stored: one is added when the buffer has room.
      {REG_SZ, "abc", 3, ERROR_SUCCESS, "abc" + fill},
      {REG_SZ, "abc", 10, ERROR_SUCCESS, std::string("abc\0", 4) + fill},
      {REG_SZ, "abc", 2, ERROR_MORE_DATA, fill + fill},
      {REG_EXPAND_SZ, "%a", 8, ERROR_SUCCESS, std::string("%a\0", 3) + fill},
      {REG_MULTI_SZ, std::string("ab\0cd", 5), 8, ERROR_SUCCESS, std::string("ab\0cd\0", 6) + fill},
      {REG_BINARY, "abc", 10, ERROR_SUCCESS, "abc" + fill},
      // Stored with its terminator: the size includes it.
      {REG_SZ, std::string("abc\0", 4), 3, ERROR_MORE_DATA, fill},
      {REG_SZ, std::string("abc\0", 4), 10, ERROR_SUCCESS, std::string("abc\0", 4) + fill},
      {REG_SZ, "", 10, ERROR_SUCCESS, fill},
  };
  for (const Case& c : kCases) {
    SCOPED_TRACE(testing::Message() << "type " << c.type << ", " << c.stored.size() << " bytes, buffer "
                                    << c.buffer);
    // The byte after the stored ones is no terminator, so no platform can
    // count one in that the caller did not give.
    std::string given = c.stored + "X";
    ASSERT_EQ(RegSetValueExA(m_key, "s", 0, c.type, reinterpret_cast<const BYTE*>(given.data()),
                             static_cast<DWORD>(c.stored.size())),
              ERROR_SUCCESS);
    DWORD size = 0;
    EXPECT_EQ(RegQueryValueExA(m_key, "s", nullptr, nullptr, nullptr, &size), ERROR_SUCCESS);
    EXPECT_EQ(size, c.stored.size());
    BYTE buffer[16];
    std::memset(buffer, kFill, sizeof buffer);
    size = c.buffer;
    EXPECT_EQ(RegQueryValueExA(m_key, "s", nullptr, nullptr, buffer, &size), c.status);
    EXPECT_EQ(size, c.stored.size());
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(buffer), c.seen.size()), c.seen);

    char name[4];
    DWORD nameLength = sizeof name;
    std::memset(buffer, kFill, sizeof buffer);
    size = c.buffer;
    EXPECT_EQ(RegEnumValueA(m_key, 0, name, &nameLength, nullptr, nullptr, buffer, &size), c.status);
    EXPECT_EQ(size, c.stored.size());
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(buffer), c.seen.size()), c.seen);
  }
}

TEST_F(RegistryBuffers, EnumerationNeedsRoomForTheTerminator) {
  RegCloseKey(Create("Kappa"));
  ASSERT_EQ(Set(m_key, "alpha", REG_BINARY, "1234567"), ERROR_SUCCESS);

  char name[16];
  std::memset(name, 'x', sizeof name);
  DWORD length = 5;
  EXPECT_EQ(RegEnumKeyExA(m_key, 0, name, &length, nullptr, nullptr, nullptr, nullptr), ERROR_MORE_DATA);
  EXPECT_EQ(length, 5u);
  EXPECT_EQ(RegEnumKeyA(m_key, 0, name, 5), ERROR_MORE_DATA);
  EXPECT_EQ(name[0], 'x');
  length = 6;
  FILETIME written{};
  EXPECT_EQ(RegEnumKeyExA(m_key, 0, name, &length, nullptr, nullptr, nullptr, &written), ERROR_SUCCESS);
  EXPECT_EQ(length, 5u);
  EXPECT_STREQ(name, "Kappa");
  EXPECT_NE(written.dwHighDateTime, 0u);
  EXPECT_EQ(RegEnumKeyA(m_key, 0, name, 6), ERROR_SUCCESS);

  BYTE data[16];
  DWORD type = 0, size = sizeof data;
  length = 5;
  EXPECT_EQ(RegEnumValueA(m_key, 0, name, &length, nullptr, &type, data, &size), ERROR_MORE_DATA);
  EXPECT_EQ(length, 5u) << "the name's count is left alone";
  EXPECT_EQ(size, 7u) << "the data's size is told";
  length = 6;
  size = 3;
  std::memset(name, 'x', sizeof name);
  EXPECT_EQ(RegEnumValueA(m_key, 0, name, &length, nullptr, &type, data, &size), ERROR_MORE_DATA);
  EXPECT_EQ(size, 7u);
  EXPECT_EQ(length, 6u);
  length = 6;
  size = 0;
  EXPECT_EQ(RegEnumValueA(m_key, 0, name, &length, nullptr, &type, nullptr, &size), ERROR_SUCCESS);
  EXPECT_EQ(length, 5u);
  EXPECT_EQ(size, 7u);
  EXPECT_STREQ(name, "alpha");
  EXPECT_EQ(RegEnumValueA(m_key, 0, name, &length, nullptr, nullptr, data, nullptr), ERROR_INVALID_PARAMETER);
}

// --- Enumeration order and end -------------------------------------------

TEST_F(RegistryEnumeration, SubkeysComeInCaseBlindNameOrder) {
  EXPECT_TRUE(SubkeyNames(m_key).empty());
  for (const char* name : {"delta", "Alpha", "echo2", "charlie", "Echo10", "Bravo", "echo1"}) {
    RegCloseKey(Create(name));
  }
  EXPECT_EQ(SubkeyNames(m_key),
            (std::vector<std::string>{"Alpha", "Bravo", "charlie", "delta", "echo1", "Echo10", "echo2"}));
  char name[16];
  EXPECT_EQ(RegEnumKeyA(m_key, 7, name, sizeof name), ERROR_NO_MORE_ITEMS);
  EXPECT_EQ(RegEnumKeyA(m_key, 1000, name, sizeof name), ERROR_NO_MORE_ITEMS);
  EXPECT_EQ(RegDeleteKeyA(m_key, "charlie"), ERROR_SUCCESS);
  EXPECT_EQ(SubkeyNames(m_key).size(), 6u);
}

TEST_F(RegistryEnumeration, EveryValueOnceThenNoMoreItems) {
  for (const char* name : {"zulu", "alpha", "Mike", ""}) ASSERT_EQ(SetDword(m_key, name, 1), ERROR_SUCCESS);
  ASSERT_EQ(SetDword(m_key, "ZULU", 2), ERROR_SUCCESS);
  EXPECT_EQ(ValueNames(m_key), (std::set<std::string>{"", "alpha", "Mike", "zulu"}));
  char name[16];
  DWORD length = sizeof name;
  EXPECT_EQ(RegEnumValueA(m_key, 4, name, &length, nullptr, nullptr, nullptr, nullptr), ERROR_NO_MORE_ITEMS);
  ASSERT_EQ(RegDeleteValueA(m_key, "alpha"), ERROR_SUCCESS);
  EXPECT_EQ(ValueNames(m_key), (std::set<std::string>{"", "Mike", "zulu"}));
}

// --- Deletion rules -------------------------------------------------------

TEST_F(RegistryDeletion, OnlyAKeyWithoutSubkeysIsDeleted) {
  RegCloseKey(Create("Parent\\Child"));
  HKEY parent = Open("Parent", KEY_ALL_ACCESS);
  ASSERT_EQ(SetDword(parent, "v", 1), ERROR_SUCCESS);
  EXPECT_EQ(RegDeleteKeyA(m_key, "Parent"), ERROR_ACCESS_DENIED);
  EXPECT_EQ(RegDeleteKeyA(parent, ""), ERROR_ACCESS_DENIED);
  EXPECT_EQ(RegDeleteKeyA(m_key, "PARENT\\child"), ERROR_SUCCESS);
  EXPECT_EQ(RegDeleteKeyA(m_key, "Parent\\Child"), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(RegDeleteKeyA(m_key, "Parent\\"), ERROR_SUCCESS);
  RegCloseKey(parent);

  DWORD disposition = 0;
  parent = Create("Parent", KEY_ALL_ACCESS, &disposition);
  EXPECT_EQ(disposition, REG_CREATED_NEW_KEY);
  DWORD type = 0;
  std::string bytes;
  EXPECT_EQ(Get(parent, "v", &type, &bytes), ERROR_FILE_NOT_FOUND) << "values go with their key";
  RegCloseKey(parent);
}

TEST_F(RegistryDeletion, HandleOfADeletedKeyAnswersKeyDeleted) {
  HKEY gone = Create("Gone");
  ASSERT_EQ(SetDword(gone, "v", 1), ERROR_SUCCESS);
  ASSERT_EQ(RegDeleteKeyA(m_key, "Gone"), ERROR_SUCCESS);
  HKEY again = Create("Gone");  // a new key of the same name is another key

  DWORD value = 0, size = sizeof value, length = 0;
  char name[16];
  HKEY sub = nullptr;
  EXPECT_EQ(RegQueryValueExA(gone, "v", nullptr, nullptr, reinterpret_cast<BYTE*>(&value), &size),
            ERROR_KEY_DELETED);
  EXPECT_EQ(RegQueryValueExA(gone, "none", nullptr, nullptr, nullptr, &size), ERROR_KEY_DELETED);
  EXPECT_EQ(SetDword(gone, "v", 2), ERROR_KEY_DELETED);
  EXPECT_EQ(RegDeleteValueA(gone, "v"), ERROR_KEY_DELETED);
  length = sizeof name;
  EXPECT_EQ(RegEnumKeyExA(gone, 0, name, &length, nullptr, nullptr, nullptr, nullptr), ERROR_KEY_DELETED);
  length = sizeof name;
  EXPECT_EQ(RegEnumValueA(gone, 0, name, &length, nullptr, nullptr, nullptr, nullptr), ERROR_KEY_DELETED);
  EXPECT_EQ(RegQueryInfoKeyA(gone, nullptr, nullptr, nullptr, &value, nullptr, nullptr, nullptr, nullptr, nullptr,
                             nullptr, nullptr),
            ERROR_KEY_DELETED);
  EXPECT_EQ(RegCreateKeyExA(gone, "Sub", 0, nullptr, 0, KEY_READ, nullptr, &sub, nullptr), ERROR_KEY_DELETED);
  EXPECT_EQ(RegOpenKeyExA(gone, "Sub", 0, KEY_READ, &sub), ERROR_KEY_DELETED);
  EXPECT_EQ(RegOpenKeyExA(gone, "", 0, KEY_READ, &sub), ERROR_KEY_DELETED);
  EXPECT_EQ(RegDeleteKeyA(gone, ""), ERROR_KEY_DELETED);
  EXPECT_EQ(RegFlushKey(gone), ERROR_KEY_DELETED);
  EXPECT_EQ(RegCloseKey(gone), ERROR_SUCCESS);

  EXPECT_EQ(SetDword(again, "v", 3), ERROR_SUCCESS);
  EXPECT_EQ(RegFlushKey(again), ERROR_SUCCESS);
  RegCloseKey(again);
}

// --- Default value --------------------------------------------------------

TEST_F(RegistryDefaultValue, NullAndEmptyNameAreTheSameValue) {
  DWORD type = 0;
  std::string bytes;
  EXPECT_EQ(Get(m_key, nullptr, &type, &bytes), ERROR_FILE_NOT_FOUND);
  ASSERT_EQ(Set(m_key, nullptr, REG_SZ, std::string("def", 4)), ERROR_SUCCESS);
  ASSERT_EQ(Get(m_key, "", &type, &bytes), ERROR_SUCCESS);
  EXPECT_EQ(bytes, std::string("def", 4));
  ASSERT_EQ(Set(m_key, "", REG_SZ, std::string("new", 4)), ERROR_SUCCESS);
  ASSERT_EQ(Get(m_key, nullptr, &type, &bytes), ERROR_SUCCESS);
  EXPECT_EQ(bytes, std::string("new", 4));

  char name[8] = "xxxxxxx";
  DWORD length = sizeof name;
  ASSERT_EQ(RegEnumValueA(m_key, 0, name, &length, nullptr, nullptr, nullptr, nullptr), ERROR_SUCCESS);
  EXPECT_EQ(length, 0u);
  EXPECT_STREQ(name, "");
  DWORD values = 0, longest = 99;
  ASSERT_EQ(RegQueryInfoKeyA(m_key, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &values, &longest, nullptr,
                             nullptr, nullptr),
            ERROR_SUCCESS);
  EXPECT_EQ(values, 1u);
  EXPECT_EQ(longest, 0u);
  EXPECT_EQ(RegDeleteValueA(m_key, nullptr), ERROR_SUCCESS);
  EXPECT_EQ(Get(m_key, "", &type, &bytes), ERROR_FILE_NOT_FOUND);
}

// --- Data types -----------------------------------------------------------

TEST_F(RegistryData, EveryTypeComesBackAsStored) {
  const struct {
    DWORD type;
    std::string bytes;
  } kValues[] = {
      {REG_NONE, ""},
      {REG_NONE, std::string("\0\1", 2)},
      {REG_SZ, std::string("text\0", 5)},
      {REG_EXPAND_SZ, std::string("%PATH%\\x\0", 9)},  // not expanded
      {REG_BINARY, std::string("\0\xFF\0\x80", 4)},
      {REG_DWORD, std::string("\x78\x56\x34\x12", 4)},
      {REG_DWORD, std::string("\1\2\3", 3)},  // any size is kept
      {REG_MULTI_SZ, std::string("one\0two\0\0", 9)},
      {REG_QWORD, std::string("\1\2\3\4\5\6\7\x08", 8)},
      {0x12345, "own type"},
      {REG_BINARY, std::string(100000, '\x5A')},
  };
  int i = 0;
  for (const auto& value : kValues) {
    std::string name = "v" + std::to_string(i++);
    ASSERT_EQ(Set(m_key, name.c_str(), value.type, value.bytes), ERROR_SUCCESS) << name;
    DWORD type = 0;
    std::string bytes;
    ASSERT_EQ(Get(m_key, name.c_str(), &type, &bytes), ERROR_SUCCESS) << name;
    EXPECT_EQ(type, value.type) << name;
    EXPECT_EQ(bytes, value.bytes) << name;
  }
  EXPECT_EQ(RegSetValueExA(m_key, "null", 0, REG_BINARY, nullptr, 4), ERROR_NOACCESS);
  EXPECT_EQ(RegSetValueExA(m_key, "null", 0, REG_BINARY, nullptr, 0), ERROR_SUCCESS);
}

TEST_F(RegistryData, QueryInfoCountsAndMeasures) {
  char className[] = "MyClass";
  HKEY withClass = nullptr;
  ASSERT_EQ(RegCreateKeyExA(m_key, "abcdef", 0, className, 0, KEY_ALL_ACCESS, nullptr, &withClass, nullptr),
            ERROR_SUCCESS);
  RegCloseKey(Create("a"));
  ASSERT_EQ(Set(m_key, "v", REG_BINARY, std::string(10, 'x')), ERROR_SUCCESS);
  ASSERT_EQ(Set(m_key, "longername", REG_BINARY, "abc"), ERROR_SUCCESS);

  DWORD subkeys = 0, maxSubkey = 0, maxClass = 0, values = 0, maxName = 0, maxData = 0;
  FILETIME written{};
  ASSERT_EQ(RegQueryInfoKeyA(m_key, nullptr, nullptr, nullptr, &subkeys, &maxSubkey, &maxClass, &values, &maxName,
                             &maxData, nullptr, &written),
            ERROR_SUCCESS);
  EXPECT_EQ(subkeys, 2u);
  EXPECT_EQ(maxSubkey, 6u);
  EXPECT_EQ(maxClass, 7u);
  EXPECT_EQ(values, 2u);
  EXPECT_EQ(maxName, 10u);
  EXPECT_EQ(maxData, 10u);
  EXPECT_NE(written.dwHighDateTime, 0u);

  char buffer[16];
  DWORD length = sizeof buffer;
  ASSERT_EQ(RegQueryInfoKeyA(withClass, buffer, &length, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                             nullptr, nullptr, nullptr),
            ERROR_SUCCESS);
  EXPECT_STREQ(buffer, "MyClass");
  EXPECT_EQ(length, 7u);
  DWORD nameLength = sizeof buffer;
  char classBuffer[16];
  length = sizeof classBuffer;
  ASSERT_EQ(RegEnumKeyExA(m_key, 1, buffer, &nameLength, nullptr, classBuffer, &length, nullptr), ERROR_SUCCESS);
  EXPECT_STREQ(buffer, "abcdef");
  EXPECT_STREQ(classBuffer, "MyClass");
  RegCloseKey(withClass);
}

TEST_F(RegistryData, VolatileKeysTakeOnlyVolatileSubkeys) {
  HKEY key = nullptr, sub = nullptr;
  ASSERT_EQ(RegCreateKeyExA(m_key, "Volatile", 0, nullptr, REG_OPTION_VOLATILE, KEY_ALL_ACCESS, nullptr, &key,
                            nullptr),
            ERROR_SUCCESS);
  EXPECT_EQ(RegCreateKeyExA(key, "Sub", 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &sub, nullptr),
            ERROR_CHILD_MUST_BE_VOLATILE);
  ASSERT_EQ(RegCreateKeyExA(key, "Sub", 0, nullptr, REG_OPTION_VOLATILE, KEY_ALL_ACCESS, nullptr, &sub, nullptr),
            ERROR_SUCCESS);
  RegCloseKey(sub);
  EXPECT_EQ(RegCreateKeyExA(key, "Sub", 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &sub, nullptr), ERROR_SUCCESS)
      << "an existing key opens whatever the options";
  RegCloseKey(sub);
  RegCloseKey(key);
}

TEST_F(RegistryData, ThreadsShareHandles) {
  constexpr int kThreads = 4, kValues = 50;
  std::atomic<int> failures{0};
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&, t] {
      for (int i = 0; i < kValues; ++i) {
        std::string name = "t" + std::to_string(t) + "-" + std::to_string(i);
        HKEY own = nullptr;
        if (SetDword(m_key, name.c_str(), i) != ERROR_SUCCESS ||
            RegCreateKeyExA(m_key, ("k" + std::to_string(t)).c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &own,
                            nullptr) != ERROR_SUCCESS ||
            SetDword(own, name.c_str(), i) != ERROR_SUCCESS || RegCloseKey(own) != ERROR_SUCCESS) {
          ++failures;
        }
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(failures.load(), 0);
  DWORD values = 0, subkeys = 0;
  ASSERT_EQ(RegQueryInfoKeyA(m_key, nullptr, nullptr, nullptr, &subkeys, nullptr, nullptr, &values, nullptr, nullptr,
                             nullptr, nullptr),
            ERROR_SUCCESS);
  EXPECT_EQ(values, static_cast<DWORD>(kThreads * kValues));
  EXPECT_EQ(subkeys, static_cast<DWORD>(kThreads));
}
