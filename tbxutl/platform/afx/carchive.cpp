#include "tbxutl/platform/afx/carchive.h"

#include <algorithm>
#include <cstring>
#include <type_traits>

namespace {

[[noreturn]] void ThrowArchive(int cause, const CString& name) { AfxThrowArchiveException(cause, name); }

}  // namespace

CArchive::CArchive(CFile* pFile, UINT nMode, int nBufSize, void*)
    : m_pFile(pFile), m_nMode(nMode), m_buffer(static_cast<std::size_t>(std::max(nBufSize, 128))) {
  if (pFile == nullptr) AfxThrowInvalidArgException();
  m_strFileName = pFile->GetFilePath();
}

CArchive::~CArchive() {
  if (m_pFile != nullptr && IsStoring() && !(m_nMode & bNoFlushOnDelete)) {
    try {
      Flush();
    } catch (...) {  // a destructor must not throw; Close reports errors
    }
  }
}

void CArchive::RequireLoading() const {
  if (m_pFile == nullptr) AfxThrowInvalidArgException();
  if (!IsLoading()) ThrowArchive(CArchiveException::writeOnly, m_strFileName);
}

void CArchive::RequireStoring() const {
  if (m_pFile == nullptr) AfxThrowInvalidArgException();
  if (!IsStoring()) ThrowArchive(CArchiveException::readOnly, m_strFileName);
}

void CArchive::FillBuffer() {
  m_nFill = m_pFile->Read(m_buffer.data(), static_cast<UINT>(m_buffer.size()));
  m_nPos = 0;
}

UINT CArchive::Read(void* lpBuf, UINT nMax) {
  RequireLoading();
  auto* out = static_cast<BYTE*>(lpBuf);
  UINT done = 0;
  while (done < nMax) {
    if (m_nPos == m_nFill) {
      FillBuffer();
      if (m_nFill == 0) break;
    }
    std::size_t n = std::min<std::size_t>(nMax - done, m_nFill - m_nPos);
    std::memcpy(out + done, m_buffer.data() + m_nPos, n);
    m_nPos += n;
    done += static_cast<UINT>(n);
  }
  return done;
}

void CArchive::ReadExactly(void* lpBuf, UINT n) {
  if (Read(lpBuf, n) != n) ThrowArchive(CArchiveException::endOfFile, m_strFileName);
}

void CArchive::Write(const void* lpBuf, UINT nMax) {
  RequireStoring();
  const auto* in = static_cast<const BYTE*>(lpBuf);
  while (nMax > 0) {
    if (m_nPos == m_buffer.size()) Flush();
    std::size_t n = std::min<std::size_t>(nMax, m_buffer.size() - m_nPos);
    std::memcpy(m_buffer.data() + m_nPos, in, n);
    m_nPos += n;
    in += n;
    nMax -= static_cast<UINT>(n);
  }
}

void CArchive::Flush() {
  if (m_pFile == nullptr || !IsStoring() || m_nPos == 0) return;
  std::size_t n = m_nPos;
  m_nPos = 0;  // a failed write is not retried from the destructor
  m_pFile->Write(m_buffer.data(), static_cast<UINT>(n));
}

void CArchive::Close() {
  Flush();
  m_pFile = nullptr;
}

void CArchive::Abort() { m_pFile = nullptr; }

template <typename T>
void CArchive::StoreLittleEndian(T value) {
  BYTE bytes[sizeof(T)];
  std::make_unsigned_t<T> bits;
  std::memcpy(&bits, &value, sizeof(T));
  for (std::size_t i = 0; i < sizeof(T); ++i) bytes[i] = static_cast<BYTE>(bits >> (8 * i));
  Write(bytes, sizeof(T));
}

template <typename T>
T CArchive::LoadLittleEndian() {
  BYTE bytes[sizeof(T)];
  ReadExactly(bytes, sizeof(T));
  std::make_unsigned_t<T> bits = 0;
  for (std::size_t i = 0; i < sizeof(T); ++i) bits |= static_cast<std::make_unsigned_t<T>>(bytes[i]) << (8 * i);
  T value;
  std::memcpy(&value, &bits, sizeof(T));
  return value;
}

