#include "headunit/Options.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace headunit {
namespace {

using testing::AllOf;
using testing::HasSubstr;

std::optional<Options> parse(std::vector<const char*> words, int* status) {
  words.insert(words.begin(), "vantry-headunit");
  return parseOptions(static_cast<int>(words.size()), words.data(), status);
}

/// With the option that has to be there.
std::vector<const char*> completed(std::vector<const char*> words) {
  words.insert(words.begin(), {"--credentials", "folder"});
  return words;
}

/// What is said of a command line that is wrong usage.
std::string complaintAbout(const std::vector<const char*>& words) {
  int status = -1;
  testing::internal::CaptureStderr();
  EXPECT_FALSE(parse(words, &status));
  EXPECT_EQ(status, 1);
  return testing::internal::GetCapturedStderr();
}

Options optionsOf(const std::vector<const char*>& words) {
  int status = -1;
  const std::optional<Options> options = parse(words, &status);
  EXPECT_TRUE(options);
  return options.value_or(Options());
}

TEST(HeadunitOptions, AskBeforePairingAndKeepTheListShutUnlessToldOtherwise) {
  const Options usual = optionsOf(completed({}));
  EXPECT_FALSE(usual.autoPair);
  EXPECT_FALSE(usual.browse);
  const Options eager = optionsOf(completed({"--auto-pair", "--browse"}));
  EXPECT_TRUE(eager.autoPair);
  EXPECT_TRUE(eager.browse);
}

TEST(HeadunitOptions, SayWhatIsNoNumberOfFrames) {
  for (const char* const count : {"0", "-3", "1.5", "abc", "", "99999999999999999999"}) {
    EXPECT_THAT(complaintAbout(completed({"--exit-after-frames", count})),
                HasSubstr("'" + std::string(count) + "' is no whole number of 1 or more"));
  }
}

TEST(HeadunitOptions, LeaveSomethingOfEachPictureInsideItsMargins) {
  const Options widest = optionsOf(completed({"--margins", "799x479"}));
  EXPECT_EQ(widest.margins.width, 799);
  EXPECT_EQ(widest.margins.height, 479);
  for (const char* const margins : {"800x0", "0x480", "5000x5000"}) {
    EXPECT_THAT(complaintAbout(completed({"--margins", margins})),
                HasSubstr("'" + std::string(margins) + "' leaves nothing of a picture of 800x480"));
  }
  for (const char* const margins : {"", "8", "8x", "x8", "-1x0", "8x8x8", "1e1x0"}) {
    EXPECT_THAT(complaintAbout(completed({"--margins", margins})),
                HasSubstr("'" + std::string(margins) + "' is no WIDTHxHEIGHT"));
  }
}

TEST(HeadunitOptions, TapWhereAPictureMayBe) {
  EXPECT_EQ(optionsOf(completed({"--touch", "1919,1079,2"})).touches->place.x, 1919);
  for (const char* const taps : {"1920,0,100", "0,1080,100"}) {
    EXPECT_THAT(complaintAbout(completed({"--touch", taps})),
                HasSubstr("'" + std::string(taps) + "' is no place of any picture"));
  }
  EXPECT_THAT(complaintAbout(completed({"--touch", "1,2,0"})), HasSubstr("the last of them 2 or more"));
}

TEST(HeadunitOptions, CallAPhoneAtAPortThatThereCanBe) {
  EXPECT_EQ(optionsOf(completed({"--connect", "localhost:1"})).connect->port, 1);
  EXPECT_THAT(complaintAbout(completed({"--connect", "localhost:0"})), HasSubstr("port 0 is nobody's"));
  EXPECT_EQ(optionsOf(completed({"--listen", "localhost:0"})).listen.port, 0);
}

TEST(HeadunitOptions, TakeNoEmptyNameForAFile) {
  for (const char* const option :
       {"--stats", "--snapshot", "--audio-out", "--microphone", "--drive", "--credentials"}) {
    EXPECT_THAT(complaintAbout({option, ""}), AllOf(HasSubstr(option), HasSubstr("an empty name is none")));
  }
}

TEST(HeadunitOptions, NameAFileForOnePurposeOnly) {
  std::string folder = (std::filesystem::temp_directory_path() / "headunit.XXXXXX").string();
  ASSERT_NE(mkdtemp(folder.data()), nullptr);
  const std::string file = folder + "/a";
  const std::string link = folder + "/b";
  const std::string key = folder + "/headunit.key";
  std::filesystem::create_symlink("a", link);
  const std::vector<const char*> purposes = {"--stats", "--snapshot", "--audio-out", "--microphone",
                                             "--drive"};
  for (const char* const first : purposes) {
    for (const char* const second : purposes) {
      if (first == second) continue;
      EXPECT_THAT(complaintAbout(completed({first, file.c_str(), second, link.c_str()})),
                  AllOf(HasSubstr(first), HasSubstr(second), HasSubstr("name one file")));
    }
    EXPECT_THAT(complaintAbout({first, key.c_str(), "--credentials", folder.c_str()}),
                HasSubstr(std::string(first) + " and --credentials name one file, " + key));
  }
  EXPECT_EQ(optionsOf(completed({"--stats", file.c_str(), "--drive", key.c_str()})).drive, key);
  EXPECT_FALSE(std::filesystem::exists(file)) << "nothing is opened for this";
  std::filesystem::remove_all(folder);
}

}  // namespace
}  // namespace headunit
