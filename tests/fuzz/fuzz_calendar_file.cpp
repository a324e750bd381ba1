// A calendar file from anywhere: loading it must not crash, hang or leak, and
// whatever loads must save and load again without a single question.
#include <cstdlib>
#include <cstring>

#include "calendar/calendar_file.h"
#include "config/settings.h"
#include "fuzz_support.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  ResetSettings();
  std::strcpy(Settings.ApplicationPath, FuzzFolder().c_str());
  Settings.ImageCompression = 1;
  std::string path = WriteInput("input.CLN", data, size);
  // Answer the damaged-record question both ways.
  SilentProgress answer(size % 2 == 0);
  CalendarDocument document = LoadCalendar(&answer, path.c_str());
  if (document) {
    std::string again = FuzzFolder() + "/again.CLN";
    SilentProgress none(false);
    if (!SaveCalendar(&none, again.c_str(), document)) std::abort();
    CalendarDocument reloaded = LoadCalendar(&none, again.c_str());
    if (!reloaded) std::abort();
    FreeCalendar(reloaded);
    FreeCalendar(document);
  }
  CheckNoBlocksLeft();
  return 0;
}
