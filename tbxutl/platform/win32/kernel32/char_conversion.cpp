#include "tbxutl/platform/win32/kernel32/char_conversion.h"

#include <cstring>

#include "tbxutl/platform/win32/kernel32/code_page.h"
#include "tbxutl/platform/win32/kernel32/last_error.h"
#include "tbxutl/platform/win32/winerror.h"

namespace {

using tbx::win32::FindCodePage;

std::size_t WideLength(LPCWSTR s) {
  std::size_t n = 0;
  while (s[n] != 0) ++n;
  return n;
}

int Fail(DWORD error) {
  SetLastError(error);
  return 0;
}

// The result of a finished conversion, as both functions report it: a buffer
// too small wins over invalid input, which fails only when asked to.
template <typename Sink>
int Finish(const Sink& out, bool failOnInvalid) {
  if (out.overflow()) return Fail(ERROR_INSUFFICIENT_BUFFER);
  if (out.invalid() && failOnInvalid) return Fail(ERROR_NO_UNICODE_TRANSLATION);
  return static_cast<int>(out.size());
}

}  // namespace

extern "C" UINT WINAPI GetACP() { return FindCodePage(CP_ACP)->Id(); }

extern "C" UINT WINAPI GetOEMCP() { return FindCodePage(CP_OEMCP)->Id(); }

extern "C" BOOL WINAPI IsDBCSLeadByteEx(UINT CodePage, BYTE TestChar) {
  const tbx::win32::CodePage* page = FindCodePage(CodePage);
  return page != nullptr && page->IsLeadByte(TestChar) ? TRUE : FALSE;
}

extern "C" BOOL WINAPI IsDBCSLeadByte(BYTE TestChar) { return IsDBCSLeadByteEx(CP_ACP, TestChar); }

extern "C" int WINAPI MultiByteToWideChar(UINT CodePage, DWORD dwFlags, LPCSTR lpMultiByteStr, int cbMultiByte,
                                          LPWSTR lpWideCharStr, int cchWideChar) {
  if (lpMultiByteStr == nullptr || cbMultiByte == 0 || cchWideChar < 0 ||
      (lpWideCharStr == nullptr && cchWideChar != 0) ||
      static_cast<const void*>(lpMultiByteStr) == static_cast<const void*>(lpWideCharStr)) {
    return Fail(ERROR_INVALID_PARAMETER);
  }
  const tbx::win32::CodePage* page = FindCodePage(CodePage);
  if (page == nullptr) return Fail(ERROR_INVALID_PARAMETER);
  if (!page->AcceptsToUnicodeFlags(dwFlags)) return Fail(ERROR_INVALID_FLAGS);

  // Any negative length means a terminated string, terminator included.
  std::size_t count = cbMultiByte < 0 ? std::strlen(lpMultiByteStr) + 1 : static_cast<std::size_t>(cbMultiByte);
  tbx::win32::WideSink out(lpWideCharStr, static_cast<std::size_t>(cchWideChar));
  page->ToUnicode(reinterpret_cast<const BYTE*>(lpMultiByteStr), count, dwFlags, out);
  return Finish(out, (dwFlags & MB_ERR_INVALID_CHARS) != 0);
}

extern "C" int WINAPI WideCharToMultiByte(UINT CodePage, DWORD dwFlags, LPCWSTR lpWideCharStr, int cchWideChar,
                                          LPSTR lpMultiByteStr, int cbMultiByte, LPCSTR lpDefaultChar,
                                          LPBOOL lpUsedDefaultChar) {
  if (lpWideCharStr == nullptr || cchWideChar == 0 || cbMultiByte < 0 ||
      (lpMultiByteStr == nullptr && cbMultiByte != 0) ||
      static_cast<const void*>(lpWideCharStr) == static_cast<const void*>(lpMultiByteStr)) {
    return Fail(ERROR_INVALID_PARAMETER);
  }
  const tbx::win32::CodePage* page = FindCodePage(CodePage);
  if (page == nullptr) return Fail(ERROR_INVALID_PARAMETER);
  if (!page->AcceptsFromUnicodeFlags(dwFlags)) return Fail(ERROR_INVALID_FLAGS);
  if (!page->HasDefaultChar() && (lpDefaultChar != nullptr || lpUsedDefaultChar != nullptr)) {
    return Fail(ERROR_INVALID_PARAMETER);
  }

  std::size_t count = cchWideChar < 0 ? WideLength(lpWideCharStr) + 1 : static_cast<std::size_t>(cchWideChar);
  tbx::win32::ByteSink out(lpMultiByteStr, static_cast<std::size_t>(cbMultiByte));
  page->FromUnicode(lpWideCharStr, count, dwFlags, lpDefaultChar, out);
  if (lpUsedDefaultChar != nullptr) *lpUsedDefaultChar = out.defaultUsed() ? TRUE : FALSE;
  return Finish(out, (dwFlags & WC_ERR_INVALID_CHARS) != 0);
}
