// quernal-cli: the calendar files and settings of Quernal from the command line.
// Each command is in a file of its own; this is what they share on the way
// in: the arguments, help, and the process's own limits.
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string>

#include <glib.h>

#include "calendar/calendar_file.h"
#include "cli/cli_common.h"
#include "cli/commands.h"

namespace {

// GLib (under Pango) ends the process when an allocation or a thread
// (whose stack is memory too) fails; the command ends with the program's
// own message instead.
GLogWriterOutput OnGLibMessage(GLogLevelFlags level, const GLogField* fields, gsize count, gpointer data) {
  for (gsize i = 0; i < count; ++i)
    if (std::strcmp(fields[i].key, "MESSAGE") == 0 && fields[i].length < 0 && (level & G_LOG_LEVEL_ERROR) &&
        (std::strstr(static_cast<const char*>(fields[i].value), "failed to allocate") ||
         std::strstr(static_cast<const char*>(fields[i].value), "Error creating thread"))) {
      std::fprintf(stderr, "quernal-cli: %s\n", kMemoryFailedMessage);
      std::_Exit(1);
    }
  return g_log_writer_default(level, fields, count, data);
}

int Run(const Command& command, const Arguments& args) {
  try {
    return command.run(args);
  } catch (const std::bad_alloc&) {
    std::fprintf(stderr, "quernal-cli: %s\n", kMemoryFailedMessage);
    return 1;
  }
}

}  // namespace

int main(int argc, char** argv) {
  // A file-size limit fails the write that passes it, which the writers
  // report and clean up after, instead of ending the process mid-file.
  std::signal(SIGXFSZ, SIG_IGN);
  g_log_set_writer_func(OnGLibMessage, nullptr, nullptr);
  if (argc < 2) return Usage(nullptr);
  const std::string name = argv[1];
  if (name == "--version") {
    std::printf("quernal-cli %s\n", QUERNAL_VERSION);
    return 0;
  }
  if (name == "help" || name == "--help" || name == "-h") {
    if (argc == 2) {
      PrintUsage(stdout);
      return 0;
    }
    if (argc == 3 && std::strcmp(argv[2], "--man") == 0) {
      PrintManPage(stdout);
      return 0;
    }
    const Command* command = FindCommand(argv[2]);
    if (!command || argc > 3) return Usage(("no help for " + std::string(argv[2])).c_str());
    PrintCommandHelp(stdout, *command);
    return 0;
  }
  const Command* command = FindCommand(name);
  if (!command) return Usage(("unknown command " + name).c_str());
  for (int i = 2; i < argc; ++i) {
    if (std::strcmp(argv[i], "--help") == 0) {
      PrintCommandHelp(stdout, *command);
      return 0;
    }
  }
  Arguments args;
  std::string problem;
  if (!ParseArguments(argc, argv, *command, &args, &problem)) return Usage(problem.c_str());
  return Run(*command, args);
}
