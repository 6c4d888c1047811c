#include <gtest/gtest.h>

#include <string>

#include "tbxutl/platform/afx/cfile.h"
#include "tbxutl/testing/temp_folder_testing.h"

namespace {

void WriteFileWith(const std::string& path, const std::string& bytes) {
  CFile file(path.c_str(), CFile::modeCreate | CFile::modeWrite);
  file.Write(bytes.data(), static_cast<UINT>(bytes.size()));
  file.Close();
}

}  // namespace

TEST(CFile, WriteSeekReadRoundTrip) {
  tbx::testing::TempFolder folder;
  std::string path = folder.File("data.bin");
  WriteFileWith(path, "0123456789");

  CFile file;
  CFileException error;
  ASSERT_TRUE(file.Open(path.c_str(), CFile::modeReadWrite, &error));
  EXPECT_EQ(file.GetLength(), 10u);
  EXPECT_EQ(file.Seek(4, CFile::begin), 4u);
  char buffer[8] = {};
  EXPECT_EQ(file.Read(buffer, 3), 3u);
  EXPECT_EQ(std::string(buffer, 3), "456");
  EXPECT_EQ(file.GetPosition(), 7u);
  EXPECT_EQ(file.Seek(-2, CFile::end), 8u);
  EXPECT_EQ(file.Read(buffer, 8), 2u) << "a short read at the end is no error";
  EXPECT_EQ(file.Read(buffer, 8), 0u);
  EXPECT_EQ(file.Seek(20, CFile::begin), 20u) << "seeking past the end is allowed";
  file.SetLength(5);
  EXPECT_EQ(file.GetLength(), 5u);
  file.SeekToBegin();
  EXPECT_EQ(file.Read(buffer, 8), 5u);
  EXPECT_EQ(file.GetFileName(), CString("data.bin"));
  EXPECT_EQ(file.GetFileTitle(), CString("data"));
  EXPECT_EQ(file.GetFilePath(), CString(path.c_str()));
  file.Close();
  EXPECT_EQ(file.m_hFile, CFile::hFileNull);
}

