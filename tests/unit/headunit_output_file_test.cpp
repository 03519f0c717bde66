#include "headunit/OutputFile.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "headunit/FileDescriptor.h"
#include "headunit_full_disk.h"

namespace headunit {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

/// A folder with nothing in it but what the test makes.
struct HeadunitOutputFile : testing::Test {
  ~HeadunitOutputFile() override { fs::remove_all(folder); }

  std::string in(const std::string& name) const { return folder + "/" + name; }
  std::string make(const std::string& name, const std::string& content) const {
    std::ofstream(in(name)) << content;
    return in(name);
  }
  static std::string contentOf(const std::string& path) {
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
  }
  long entries() const { return std::distance(fs::directory_iterator(folder), {}); }
  bool write(const std::string& path) { return writeFile(path, "new", &error); }
  bool canWrite(const std::string& path) { return canWriteFile(path, &error); }

  const std::string folder = [] {
    std::string name = (fs::temp_directory_path() / "headunit-XXXXXX").string();
    return std::string(mkdtemp(name.data()));
  }();
  std::string error;
};

TEST_F(HeadunitOutputFile, IsMadeWithTheUsualPermissions) {
  const mode_t before = umask(027);
  EXPECT_TRUE(write(in("file"))) << error;
  umask(before);
  EXPECT_EQ(contentOf(in("file")), "new");
  EXPECT_EQ(fs::status(in("file")).permissions(), fs::perms(0640));
  EXPECT_EQ(entries(), 1);
}

TEST_F(HeadunitOutputFile, ReplacesAFileAndKeepsItsPermissions) {
  const std::string path = make("file", "a longer one that was there before");
  fs::permissions(path, fs::perms(0604));
  EXPECT_TRUE(write(path)) << error;
  EXPECT_EQ(contentOf(path), "new");
  EXPECT_EQ(fs::status(path).permissions(), fs::perms(0604));
  EXPECT_EQ(entries(), 1);
}

TEST_F(HeadunitOutputFile, LeavesAllOtherFilesAlone) {
  const std::string other = make("file.part", "mine");
  const std::string unfinished = make(".headunit-" + std::to_string(getpid()) + "-0.part", "mine, too");
  EXPECT_TRUE(write(in("file"))) << error;
  EXPECT_EQ(contentOf(other), "mine");
  EXPECT_EQ(contentOf(unfinished), "mine, too");
  EXPECT_EQ(entries(), 3);
}

TEST_F(HeadunitOutputFile, IsFoundBehindLinksThatStay) {
  fs::create_directory(in("far"));
  make("far/file", "old");
  fs::create_symlink("far/file", in("second"));
  fs::create_symlink(in("second"), in("first"));
  EXPECT_TRUE(write(in("first"))) << error;
  EXPECT_TRUE(fs::is_symlink(in("first")));
  EXPECT_TRUE(fs::is_symlink(in("second")));
  EXPECT_EQ(contentOf(in("far/file")), "new");
}

TEST_F(HeadunitOutputFile, IsMadeWhereALinkLeadsThatLedNowhere) {
  fs::create_directory(in("far"));
  fs::create_symlink("far/file", in("link"));
  EXPECT_TRUE(canWrite(in("link"))) << error;
  EXPECT_TRUE(write(in("link"))) << error;
  EXPECT_TRUE(fs::is_symlink(in("link")));
  EXPECT_EQ(contentOf(in("far/file")), "new");
}

TEST_F(HeadunitOutputFile, MayBeAPipeAndStaysOne) {
  ASSERT_EQ(mkfifo(in("pipe").c_str(), 0600), 0);
  const FileDescriptor reader(open(in("pipe").c_str(), O_RDONLY | O_NONBLOCK));
  EXPECT_TRUE(canWrite(in("pipe"))) << error;
  EXPECT_FALSE(isReplacedWhenWritten(in("pipe")));
  EXPECT_TRUE(write(in("pipe"))) << error;
  char text[8];
  EXPECT_EQ(read(reader.get(), text, sizeof text), 3);
  EXPECT_TRUE(fs::is_fifo(in("pipe")));
  EXPECT_EQ(entries(), 1);
}

TEST_F(HeadunitOutputFile, MayBeAPipeWithoutAName) {
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  const FileDescriptor reader(ends[0]);
  const FileDescriptor writer(ends[1]);
  const std::string path = "/dev/fd/" + std::to_string(writer.get());
  EXPECT_TRUE(canWrite(path)) << error;
  EXPECT_TRUE(write(path)) << error;
  char text[8];
  EXPECT_EQ(read(reader.get(), text, sizeof text), 3);
}

TEST_F(HeadunitOutputFile, DoesNotWaitForAPipesReader) {
  ASSERT_EQ(mkfifo(in("pipe").c_str(), 0600), 0);
  EXPECT_TRUE(canWrite(in("pipe"))) << "he may come later";
  EXPECT_FALSE(write(in("pipe")));
  EXPECT_EQ(error, "cannot write " + in("pipe") + ": nobody is there to read it");
  EXPECT_TRUE(fs::is_fifo(in("pipe")));
}

TEST_F(HeadunitOutputFile, IsLeftAsItWasIfItCannotBeWritten) {
  fs::create_directory(in("taken"));
  EXPECT_FALSE(write(in("taken")));
  EXPECT_THAT(error, HasSubstr("Is a directory"));
  EXPECT_FALSE(write(in("missing/file")));
  EXPECT_THAT(error, HasSubstr("missing/file: No such file or directory"));
  EXPECT_EQ(entries(), 1);
}

TEST_F(HeadunitOutputFile, IsLeftAsItWasIfTheDiskIsFull) {
  const std::string path = make("file", "old");
  {
    const FullDisk full(2);
    EXPECT_FALSE(write(path));
  }
  EXPECT_EQ(error, "cannot write " + path + ": File too large");
  EXPECT_EQ(contentOf(path), "old");
  EXPECT_EQ(entries(), 1);
}

TEST_F(HeadunitOutputFile, CanBeTriedWithoutATrace) {
  const std::string path = make("file", "old");
  EXPECT_TRUE(canWrite(path)) << error;
  EXPECT_TRUE(canWrite(in("another"))) << error;
  EXPECT_TRUE(isReplacedWhenWritten(path) && isReplacedWhenWritten(in("another")));
  EXPECT_EQ(contentOf(path), "old");
  EXPECT_EQ(entries(), 1);
}

TEST_F(HeadunitOutputFile, IsKnownBeforehandNotToBeWritable) {
  EXPECT_FALSE(canWrite(folder));
  EXPECT_THAT(error, HasSubstr("Is a directory"));
  EXPECT_FALSE(canWrite(in("missing/file")));
  EXPECT_THAT(error, HasSubstr("No such file or directory"));
  EXPECT_FALSE(canWrite(make("file", "old") + "/below"));
  EXPECT_THAT(error, HasSubstr("Not a directory"));
  fs::create_symlink("round", in("round"));
  EXPECT_FALSE(canWrite(in("round")));
  EXPECT_THAT(error, HasSubstr("Too many levels"));
}

}  // namespace
}  // namespace headunit
