// quernal-cli settings: the settings file the program would write.
#include "cli/commands.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <string>

#include "base/regular_file.h"
#include "cli/cli_common.h"
#include "cli/locale_names.h"
#include "config/settings_file.h"

int SettingsCommand(const Arguments& args) {
  if (!args.positional.empty()) return Usage("settings takes no file but --ini FILE");
  if (args.Has("--ini")) {
    const std::string& path = args.options.at("--ini");
    errno = 0;
    if (std::FILE* f = OpenRegularFile(path.c_str(), true)) {
      std::fclose(f);
    } else {
      std::fprintf(stderr, "quernal-cli: %s: %s\n", path.c_str(), errno ? std::strerror(errno) : "not a regular file");
      return 1;
    }
    LoadSettingsFile(path.c_str());
  }
  if (int status = ApplyLocaleOption(args); status >= 0) return status;
  WriteSettings(stdout, {}, std::time(nullptr));
  return 0;
}
