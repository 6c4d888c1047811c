#pragma once
// CArchive: a buffered stream of little-endian values and strings over a
// CFile, in load or store mode. Strings use the class library's form: a
// one-byte length below 255, else 0xFF and a 16-bit length below 0xFFFE,
// else 0xFF 0xFFFF and a 32-bit length; then the 8-bit characters.
// Reading past the end raises CArchiveException(endOfFile); storing in a
// load archive raises readOnly, loading from a store archive writeOnly.

#include <type_traits>
#include <vector>

#include "tbxutl/export.h"
#include "tbxutl/platform/afx/cfile.h"
#include "tbxutl/platform/afx/cstring.h"

template <typename T>
inline constexpr bool kDistinctFromLong =
    (std::is_same_v<T, int> && !std::is_same_v<int, LONG>) ||
    (std::is_same_v<T, unsigned int> && !std::is_same_v<unsigned int, DWORD>);

class TBXUTL_API CArchive {
 public:
  enum Mode : UINT { store = 0, load = 1, bNoFlushOnDelete = 2, bNoByteSwap = 4 };

  CArchive(CFile* pFile, UINT nMode, int nBufSize = 4096, void* lpBuf = nullptr);
  // Flushes a store archive unless bNoFlushOnDelete was given; errors are
  // swallowed here: call Close to see them.
  ~CArchive();
  CArchive(const CArchive&) = delete;
  CArchive& operator=(const CArchive&) = delete;

  bool IsLoading() const { return (m_nMode & load) != 0; }
  bool IsStoring() const { return (m_nMode & load) == 0; }
  CFile* GetFile() const { return m_pFile; }

  // Bytes actually read; fewer than asked only at the end of the file.
  UINT Read(void* lpBuf, UINT nMax);
  void Write(const void* lpBuf, UINT nMax);
  void Flush();
  void Close();  // flushes and detaches from the file
  void Abort();  // detaches without flushing

  CArchive& operator<<(BYTE by);
  CArchive& operator<<(WORD w);
  CArchive& operator<<(short n);
  CArchive& operator<<(char ch);
  CArchive& operator<<(bool b);
  CArchive& operator<<(LONG l);
  CArchive& operator<<(DWORD dw);
  CArchive& operator<<(LONGLONG n);
  CArchive& operator<<(ULONGLONG n);
  CArchive& operator<<(float f);
  CArchive& operator<<(double d);
  CArchive& operator<<(const CString& s);

  CArchive& operator>>(BYTE& by);
  CArchive& operator>>(WORD& w);
  CArchive& operator>>(short& n);
  CArchive& operator>>(char& ch);
  CArchive& operator>>(bool& b);
  CArchive& operator>>(LONG& l);
  CArchive& operator>>(DWORD& dw);
  CArchive& operator>>(LONGLONG& n);
  CArchive& operator>>(ULONGLONG& n);
  CArchive& operator>>(float& f);
  CArchive& operator>>(double& d);
  CArchive& operator>>(CString& s);

  // int and unsigned int travel as LONG and DWORD; where those are the same
  // types (Linux) the overloads above already take them.
  template <typename T, std::enable_if_t<kDistinctFromLong<T>, int> = 0>
  CArchive& operator<<(T value) {
    if constexpr (std::is_signed_v<T>) return *this << static_cast<LONG>(value);
    else return *this << static_cast<DWORD>(value);
  }
  template <typename T, std::enable_if_t<kDistinctFromLong<T>, int> = 0>
  CArchive& operator>>(T& value) {
    if constexpr (std::is_signed_v<T>) {
      LONG l;
      *this >> l;
      value = l;
    } else {
      DWORD dw;
      *this >> dw;
      value = dw;
    }
    return *this;
  }

  void WriteCount(DWORD_PTR dwCount);
  DWORD_PTR ReadCount();

  CFile* m_pFile;
  CString m_strFileName;

 private:
  void RequireLoading() const;
  void RequireStoring() const;
  void FillBuffer();
  void ReadExactly(void* lpBuf, UINT n);
  template <typename T> void StoreLittleEndian(T value);
  template <typename T> T LoadLittleEndian();

  UINT m_nMode;
  std::vector<BYTE> m_buffer;
  std::size_t m_nPos = 0;   // next byte to read or write
  std::size_t m_nFill = 0;  // load: bytes in the buffer
};
