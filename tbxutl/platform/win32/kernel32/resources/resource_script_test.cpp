#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "tbxutl/platform/windows.h"

namespace {

namespace fs = std::filesystem;
using tbx::win32::ReadResourceScriptFile;
using tbx::win32::ReadResourceScriptText;
using tbx::win32::ScriptError;
using tbx::win32::ScriptResource;

std::vector<ScriptResource> Read(const std::string& text) {
  ScriptError error;
  auto resources = ReadResourceScriptText(text, "test.rc", error);
  EXPECT_TRUE(resources.has_value()) << error.Describe();
  return resources ? *resources : std::vector<ScriptResource>();
}

const ScriptResource* Find(const std::vector<ScriptResource>& resources, std::uint16_t type, std::uint16_t name,
                           std::uint16_t language = 0x0409) {
  for (const ScriptResource& resource : resources) {
    if (resource.type.number == type && resource.name.name.empty() && resource.name.number == name &&
        resource.language == language) {
      return &resource;
    }
  }
  return nullptr;
}

// String `id` out of its block; "<missing>" when the block is not there.
std::u16string StringOf(const std::vector<ScriptResource>& resources, unsigned id, std::uint16_t language = 0x0409) {
  const ScriptResource* block = Find(resources, 6, static_cast<std::uint16_t>(id / 16 + 1), language);
  if (!block) return u"<missing>";
  const std::vector<std::uint8_t>& data = block->data;
  auto word = [&](std::size_t at) { return static_cast<char16_t>(data.at(at) | (data.at(at + 1) << 8)); };
  std::size_t at = 0;
  for (unsigned i = 0; i < id % 16; ++i) at += 2 + 2u * word(at);
  std::u16string text;
  for (std::size_t i = 0; i < word(at); ++i) text += word(at + 2 + 2 * i);
  return text;
}

std::u16string ReadString(const std::string& literal) {
  return StringOf(Read("STRINGTABLE\nBEGIN\n 1 " + literal + "\nEND\n"), 1);
}

std::vector<std::uint8_t> MenuOf(const std::string& script) {
  auto resources = Read(script);
  const ScriptResource* menu = Find(resources, 4, 1);
  return menu ? menu->data : std::vector<std::uint8_t>{0xBA, 0xD0};
}

fs::path TestFolder(const std::string& name) {
  const char* root = std::getenv("TBXUTL_TEST_TMP");
  fs::path folder = fs::path(root ? root : fs::temp_directory_path().string()) / "resource_script" / name;
  fs::remove_all(folder);
  fs::create_directories(folder);
  return folder;
}

void WriteFile(const fs::path& path, const std::string& text) {
  fs::create_directories(path.parent_path());
  std::ofstream(path, std::ios::binary) << text;
}

TEST(ResourceScript, DecodesTextsAsTheResourceCompiler) {
  struct Case {
    const char* literal;
    std::u16string text;
  };
  const Case cases[] = {
      {R"("plain")", u"plain"},
      {R"("tab\there\nnew")", u"tab\there\nnew"},
      {R"("a\bb\fc\vd\re\a")", u"a\x08" u"b\x0c" u"c\x0b" u"d\re\x08"},
      {R"("\\ and \" and "" quotes")", u"\\ and \" and \" quotes"},
      {R"("\x41Bc\1011")", u"ABcA1"},             // \x takes two digits, octal three
      {R"("\x" "g")", std::u16string(u"\0g", 2)},  // \x without digits is a zero
      {R"("\q\'\u00fc")", u"\\q\\'\\u00fc"},     // unknown escapes keep the backslash
      {R"("one" " two" L" three")", u"one two three"},
      {R"(L"\x263a\x41BCDE\1234")", u"\x263a\x41BC" u"DES4"},  // four digits in wide texts
      {"\"\xfc\xe4\x80\x81\"", u"\u00fc\u00e4\u20ac\u0081"},   // code page 1252
      {"L\"\xfc\x80\"", u"\u00fc\u20ac"},
      {R"("\xfc\x80")", u"\u00fc\u20ac"},
      {R"("")", u""},
  };
  for (const Case& c : cases) EXPECT_EQ(ReadString(c.literal), c.text) << c.literal;
}

TEST(ResourceScript, StringTablesAreBlocksOfSixteen) {
  auto resources = Read(
      "STRINGTABLE\nBEGIN\n 0 \"zero\"\n 15, \"fifteen\"\n 16 \"sixteen\"\n 0xFFFF \"last\"\nEND\n"
      "STRINGTABLE DISCARDABLE { 3 \"three\" }\n");
  ASSERT_EQ(resources.size(), 3u);
  const ScriptResource* first = Find(resources, 6, 1);
  ASSERT_NE(first, nullptr);
  EXPECT_EQ(first->data.size(), 32u + 2 * (4 + 7 + 5)) << "16 lengths and the units";
  EXPECT_EQ(StringOf(resources, 0), u"zero");
  EXPECT_EQ(StringOf(resources, 3), u"three") << "a second STRINGTABLE adds to the block";
  EXPECT_EQ(StringOf(resources, 15), u"fifteen");
  EXPECT_EQ(StringOf(resources, 16), u"sixteen");
  EXPECT_EQ(StringOf(resources, 65535), u"last");
  EXPECT_NE(Find(resources, 6, 4096), nullptr);
}

TEST(ResourceScript, LanguageAppliesToWhatFollowsOrToItsStatement) {
  auto resources = Read(
      "STRINGTABLE { 1 \"default\" }\n"
      "STRINGTABLE LANGUAGE 0x07, 0x01 { 1 \"german\" }\n"
      "STRINGTABLE { 2 \"default again\" }\n"
      "LANGUAGE 0x0c, 0x01\n"
      "STRINGTABLE { 1 \"french\" }\n"
      "1 MENU { MENUITEM \"x\", 1 }\n");
  EXPECT_EQ(StringOf(resources, 1, 0x0409), u"default");
  EXPECT_EQ(StringOf(resources, 2, 0x0409), u"default again");
  EXPECT_EQ(StringOf(resources, 1, 0x0407), u"german");
  EXPECT_EQ(StringOf(resources, 1, 0x040c), u"french");
  EXPECT_NE(Find(resources, 4, 1, 0x040c), nullptr);
}

TEST(ResourceScript, PreprocessorDefinesChoosesAndSkips) {
  auto resources = Read(
      "#define BASE 100\n"
      "#define NEXT (BASE + \\\n  1)  // spliced\n"
      "#if NEXT > 100 && defined(BASE) && !defined OTHER\n"
      "#  define PICK 1\n"
      "#elif 1\n"
      "#  define PICK 2\n"
      "#else\n"
      "#  define PICK 3\n"
      "#endif\n"
      "#ifndef BASE\n"
      "  this is not read: 'quotes \" and all\n"
      "#  if 1\n"
      "#    error never\n"
      "#  endif\n"
      "#endif\n"
      "#define GONE 1\n#undef GONE\n"
      "#ifdef GONE\n#error GONE is gone\n#endif\n"
      "/* a comment\n   over lines with \"quotes\" */\n"
      "STRINGTABLE\nBEGIN\n"
      "  PICK \"pick // not a comment\"\n"
      "  NEXT * 2 - 200 \"expression\"\n"
      "  0x10 | 1 \"or\"\n"
      "END\n");
  EXPECT_EQ(StringOf(resources, 1), u"pick // not a comment");
  EXPECT_EQ(StringOf(resources, 2), u"expression");
  EXPECT_EQ(StringOf(resources, 17), u"or");
}

TEST(ResourceScript, PlatformHeadersGiveLanguagesAndMenuFlags) {
  auto resources = Read(
      "#include <windows.h>\n"
      "STRINGTABLE LANGUAGE LANG_GERMAN, SUBLANG_GERMAN { 1 \"de\" }\n"
      "1 MENUEX { MENUITEM \"x\", 5, MFT_RADIOCHECK, MFS_CHECKED | MFS_GRAYED }\n");
  EXPECT_EQ(StringOf(resources, 1, 0x0407), u"de");
  const ScriptResource* menu = Find(resources, 4, 1);
  ASSERT_NE(menu, nullptr);
  EXPECT_EQ(menu->data[8], 0x00);  // type 0x200
  EXPECT_EQ(menu->data[9], 0x02);
  EXPECT_EQ(menu->data[12], 0x0B);  // state 8 | 3
}

TEST(ResourceScript, IncludesResolveBesideTheIncludingFile) {
  fs::path folder = TestFolder("includes");
  WriteFile(folder / "ids" / "ids.h", "#pragma once\n#include \"../more/more.h\"\n#define IDS_ONE 1\n");
  WriteFile(folder / "more" / "more.h", "#pragma once\n#define IDS_TWO 2\n");
  WriteFile(folder / "main.rc",
            "#include \"ids/ids.h\"\n#include \"ids\\ids.h\"\n#include \"more/more.h\"\n"
            "STRINGTABLE { IDS_ONE \"one\" IDS_TWO \"two\" }\n");
  ScriptError error;
  auto resources = ReadResourceScriptFile((folder / "main.rc").string(), error);
  ASSERT_TRUE(resources) << error.Describe();
  EXPECT_EQ(StringOf(*resources, 1), u"one");
  EXPECT_EQ(StringOf(*resources, 2), u"two");

  // A fault in an included file is reported there.
  WriteFile(folder / "bad.h", "#define OK 1\n#define\n");
  WriteFile(folder / "bad.rc", "// first line\n#include \"bad.h\"\n");
  EXPECT_FALSE(ReadResourceScriptFile((folder / "bad.rc").string(), error));
  EXPECT_EQ(error.file, (folder / "bad.h").string());
  EXPECT_EQ(error.line, 2);
  EXPECT_NE(error.message.find("#define needs a name"), std::string::npos) << error.message;

  EXPECT_FALSE(ReadResourceScriptFile((folder / "none.rc").string(), error));
  EXPECT_NE(error.message.find("cannot open"), std::string::npos) << error.message;
}

TEST(ResourceScript, MenuFormsThatMeanTheSame) {
  struct Case {
    const char* what;
    const char* script;
    const char* same;
  };
  const Case cases[] = {
      {"options with commas or blanks", "1 MENU { MENUITEM \"a\", 1, GRAYED, CHECKED }",
       "1 MENU BEGIN MENUITEM \"a\" 1 CHECKED GRAYED END"},
      {"ids are expressions", "#define BASE 100\n1 MENU { MENUITEM \"a\", BASE + 2 * 3 }",
       "1 MENU { MENUITEM \"a\", 106 }"},
      {"an empty popup is an item", "1 MENU { POPUP \"p\" { } }", "1 MENU { MENUITEM \"p\", 0 }"},
      {"MENUEX arguments left out", "1 MENUEX { POPUP \"p\", , , , 7 { MENUITEM \"a\" } }",
       "1 MENUEX { POPUP \"p\", 0, 0, 0, 7 { MENUITEM \"a\", 0, 0, 0 } }"},
      {"MENUEX separator", "1 MENUEX { MENUITEM SEPARATOR }", "1 MENUEX { MENUITEM \"\", 0, 0, 0 }"},
      {"keywords in any case", "1 menu begin menuitem \"a\", 1, grayed end", "1 MENU { MENUITEM \"a\", 1, GRAYED }"},
  };
  for (const Case& c : cases) EXPECT_EQ(MenuOf(c.script), MenuOf(c.same)) << c.what;
}

TEST(ResourceScript, MenuTemplatesAreThoseOfLoadMenuIndirect) {
  // Header, then per item: flags, id (not for popups), text; the last item
  // of each level has 0x80.
  EXPECT_EQ(MenuOf("1 MENU { POPUP \"F\" { MENUITEM \"O\", 7, HELP } MENUITEM SEPARATOR }"),
            (std::vector<std::uint8_t>{0, 0, 0, 0,                       //
                                       0x10, 0, 'F', 0, 0, 0,            // popup
                                       0x80, 0x40, 7, 0, 'O', 0, 0, 0,   // last of the popup, HELP
                                       0x80, 0, 0, 0, 0, 0}));           // separator: id 0, no text
  // Extended: header with help id, items DWORD-aligned, popups with their
  // help id, ids of 32 bits.
  EXPECT_EQ(MenuOf("1 MENUEX { POPUP \"P\", 70000, 0, 0, 9 { MENUITEM \"A\", 2 } }"),
            (std::vector<std::uint8_t>{1, 0, 4, 0, 0, 0, 0, 0,                    //
                                       0, 0, 0, 0, 0, 0, 0, 0, 0x70, 0x11, 1, 0,  // type, state, id
                                       0x81, 0, 'P', 0, 0, 0, 0, 0,               // popup and last; text; pad
                                       9, 0, 0, 0,                                // help id
                                       0, 0, 0, 0, 0, 0, 0, 0, 2, 0, 0, 0,        //
                                       0x80, 0, 'A', 0, 0, 0}));
  auto named = Read("Main MENU { MENUITEM \"x\", 1 }\n\"Quoted Name\" MENU { MENUITEM \"y\", 2 }");
  ASSERT_EQ(named.size(), 2u);
  EXPECT_EQ(named[0].name.name, "MAIN");
  EXPECT_EQ(named[1].name.name, "QUOTED NAME");
}

TEST(ResourceScript, FaultsGiveTheirLineAndNoResources) {
  struct Case {
    const char* script;
    int line;
    const char* message;
  };
  const Case cases[] = {
      {"STRINGTABLE\nBEGIN\n 1 \"a\"\n 1 \"b\"\nEND\n", 4, "string 1 is defined twice"},
      {"STRINGTABLE\nBEGIN\n 1 \"open\nEND\n", 3, "not closed"},
      {"STRINGTABLE\r\nBEGIN\r\n 1 \"a\"\r\n IDS_X \"b\"\r\nEND\r\n", 4, "'IDS_X' is not defined"},
      {"STRINGTABLE\nBEGIN\n 1 \"a\"\n", 3, "END of the STRINGTABLE expected"},
      {"STRINGTABLE\nBEGIN\n 70000 \"big\"\nEND\n", 3, "outside 0 to 65535"},
      {"STRINGTABLE\nBEGIN\n 1/0 \"x\"\nEND\n", 3, "division by zero"},
      {"STRINGTABLE\nBEGIN\n 1 2\nEND\n", 3, "a text in quotes expected"},
      {"\n1 DIALOG 0, 0, 10, 10\nBEGIN\nEND\n", 2, "is not supported"},
      {"1 MENU\nBEGIN\n MENUITEM \"a\", 1, BOLD\nEND\n", 3, "a menu option"},
      {"1 MENU\nBEGIN\n POPUP \"p\"\n BEGIN\n  MENUITEM \"a\", 1\n END\n", 6, "END of the menu expected"},
      {"1 MENU { MENUITEM \"a\", 1 }\n1 MENU { MENUITEM \"b\", 2 }\n", 2, "defined twice"},
      {"1 MENUEX { MENUITEM \"a\", 1, 2, 3, 4 }\n", 1, "too many numbers"},
      {"LANGUAGE 0x400, 1\n", 1, "out of range"},
      {"\nEND\n", 2, "outside a resource statement"},
      {"#if 1\nSTRINGTABLE { 1 \"a\" }\n", 1, "without #endif"},
      {"\n#endif\n", 2, "#endif without #if"},
      {"#if 1\n#else\n#else\n#endif\n", 3, "#else after #else"},
      {"#include \"missing.h\"\n", 1, "cannot open the include file"},
      {"#include <stdio.h>\n", 1, "cannot include <stdio.h>"},
      {"#pragma code_page(65001)\n", 1, "not supported"},
      {"#unknown\n", 1, "unknown directive"},
      {"#error stop here\n", 1, "#error stop here"},
      {"#define F(x) x\nSTRINGTABLE { F(1) \"a\" }\n", 2, "takes arguments"},
      {"#define A B\n#define B A\nSTRINGTABLE { A \"a\" }\n", 3, "'A' is not defined"},
      {"\n/* not closed\n", 2, "comment is not closed"},
      {"STRINGTABLE { 0x1FFFFFFFF \"x\" }\n", 1, "not a valid 32-bit number"},
      {"#line 50 \"other.rc\"\nSTRINGTABLE { X \"x\" }\n", 50, "not defined"},
      {"\xEF\xBB\xBFSTRINGTABLE { 1 \"a\" }", 1, "UTF-8"},
      {"\xFF\xFE" "S\0", 1, "UTF-16"},
  };
  for (const Case& c : cases) {
    ScriptError error;
    std::string script(c.script, c.script[0] == '\xFF' ? 4 : std::char_traits<char>::length(c.script));
    EXPECT_FALSE(ReadResourceScriptText(script, "test.rc", error).has_value()) << c.script;
    EXPECT_EQ(error.line, c.line) << c.script;
    EXPECT_NE(error.message.find(c.message), std::string::npos) << c.script << "\n  " << error.Describe();
  }
  ScriptError error;
  ReadResourceScriptText("#line 9 \"other.rc\"\nSTRINGTABLE { X \"x\" }\n", "test.rc", error);
  EXPECT_EQ(error.Describe(), "other.rc(9): 'X' is not defined (a number or a #define'd name is expected)");
}

TEST(ResourceScript, RunawayMacrosStopWithAnError) {
  std::string script = "#define A0 1\n";
  for (int i = 1; i <= 30; ++i) {
    script += "#define A" + std::to_string(i) + " A" + std::to_string(i - 1) + " A" + std::to_string(i - 1) + "\n";
  }
  script += "STRINGTABLE { A30 \"x\" }\n";
  ScriptError error;
  EXPECT_FALSE(ReadResourceScriptText(script, "test.rc", error));
  EXPECT_NE(error.message.find("too many tokens"), std::string::npos) << error.Describe();
}

TEST(CodePage1252, RoundTripsEveryByte) {
  std::string all;
  for (int byte = 0; byte < 256; ++byte) all += static_cast<char>(byte);
  std::u16string wide = tbx::win32::Cp1252ToUtf16(all);
  ASSERT_EQ(wide.size(), 256u);
  EXPECT_EQ(wide[0x80], u'\u20ac');
  EXPECT_EQ(wide[0x9F], u'\u0178');
  EXPECT_EQ(wide[0xE4], u'\u00e4');
  EXPECT_EQ(tbx::win32::Utf16ToCp1252(wide), all);
  EXPECT_EQ(tbx::win32::Utf16ToCp1252(u"a\u263a\U0001F600b"), "a??b") << "a surrogate pair is one character";
}

}  // namespace
