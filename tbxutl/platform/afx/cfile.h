#pragma once
// CFile: an unbuffered file on the platform's file handles. Failures raise
// CFileException with the cause, the platform's error code and the file
// name; Open answers FALSE and fills an optional error record instead.

#include "tbxutl/export.h"
#include "tbxutl/platform/afx/cobject.h"
#include "tbxutl/platform/afx/cstring.h"
#include "tbxutl/platform/afx/exceptions.h"
#include "tbxutl/platform/windows.h"

class CAtlTransactionManager;  // transacted files are not supported

class TBXUTL_API CFile : public CObject {
  DECLARE_DYNAMIC(CFile)
 public:
  enum OpenFlags : UINT {
    modeRead = 0x0000,
    modeWrite = 0x0001,
    modeReadWrite = 0x0002,
    shareCompat = 0x0000,  // the platform treats it as exclusive
    shareExclusive = 0x0010,
    shareDenyWrite = 0x0020,
    shareDenyRead = 0x0030,
    shareDenyNone = 0x0040,
    modeNoInherit = 0x0080,
    modeCreate = 0x1000,
    modeNoTruncate = 0x2000,
    typeText = 0x4000,
    typeBinary = 0x8000,
    osNoBuffer = 0x10000,
    osWriteThrough = 0x20000,
    osRandomAccess = 0x40000,
    osSequentialScan = 0x80000,
  };
  enum SeekPosition : UINT { begin = 0x0, current = 0x1, end = 0x2 };

  static const HANDLE hFileNull;

  CFile();
  explicit CFile(HANDLE hFile);
  // Opens the file or raises CFileException.
  CFile(const char* lpszFileName, UINT nOpenFlags);
  ~CFile() override;

  CFile(const CFile&) = delete;
  CFile& operator=(const CFile&) = delete;

  // Virtual members in this order after CObject's.
  virtual ULONGLONG GetPosition() const;
  virtual CString GetFileName() const;   // the last component of the path
  virtual CString GetFileTitle() const;  // the file name without its extension
  virtual CString GetFilePath() const;
  virtual void SetFilePath(const char* lpszNewName);  // null raises CInvalidArgException
  virtual BOOL Open(const char* lpszFileName, UINT nOpenFlags, CAtlTransactionManager* pTM,
                    CFileException* pError);
  virtual BOOL Open(const char* lpszFileName, UINT nOpenFlags, CFileException* pError = nullptr);
  virtual CFile* Duplicate() const;
  virtual ULONGLONG Seek(LONGLONG lOff, UINT nFrom);
  virtual void SetLength(ULONGLONG dwNewLen);
  virtual ULONGLONG GetLength() const;
  virtual UINT Read(void* lpBuf, UINT nCount);
  virtual void Write(const void* lpBuf, UINT nCount);
  virtual void LockRange(ULONGLONG dwPos, ULONGLONG dwCount);
  virtual void UnlockRange(ULONGLONG dwPos, ULONGLONG dwCount);
  virtual void Abort();
  virtual void Flush();
  virtual void Close();
  // Buffered files only; a CFile has no buffer and answers 0.
  virtual UINT GetBufferPtr(UINT nCommand, UINT nCount = 0, void** ppBufStart = nullptr,
                            void** ppBufMax = nullptr);

  void SeekToBegin();
  ULONGLONG SeekToEnd();
  operator HANDLE() const { return m_hFile; }  // NOLINT

  HANDLE m_hFile;
  BOOL m_bCloseOnDelete;
  CString m_strFileName;
  CAtlTransactionManager* m_pTM;

 protected:
  [[noreturn]] void ThrowLastError() const;
};
