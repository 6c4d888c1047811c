#include "tbxutl/platform/afx/cstring.h"

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "tbxutl/platform/afx/exceptions.h"
#include "tbxutl/platform/afx/module_state.h"
#include "tbxutl/platform/afx/printf_format_internal.h"
#include "tbxutl/platform/mbstring.h"

struct CString::Header {
  int length;
  int capacity;  // characters, not counting the terminator
};

namespace {

// The shared empty string: never written, since its capacity is 0.
struct EmptyRep {
  CString::Header header{0, 0};
  char data[1]{'\0'};
};
EmptyRep g_empty;

constexpr const char* kWhiteSpace = " \t\r\n\v\f";

int LengthOf(const char* psz) {
  if (psz == nullptr) return 0;
  std::size_t n = std::strlen(psz);
  if (n > static_cast<std::size_t>(INT_MAX - 1)) throw CMemoryException();
  return static_cast<int>(n);
}

int Clamp(int value, int low, int high) { return std::min(std::max(value, low), high); }

}  // namespace

CString::Header* CString::header() const noexcept {
  return reinterpret_cast<Header*>(m_pchData) - 1;
}

CString::CString() noexcept : m_pchData(g_empty.data) {}

CString::CString(const CString& other) : CString() { Assign(other.m_pchData, other.GetLength()); }

CString::CString(CString&& other) noexcept : m_pchData(other.m_pchData) {
  other.m_pchData = g_empty.data;
}

CString::CString(const char* psz) : CString() { Assign(psz, LengthOf(psz)); }

CString::CString(const char* pch, int nLength) : CString() {
  if (nLength < 0 || (pch == nullptr && nLength > 0)) throw CInvalidArgException();
  Assign(pch, nLength);
}

CString::CString(char ch, int nRepeat) : CString() {
  if (nRepeat > 0) {
    Reserve(nRepeat);
    std::memset(m_pchData, ch, static_cast<std::size_t>(nRepeat));
    SetLength(nRepeat);
  }
}

CString::~CString() {
  if (m_pchData != g_empty.data) std::free(header());
}

CString& CString::operator=(const CString& other) {
  if (this != &other) Assign(other.m_pchData, other.GetLength());
  return *this;
}

CString& CString::operator=(CString&& other) noexcept {
  std::swap(m_pchData, other.m_pchData);
  return *this;
}

CString& CString::operator=(const char* psz) {
  Assign(psz, LengthOf(psz));
  return *this;
}

CString& CString::operator=(char ch) {
  Assign(&ch, 1);
  return *this;
}

void CString::Reserve(int nCapacity) {
  if (nCapacity <= header()->capacity) return;
  if (nCapacity > INT_MAX - 64) throw CMemoryException();
  // Grow by half again, so that repeated appends stay linear.
  int capacity = std::max(nCapacity, std::min(INT_MAX - 64, header()->capacity + header()->capacity / 2));
  auto* block = static_cast<Header*>(std::malloc(sizeof(Header) + static_cast<std::size_t>(capacity) + 1));
  if (block == nullptr) throw CMemoryException();
  block->length = header()->length;
  block->capacity = capacity;
  char* data = reinterpret_cast<char*>(block + 1);
  std::memcpy(data, m_pchData, static_cast<std::size_t>(header()->length) + 1);
  if (m_pchData != g_empty.data) std::free(header());
  m_pchData = data;
}

void CString::SetLength(int nLength) {
  if (m_pchData == g_empty.data) return;  // only ever 0 here
  header()->length = nLength;
  m_pchData[nLength] = '\0';
}

void CString::Assign(const char* pch, int nLength) {
  if (nLength == 0) {
    SetLength(0);
    return;
  }
  // The source may lie inside this string: copy it before growing.
  if (pch >= m_pchData && pch <= m_pchData + GetLength()) {
    CString copy(pch, nLength);
    std::swap(m_pchData, copy.m_pchData);
    return;
  }
  Reserve(nLength);
  std::memcpy(m_pchData, pch, static_cast<std::size_t>(nLength));
  SetLength(nLength);
}

