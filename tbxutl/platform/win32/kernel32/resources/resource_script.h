#pragma once
// The resource-script reader behind resource libraries on Linux: a library
// "X.dll" is the text file "X.rc", and this reads its STRINGTABLE, MENU and
// MENUEX statements into the bytes that the Windows loader hands out for
// them, so that FindResourceA, LoadResource and SizeofResource answer as on
// Windows.
//
// What is read:
// - #define (numbers and expressions), #undef, #if/#ifdef/#ifndef/#elif/
//   #else/#endif, #include "file" (beside the including file), #include of
//   the platform headers (<windows.h>, <winres.h> ...: they give the names of
//   languages and menu flags), #pragma code_page(1252), #pragma once, #line.
// - LANGUAGE, at the top level (for the resources that follow) or inside a
//   statement (for that resource); the default language is 0x0409.
// - STRINGTABLE: "id [,] text", texts joined when written one after another;
//   kept as Windows keeps them, in blocks of 16 strings (block id = id / 16 +
//   1), each string a 16-bit length and its UTF-16 units.
// - MENU with POPUP, MENUITEM and MENUITEM SEPARATOR and the options CHECKED,
//   GRAYED, HELP, INACTIVE, MENUBARBREAK, MENUBREAK: the menu template of
//   LoadMenuIndirectA.
// - MENUEX with "MENUITEM text, id, type, state" and "POPUP text, id, type,
//   state, help id": the extended template (version 1).
// Memory options (DISCARDABLE, MOVEABLE ...), CHARACTERISTICS and VERSION
// are accepted and have no effect. Other resource types are an error.
//
// Texts are in code page 1252, with the escapes of the resource compiler:
// \n \t \r \b \f \v \a (which gives 0x08, as the compiler has it) \\ \" and a
// doubled quote, octal \ooo and hexadecimal \xhh (\xhhhh in L"..." texts);
// any other backslash stays in the text.
//
// Where the two resource compilers differ, this follows the Microsoft one:
// a MENUEX always becomes an extended template (windres writes a plain one
// when no item uses an extended field), a byte that code page 1252 leaves
// undefined becomes the UTF-16 unit of the same value, and a string id
// defined twice is an error.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tbxutl/export.h"
#include "tbxutl/platform/win32/kernel32/resources/script_preprocessor.h"

namespace tbx::win32 {

// A resource type or name: a 16-bit number, or a name in upper case (as the
// resource compiler stores names, and as lookups compare them).
struct TBXUTL_API ResourceKey {
  std::uint16_t number = 0;
  std::string name;  // empty: the key is `number`

  bool operator==(const ResourceKey&) const = default;
};

struct TBXUTL_API ScriptResource {
  ResourceKey type;
  ResourceKey name;
  std::uint16_t language = 0;
  std::vector<std::uint8_t> data;
};

// The resources of a script, or nothing with `error` set: a faulty script
// yields no resources at all.
TBXUTL_API std::optional<std::vector<ScriptResource>> ReadResourceScriptFile(const std::string& path,
                                                                               ScriptError& error);
TBXUTL_API std::optional<std::vector<ScriptResource>> ReadResourceScriptText(std::string_view text,
                                                                               const std::string& fileName,
                                                                               ScriptError& error);

// Code page 1252 to UTF-16 and back (a unit without a 1252 character becomes
// '?'), as the reader and LoadStringA need them.
TBXUTL_API std::u16string Cp1252ToUtf16(std::string_view text);
TBXUTL_API std::string Utf16ToCp1252(std::u16string_view text);

}  // namespace tbx::win32
