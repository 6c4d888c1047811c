#include "tbxutl/platform/win32/comsupp/com_error.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "tbxutl/platform/win32/kernel32/system_messages_internal.h"

namespace {

// IDispatch exception codes live in this HRESULT range.
constexpr DWORD kWCodeFirst = 0x80040200;
constexpr DWORD kWCodeLast = 0x8004FFFF;

}  // namespace

_com_error::_com_error(HRESULT hr) noexcept : m_hresult(hr), m_pszMsg(nullptr) {}

_com_error::_com_error(const _com_error& other) noexcept : m_hresult(other.m_hresult), m_pszMsg(nullptr) {}

_com_error& _com_error::operator=(const _com_error& other) noexcept {
  if (this != &other) {
    std::free(m_pszMsg);
    m_pszMsg = nullptr;
    m_hresult = other.m_hresult;
  }
  return *this;
}

_com_error::~_com_error() { std::free(m_pszMsg); }

HRESULT _com_error::WCodeToHRESULT(WORD wCode) noexcept {
  return wCode >= 0xFE00 ? static_cast<HRESULT>(kWCodeLast) : static_cast<HRESULT>(kWCodeFirst + wCode);
}

WORD _com_error::HRESULTToWCode(HRESULT hr) noexcept {
  auto code = static_cast<DWORD>(hr);
  return code >= kWCodeFirst && code <= kWCodeLast ? static_cast<WORD>(code - kWCodeFirst) : 0;
}

const char* _com_error::ErrorMessage() const noexcept {
  if (m_pszMsg != nullptr) return m_pszMsg;
  char text[64];
  const char* message = tbx::detail::SystemMessageText(static_cast<DWORD>(m_hresult));
  if (message == nullptr) {
    WORD wCode = WCode();
    if (wCode != 0) {
      std::snprintf(text, sizeof text, "IDispatch error #%d", wCode);
    } else {
      std::snprintf(text, sizeof text, "Unknown error 0x%0lX", static_cast<unsigned long>(static_cast<DWORD>(m_hresult)));
    }
    message = text;
  }
  m_pszMsg = strdup(message);
  return m_pszMsg != nullptr ? m_pszMsg : "";
}
