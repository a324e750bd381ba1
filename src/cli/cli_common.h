// What the commands of quernal-cli share: their arguments, loading and saving
// without asking anybody, and making a new calendar from the options.
#pragma once
#include <map>
#include <string>
#include <vector>

#include "calendar/calendar_model.h"

struct Arguments {
  std::vector<std::string> positional;
  std::map<std::string, std::string> options;  // flags map to ""
  bool Has(const std::string& option) const { return options.count(option) != 0; }
};

// Prints the problem and the usage on stderr; returns the exit code 2.
int Usage(const char* problem);
void PrintUsage(bool toStdout);
// Splits argv[2..] into positional arguments, the options `withValue` allows
// (each followed by a value) and the `flags`.
bool ParseArguments(int argc, char** argv, const std::vector<std::string>& withValue,
                    const std::vector<std::string>& flags, Arguments* out, std::string* problem);
bool ParseInt(const std::string& text, long low, long high, int* value);

// The program's folder, where events files are found: --app-dir or ".".
void SetApplicationPath(const Arguments& args);
// Loads a calendar, dropping damaged pictures with a line on stderr; 0 (and the
// program's message on stderr) when the file cannot be read.
CalendarDocument Load(const std::string& path);
// Saves; 1 (and the program's message on stderr) on failure, else 0.
int Save(const std::string& path, CalendarDocument document);
// A calendar from --year, --month and --config as `new` makes it; 0 with an
// exit code in *status when the options are wrong or memory runs out.
CalendarDocument NewCalendar(const Arguments& args, int* status);
