// The rules every editor tab shares, on a record of its own and a map of
// controls standing in for a dialog.
#include <cstring>
#include <map>
#include <set>

#include "editors/control_binding.h"
#include "fake_controls.h"
#include "test_support.h"

namespace {

#pragma pack(push, 1)
struct Record {
  uint16_t padding;
  uint32_t compression;
  uint16_t shadow, frame;
  int32_t placement;
  char name[8];
};
#pragma pack(pop)

const RadioChoice kPlaces[] = {{105, 0}, {106, 2}, {107, 8}, {108, 10}};
const ControlBinding kTable[] = {
    {135, ControlKind::Number, QUERNAL_FIELD(Record, padding)},
    {107, ControlKind::Number, QUERNAL_FIELD(Record, compression), nullptr, 0, {0, 0}, 0, true},
    {130, ControlKind::Check, QUERNAL_FIELD(Record, shadow)},
    {142, ControlKind::CheckSetOnly, QUERNAL_FIELD(Record, frame)},
    {105, ControlKind::Radio, QUERNAL_FIELD(Record, placement), kPlaces, 4, {109, 1}},
    {160, ControlKind::Text, QUERNAL_FIELD(Record, name), nullptr, 0, {0, 0}, 5},
    {999, ControlKind::Check, QUERNAL_FIELD(Record, shadow)},  // not on this tab
};
constexpr size_t kCount = sizeof kTable / sizeof kTable[0];

FakeControls Tab() {
  FakeControls tab({135, 107, 130, 142, 105, 106, 107, 108, 109, 160});
  tab.text_[10135] = "0,50,5";
  tab.text_[10107] = "1,9,6";
  return tab;
}

}  // namespace

TEST(ControlBinding, UpDownTextsSetWhatTheyParsed) {
  const struct {
    const char* text;
    bool range;
    int minimum, maximum;
    bool position;
    int at;
  } cases[] = {{"0,50,5", true, 0, 50, true, 5}, {"1,25", true, 1, 25, false, 0}, {"-3,4,x", true, -3, 4, false, 0},
               {"7", false, 0, 0, false, 0},     {"", false, 0, 0, false, 0},    {"a,1,2", false, 0, 0, false, 0}};
  for (const auto& c : cases) {
    FakeControls controls({10001});
    controls.text_[10001] = c.text;
    SetUpUpDown(controls, 10001);
    EXPECT_EQ(controls.range_.count(10001) != 0, c.range) << c.text;
    if (c.range) {
      EXPECT_EQ(controls.range_[10001], std::make_pair(c.minimum, c.maximum)) << c.text;
    }
    EXPECT_EQ(controls.position_.count(10001) != 0, c.position) << c.text;
    if (c.position) {
      EXPECT_EQ(controls.position_[10001], c.at) << c.text;
    }
  }
  const UpDownText unparsed = ParseUpDownText("");
  EXPECT_EQ(ClampToUpDown(70000, unparsed), 32767u) << "the sentinels bound an unparsed range";
}

TEST(ControlBinding, ARecordLoadsIntoItsControlsAndReadsBackAsTyped) {
  Record record{7, 6, 1, 0, 10, "Gen"};
  FakeControls tab = Tab();
  tab.checked_.insert(142);  // left as it is: loading only sets it
  LoadControls(kTable, kCount, &record, tab);
  EXPECT_EQ(tab.text_[135], "7");
  EXPECT_EQ(tab.range_[10135], std::make_pair(0, 50));
  EXPECT_EQ(tab.checked_, (std::set<int>{130, 142, 108}));
  EXPECT_EQ(tab.text_[160], "Gen");
  EXPECT_EQ(tab.limit_[160], 5);

  // Typed beyond the range: stored as typed, unless the binding clamps.
  tab.text_[135] = "99";
  tab.text_[160] = "Family";
  tab.checked_ = {142, 106, 109};  // two radios: the first in table order wins
  ReadControls(kTable, kCount, &record, tab);
  EXPECT_EQ(record.padding, 99);
  EXPECT_EQ(record.shadow, 0);
  EXPECT_EQ(record.frame, 1);
  EXPECT_EQ(record.placement, 2);
  EXPECT_STREQ(record.name, "Famil");
}

TEST(ControlBinding, RadioGroupsFallBackBothWays) {
  const ControlBinding& radio = kTable[4];
  for (const auto& stored : {std::make_pair(0, 105), std::make_pair(2, 106), std::make_pair(8, 107),
                             std::make_pair(10, 108), std::make_pair(1, 109), std::make_pair(147, 109),
                             std::make_pair(-5, 109)}) {
    Record record{};
    record.placement = stored.first;
    FakeControls tab = Tab();
    CheckStoredRadio(radio, &record, tab);
    EXPECT_EQ(tab.checked_, std::set<int>{stored.second}) << stored.first;
    tab.checked_.clear();
    ReadControls(&radio, 1, &record, tab);
    EXPECT_EQ(record.placement, 1) << "nothing checked reads back as the fallback's value";
  }
}
