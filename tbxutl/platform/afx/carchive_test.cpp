#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tbxutl/platform/afx/carchive.h"
#include "tbxutl/testing/temp_folder_testing.h"

namespace {

std::vector<BYTE> ReadAll(const std::string& path) {
  CFile file(path.c_str(), CFile::modeRead);
  std::vector<BYTE> bytes(static_cast<std::size_t>(file.GetLength()));
  file.Read(bytes.data(), static_cast<UINT>(bytes.size()));
  return bytes;
}

}  // namespace

TEST(CArchive, StringLengthFormsRoundTripByteExactly) {
  struct Case {
    int length;
    std::vector<BYTE> prefix;
  };
  const Case cases[] = {
      {0, {0x00}},
      {254, {0xFE}},
      {255, {0xFF, 0xFF, 0x00}},
      {65534, {0xFF, 0xFF, 0xFF, 0xFE, 0xFF, 0x00, 0x00}},  // 0xFFFE is reserved: 32-bit form
      {65535, {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x00, 0x00}},
      {0xFFFD, {0xFF, 0xFD, 0xFF}},
  };
  tbx::testing::TempFolder folder;
  for (const Case& c : cases) {
    std::string path = folder.File("s" + std::to_string(c.length));
    CString text;
    for (int i = 0; i < c.length; ++i) text += static_cast<char>('a' + i % 26);
    {
      CFile file(path.c_str(), CFile::modeCreate | CFile::modeWrite);
      CArchive ar(&file, CArchive::store, 512);
      ar << text;
      ar.Close();
    }
    std::vector<BYTE> bytes = ReadAll(path);
    ASSERT_EQ(bytes.size(), c.prefix.size() + static_cast<std::size_t>(c.length)) << c.length;
    EXPECT_EQ(std::vector<BYTE>(bytes.begin(), bytes.begin() + static_cast<long>(c.prefix.size())), c.prefix)
        << c.length;

    CFile file(path.c_str(), CFile::modeRead);
    CArchive ar(&file, CArchive::load, 512);
    CString loaded("stale");
    ar >> loaded;
    EXPECT_EQ(loaded.GetLength(), c.length);
    EXPECT_TRUE(loaded == text) << c.length;
  }
}

TEST(CArchive, NumbersAreLittleEndian) {
  tbx::testing::TempFolder folder;
  std::string path = folder.File("numbers");
  {
    CFile file(path.c_str(), CFile::modeCreate | CFile::modeWrite);
    CArchive ar(&file, CArchive::store);
    ar << static_cast<BYTE>(0x12) << static_cast<WORD>(0x3456) << static_cast<DWORD>(0x789ABCDE)
       << static_cast<LONG>(-2) << 1.5 << static_cast<LONGLONG>(-3);
  }  // the destructor flushes
  std::vector<BYTE> expected = {0x12, 0x56, 0x34, 0xDE, 0xBC, 0x9A, 0x78, 0xFE, 0xFF, 0xFF, 0xFF,
                                0, 0, 0, 0, 0, 0, 0xF8, 0x3F, 0xFD, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF};
  EXPECT_EQ(ReadAll(path), expected);

  CFile file(path.c_str(), CFile::modeRead);
  CArchive ar(&file, CArchive::load);
  BYTE b; WORD w; DWORD d; LONG l; double x; LONGLONG q;
  ar >> b >> w >> d >> l >> x >> q;
  EXPECT_EQ(b, 0x12); EXPECT_EQ(w, 0x3456); EXPECT_EQ(d, 0x789ABCDEu);
  EXPECT_EQ(l, -2); EXPECT_EQ(x, 1.5); EXPECT_EQ(q, -3);
}

TEST(CArchive, ReportsTruncationAndWrongDirection) {
  tbx::testing::TempFolder folder;
  std::string path = folder.File("short");
  {
    CFile file(path.c_str(), CFile::modeCreate | CFile::modeWrite);
    const BYTE bytes[] = {0xFF, 0x00, 0x01, 'a', 'b'};  // claims 256 characters, holds 2
    file.Write(bytes, sizeof bytes);
  }
  CFile file(path.c_str(), CFile::modeRead);
  CArchive ar(&file, CArchive::load);
  CString s("kept");
  try {
    ar >> s;
    FAIL() << "a string cut short must throw";
  } catch (const CArchiveException& e) {
    EXPECT_EQ(e.m_cause, CArchiveException::endOfFile);
  }
  EXPECT_STREQ(s, "kept") << "a failed load leaves the target as it was";
  try {
    ar << 1;
    FAIL() << "storing into a load archive must throw";
  } catch (const CArchiveException& e) {
    EXPECT_EQ(e.m_cause, CArchiveException::readOnly);
  }
}
