#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "media_files.h"
#include "phone/program/Files.h"
#include "phone/program/OutputFile.h"

namespace test {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

struct PhoneProgramFiles : testing::Test {
  std::string in(const std::string& name) const { return folder / name; }
  std::string make(const std::string& name, const std::string& content = "old") const {
    std::ofstream(in(name)) << content;
    return in(name);
  }
  static std::string contentOf(const std::string& path) {
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
  }
  long entries() const { return std::distance(fs::directory_iterator(folder.path()), {}); }
  void refuse(const phone::NamedFiles& written, const phone::NamedFiles& read) const {
    phone::refuseOneFileForTwo(written, read, folder.path());
  }

  const media::TemporaryFolder folder;
  std::string error;
};

TEST_F(PhoneProgramFiles, AskingWhetherAFileCanBeWrittenTouchesNothing) {
  EXPECT_TRUE(phone::canWriteFile(make("there"), &error)) << error;
  EXPECT_TRUE(phone::canWriteFile(in("new"), &error)) << error;
  EXPECT_EQ(contentOf(in("there")), "old");
  EXPECT_EQ(entries(), 1);
}

TEST_F(PhoneProgramFiles, WhatCannotBeWrittenIsToldWithTheReason) {
  make("file");
  EXPECT_FALSE(phone::canWriteFile(folder.path(), &error));
  EXPECT_THAT(error, HasSubstr("cannot write " + folder.path() + ": Is a directory"));
  EXPECT_FALSE(phone::canWriteFile(in("no/such"), &error));
  EXPECT_THAT(error, HasSubstr("No such file or directory"));
  EXPECT_FALSE(phone::canWriteFile(in("file/in-it"), &error));
  EXPECT_THAT(error, HasSubstr("Not a directory"));
}

TEST_F(PhoneProgramFiles, TheFirstThatCannotBeWrittenIsToldWithItsOption) {
  EXPECT_FALSE(phone::canWriteAll({{"--none", ""}, {"--good", in("a")}, {"--bad", in("no/such")}}, &error));
  EXPECT_THAT(error, HasSubstr("; name another file with --bad"));
  EXPECT_EQ(entries(), 0);
}

TEST_F(PhoneProgramFiles, AFileIsReplacedAndKeepsItsPermissions) {
  fs::permissions(make("file"), fs::perms(0604));
  EXPECT_TRUE(phone::writeFile(in("file"), "new", &error)) << error;
  EXPECT_EQ(contentOf(in("file")), "new");
  EXPECT_EQ(fs::status(in("file")).permissions(), fs::perms(0604));
  EXPECT_EQ(entries(), 1);
}

TEST_F(PhoneProgramFiles, ALinkStaysAndLeadsToTheNewFile) {
  fs::create_symlink("far", in("link"));
  EXPECT_TRUE(phone::writeFile(in("link"), "new", &error)) << error;
  EXPECT_TRUE(fs::is_symlink(in("link")));
  EXPECT_EQ(contentOf(in("far")), "new");
}

TEST_F(PhoneProgramFiles, AFullDiskIsToldAndADeviceStaysOne) {
  EXPECT_FALSE(phone::writeFile("/dev/full", "new", &error));
  EXPECT_EQ(error, "cannot write /dev/full: No space left on device");
  EXPECT_TRUE(phone::writeFile("/dev/null", "new", &error));
  EXPECT_TRUE(fs::is_character_file("/dev/null"));
}

TEST_F(PhoneProgramFiles, APipeIsWrittenIntoIfSomebodyReadsIt) {
  ASSERT_EQ(mkfifo(in("pipe").c_str(), 0600), 0);
  EXPECT_FALSE(phone::writeFile(in("pipe"), "new", &error));
  EXPECT_THAT(error, HasSubstr("nobody is there to read it"));
  const int reader = open(in("pipe").c_str(), O_RDONLY | O_NONBLOCK);
  EXPECT_TRUE(phone::writeFile(in("pipe"), "new", &error)) << error;
  char text[8] = "";
  EXPECT_EQ(read(reader, text, sizeof text), 3);
  EXPECT_STREQ(text, "new");
  close(reader);
  EXPECT_TRUE(fs::is_fifo(in("pipe")));
}

// ---- One file for two purposes ----

TEST_F(PhoneProgramFiles, TwoThatAreWrittenMayNotBeOne) {
  make("a");
  fs::create_symlink("a", in("link"));
  EXPECT_THROW(refuse({{"--stats", in("a")}, {"--record", in("link")}}, {}), CLI::ValidationError);
  EXPECT_NO_THROW(refuse({{"--stats", in("a")}, {"--record", in("b")}}, {}));
}

TEST_F(PhoneProgramFiles, WhatIsReadMayBeNamedTwiceButNotWritten) {
  make("film");
  EXPECT_NO_THROW(refuse({{"--stats", in("a")}}, {{"--video", in("film")}, {"--audio", in("film")}}));
  EXPECT_THROW(refuse({{"--stats", in("film")}}, {{"--video", ""}, {"--audio", in("film")}}),
               CLI::ValidationError);
}

TEST_F(PhoneProgramFiles, TheCredentialsAreNotWrittenOver) {
  EXPECT_THROW(refuse({{"--stats", in("phone.key")}}, {}), CLI::ValidationError);
}

}  // namespace
}  // namespace test
