#include <gtest/gtest.h>

#include "cli/reg_file.h"

using tbxcli::FormatRegFile;
using tbxcli::ParseRegFile;

TEST(RegFile, ParsesEveryKindOfLine) {
  auto parsed = ParseRegFile(
      "REGEDIT4\r\n"
      "\r\n"
      "; a comment\r\n"
      "[HKEY_CURRENT_USER\\Software\\Tobix]\r\n"
      "\"Name\"=\"say \\\"hi\\\" C:\\\\x\"\r\n"
      "@=\"default\"\r\n"
      "\"Count\"=dword:0000002a\r\n"
      "\"Blob\"=hex:0a,1B,\\\r\n"
      "  2c\r\n"
      "\"Path\"=hex(2):25,00\r\n"
      "\"Empty\"=hex:\r\n"
      "\"Gone\"=-\r\n"
      "[-HKEY_CURRENT_USER\\Software\\Old]\r\n");
  ASSERT_EQ(parsed.error, "");
  ASSERT_EQ(parsed.keys.size(), 2u);
  const auto& values = parsed.keys[0].values;
  ASSERT_EQ(values.size(), 7u);
  EXPECT_EQ(values[0].name, "Name");
  EXPECT_EQ(std::string(values[0].data.begin(), values[0].data.end()), std::string("say \"hi\" C:\\x\0", 14));
  EXPECT_EQ(values[1].name, "") << "@ is the default value";
  EXPECT_EQ(values[2].type, 4u);
  EXPECT_EQ(values[2].data, (std::vector<std::uint8_t>{0x2a, 0, 0, 0}));
  EXPECT_EQ(values[3].data, (std::vector<std::uint8_t>{0x0a, 0x1b, 0x2c})) << "continued line";
  EXPECT_EQ(values[4].type, 2u);
  EXPECT_TRUE(values[5].data.empty());
  EXPECT_TRUE(values[6].remove);
  EXPECT_TRUE(parsed.keys[1].remove);
  EXPECT_EQ(parsed.keys[1].path, "HKEY_CURRENT_USER\\Software\\Old");
}

TEST(RegFile, FormatThenParseGivesTheSameKeys) {
  tbxcli::RegFileKey key{"HKEY_CURRENT_USER\\Software\\T", false, {}};
  key.values.push_back({"Text", false, 1, {'a', '"', '\\', 0}});
  key.values.push_back({"", false, 1, {'d', 0}});
  key.values.push_back({"Num", false, 4, {1, 2, 3, 4}});
  key.values.push_back({"Raw", false, 3, {0xff, 0x00}});
  key.values.push_back({"Unterminated", false, 1, {'x', 'y'}});  // kept as hex(1)
  key.values.push_back({"Multi", false, 7, {'a', 0, 'b', 0, 0}});
  std::string text = FormatRegFile({key});
  EXPECT_NE(text.find("\"Num\"=dword:04030201\n"), std::string::npos) << text;
  EXPECT_NE(text.find("\"Unterminated\"=hex(1):78,79\n"), std::string::npos) << text;
  auto parsed = ParseRegFile(text);
  ASSERT_EQ(parsed.error, "");
  ASSERT_EQ(parsed.keys.size(), 1u);
  ASSERT_EQ(parsed.keys[0].values.size(), key.values.size());
  for (std::size_t i = 0; i < key.values.size(); ++i) {
    EXPECT_EQ(parsed.keys[0].values[i].name, key.values[i].name);
    EXPECT_EQ(parsed.keys[0].values[i].type, key.values[i].type) << key.values[i].name;
    EXPECT_EQ(parsed.keys[0].values[i].data, key.values[i].data) << key.values[i].name;
  }
}

TEST(RegFile, MalformedTextIsRefusedWithItsLine) {
  struct Case {
    const char* text;
    const char* error;
  };
  const Case cases[] = {
      {"", "line 1: not a registry file"},
      {"hello\n", "line 1: not a registry file"},
      {"REGEDIT4\n\"a\"=\"b\"\n", "line 2: a value before the first key"},
      {"REGEDIT4\n[HKCU\\x\n", "line 2: a key line must end with ]"},
      {"REGEDIT4\n[HKCU\\x]\n\"a\"=dword:123456789\n", "line 3: dword:"},
      {"REGEDIT4\n[HKCU\\x]\n\"a\"=dword:zz\n", "line 3: dword:"},
      {"REGEDIT4\n[HKCU\\x]\n\"a\"=hex:1,2\n", "line 3: hex data"},
      {"REGEDIT4\n[HKCU\\x]\n\"a\"=hex(q):00\n", "line 3: hex(N)"},
      {"REGEDIT4\n[HKCU\\x]\n\"a=\"b\"\n", "line 3: expected ="},
      {"REGEDIT4\n[HKCU\\x]\n\"a\"=\"b\" trailing\n", "line 3: a string value"},
      {"REGEDIT4\n[HKCU\\x]\n\"a\"=word:1\n", "line 3: unknown kind"},
      {"REGEDIT4\n[HKCU\\x]\nname=\"b\"\n", "line 3: expected [key]"},
      {"REGEDIT4\n[-HKCU\\x]\n\"a\"=\"b\"\n", "line 3: a value under a key that is deleted"},
  };
  for (const Case& c : cases) {
    auto parsed = ParseRegFile(c.text);
    EXPECT_EQ(parsed.error.rfind(c.error, 0), 0u) << c.text << " gave: " << parsed.error;
    EXPECT_TRUE(parsed.keys.empty());
  }
}
