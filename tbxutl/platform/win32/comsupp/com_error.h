#pragma once
// The COM error that the XML document service raises: an HRESULT and its
// message text.

#include "tbxutl/export.h"
#include "tbxutl/platform/win32/win32_types.h"

class TBXUTL_API _com_error {
 public:
  explicit _com_error(HRESULT hr) noexcept;
  _com_error(const _com_error& other) noexcept;
  _com_error& operator=(const _com_error& other) noexcept;
  virtual ~_com_error();

  HRESULT Error() const noexcept { return m_hresult; }
  // The IDispatch exception code carried in the HRESULT, or 0.
  WORD WCode() const noexcept { return HRESULTToWCode(m_hresult); }
  // The system's text for the HRESULT without its trailing line break;
  // else "IDispatch error #N" for an IDispatch code, else
  // "Unknown error 0x%0lX". Valid while the object lives.
  const char* ErrorMessage() const noexcept;

  static HRESULT WCodeToHRESULT(WORD wCode) noexcept;
  static WORD HRESULTToWCode(HRESULT hr) noexcept;

 private:
  HRESULT m_hresult;
  mutable char* m_pszMsg;
};
