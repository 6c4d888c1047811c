#pragma once
// The class library's exceptions, thrown by value and caught by reference
// (catch (CFileException& e)). Every class is a CObject with a run-time
// class, so callers can test the kind of a caught CException.

#include "tbxutl/export.h"
#include "tbxutl/platform/afx/cobject.h"
#include "tbxutl/platform/afx/cstring.h"
#include "tbxutl/platform/windows.h"

class TBXUTL_API CException : public CObject {
  DECLARE_DYNAMIC(CException)
 public:
  CException() = default;
  CException(const CException&) : CObject() {}
  CException& operator=(const CException&) { return *this; }

  // Fills pszError (at most nMaxError bytes, always terminated) with a text
  // that describes the error; FALSE when the class has none.
  virtual BOOL GetErrorMessage(LPSTR pszError, UINT nMaxError, UINT* pnHelpContext = nullptr) const;
  // Kept for callers written for heap-allocated exceptions; does nothing.
  void Delete() {}
};

class TBXUTL_API CMemoryException : public CException {
  DECLARE_DYNAMIC(CMemoryException)
 public:
  BOOL GetErrorMessage(LPSTR pszError, UINT nMaxError, UINT* pnHelpContext = nullptr) const override;
};

class TBXUTL_API CInvalidArgException : public CException {
  DECLARE_DYNAMIC(CInvalidArgException)
 public:
  BOOL GetErrorMessage(LPSTR pszError, UINT nMaxError, UINT* pnHelpContext = nullptr) const override;
};

class TBXUTL_API CNotSupportedException : public CException {
  DECLARE_DYNAMIC(CNotSupportedException)
 public:
  BOOL GetErrorMessage(LPSTR pszError, UINT nMaxError, UINT* pnHelpContext = nullptr) const override;
};

class TBXUTL_API CFileException : public CException {
  DECLARE_DYNAMIC(CFileException)
 public:
  // The class library's cause numbers.
  enum {
    none = 0,
    genericException = 1,
    fileNotFound = 2,
    badPath = 3,
    tooManyOpenFiles = 4,
    accessDenied = 5,
    invalidFile = 6,
    removeCurrentDir = 7,
    directoryFull = 8,
    badSeek = 9,
    hardIO = 10,
    sharingViolation = 11,
    lockViolation = 12,
    diskFull = 13,
    endOfFile = 14,
  };

  explicit CFileException(int cause = none, LONG lOsError = -1, const char* pszFileName = nullptr);

  BOOL GetErrorMessage(LPSTR pszError, UINT nMaxError, UINT* pnHelpContext = nullptr) const override;

  // The cause for a Win32 error code or a C run-time errno value.
  static int OsErrorToException(LONG lOsError);
  static int ErrnoToException(int nErrno);
  [[noreturn]] static void ThrowOsError(LONG lOsError, const char* pszFileName = nullptr);
  [[noreturn]] static void ThrowErrno(int nErrno, const char* pszFileName = nullptr);

  int m_cause;
  LONG m_lOsError;
  CString m_strFileName;
};

class TBXUTL_API CArchiveException : public CException {
  DECLARE_DYNAMIC(CArchiveException)
 public:
  enum {
    none = 0,
    genericException = 1,
    readOnly = 2,
    endOfFile = 3,
    writeOnly = 4,
    badIndex = 5,
    badClass = 6,
    badSchema = 7,
    bufferFull = 8,
  };

  explicit CArchiveException(int cause = none, const char* pszArchiveName = nullptr);

  BOOL GetErrorMessage(LPSTR pszError, UINT nMaxError, UINT* pnHelpContext = nullptr) const override;

  int m_cause;
  CString m_strFileName;
};

[[noreturn]] TBXUTL_API void AfxThrowMemoryException();
[[noreturn]] TBXUTL_API void AfxThrowInvalidArgException();
[[noreturn]] TBXUTL_API void AfxThrowNotSupportedException();
[[noreturn]] TBXUTL_API void AfxThrowFileException(int cause, LONG lOsError = -1, const char* pszFileName = nullptr);
[[noreturn]] TBXUTL_API void AfxThrowArchiveException(int cause, const char* pszArchiveName = nullptr);
