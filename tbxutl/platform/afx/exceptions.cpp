#include "tbxutl/platform/afx/exceptions.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

IMPLEMENT_DYNAMIC(CException, CObject)
IMPLEMENT_DYNAMIC(CMemoryException, CException)
IMPLEMENT_DYNAMIC(CInvalidArgException, CException)
IMPLEMENT_DYNAMIC(CNotSupportedException, CException)
IMPLEMENT_DYNAMIC(CFileException, CException)
IMPLEMENT_DYNAMIC(CArchiveException, CException)

namespace {

BOOL CopyMessage(LPSTR pszError, UINT nMaxError, UINT* pnHelpContext, const char* text) {
  if (pnHelpContext != nullptr) *pnHelpContext = 0;
  if (pszError == nullptr || nMaxError == 0) return FALSE;
  std::size_t n = std::min<std::size_t>(std::strlen(text), nMaxError - 1);
  std::memcpy(pszError, text, n);
  pszError[n] = '\0';
  return TRUE;
}

BOOL CopyMessageWithName(LPSTR pszError, UINT nMaxError, UINT* pnHelpContext, const char* text,
                         const CString& name) {
  CString message(text);
  if (!name.IsEmpty()) message += CString(" (") + name + ")";
  message += ".";
  return CopyMessage(pszError, nMaxError, pnHelpContext, message);
}

const char* FileCauseText(int cause) {
  switch (cause) {
    case CFileException::none: return "No error occurred";
    case CFileException::fileNotFound: return "The file was not found";
    case CFileException::badPath: return "All or part of the path is invalid";
    case CFileException::tooManyOpenFiles: return "Too many files are open";
    case CFileException::accessDenied: return "Access to the file was denied";
    case CFileException::invalidFile: return "The file handle is invalid";
    case CFileException::removeCurrentDir: return "The current directory cannot be removed";
    case CFileException::directoryFull: return "The directory is full";
    case CFileException::badSeek: return "The file position could not be set";
    case CFileException::hardIO: return "A hardware error occurred while accessing the file";
    case CFileException::sharingViolation: return "The file is in use by another program";
    case CFileException::lockViolation: return "A locked region of the file was accessed";
    case CFileException::diskFull: return "The disk is full";
    case CFileException::endOfFile: return "The end of the file was reached";
    default: return "An unexpected error occurred while accessing the file";
  }
}

const char* ArchiveCauseText(int cause) {
  switch (cause) {
    case CArchiveException::none: return "No error occurred";
    case CArchiveException::readOnly: return "The archive was opened for loading and cannot store";
    case CArchiveException::endOfFile: return "The end of the archive was reached unexpectedly";
    case CArchiveException::writeOnly: return "The archive was opened for storing and cannot load";
    case CArchiveException::badIndex: return "The archive holds an invalid object reference";
    case CArchiveException::badClass: return "The archive holds an object of an unexpected class";
    case CArchiveException::badSchema: return "The archive holds an object of an unsupported version";
    case CArchiveException::bufferFull: return "The archive buffer is full";
    default: return "An unexpected error occurred in the archive";
  }
}

}  // namespace

BOOL CException::GetErrorMessage(LPSTR pszError, UINT nMaxError, UINT* pnHelpContext) const {
  if (pnHelpContext != nullptr) *pnHelpContext = 0;
  if (pszError != nullptr && nMaxError > 0) *pszError = '\0';
  return FALSE;
}

BOOL CMemoryException::GetErrorMessage(LPSTR pszError, UINT nMaxError, UINT* pnHelpContext) const {
  return CopyMessage(pszError, nMaxError, pnHelpContext, "Out of memory.");
}

BOOL CInvalidArgException::GetErrorMessage(LPSTR pszError, UINT nMaxError, UINT* pnHelpContext) const {
  return CopyMessage(pszError, nMaxError, pnHelpContext, "An invalid argument was encountered.");
}

