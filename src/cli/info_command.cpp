// quernal-cli info: every field of a calendar as JSON.
#include "cli/commands.h"

#include "calendar/calendar_model.h"
#include <string>

#include "cli/cli_common.h"
#include "render/picture_box.h"
#include "cli/record_json.h"

int InfoCommand(const Arguments& args) {
  if (args.positional.size() != 1) return Usage("info needs one FILE.CLN");
  const Paper* paper = PaperOption(args);
  if (!paper) return 2;
  SetApplicationPath(args);
  CalendarDocument document = Load(args.positional[0]);
  if (!document) return 1;
  WriteCalendarJson(stdout, document, *paper);
  FreeCalendar(document);
  return 0;
}
