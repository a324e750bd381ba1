// quernal-cli resave: a calendar read and saved again, repaired.
#include "cli/commands.h"

#include "calendar/calendar_model.h"
#include "cli/calendar_lock.h"
#include "cli/cli_common.h"
#include "config/settings.h"

int ResaveCommand(const Arguments& args) {
  if (args.positional.size() != 1 || !args.Has("-o")) return Usage("resave needs IN.CLN and -o OUT.CLN");
  int level = static_cast<int>(Settings.ImageCompression);
  if (args.Has("--level") && !ParseInt(args.options.at("--level"), 1, 9, &level))
    return Usage("--level takes a compression level from 1 to 9");
  Settings.ImageCompression = static_cast<uint32_t>(level);
  SetApplicationPath(args);
  // Resaving a calendar in place is a change like any other.
  const CalendarLock lock(args.options.at("-o"));
  if (!lock.ok()) return 1;
  CalendarDocument document = Load(args.positional[0]);
  if (!document) return 1;
  int result = Save(args.options.at("-o"), document);
  FreeCalendar(document);
  return result;
}
