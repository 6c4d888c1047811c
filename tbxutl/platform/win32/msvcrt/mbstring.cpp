#include "tbxutl/platform/win32/msvcrt/mbstring.h"

#include <cerrno>
#include <climits>
#include <cstring>

#include "tbxutl/platform/win32/kernel32/char_conversion.h"
#include "tbxutl/platform/win32/user32/char_string.h"

namespace {

using Byte = unsigned char;

bool IsLead(Byte byte) { return IsDBCSLeadByte(byte) != FALSE; }

// Bytes of the character at `p`: 2 for a lead byte with a trail byte, else 1.
std::size_t CharSize(const Byte* p) { return IsLead(p[0]) && p[1] != '\0' ? 2 : 1; }

// The character at `p` as one number (lead byte high).
unsigned int CharAt(const Byte* p) { return CharSize(p) == 2 ? (p[0] << 8) | p[1] : p[0]; }

unsigned int AsciiLower(unsigned int c) { return c >= 'A' && c <= 'Z' ? c + ('a' - 'A') : c; }

// Maps each character in place: single bytes whose class is `from`, double
// bytes always (the mapping leaves other characters alone).
Byte* MapCase(Byte* str, BOOL(WINAPI* isFrom)(CHAR), DWORD(WINAPI* map)(LPSTR, DWORD)) {
  if (str == nullptr) {
    errno = EINVAL;
    return nullptr;
  }
  for (Byte* p = str; *p != '\0';) {
    std::size_t size = CharSize(p);
    if (size == 2 || isFrom(static_cast<CHAR>(*p))) map(reinterpret_cast<LPSTR>(p), static_cast<DWORD>(size));
    p += size;
  }
  return str;
}

}  // namespace

extern "C" unsigned char* _mbschr(const unsigned char* str, unsigned int c) {
  if (str == nullptr) {
    errno = EINVAL;
    return nullptr;
  }
  for (const Byte* p = str;; p += CharSize(p)) {
    if (*p == '\0') return c == 0 ? const_cast<Byte*>(p) : nullptr;
    if (CharAt(p) == c) return const_cast<Byte*>(p);
  }
}

extern "C" unsigned char* _mbsrchr(const unsigned char* str, unsigned int c) {
  if (str == nullptr) {
    errno = EINVAL;
    return nullptr;
  }
  const Byte* found = nullptr;
  for (const Byte* p = str;; p += CharSize(p)) {
    if (*p == '\0') return const_cast<Byte*>(c == 0 ? p : found);
    if (CharAt(p) == c) found = p;
  }
}

extern "C" unsigned char* _mbsstr(const unsigned char* str, const unsigned char* substr) {
  if (str == nullptr || substr == nullptr) {
    errno = EINVAL;
    return nullptr;
  }
  std::size_t length = std::strlen(reinterpret_cast<const char*>(substr));
  // Only where a character starts.
  for (const Byte* p = str;; p += CharSize(p)) {
    if (std::strncmp(reinterpret_cast<const char*>(p), reinterpret_cast<const char*>(substr), length) == 0) {
      return const_cast<Byte*>(p);
    }
    if (*p == '\0') return nullptr;
  }
}

extern "C" unsigned char* _mbsnbcpy(unsigned char* dest, const unsigned char* src, std::size_t count) {
  if (count != 0 && (dest == nullptr || src == nullptr)) {
    errno = EINVAL;
    return nullptr;
  }
  std::size_t i = 0;
  while (i < count && src[i] != '\0') {
    std::size_t size = CharSize(src + i);
    if (i + size > count) {
      dest[i++] = '\0';  // a lead byte without room for its trail byte
      break;
    }
    for (std::size_t k = 0; k < size; ++k, ++i) dest[i] = src[i];
  }
  for (; i < count; ++i) dest[i] = '\0';
  return dest;
}

extern "C" int _mbsnbcmp(const unsigned char* str1, const unsigned char* str2, std::size_t count) {
  if (str1 == nullptr || str2 == nullptr) {
    errno = EINVAL;
    return INT_MAX;
  }
  while (count > 0) {
    // A double-byte character that `count` cuts compares by its lead byte.
    unsigned int a = count >= 2 ? CharAt(str1) : *str1;
    unsigned int b = count >= 2 ? CharAt(str2) : *str2;
    if (a != b) return a < b ? -1 : 1;
    if (a == 0) return 0;
    std::size_t step = a > 0xFF ? 2 : 1;
    str1 += step;
    str2 += step;
    count -= step;
  }
  return 0;
}

extern "C" int _mbsicmp(const unsigned char* str1, const unsigned char* str2) {
  if (str1 == nullptr || str2 == nullptr) {
    errno = EINVAL;
    return INT_MAX;
  }
  for (const Byte *p = str1, *q = str2;; p += CharSize(p), q += CharSize(q)) {
    unsigned int a = AsciiLower(CharAt(p));
    unsigned int b = AsciiLower(CharAt(q));
    if (a != b) return static_cast<int>(a) - static_cast<int>(b);
    if (a == 0) return 0;
  }
}

extern "C" std::size_t _mbslen(const unsigned char* str) {
  if (str == nullptr) {
    errno = EINVAL;
    return 0;
  }
  std::size_t count = 0;
  for (const Byte* p = str; *p != '\0'; p += CharSize(p)) ++count;
  return count;
}

extern "C" unsigned char* _mbsinc(const unsigned char* current) {
  if (current == nullptr) {
    errno = EINVAL;
    return nullptr;
  }
  return const_cast<Byte*>(current + CharSize(current));
}

extern "C" unsigned char* _mbsdec(const unsigned char* start, const unsigned char* current) {
  if (start == nullptr || current == nullptr) {
    errno = EINVAL;
    return nullptr;
  }
  if (start >= current) return nullptr;
  // Steps from the start, so that a trail byte is never taken for a character.
  const Byte* previous = start;
  for (const Byte* p = start; p < current; p += IsLead(*p) ? 2 : 1) previous = p;
  return const_cast<Byte*>(previous);
}

extern "C" unsigned char* _mbsupr(unsigned char* str) { return MapCase(str, IsCharLowerA, CharUpperBuffA); }

extern "C" unsigned char* _mbslwr(unsigned char* str) { return MapCase(str, IsCharUpperA, CharLowerBuffA); }

extern "C" int _ismbblead(unsigned int c) { return IsLead(static_cast<Byte>(c & 0xFF)) ? 1 : 0; }
