#include <ostream>

#include "cli/cli.h"
#include "tbxutl/tbxutl.h"

namespace tbxcli {
namespace {

int RunVersion(Args args, Streams io) {
  if (!args.empty()) return UsageError(io, "version", "unexpected argument '" + args[0] + "'");
  io.out << "tbxutl " << tbx::LibraryVersion() << "\n";
  return kExitOk;
}

int RunHelp(Args args, Streams io) {
  if (args.empty()) {
    PrintToolHelp(io.out);
    return kExitOk;
  }
  if (args.size() > 1) return UsageError(io, "help", "too many arguments");
  const Command* command = FindCommand(args[0]);
  if (command == nullptr) return UsageError(io, "", "unknown command '" + args[0] + "'");
  PrintCommandHelp(io.out, *command);
  return kExitOk;
}

// The one table of subcommands; later subsystems add their rows here.
constexpr Command kCommands[] = {
    {"help", "Show the help of the tool or of one command", "[COMMAND]",
     "Without COMMAND, lists the commands.", RunHelp},
    {"version", "Print the version of the loaded library", "",
     "Prints \"tbxutl\" and the version of the tbxutl library in use.", RunVersion},
};

}  // namespace

std::span<const Command> Commands() { return kCommands; }

const Command* FindCommand(std::string_view name) {
  for (const Command& command : kCommands) {
    if (command.name == name) return &command;
  }
  return nullptr;
}

}  // namespace tbxcli
