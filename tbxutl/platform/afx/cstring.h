#pragma once
// CString: the narrow string of the library's interface. Bytes in the ANSI
// code page, value semantics, zero-terminated storage, lengths as int.
// The object is one pointer wide, like the class-library string that
// applications embed in their records.

#include <cstdarg>

#include "tbxutl/export.h"
#include "tbxutl/platform/windows.h"

class TBXUTL_API CString {
 public:
  CString() noexcept;
  CString(const CString& other);
  CString(CString&& other) noexcept;
  CString(const char* psz);  // NOLINT: implicit, as callers expect
  CString(const char* pch, int nLength);
  CString(char ch, int nRepeat = 1);
  ~CString();

  CString& operator=(const CString& other);
  CString& operator=(CString&& other) noexcept;
  CString& operator=(const char* psz);
  CString& operator=(char ch);

  int GetLength() const noexcept;
  bool IsEmpty() const noexcept;
  void Empty();
  operator const char*() const noexcept { return m_pchData; }  // NOLINT
  const char* GetString() const noexcept { return m_pchData; }

  // Index checks: an index outside 0..length-1 raises CInvalidArgException.
  char GetAt(int nIndex) const;
  char operator[](int nIndex) const;
  void SetAt(int nIndex, char ch);

  // Searches answer the zero-based index or -1. A start beyond the end
  // finds nothing; a negative start counts as 0.
  int Find(char ch, int nStart = 0) const;
  int Find(const char* pszSub, int nStart = 0) const;
  int ReverseFind(char ch) const;
  int FindOneOf(const char* pszCharSet) const;

  // Counts are clamped to the string: Left(-1) is empty, Mid(99) is empty.
  CString Left(int nCount) const;
  CString Mid(int nFirst) const;
  CString Mid(int nFirst, int nCount) const;
  CString Right(int nCount) const;
  CString SpanIncluding(const char* pszCharSet) const;
  CString SpanExcluding(const char* pszCharSet) const;

  // Case mapping and case-blind comparison follow the ANSI code page.
  CString& MakeUpper();
  CString& MakeLower();
  CString& MakeReverse();

  // Without arguments the white space is trimmed (space, tab, CR, LF, VT, FF).
  CString& Trim();
  CString& Trim(char chTarget);
  CString& Trim(const char* pszTargets);
  CString& TrimLeft();
  CString& TrimLeft(char chTarget);
  CString& TrimLeft(const char* pszTargets);
  CString& TrimRight();
  CString& TrimRight(char chTarget);
  CString& TrimRight(const char* pszTargets);

  // <0, 0, >0 as strcmp; a null argument compares as the empty string.
  int Compare(const char* psz) const;
  int CompareNoCase(const char* psz) const;

  // printf rules of the platform's C library: flags, width, precision, "*",
  // the length modifiers h, l, ll, I64, I32 and I, and "%hs"/"%hc" for the
  // narrow string and character.
  void Format(const char* pszFormat, ...);
  void FormatV(const char* pszFormat, va_list args);
  void AppendFormat(const char* pszFormat, ...);
  void AppendFormatV(const char* pszFormat, va_list args);

  // Number of replacements. An empty or null old text replaces nothing.
  int Replace(char chOld, char chNew);
  int Replace(const char* pszOld, const char* pszNew);
  int Remove(char ch);
  // The new length. An index beyond the end appends.
  int Insert(int nIndex, char ch);
  int Insert(int nIndex, const char* psz);
  // The new length. Deletes at most up to the end of the string.
  int Delete(int nIndex, int nCount = 1);

  // A writable buffer of at least nMinBufLength characters plus the
  // terminator; ReleaseBuffer(-1) takes the length up to the first zero.
  char* GetBuffer(int nMinBufLength);
  char* GetBuffer();
  char* GetBufferSetLength(int nNewLength);
  void ReleaseBuffer(int nNewLength = -1);
  void FreeExtra();

  // Loads string resource nID from the module that the resource chain
  // finds for it; FALSE (and an empty string) when there is none.
  BOOL LoadString(UINT nID);

  CString& operator+=(const CString& other);
  CString& operator+=(const char* psz);
  CString& operator+=(char ch);

  void Append(const char* pch, int nLength);

  // The block before the characters (length and capacity).
  struct Header;

 private:
  Header* header() const noexcept;
  void Reserve(int nCapacity);  // keeps the contents
  void SetLength(int nLength);  // within the capacity
  void Assign(const char* pch, int nLength);
  void TrimLeftIf(const char* pszTargets, bool whiteSpace);
  void TrimRightIf(const char* pszTargets, bool whiteSpace);

  char* m_pchData;  // the characters; a header with length and capacity precedes them
};

TBXUTL_API CString operator+(const CString& a, const CString& b);
TBXUTL_API CString operator+(const CString& a, const char* b);
TBXUTL_API CString operator+(const char* a, const CString& b);
TBXUTL_API CString operator+(const CString& a, char b);
TBXUTL_API CString operator+(char a, const CString& b);

inline bool operator==(const CString& a, const CString& b) { return a.Compare(b) == 0; }
inline bool operator==(const CString& a, const char* b) { return a.Compare(b) == 0; }
inline bool operator==(const char* a, const CString& b) { return b.Compare(a) == 0; }
inline bool operator!=(const CString& a, const CString& b) { return a.Compare(b) != 0; }
inline bool operator!=(const CString& a, const char* b) { return a.Compare(b) != 0; }
inline bool operator!=(const char* a, const CString& b) { return b.Compare(a) != 0; }
inline bool operator<(const CString& a, const CString& b) { return a.Compare(b) < 0; }
inline bool operator<(const CString& a, const char* b) { return a.Compare(b) < 0; }
inline bool operator<(const char* a, const CString& b) { return b.Compare(a) > 0; }
inline bool operator>(const CString& a, const CString& b) { return a.Compare(b) > 0; }
inline bool operator>(const CString& a, const char* b) { return a.Compare(b) > 0; }
inline bool operator>(const char* a, const CString& b) { return b.Compare(a) < 0; }
inline bool operator<=(const CString& a, const CString& b) { return a.Compare(b) <= 0; }
inline bool operator<=(const CString& a, const char* b) { return a.Compare(b) <= 0; }
inline bool operator<=(const char* a, const CString& b) { return b.Compare(a) >= 0; }
inline bool operator>=(const CString& a, const CString& b) { return a.Compare(b) >= 0; }
inline bool operator>=(const CString& a, const char* b) { return a.Compare(b) >= 0; }
inline bool operator>=(const char* a, const CString& b) { return b.Compare(a) <= 0; }
