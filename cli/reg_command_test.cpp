#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "cli/cli.h"
#include "tbxutl/platform/scoped_env_testing.h"
#include "tbxutl/testing/temp_folder_testing.h"

namespace {

struct Result {
  int status;
  std::string out;
  std::string err;
};

// Every test works below its own key of the user's registry; on Linux the
// registry of this program lives in a temporary folder.
class RegCommand : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    folder_ = new tbx::testing::TempFolder;
    env_ = new tbx::testing::ScopedEnv("TBXUTL_REGISTRY_DIR", folder_->path().c_str());
  }
  static void TearDownTestSuite() {
    delete env_;
    delete folder_;
  }
  void SetUp() override {
    key_ = "HKCU\\Software\\TbxutlTest\\cli-" +
           std::string(::testing::UnitTest::GetInstance()->current_test_info()->name());
    Run({"reg", "delete", key_, "/f"});
  }
  void TearDown() override { Run({"reg", "delete", key_, "/f"}); }

  Result Run(std::vector<std::string> args) {
    std::ostringstream out, err;
    int status = tbxcli::Run(args, {out, err});
    return {status, out.str(), err.str()};
  }

  std::string key_;
  static tbx::testing::TempFolder* folder_;
  static tbx::testing::ScopedEnv* env_;
};

tbx::testing::TempFolder* RegCommand::folder_ = nullptr;
tbx::testing::ScopedEnv* RegCommand::env_ = nullptr;

}  // namespace

TEST_F(RegCommand, AddQueryAndDelete) {
  EXPECT_EQ(Run({"reg", "add", key_, "/v", "Name", "/d", "Sketch"}).status, 0);
  EXPECT_EQ(Run({"reg", "add", key_, "/v", "Count", "/t", "REG_DWORD", "/d", "0x2a"}).status, 0);
  EXPECT_EQ(Run({"reg", "add", key_, "/ve", "/d", "default"}).status, 0);
  EXPECT_EQ(Run({"reg", "add", key_ + "\\Sub"}).status, 0);

  Result all = Run({"reg", "query", key_});
  EXPECT_EQ(all.status, 0) << all.err;
  EXPECT_NE(all.out.find("    Name    REG_SZ    Sketch\n"), std::string::npos) << all.out;
  EXPECT_NE(all.out.find("    Count    REG_DWORD    0x2a\n"), std::string::npos) << all.out;
  EXPECT_NE(all.out.find("    (Default)    REG_SZ    default\n"), std::string::npos) << all.out;
  EXPECT_NE(all.out.find("\\Sub\n"), std::string::npos) << all.out;

  Result one = Run({"reg", "query", key_, "/v", "count"});
  EXPECT_EQ(one.status, 0);
  EXPECT_EQ(one.out.find("Name"), std::string::npos) << "only the value asked for";

  EXPECT_EQ(Run({"reg", "delete", key_, "/v", "Name"}).status, 0);
  EXPECT_EQ(Run({"reg", "query", key_, "/v", "Name"}).status, tbxcli::kExitFailure);
  EXPECT_EQ(Run({"reg", "delete", key_}).status, 0) << "a key goes with its subkeys";
  EXPECT_EQ(Run({"reg", "query", key_}).status, tbxcli::kExitFailure);
}

TEST_F(RegCommand, ExportThenImportRestoresTheTree) {
  Run({"reg", "add", key_, "/v", "Text", "/d", "quote \" and \\ backslash"});
  Run({"reg", "add", key_ + "\\Child", "/v", "Bytes", "/t", "REG_BINARY", "/d", "00ff10"});
  Run({"reg", "add", key_ + "\\Child", "/v", "List", "/t", "REG_MULTI_SZ", "/d", "a\\0b"});
  tbx::testing::TempFolder files;
  std::string file = files.File("saved.reg");
  ASSERT_EQ(Run({"reg", "export", key_, file}).status, 0);
  std::string before = Run({"reg", "query", key_ + "\\Child"}).out;

  ASSERT_EQ(Run({"reg", "delete", key_}).status, 0);
  Result imported = Run({"reg", "import", file});
  ASSERT_EQ(imported.status, 0) << imported.err;
  EXPECT_EQ(Run({"reg", "query", key_ + "\\Child"}).out, before);
  EXPECT_NE(Run({"reg", "query", key_, "/v", "Text"}).out.find("quote \" and \\ backslash"), std::string::npos);
}

TEST_F(RegCommand, BadInputChangesNothing) {
  Run({"reg", "add", key_, "/v", "Keep", "/d", "1"});
  tbx::testing::TempFolder files;
  std::string file = files.File("bad.reg");
  {
    std::ofstream out(file);
    out << "REGEDIT4\n[HKEY_CURRENT_USER\\Software\\TbxutlTest]\n\"Keep\"=-\n[HKEY_NOWHERE\\x]\n";
  }
  Result unknownRoot = Run({"reg", "import", file});
  EXPECT_EQ(unknownRoot.status, tbxcli::kExitFailure);
  EXPECT_EQ(unknownRoot.err.find('\n'), unknownRoot.err.size() - 1) << "one line";
  {
    std::ofstream out(file);
    out << "REGEDIT4\n[" << "HKEY_CURRENT_USER" << key_.substr(4) << "]\n\"Keep\"=-\n\"Bad\"=dword:xyz\n";
  }
  EXPECT_EQ(Run({"reg", "import", file}).status, tbxcli::kExitFailure);
  EXPECT_EQ(Run({"reg", "query", key_, "/v", "Keep"}).status, 0) << "the value survives both files";

  EXPECT_EQ(Run({"reg", "add", key_, "/v", "N", "/t", "REG_DWORD", "/d", "4294967296"}).status, tbxcli::kExitFailure);
  EXPECT_EQ(Run({"reg", "add", key_, "/v", "N", "/t", "REG_WORD", "/d", "1"}).status, tbxcli::kExitFailure);
  EXPECT_EQ(Run({"reg", "query", "HKEY_NOWHERE\\x"}).status, tbxcli::kExitFailure);
  EXPECT_EQ(Run({"reg", "query", key_, "/v", "N"}).status, tbxcli::kExitFailure) << "nothing was added";
  EXPECT_EQ(Run({"reg", "query"}).status, tbxcli::kExitUsage);
  EXPECT_EQ(Run({"reg", "frob", key_}).status, tbxcli::kExitUsage);
}
