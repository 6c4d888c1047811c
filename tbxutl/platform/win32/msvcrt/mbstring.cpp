#include "tbxutl/platform/win32/msvcrt/mbstring.h"

namespace {

unsigned char AsciiLower(unsigned char c) { return c >= 'A' && c <= 'Z' ? c + ('a' - 'A') : c; }
unsigned char AsciiUpper(unsigned char c) { return c >= 'a' && c <= 'z' ? c - ('a' - 'A') : c; }

}  // namespace

extern "C" unsigned char* _mbsupr(unsigned char* str) {
  for (unsigned char* p = str; p != nullptr && *p != 0; ++p) *p = AsciiUpper(*p);
  return str;
}

extern "C" unsigned char* _mbslwr(unsigned char* str) {
  for (unsigned char* p = str; p != nullptr && *p != 0; ++p) *p = AsciiLower(*p);
  return str;
}

extern "C" int _mbsicmp(const unsigned char* a, const unsigned char* b) {
  for (;; ++a, ++b) {
    int diff = AsciiLower(*a) - AsciiLower(*b);
    if (diff != 0 || *a == 0) return diff;
  }
}