TEST(CFile, FailuresRaiseFileExceptionsWithTheirCause) {
  tbx::testing::TempFolder folder;
  std::string missing = folder.File("missing.txt");

  try {
    CFile file(missing.c_str(), CFile::modeRead);
    FAIL() << "opening a missing file must throw";
  } catch (const CFileException& e) {
    EXPECT_EQ(e.m_cause, CFileException::fileNotFound);
    EXPECT_EQ(e.m_lOsError, ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(e.m_strFileName, CString(missing.c_str()));
  }

  CFile file;
  CFileException error;
  EXPECT_FALSE(file.Open(folder.File("no/such/folder/x.txt").c_str(), CFile::modeRead, &error));
  EXPECT_EQ(error.m_cause, CFileException::badPath);
  EXPECT_EQ(error.m_lOsError, ERROR_PATH_NOT_FOUND);

  std::string path = folder.File("data.bin");
  WriteFileWith(path, "abc");
  CFile reader(path.c_str(), CFile::modeRead);
  try {
    reader.Seek(-1, CFile::begin);
    FAIL() << "a seek before the start must throw";
  } catch (const CFileException& e) {
    EXPECT_EQ(e.m_cause, CFileException::badSeek);
    EXPECT_EQ(e.m_lOsError, ERROR_NEGATIVE_SEEK);
  }
  EXPECT_EQ(reader.GetPosition(), 0u) << "a failed seek leaves the position";
  try {
    reader.Write("x", 1);
    FAIL() << "writing a file opened for reading must throw";
  } catch (const CFileException& e) {
    EXPECT_EQ(e.m_cause, CFileException::accessDenied);
  }

  CFile closed;
  char byte;
  try {
    closed.Read(&byte, 1);
    FAIL() << "reading a closed file must throw";
  } catch (const CFileException& e) {
    EXPECT_EQ(e.m_cause, CFileException::invalidFile);
  }
  EXPECT_THROW(closed.SetFilePath(nullptr), CInvalidArgException);
}

TEST(CFile, SharingModesBetweenHandles) {
  tbx::testing::TempFolder folder;
  std::string path = folder.File("shared.txt");
  WriteFileWith(path, "shared");

  // Compatibility sharing is exclusive: a second open fails.
  CFile exclusive(path.c_str(), CFile::modeRead);
  CFile second;
  CFileException error;
  EXPECT_FALSE(second.Open(path.c_str(), CFile::modeRead | CFile::shareDenyNone, &error));
  EXPECT_EQ(error.m_cause, CFileException::sharingViolation);
  EXPECT_EQ(error.m_lOsError, ERROR_SHARING_VIOLATION);
  exclusive.Close();

  // Deny-write lets other readers in, but no writer, and no truncation.
  CFile reader(path.c_str(), CFile::modeRead | CFile::shareDenyWrite);
  CFile otherReader;
  EXPECT_TRUE(otherReader.Open(path.c_str(), CFile::modeRead | CFile::shareDenyNone, &error));
  CFile writer;
  EXPECT_FALSE(writer.Open(path.c_str(), CFile::modeCreate | CFile::modeWrite | CFile::shareDenyNone, &error));
  EXPECT_EQ(error.m_cause, CFileException::sharingViolation);
  EXPECT_EQ(reader.GetLength(), 6u) << "a refused create must not truncate";
}

TEST(CFileException, ErrorMessagesAndCauseMapping) {
  CFileException e(CFileException::diskFull, ERROR_DISK_FULL, "C:\\out.dat");
  char text[128];
  UINT help = 99;
  EXPECT_TRUE(e.GetErrorMessage(text, sizeof text, &help));
  EXPECT_EQ(help, 0u);
  EXPECT_NE(std::string(text).find("C:\\out.dat"), std::string::npos) << text;
  char tiny[4];
  EXPECT_TRUE(e.GetErrorMessage(tiny, sizeof tiny));
  EXPECT_EQ(std::string(tiny).size(), 3u) << "truncated and terminated";
  EXPECT_FALSE(CException().GetErrorMessage(text, sizeof text));
  EXPECT_STREQ(text, "");

  EXPECT_EQ(CFileException::OsErrorToException(ERROR_SHARING_VIOLATION), CFileException::sharingViolation);
  EXPECT_EQ(CFileException::OsErrorToException(ERROR_NEGATIVE_SEEK), CFileException::badSeek);
  EXPECT_EQ(CFileException::OsErrorToException(12345), CFileException::genericException);
  EXPECT_TRUE(e.IsKindOf(RUNTIME_CLASS(CException)));
  EXPECT_FALSE(e.IsKindOf(RUNTIME_CLASS(CArchiveException)));
}

TEST(CFile, ByteRangeLocks) {
  tbx::testing::TempFolder folder;
  std::string path = folder.File("locked.bin");
  WriteFileWith(path, "0123456789");
  CFile first(path.c_str(), CFile::modeReadWrite | CFile::shareDenyNone);
  CFile second(path.c_str(), CFile::modeReadWrite | CFile::shareDenyNone);

  first.LockRange(2, 4);
  auto causeOf = [](auto&& action) {
    try {
      action();
    } catch (const CFileException& e) {
      return e.m_cause;
    }
    return static_cast<int>(CFileException::none);
  };
  EXPECT_EQ(causeOf([&] { second.LockRange(5, 2); }), CFileException::lockViolation) << "overlap";
  EXPECT_EQ(causeOf([&] { first.LockRange(0, 3); }), CFileException::lockViolation) << "even by the owner";
  EXPECT_EQ(causeOf([&] { second.LockRange(6, 4); }), CFileException::none) << "adjacent ranges are free";
  EXPECT_NE(causeOf([&] { first.UnlockRange(2, 3); }), CFileException::none) << "only the exact range unlocks";
  EXPECT_EQ(causeOf([&] { first.UnlockRange(2, 4); }), CFileException::none);
  EXPECT_EQ(causeOf([&] { second.LockRange(0, 6); }), CFileException::none);
}