int CString::GetLength() const noexcept { return header()->length; }

bool CString::IsEmpty() const noexcept { return GetLength() == 0; }

void CString::Empty() {
  if (m_pchData != g_empty.data) std::free(header());
  m_pchData = g_empty.data;
}

char CString::GetAt(int nIndex) const {
  if (nIndex < 0 || nIndex >= GetLength()) throw CInvalidArgException();
  return m_pchData[nIndex];
}

char CString::operator[](int nIndex) const { return GetAt(nIndex); }

void CString::SetAt(int nIndex, char ch) {
  if (nIndex < 0 || nIndex >= GetLength()) throw CInvalidArgException();
  m_pchData[nIndex] = ch;
}

int CString::Find(char ch, int nStart) const {
  nStart = std::max(nStart, 0);
  if (nStart >= GetLength()) return -1;
  const void* hit = std::memchr(m_pchData + nStart, static_cast<unsigned char>(ch),
                                static_cast<std::size_t>(GetLength() - nStart));
  return hit ? static_cast<int>(static_cast<const char*>(hit) - m_pchData) : -1;
}

int CString::Find(const char* pszSub, int nStart) const {
  if (pszSub == nullptr) return -1;
  nStart = std::max(nStart, 0);
  if (nStart > GetLength()) return -1;
  const char* hit = std::strstr(m_pchData + nStart, pszSub);
  return hit ? static_cast<int>(hit - m_pchData) : -1;
}

int CString::ReverseFind(char ch) const {
  for (int i = GetLength() - 1; i >= 0; --i) {
    if (m_pchData[i] == ch) return i;
  }
  return -1;
}

int CString::FindOneOf(const char* pszCharSet) const {
  if (pszCharSet == nullptr) return -1;
  std::size_t n = std::strcspn(m_pchData, pszCharSet);
  return n < static_cast<std::size_t>(GetLength()) ? static_cast<int>(n) : -1;
}

CString CString::Left(int nCount) const { return CString(m_pchData, Clamp(nCount, 0, GetLength())); }

CString CString::Mid(int nFirst) const { return Mid(nFirst, INT_MAX); }

CString CString::Mid(int nFirst, int nCount) const {
  nFirst = Clamp(nFirst, 0, GetLength());
  nCount = Clamp(nCount, 0, GetLength() - nFirst);
  return CString(m_pchData + nFirst, nCount);
}

CString CString::Right(int nCount) const {
  nCount = Clamp(nCount, 0, GetLength());
  return CString(m_pchData + GetLength() - nCount, nCount);
}

CString CString::SpanIncluding(const char* pszCharSet) const {
  return Left(pszCharSet ? static_cast<int>(std::strspn(m_pchData, pszCharSet)) : 0);
}

CString CString::SpanExcluding(const char* pszCharSet) const {
  return Left(pszCharSet ? static_cast<int>(std::strcspn(m_pchData, pszCharSet)) : GetLength());
}

CString& CString::MakeUpper() {
  if (!IsEmpty()) _mbsupr(reinterpret_cast<unsigned char*>(m_pchData));
  return *this;
}

CString& CString::MakeLower() {
  if (!IsEmpty()) _mbslwr(reinterpret_cast<unsigned char*>(m_pchData));
  return *this;
}

CString& CString::MakeReverse() {
  std::reverse(m_pchData, m_pchData + GetLength());
  return *this;
}

void CString::TrimLeftIf(const char* pszTargets, bool whiteSpace) {
  if (whiteSpace) pszTargets = kWhiteSpace;
  if (pszTargets == nullptr || *pszTargets == '\0') return;
  int skip = static_cast<int>(std::strspn(m_pchData, pszTargets));
  if (skip == 0) return;
  int length = GetLength() - skip;
  std::memmove(m_pchData, m_pchData + skip, static_cast<std::size_t>(length));
  SetLength(length);
}

void CString::TrimRightIf(const char* pszTargets, bool whiteSpace) {
  if (whiteSpace) pszTargets = kWhiteSpace;
  if (pszTargets == nullptr || *pszTargets == '\0') return;
  int length = GetLength();
  while (length > 0 && std::strchr(pszTargets, m_pchData[length - 1]) != nullptr) --length;
  SetLength(length);
}

