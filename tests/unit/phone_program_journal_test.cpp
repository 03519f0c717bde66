#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

#include "media_files.h"
#include "phone/program/CarJournal.h"

namespace test {
namespace {

using testing::HasSubstr;

InputReport keyPress() {
  InputReport report;
  report.set_timestamp(7);
  auto* key = report.mutable_key_event()->add_keys();
  key->set_keycode(19);
  key->set_down(true);
  key->set_metastate(0);
  return report;
}

TEST(PhoneProgramJournal, WritesALineAsSoonAsItWasHeard) {
  const media::TemporaryFolder folder;
  const phone::Timers timers;
  phone::CarJournal journal;
  ASSERT_TRUE(journal.recordTo(folder / "car.jsonl"));
  journal.start(&timers);
  journal.onInputReport(keyPress());
  std::ifstream file(folder / "car.jsonl");
  std::string line;
  EXPECT_TRUE(std::getline(file, line));
  EXPECT_THAT(line, HasSubstr("input_report"));
  EXPECT_TRUE(journal.isWhole());
}

TEST(PhoneProgramJournal, IsNotWholeOnceTheDiskWasFull) {
  const phone::Timers timers;
  phone::CarJournal journal;
  ASSERT_TRUE(journal.recordTo("/dev/full"));
  journal.start(&timers);
  EXPECT_TRUE(journal.isWhole());
  journal.onInputReport(keyPress());
  EXPECT_FALSE(journal.isWhole());
}

}  // namespace
}  // namespace test
