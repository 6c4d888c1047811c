#include "tbxutl/platform/afx/cfile.h"

#include <algorithm>

IMPLEMENT_DYNAMIC(CFile, CObject)

const HANDLE CFile::hFileNull = INVALID_HANDLE_VALUE;

namespace {

int LastSeparator(const CString& path) {
  int slash = path.ReverseFind('\\');
  int other = path.ReverseFind('/');
  int colon = path.ReverseFind(':');
  return std::max(slash, std::max(other, colon));
}

DWORD AccessFor(UINT flags) {
  switch (flags & 3) {
    case CFile::modeRead: return GENERIC_READ;
    case CFile::modeWrite: return GENERIC_WRITE;
    case CFile::modeReadWrite: return GENERIC_READ | GENERIC_WRITE;
    default: return 0;
  }
}

// Sharing bits 0x70; 0 (compatibility) is exclusive, as the platform treats it.
bool ShareFor(UINT flags, DWORD& share) {
  switch (flags & 0x70) {
    case CFile::shareCompat:
    case CFile::shareExclusive: share = 0; return true;
    case CFile::shareDenyWrite: share = FILE_SHARE_READ; return true;
    case CFile::shareDenyRead: share = FILE_SHARE_WRITE; return true;
    case CFile::shareDenyNone: share = FILE_SHARE_READ | FILE_SHARE_WRITE; return true;
    default: return false;
  }
}

}  // namespace

CFile::CFile() : m_hFile(hFileNull), m_bCloseOnDelete(FALSE), m_pTM(nullptr) {}

CFile::CFile(HANDLE hFile) : m_hFile(hFile), m_bCloseOnDelete(FALSE), m_pTM(nullptr) {}

CFile::CFile(const char* lpszFileName, UINT nOpenFlags) : CFile() {
  CFileException error;
  if (!Open(lpszFileName, nOpenFlags, &error)) throw error;
}

CFile::~CFile() {
  if (m_hFile != hFileNull && m_bCloseOnDelete) Abort();
}

void CFile::ThrowLastError() const {
  CFileException::ThrowOsError(static_cast<LONG>(GetLastError()), m_strFileName);
}

ULONGLONG CFile::GetPosition() const {
  LARGE_INTEGER zero{}, position{};
  if (!SetFilePointerEx(m_hFile, zero, &position, FILE_CURRENT)) ThrowLastError();
  return static_cast<ULONGLONG>(position.QuadPart);
}

CString CFile::GetFileName() const { return m_strFileName.Mid(LastSeparator(m_strFileName) + 1); }

CString CFile::GetFileTitle() const {
  CString name = GetFileName();
  int dot = name.ReverseFind('.');
  return dot > 0 ? name.Left(dot) : name;
}

CString CFile::GetFilePath() const { return m_strFileName; }

void CFile::SetFilePath(const char* lpszNewName) {
  if (lpszNewName == nullptr) AfxThrowInvalidArgException();
  m_strFileName = lpszNewName;
}

BOOL CFile::Open(const char* lpszFileName, UINT nOpenFlags, CAtlTransactionManager* pTM,
                 CFileException* pError) {
  if (pTM != nullptr) {
    if (pError) *pError = CFileException(CFileException::genericException, ERROR_NOT_SUPPORTED, lpszFileName);
    return FALSE;
  }
  return Open(lpszFileName, nOpenFlags, pError);
}

BOOL CFile::Open(const char* lpszFileName, UINT nOpenFlags, CFileException* pError) {
  if (pError) *pError = CFileException(CFileException::none, 0, lpszFileName);
  DWORD share = 0;
  if (lpszFileName == nullptr || (nOpenFlags & 3) == 3 || !ShareFor(nOpenFlags, share)) {
    if (pError) *pError = CFileException(CFileException::badPath, ERROR_INVALID_PARAMETER, lpszFileName);
    return FALSE;
  }
  m_hFile = hFileNull;
  m_bCloseOnDelete = FALSE;
  m_strFileName = lpszFileName;

  DWORD disposition = OPEN_EXISTING;
  if (nOpenFlags & modeCreate) disposition = (nOpenFlags & modeNoTruncate) ? OPEN_ALWAYS : CREATE_ALWAYS;
  DWORD flags = FILE_ATTRIBUTE_NORMAL;
  if (nOpenFlags & osWriteThrough) flags |= FILE_FLAG_WRITE_THROUGH;
  if (nOpenFlags & osRandomAccess) flags |= FILE_FLAG_RANDOM_ACCESS;
  if (nOpenFlags & osSequentialScan) flags |= FILE_FLAG_SEQUENTIAL_SCAN;

  HANDLE handle = CreateFileA(lpszFileName, AccessFor(nOpenFlags), share, nullptr, disposition, flags, nullptr);
  if (handle == INVALID_HANDLE_VALUE) {
    LONG error = static_cast<LONG>(GetLastError());
    if (pError) *pError = CFileException(CFileException::OsErrorToException(error), error, lpszFileName);
    m_strFileName.Empty();
    return FALSE;
  }
  m_hFile = handle;
  m_bCloseOnDelete = TRUE;
  return TRUE;
}