CString& CString::Trim() { return TrimRight().TrimLeft(); }
CString& CString::Trim(char chTarget) { return TrimRight(chTarget).TrimLeft(chTarget); }
CString& CString::Trim(const char* pszTargets) { return TrimRight(pszTargets).TrimLeft(pszTargets); }

CString& CString::TrimLeft() {
  TrimLeftIf(nullptr, true);
  return *this;
}

CString& CString::TrimLeft(char chTarget) {
  const char targets[2] = {chTarget, '\0'};
  TrimLeftIf(targets, false);
  return *this;
}

CString& CString::TrimLeft(const char* pszTargets) {
  TrimLeftIf(pszTargets, false);
  return *this;
}

CString& CString::TrimRight() {
  TrimRightIf(nullptr, true);
  return *this;
}

CString& CString::TrimRight(char chTarget) {
  const char targets[2] = {chTarget, '\0'};
  TrimRightIf(targets, false);
  return *this;
}

CString& CString::TrimRight(const char* pszTargets) {
  TrimRightIf(pszTargets, false);
  return *this;
}

int CString::Compare(const char* psz) const {
  return std::strcmp(m_pchData, psz ? psz : "");
}

int CString::CompareNoCase(const char* psz) const {
  return _mbsicmp(reinterpret_cast<const unsigned char*>(m_pchData),
                  reinterpret_cast<const unsigned char*>(psz ? psz : ""));
}

void CString::Format(const char* pszFormat, ...) {
  va_list args;
  va_start(args, pszFormat);
  FormatV(pszFormat, args);
  va_end(args);
}

void CString::FormatV(const char* pszFormat, va_list args) {
  CString result;
  std::swap(m_pchData, result.m_pchData);
  try {
    AppendFormatV(pszFormat, args);
  } catch (...) {
    std::swap(m_pchData, result.m_pchData);
    throw;
  }
}

void CString::AppendFormat(const char* pszFormat, ...) {
  va_list args;
  va_start(args, pszFormat);
  AppendFormatV(pszFormat, args);
  va_end(args);
}

void CString::AppendFormatV(const char* pszFormat, va_list args) {
  if (pszFormat == nullptr) throw CInvalidArgException();
  std::string text = tbx::detail::FormatPrintf(pszFormat, args);
  if (text.size() > static_cast<std::size_t>(INT_MAX - 64)) throw CMemoryException();
  Append(text.data(), static_cast<int>(text.size()));
}

int CString::Replace(char chOld, char chNew) {
  int count = 0;
  for (int i = 0; i < GetLength(); ++i) {
    if (m_pchData[i] == chOld) {
      m_pchData[i] = chNew;
      ++count;
    }
  }
  return count;
}

int CString::Replace(const char* pszOld, const char* pszNew) {
  int oldLength = LengthOf(pszOld);
  if (oldLength == 0) return 0;
  int newLength = LengthOf(pszNew);
  CString result;
  int count = 0;
  const char* rest = m_pchData;
  for (const char* hit; (hit = std::strstr(rest, pszOld)) != nullptr; rest = hit + oldLength) {
    result.Append(rest, static_cast<int>(hit - rest));
    result.Append(pszNew, newLength);
    ++count;
  }
  if (count == 0) return 0;
  result.Append(rest, static_cast<int>(m_pchData + GetLength() - rest));
  std::swap(m_pchData, result.m_pchData);
  return count;
}

int CString::Remove(char ch) {
  int kept = 0;
  for (int i = 0; i < GetLength(); ++i) {
    if (m_pchData[i] != ch) m_pchData[kept++] = m_pchData[i];
  }
  int removed = GetLength() - kept;
  SetLength(kept);
  return removed;
}

int CString::Insert(int nIndex, char ch) {
  const char text[2] = {ch, '\0'};
  return Insert(nIndex, text);
}

