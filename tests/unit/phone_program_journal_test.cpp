#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

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
  std::string error;
  ASSERT_TRUE(journal.recordTo(folder / "car.jsonl", &error)) << error;
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
  std::string error;
  ASSERT_TRUE(journal.recordTo("/dev/full", &error)) << error;
  journal.start(&timers);
  EXPECT_TRUE(journal.isWhole());
  journal.onInputReport(keyPress());
  EXPECT_FALSE(journal.isWhole());
}

TEST(PhoneProgramJournal, WaitsForNobodyWhoMightComeToReadAPipe) {
  const media::TemporaryFolder folder;
  const std::string pipe = folder / "pipe";
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  const phone::Timers timers;
  phone::CarJournal journal;
  std::string error;
  EXPECT_FALSE(journal.recordTo(pipe, &error));
  EXPECT_EQ(error, "cannot write " + pipe + ": nobody is there to read it");
  const phone::Socket reader(open(pipe.c_str(), O_RDONLY | O_NONBLOCK));
  ASSERT_TRUE(journal.recordTo(pipe, &error)) << error;
  journal.start(&timers);
  journal.onInputReport(keyPress());
  std::string line(4096, ' ');
  const ssize_t count = read(reader.descriptor(), line.data(), line.size());
  ASSERT_GT(count, 0);
  EXPECT_EQ(line[static_cast<std::size_t>(count) - 1], '\n');
}

}  // namespace
}  // namespace test