CFile* CFile::Duplicate() const { AfxThrowNotSupportedException(); }

ULONGLONG CFile::Seek(LONGLONG lOff, UINT nFrom) {
  if (nFrom > end) AfxThrowInvalidArgException();
  LARGE_INTEGER distance{}, position{};
  distance.QuadPart = lOff;
  if (!SetFilePointerEx(m_hFile, distance, &position, nFrom)) ThrowLastError();
  return static_cast<ULONGLONG>(position.QuadPart);
}

void CFile::SeekToBegin() { Seek(0, begin); }

ULONGLONG CFile::SeekToEnd() { return Seek(0, end); }

void CFile::SetLength(ULONGLONG dwNewLen) {
  Seek(static_cast<LONGLONG>(dwNewLen), begin);
  if (!SetEndOfFile(m_hFile)) ThrowLastError();
}

ULONGLONG CFile::GetLength() const {
  LARGE_INTEGER size{};
  if (!GetFileSizeEx(m_hFile, &size)) ThrowLastError();
  return static_cast<ULONGLONG>(size.QuadPart);
}

UINT CFile::Read(void* lpBuf, UINT nCount) {
  if (nCount == 0) return 0;
  if (lpBuf == nullptr) AfxThrowInvalidArgException();
  DWORD read = 0;
  if (!ReadFile(m_hFile, lpBuf, nCount, &read, nullptr)) ThrowLastError();
  return read;
}

void CFile::Write(const void* lpBuf, UINT nCount) {
  if (nCount == 0) return;
  if (lpBuf == nullptr) AfxThrowInvalidArgException();
  DWORD written = 0;
  if (!WriteFile(m_hFile, lpBuf, nCount, &written, nullptr)) ThrowLastError();
  if (written < nCount) AfxThrowFileException(CFileException::diskFull, ERROR_DISK_FULL, m_strFileName);
}

void CFile::LockRange(ULONGLONG dwPos, ULONGLONG dwCount) {
  if (!LockFile(m_hFile, static_cast<DWORD>(dwPos), static_cast<DWORD>(dwPos >> 32),
                static_cast<DWORD>(dwCount), static_cast<DWORD>(dwCount >> 32))) {
    ThrowLastError();
  }
}

void CFile::UnlockRange(ULONGLONG dwPos, ULONGLONG dwCount) {
  if (!UnlockFile(m_hFile, static_cast<DWORD>(dwPos), static_cast<DWORD>(dwPos >> 32),
                  static_cast<DWORD>(dwCount), static_cast<DWORD>(dwCount >> 32))) {
    ThrowLastError();
  }
}

void CFile::Abort() {
  if (m_hFile != hFileNull) CloseHandle(m_hFile);
  m_hFile = hFileNull;
  m_bCloseOnDelete = FALSE;
  m_strFileName.Empty();
}

void CFile::Flush() {
  if (m_hFile == hFileNull) return;
  if (!FlushFileBuffers(m_hFile)) ThrowLastError();
}

void CFile::Close() {
  BOOL closed = TRUE;
  DWORD error = 0;
  if (m_hFile != hFileNull) {
    closed = CloseHandle(m_hFile);
    error = GetLastError();
  }
  CString name = m_strFileName;
  m_hFile = hFileNull;
  m_bCloseOnDelete = FALSE;
  m_strFileName.Empty();
  if (!closed) CFileException::ThrowOsError(static_cast<LONG>(error), name);
}

UINT CFile::GetBufferPtr(UINT, UINT, void** ppBufStart, void** ppBufMax) {
  if (ppBufStart) *ppBufStart = nullptr;
  if (ppBufMax) *ppBufMax = nullptr;
  return 0;
}
