#include "tbxutl/platform/win32/user32/char_string.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <vector>

#include "tbxutl/platform/win32/kernel32/char_conversion.h"

namespace {

// Unicode properties of a UTF-16 unit, as far as the ANSI code page's
// characters need them: their type and their case partner. Other characters
// have neither.
enum : BYTE { kUpper = 1, kLower = 2, kDigit = 4, kAlpha = 8 };

struct CharInfo {
  WCHAR unit;
  WCHAR partner;  // the other case, or the unit itself
  BYTE type;
};

// The non-ASCII characters of Windows-1252 (and their case partners) that the
// Latin-1 letter rule below does not cover, sorted by unit.
constexpr CharInfo kSpecialChars[] = {
    {0x00AA, 0x00AA, kAlpha | kLower}, {0x00B2, 0x00B2, kDigit},          {0x00B3, 0x00B3, kDigit},
    {0x00B5, 0x00B5, kAlpha | kLower}, {0x00B9, 0x00B9, kDigit},          {0x00BA, 0x00BA, kAlpha | kLower},
    {0x00DF, 0x00DF, kAlpha | kLower}, {0x00FF, 0x0178, kAlpha | kLower}, {0x0152, 0x0153, kAlpha | kUpper},
    {0x0153, 0x0152, kAlpha | kLower}, {0x0160, 0x0161, kAlpha | kUpper}, {0x0161, 0x0160, kAlpha | kLower},
    {0x0178, 0x00FF, kAlpha | kUpper}, {0x017D, 0x017E, kAlpha | kUpper}, {0x017E, 0x017D, kAlpha | kLower},
    {0x0191, 0x0192, kAlpha | kUpper}, {0x0192, 0x0191, kAlpha | kLower}, {0x02C6, 0x02C6, kAlpha},
};

CharInfo Lookup(WCHAR unit) {
  if (unit >= 'A' && unit <= 'Z') return {unit, static_cast<WCHAR>(unit + 0x20), kAlpha | kUpper};
  if (unit >= 'a' && unit <= 'z') return {unit, static_cast<WCHAR>(unit - 0x20), kAlpha | kLower};
  if (unit >= '0' && unit <= '9') return {unit, unit, kDigit};
  // Latin-1 letters: capitals 0xC0-0xDE and small letters 0xE0-0xFE, but for
  // the multiplication and division signs.
  if (unit >= 0xC0 && unit <= 0xDE && unit != 0xD7) return {unit, static_cast<WCHAR>(unit + 0x20), kAlpha | kUpper};
  if (unit >= 0xE0 && unit <= 0xFE && unit != 0xF7) return {unit, static_cast<WCHAR>(unit - 0x20), kAlpha | kLower};
  const CharInfo* end = std::end(kSpecialChars);
  const CharInfo* it = std::lower_bound(std::begin(kSpecialChars), end, unit,
                                        [](const CharInfo& info, WCHAR u) { return info.unit < u; });
  if (it != end && it->unit == unit) return *it;
  return {unit, unit, 0};
}

WCHAR ToUpper(WCHAR unit) {
  CharInfo info = Lookup(unit);
  return (info.type & kLower) != 0 ? info.partner : unit;
}

WCHAR ToLower(WCHAR unit) {
  CharInfo info = Lookup(unit);
  return (info.type & kUpper) != 0 ? info.partner : unit;
}

BYTE TypeOf(CHAR ch) {
  WCHAR unit = 0;
  if (MultiByteToWideChar(CP_ACP, 0, &ch, 1, &unit, 1) != 1) return 0;
  return Lookup(unit).type;
}

// Maps `length` bytes in place through UTF-16, as CharUpperBuffA does.
DWORD MapBuffer(LPSTR text, DWORD length, WCHAR (*map)(WCHAR)) {
  if (text == nullptr || length == 0) return 0;
  int count = static_cast<int>(std::min<DWORD>(length, INT_MAX));
  int units = MultiByteToWideChar(CP_ACP, 0, text, count, nullptr, 0);
  std::vector<WCHAR> wide(static_cast<std::size_t>(units));
  MultiByteToWideChar(CP_ACP, 0, text, count, wide.data(), units);
  for (WCHAR& unit : wide) unit = map(unit);
  WideCharToMultiByte(CP_ACP, 0, wide.data(), units, text, count, nullptr, nullptr);
  return length;
}

bool IsOneCharacter(LPCSTR text) { return (reinterpret_cast<UINT_PTR>(text) >> 16) == 0; }

LPSTR MapString(LPSTR text, WCHAR (*map)(WCHAR)) {
  if (IsOneCharacter(text)) {
    CHAR ch = static_cast<CHAR>(reinterpret_cast<UINT_PTR>(text) & 0xFF);
    MapBuffer(&ch, 1, map);
    return reinterpret_cast<LPSTR>(static_cast<UINT_PTR>(static_cast<BYTE>(ch)));
  }
  MapBuffer(text, static_cast<DWORD>(std::strlen(text)), map);
  return text;
}

}  // namespace

extern "C" LPSTR WINAPI CharNextA(LPCSTR lpsz) {
  if (*lpsz == '\0') return const_cast<LPSTR>(lpsz);
  if (IsDBCSLeadByte(static_cast<BYTE>(lpsz[0])) && lpsz[1] != '\0') return const_cast<LPSTR>(lpsz + 2);
  return const_cast<LPSTR>(lpsz + 1);
}

extern "C" LPSTR WINAPI CharPrevA(LPCSTR lpszStart, LPCSTR lpszCurrent) {
  // Steps from the start, so that a trail byte is never taken for a
  // character; it stops at a terminator.
  while (*lpszStart != '\0' && lpszStart < lpszCurrent) {
    LPCSTR next = CharNextA(lpszStart);
    if (next >= lpszCurrent) break;
    lpszStart = next;
  }
  return const_cast<LPSTR>(lpszStart);
}

extern "C" LPSTR WINAPI CharUpperA(LPSTR lpsz) { return MapString(lpsz, ToUpper); }

extern "C" LPSTR WINAPI CharLowerA(LPSTR lpsz) { return MapString(lpsz, ToLower); }

extern "C" DWORD WINAPI CharUpperBuffA(LPSTR lpsz, DWORD cchLength) { return MapBuffer(lpsz, cchLength, ToUpper); }

extern "C" DWORD WINAPI CharLowerBuffA(LPSTR lpsz, DWORD cchLength) { return MapBuffer(lpsz, cchLength, ToLower); }

extern "C" BOOL WINAPI IsCharAlphaA(CHAR ch) { return (TypeOf(ch) & kAlpha) != 0 ? TRUE : FALSE; }

extern "C" BOOL WINAPI IsCharAlphaNumericA(CHAR ch) { return (TypeOf(ch) & (kAlpha | kDigit)) != 0 ? TRUE : FALSE; }

extern "C" BOOL WINAPI IsCharUpperA(CHAR ch) { return (TypeOf(ch) & kUpper) != 0 ? TRUE : FALSE; }

extern "C" BOOL WINAPI IsCharLowerA(CHAR ch) { return (TypeOf(ch) & kLower) != 0 ? TRUE : FALSE; }