BOOL CNotSupportedException::GetErrorMessage(LPSTR pszError, UINT nMaxError, UINT* pnHelpContext) const {
  return CopyMessage(pszError, nMaxError, pnHelpContext, "The operation is not supported.");
}

CFileException::CFileException(int cause, LONG lOsError, const char* pszFileName)
    : m_cause(cause), m_lOsError(lOsError), m_strFileName(pszFileName) {}

BOOL CFileException::GetErrorMessage(LPSTR pszError, UINT nMaxError, UINT* pnHelpContext) const {
  return CopyMessageWithName(pszError, nMaxError, pnHelpContext, FileCauseText(m_cause), m_strFileName);
}

int CFileException::OsErrorToException(LONG lOsError) {
  switch (lOsError) {
    case ERROR_SUCCESS: return none;
    case ERROR_FILE_NOT_FOUND: return fileNotFound;
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_DRIVE:
    case ERROR_BAD_NETPATH:
    case ERROR_INVALID_NAME:
    case ERROR_BAD_PATHNAME:
    case ERROR_FILENAME_EXCED_RANGE: return badPath;
    case ERROR_TOO_MANY_OPEN_FILES: return tooManyOpenFiles;
    case ERROR_ACCESS_DENIED:
    case ERROR_WRITE_PROTECT:
    case ERROR_NOACCESS: return accessDenied;
    case ERROR_INVALID_HANDLE: return invalidFile;
    case ERROR_CURRENT_DIRECTORY: return removeCurrentDir;
    case ERROR_SEEK:
    case ERROR_NEGATIVE_SEEK: return badSeek;
    case ERROR_NOT_READY:
    case ERROR_READ_FAULT:
    case ERROR_WRITE_FAULT:
    case ERROR_GEN_FAILURE: return hardIO;
    case ERROR_SHARING_VIOLATION: return sharingViolation;
    case ERROR_LOCK_VIOLATION: return lockViolation;
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL: return diskFull;
    case ERROR_HANDLE_EOF: return endOfFile;
    default: return genericException;
  }
}

int CFileException::ErrnoToException(int nErrno) {
  switch (nErrno) {
    case 0: return none;
    case ENOENT: return fileNotFound;
    case ENOTDIR:
    case ENAMETOOLONG:
    case EXDEV: return badPath;
    case EMFILE:
    case ENFILE: return tooManyOpenFiles;
    case EACCES:
    case EPERM:
    case EROFS:
    case EEXIST: return accessDenied;
    case EBADF: return invalidFile;
    case EINVAL:
    case ESPIPE: return badSeek;
    case EIO: return hardIO;
    case EBUSY: return sharingViolation;
    case EDEADLK: return lockViolation;
    case ENOSPC: return diskFull;
    default: return genericException;
  }
}

void CFileException::ThrowOsError(LONG lOsError, const char* pszFileName) {
  if (lOsError != 0) throw CFileException(OsErrorToException(lOsError), lOsError, pszFileName);
  throw CFileException(genericException, lOsError, pszFileName);
}

void CFileException::ThrowErrno(int nErrno, const char* pszFileName) {
  throw CFileException(ErrnoToException(nErrno), nErrno, pszFileName);
}

CArchiveException::CArchiveException(int cause, const char* pszArchiveName)
    : m_cause(cause), m_strFileName(pszArchiveName) {}

BOOL CArchiveException::GetErrorMessage(LPSTR pszError, UINT nMaxError, UINT* pnHelpContext) const {
  return CopyMessageWithName(pszError, nMaxError, pnHelpContext, ArchiveCauseText(m_cause), m_strFileName);
}

void AfxThrowMemoryException() { throw CMemoryException(); }
void AfxThrowInvalidArgException() { throw CInvalidArgException(); }
void AfxThrowNotSupportedException() { throw CNotSupportedException(); }
void AfxThrowFileException(int cause, LONG lOsError, const char* pszFileName) {
  throw CFileException(cause, lOsError, pszFileName);
}
void AfxThrowArchiveException(int cause, const char* pszArchiveName) {
  throw CArchiveException(cause, pszArchiveName);
}
