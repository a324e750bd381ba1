// The commands of quernal-cli, each described once: its synopsis, what it
// does and every option with its meaning. The same table parses arguments,
// prints `help COMMAND` and is the source of the manual page.
#pragma once
#include <cstdio>

#include "cli/cli_common.h"

struct CommandOption {
  const char* name;   // "--year"
  const char* value;  // "Y", "F..." for a list of values, or nullptr for a flag
  const char* help;
};

struct Command {
  const char* name;
  const char* synopsis;  // the arguments after the command's name
  const char* purpose;   // a paragraph for `help COMMAND`
  std::vector<CommandOption> options;
  int (*run)(const Arguments&);
};

const std::vector<Command>& Commands();
const Command* FindCommand(const std::string& name);
// "usage:" and one synopsis line per command.
void PrintUsage(std::FILE* out);
// The purpose, synopsis and options of one command.
void PrintCommandHelp(std::FILE* out, const Command& command);

// The manual page quernal-cli(1), made from the same table.
void PrintManPage(std::FILE* out);

// The commands, each in its own file.
int NewCommand(const Arguments& args);
int InfoCommand(const Arguments& args);
int SummaryCommand(const Arguments& args);
int ResaveCommand(const Arguments& args);
int SettingsCommand(const Arguments& args);
int RenderCommand(const Arguments& args);
int SetCommand(const Arguments& args);
int EventsCommand(const Arguments& args);