int CString::Insert(int nIndex, const char* psz) {
  int insertLength = LengthOf(psz);
  nIndex = Clamp(nIndex, 0, GetLength());
  if (insertLength > 0) {
    CString result(m_pchData, nIndex);
    result.Append(psz, insertLength);
    result.Append(m_pchData + nIndex, GetLength() - nIndex);
    std::swap(m_pchData, result.m_pchData);
  }
  return GetLength();
}

int CString::Delete(int nIndex, int nCount) {
  nIndex = std::max(nIndex, 0);
  if (nCount > 0 && nIndex < GetLength()) {
    nCount = std::min(nCount, GetLength() - nIndex);
    int tail = GetLength() - nIndex - nCount;
    std::memmove(m_pchData + nIndex, m_pchData + nIndex + nCount, static_cast<std::size_t>(tail));
    SetLength(GetLength() - nCount);
  }
  return GetLength();
}

char* CString::GetBuffer(int nMinBufLength) {
  if (nMinBufLength < 0) throw CInvalidArgException();
  Reserve(std::max(nMinBufLength, 1));
  return m_pchData;
}

char* CString::GetBuffer() { return GetBuffer(GetLength()); }

char* CString::GetBufferSetLength(int nNewLength) {
  char* buffer = GetBuffer(nNewLength);
  SetLength(nNewLength);
  return buffer;
}

void CString::ReleaseBuffer(int nNewLength) {
  int capacity = header()->capacity;
  if (nNewLength < 0) {
    // Never look past the buffer the caller was given.
    const void* zero = std::memchr(m_pchData, '\0', static_cast<std::size_t>(capacity));
    nNewLength = zero ? static_cast<int>(static_cast<const char*>(zero) - m_pchData) : capacity;
  }
  if (nNewLength > capacity) throw CInvalidArgException();
  SetLength(nNewLength);
}

void CString::FreeExtra() {
  if (GetLength() == 0) {
    Empty();
  } else if (GetLength() < header()->capacity) {
    CString copy(m_pchData, GetLength());
    std::swap(m_pchData, copy.m_pchData);
  }
}

void CString::Append(const char* pch, int nLength) {
  if (nLength <= 0) return;
  if (nLength > INT_MAX - 64 - GetLength()) throw CMemoryException();
  if (pch >= m_pchData && pch <= m_pchData + GetLength()) {
    CString copy(pch, nLength);  // the source is part of this string
    Append(copy.m_pchData, nLength);
    return;
  }
  int length = GetLength();
  Reserve(length + nLength);
  std::memcpy(m_pchData + length, pch, static_cast<std::size_t>(nLength));
  SetLength(length + nLength);
}

BOOL CString::LoadString(UINT nID) {
  Empty();
  HINSTANCE module = AfxFindResourceHandle(MAKEINTRESOURCEA((nID & 0xFFFF) / 16 + 1), RT_STRING);
  // A string resource holds at most 65,535 characters; grow until the
  // text fits with room to spare, since a full buffer may mean a cut.
  for (int size = 256;; size *= 4) {
    int n = ::LoadStringA(module, nID, GetBuffer(size), size + 1);
    ReleaseBuffer(n > 0 ? n : 0);
    if (n < size || size > 0xFFFF) return n > 0 ? TRUE : FALSE;
  }
}

CString& CString::operator+=(const CString& other) {
  Append(other.m_pchData, other.GetLength());
  return *this;
}

CString& CString::operator+=(const char* psz) {
  Append(psz, LengthOf(psz));
  return *this;
}

CString& CString::operator+=(char ch) {
  Append(&ch, 1);
  return *this;
}

CString operator+(const CString& a, const CString& b) {
  CString result(a);
  result += b;
  return result;
}

CString operator+(const CString& a, const char* b) {
  CString result(a);
  result += b;
  return result;
}

CString operator+(const char* a, const CString& b) {
  CString result(a);
  result += b;
  return result;
}

CString operator+(const CString& a, char b) {
  CString result(a);
  result += b;
  return result;
}

CString operator+(char a, const CString& b) {
  CString result(a);
  result += b;
  return result;
}
