#pragma once
// The tbxutl command-line tool: a table of subcommands and the dispatcher
// that reads the command line. Exit status: 0 success, 1 failure of the
// work itself, 2 bad usage (with one line on standard error).

#include <iosfwd>
#include <span>
#include <string>
#include <string_view>

namespace tbxcli {

inline constexpr int kExitOk = 0;
inline constexpr int kExitFailure = 1;
inline constexpr int kExitUsage = 2;

struct Streams {
  std::ostream& out;
  std::ostream& err;
};

using Args = std::span<const std::string>;

struct Command {
  std::string_view name;
  std::string_view summary;
  // Text after "Usage: tbxutl NAME", then a blank line and the details.
  std::string_view usage;
  std::string_view details;
  int (*run)(Args args, Streams io);
};

// Every subcommand, in the order that the help lists them.
std::span<const Command> Commands();
const Command* FindCommand(std::string_view name);

// Writes "tbxutl: MESSAGE (see 'tbxutl [COMMAND] --help')" to standard
// error and answers kExitUsage.
int UsageError(Streams io, std::string_view command, std::string_view message);

void PrintToolHelp(std::ostream& out);
void PrintCommandHelp(std::ostream& out, const Command& command);

// Runs the tool on the arguments after the program name.
int Run(Args args, Streams io);

}  // namespace tbxcli
