#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "cli/cli.h"
#include "tbxutl/version.h"

namespace {

struct Result {
  int status;
  std::string out;
  std::string err;
};

Result RunTool(std::vector<std::string> args) {
  std::ostringstream out, err;
  int status = tbxcli::Run(args, {out, err});
  return {status, out.str(), err.str()};
}

}  // namespace

TEST(Cli, ToolHelpListsEveryCommand) {
  for (auto args : {std::vector<std::string>{}, {"--help"}, {"-h"}, {"help"}}) {
    Result r = RunTool(args);
    EXPECT_EQ(r.status, tbxcli::kExitOk);
    EXPECT_TRUE(r.err.empty());
    EXPECT_TRUE(r.out.starts_with("Usage: tbxutl ")) << r.out;
    for (const tbxcli::Command& command : tbxcli::Commands()) {
      EXPECT_NE(r.out.find("  " + std::string(command.name) + " "), std::string::npos) << command.name;
    }
  }
}

TEST(Cli, VersionComesFromTheLibrary) {
  const std::string expected = std::string("tbxutl ") + TBXUTL_VERSION_STRING + "\n";
  EXPECT_EQ(RunTool({"--version"}).out, expected);
  EXPECT_EQ(RunTool({"version"}).out, expected);
}

TEST(Cli, CommandHelpShowsUsageWithoutRunningTheCommand) {
  for (const tbxcli::Command& command : tbxcli::Commands()) {
    const std::string name(command.name);
    for (auto args : {std::vector<std::string>{name, "--help"}, {"help", name}}) {
      Result r = RunTool(args);
      EXPECT_EQ(r.status, tbxcli::kExitOk) << name;
      EXPECT_TRUE(r.out.starts_with("Usage: tbxutl " + name)) << r.out;
    }
  }
  // After "--", "--help" is an ordinary argument again.
  EXPECT_EQ(RunTool({"version", "--", "--help"}).status, tbxcli::kExitUsage);
}

TEST(Cli, BadUsageIsOneLineOnStandardErrorAndStatusTwo) {
  const std::vector<std::vector<std::string>> cases = {
      {"frobnicate"}, {"--frobnicate"}, {"version", "extra"}, {"help", "frobnicate"}, {"help", "a", "b"}};
  for (const auto& args : cases) {
    Result r = RunTool(args);
    EXPECT_EQ(r.status, tbxcli::kExitUsage) << args[0];
    EXPECT_TRUE(r.out.empty()) << r.out;
    ASSERT_TRUE(r.err.starts_with("tbxutl: ")) << r.err;
    EXPECT_EQ(r.err.find('\n'), r.err.size() - 1) << r.err;
  }
  EXPECT_EQ(RunTool({"frobnicate"}).err, "tbxutl: unknown command 'frobnicate' (see 'tbxutl --help')\n");
  EXPECT_EQ(RunTool({"version", "x"}).err,
            "tbxutl: unexpected argument 'x' (see 'tbxutl version --help')\n");
}
