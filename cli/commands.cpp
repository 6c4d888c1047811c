#include <ostream>

#include "cli/cli.h"
#include "cli/reg_command.h"
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
    {"reg", "Query and change the registry, export and import it as text",
     "query KEY [/v NAME | /ve] | add KEY [/v NAME | /ve] [/t TYPE] [/d DATA] [/f] |\n"
     "       delete KEY [/v NAME | /ve] [/f] | export KEY FILE | import FILE",
     "KEY begins with a root: HKEY_CURRENT_USER (HKCU), HKEY_LOCAL_MACHINE (HKLM),\n"
     "HKEY_CLASSES_ROOT (HKCR), HKEY_USERS (HKU) or HKEY_CURRENT_CONFIG (HKCC).\n"
     "TYPE is REG_SZ (the default), REG_EXPAND_SZ, REG_MULTI_SZ (parts separated by \\0),\n"
     "REG_DWORD, REG_QWORD (decimal or 0x hexadecimal), REG_BINARY or REG_NONE (hex digits).\n"
     "delete without /v removes the key with everything below it. Files are in the\n"
     "registry editor's REGEDIT4 text format. Bad input changes nothing and exits with 1.",
     RunReg},
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
