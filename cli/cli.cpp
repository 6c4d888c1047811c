#include "cli/cli.h"

#include <algorithm>
#include <ostream>

namespace tbxcli {

int UsageError(Streams io, std::string_view command, std::string_view message) {
  io.err << "tbxutl: " << message << " (see 'tbxutl " << command << (command.empty() ? "" : " ")
         << "--help')\n";
  return kExitUsage;
}

void PrintToolHelp(std::ostream& out) {
  out << "Usage: tbxutl [--help] [--version] COMMAND [ARGS...]\n\n"
         "Command-line access to the tbxutl utilities library.\n\n"
         "Commands:\n";
  std::size_t width = 0;
  for (const Command& command : Commands()) width = std::max(width, command.name.size());
  for (const Command& command : Commands()) {
    out << "  " << command.name << std::string(width - command.name.size() + 3, ' ')
        << command.summary << "\n";
  }
  out << "\nRun 'tbxutl COMMAND --help' for the arguments of a command.\n";
}

void PrintCommandHelp(std::ostream& out, const Command& command) {
  out << "Usage: tbxutl " << command.name;
  if (!command.usage.empty()) out << " " << command.usage;
  out << "\n\n" << command.summary << ".\n";
  if (!command.details.empty()) out << command.details << "\n";
}

int Run(Args args, Streams io) {
  if (args.empty()) {
    PrintToolHelp(io.out);
    return kExitOk;
  }
  const std::string& first = args[0];
  if (first == "--help" || first == "-h") return FindCommand("help")->run(args.subspan(1), io);
  if (first == "--version") return FindCommand("version")->run(args.subspan(1), io);
  if (first.starts_with("-")) return UsageError(io, "", "unknown option '" + first + "'");

  const Command* command = FindCommand(first);
  if (command == nullptr) return UsageError(io, "", "unknown command '" + first + "'");
  Args rest = args.subspan(1);
  // "--help" anywhere before "--" asks for the command's help.
  auto end = std::find(rest.begin(), rest.end(), "--");
  if (std::find_if(rest.begin(), end, [](const std::string& a) { return a == "--help" || a == "-h"; }) != end) {
    PrintCommandHelp(io.out, *command);
    return kExitOk;
  }
  return command->run(rest, io);
}

}  // namespace tbxcli
