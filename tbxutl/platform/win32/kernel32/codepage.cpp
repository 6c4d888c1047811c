#include "tbxutl/platform/win32/kernel32/codepage.h"

#include "tbxutl/platform/windows.h"

namespace {

// Windows-1252 bytes 0x80-0x9F; the five bytes the code page leaves
// undefined map to the C1 control of the same number, as Windows maps them.
constexpr WCHAR kHigh1252[32] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

WCHAR ToUnicode(unsigned char byte) {
  return byte >= 0x80 && byte < 0xA0 ? kHigh1252[byte - 0x80] : static_cast<WCHAR>(byte);
}

// The byte for a UTF-16 unit, or -1 when the code page has none.
int FromUnicode(WCHAR unit) {
  if (unit < 0x80 || (unit >= 0xA0 && unit <= 0xFF)) return unit;
  for (int i = 0; i < 32; ++i) {
    if (kHigh1252[i] == unit) return 0x80 + i;
  }
  return -1;
}

bool IsAnsiCodePage(UINT codePage) {
  return codePage == CP_ACP || codePage == CP_THREAD_ACP || codePage == 1252;
}

int Fail(DWORD error) {
  SetLastError(error);
  return 0;
}

}  // namespace

extern "C" UINT WINAPI GetACP() { return 1252; }

extern "C" int WINAPI MultiByteToWideChar(UINT CodePage, DWORD, LPCSTR lpMultiByteStr, int cbMultiByte,
                                          LPWSTR lpWideCharStr, int cchWideChar) {
  if (!IsAnsiCodePage(CodePage)) return Fail(ERROR_INVALID_PARAMETER);
  if (lpMultiByteStr == nullptr || cbMultiByte == 0 || cchWideChar < 0 || cbMultiByte < -1 ||
      (cchWideChar > 0 && lpWideCharStr == nullptr)) {
    return Fail(ERROR_INVALID_PARAMETER);
  }
  int length = cbMultiByte;
  if (length == -1) {
    length = 0;
    while (lpMultiByteStr[length] != '\0') ++length;
    ++length;  // the terminator is converted too
  }
  if (cchWideChar == 0) return length;
  if (cchWideChar < length) {
    for (int i = 0; i < cchWideChar; ++i) lpWideCharStr[i] = ToUnicode(static_cast<unsigned char>(lpMultiByteStr[i]));
    return Fail(ERROR_INSUFFICIENT_BUFFER);
  }
  for (int i = 0; i < length; ++i) lpWideCharStr[i] = ToUnicode(static_cast<unsigned char>(lpMultiByteStr[i]));
  return length;
}

extern "C" int WINAPI WideCharToMultiByte(UINT CodePage, DWORD, LPCWSTR lpWideCharStr, int cchWideChar,
                                          LPSTR lpMultiByteStr, int cbMultiByte, LPCSTR lpDefaultChar,
                                          LPBOOL lpUsedDefaultChar) {
  if (!IsAnsiCodePage(CodePage)) return Fail(ERROR_INVALID_PARAMETER);
  if (lpWideCharStr == nullptr || cchWideChar == 0 || cbMultiByte < 0 || cchWideChar < -1 ||
      (cbMultiByte > 0 && lpMultiByteStr == nullptr)) {
    return Fail(ERROR_INVALID_PARAMETER);
  }
  int length = cchWideChar;
  if (length == -1) {
    length = 0;
    while (lpWideCharStr[length] != 0) ++length;
    ++length;
  }
  char defaultChar = lpDefaultChar ? *lpDefaultChar : '?';
  bool usedDefault = false;
  int written = 0;
  for (int i = 0; i < length; ++i) {
    int byte = FromUnicode(lpWideCharStr[i]);
    if (byte < 0) {
      usedDefault = true;
      byte = static_cast<unsigned char>(defaultChar);
    }
    if (cbMultiByte > 0) {
      if (written == cbMultiByte) return Fail(ERROR_INSUFFICIENT_BUFFER);
      lpMultiByteStr[written] = static_cast<char>(byte);
    }
    ++written;
  }
  if (lpUsedDefaultChar) *lpUsedDefaultChar = usedDefault ? TRUE : FALSE;
  return written;
}