CArchive& CArchive::operator<<(BYTE by) { StoreLittleEndian(by); return *this; }
CArchive& CArchive::operator<<(WORD w) { StoreLittleEndian(w); return *this; }
CArchive& CArchive::operator<<(short n) { StoreLittleEndian(n); return *this; }
CArchive& CArchive::operator<<(char ch) { StoreLittleEndian(static_cast<BYTE>(ch)); return *this; }
CArchive& CArchive::operator<<(bool b) { StoreLittleEndian(static_cast<LONG>(b ? 1 : 0)); return *this; }
CArchive& CArchive::operator<<(LONG l) { StoreLittleEndian(l); return *this; }
CArchive& CArchive::operator<<(DWORD dw) { StoreLittleEndian(dw); return *this; }
CArchive& CArchive::operator<<(LONGLONG n) { StoreLittleEndian(n); return *this; }
CArchive& CArchive::operator<<(ULONGLONG n) { StoreLittleEndian(n); return *this; }
CArchive& CArchive::operator<<(float f) {
  DWORD bits;
  std::memcpy(&bits, &f, sizeof bits);
  return *this << bits;
}
CArchive& CArchive::operator<<(double d) {
  ULONGLONG bits;
  std::memcpy(&bits, &d, sizeof bits);
  return *this << bits;
}

CArchive& CArchive::operator>>(BYTE& by) { by = LoadLittleEndian<BYTE>(); return *this; }
CArchive& CArchive::operator>>(WORD& w) { w = LoadLittleEndian<WORD>(); return *this; }
CArchive& CArchive::operator>>(short& n) { n = LoadLittleEndian<short>(); return *this; }
CArchive& CArchive::operator>>(char& ch) { ch = static_cast<char>(LoadLittleEndian<BYTE>()); return *this; }
CArchive& CArchive::operator>>(bool& b) { b = LoadLittleEndian<LONG>() != 0; return *this; }
CArchive& CArchive::operator>>(LONG& l) { l = LoadLittleEndian<LONG>(); return *this; }
CArchive& CArchive::operator>>(DWORD& dw) { dw = LoadLittleEndian<DWORD>(); return *this; }
CArchive& CArchive::operator>>(LONGLONG& n) { n = LoadLittleEndian<LONGLONG>(); return *this; }
CArchive& CArchive::operator>>(ULONGLONG& n) { n = LoadLittleEndian<ULONGLONG>(); return *this; }
CArchive& CArchive::operator>>(float& f) {
  DWORD bits = LoadLittleEndian<DWORD>();
  std::memcpy(&f, &bits, sizeof f);
  return *this;
}
CArchive& CArchive::operator>>(double& d) {
  ULONGLONG bits = LoadLittleEndian<ULONGLONG>();
  std::memcpy(&d, &bits, sizeof d);
  return *this;
}

void CArchive::WriteCount(DWORD_PTR dwCount) {
  if (dwCount < 0xFFFF) {
    *this << static_cast<WORD>(dwCount);
  } else {
    *this << static_cast<WORD>(0xFFFF) << static_cast<DWORD>(dwCount);
  }
}

DWORD_PTR CArchive::ReadCount() {
  WORD w = LoadLittleEndian<WORD>();
  if (w != 0xFFFF) return w;
  return LoadLittleEndian<DWORD>();
}

CArchive& CArchive::operator<<(const CString& s) {
  auto length = static_cast<DWORD>(s.GetLength());
  if (length < 0xFF) {
    *this << static_cast<BYTE>(length);
  } else if (length < 0xFFFE) {
    *this << static_cast<BYTE>(0xFF) << static_cast<WORD>(length);
  } else {
    *this << static_cast<BYTE>(0xFF) << static_cast<WORD>(0xFFFF) << length;
  }
  Write(s.GetString(), length);
  return *this;
}

CArchive& CArchive::operator>>(CString& s) {
  DWORD length = LoadLittleEndian<BYTE>();
  if (length == 0xFF) {
    length = LoadLittleEndian<WORD>();
    // 0xFFFE marks a string of 16-bit characters, which this narrow
    // archive does not hold.
    if (length == 0xFFFE) ThrowArchive(CArchiveException::badIndex, m_strFileName);
    if (length == 0xFFFF) length = LoadLittleEndian<DWORD>();
    if (length == 0xFFFFFFFF) ThrowArchive(CArchiveException::badIndex, m_strFileName);
  }
  // Read in pieces so that a corrupt length does not allocate more than the
  // file really holds.
  CString text;
  char piece[4096];
  for (DWORD left = length; left > 0;) {
    UINT n = static_cast<UINT>(std::min<DWORD>(left, sizeof piece));
    ReadExactly(piece, n);
    text.Append(piece, static_cast<int>(n));
    left -= n;
  }
  s = std::move(text);
  return *this;
}
