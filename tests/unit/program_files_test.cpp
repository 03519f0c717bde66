#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "common/InputFile.h"
#include "common/OneFile.h"

namespace programs {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

/// A folder with nothing in it but what the test makes.
struct ProgramFiles : testing::Test {
  ~ProgramFiles() override { fs::remove_all(folder); }

  std::string in(const std::string& name) const { return folder + "/" + name; }
  std::string make(const std::string& name, const std::string& content) const {
    std::ofstream(in(name)) << content;
    return in(name);
  }

  const std::string folder = [] {
    std::string name = (fs::temp_directory_path() / "programs-XXXXXX").string();
    return std::string(mkdtemp(name.data()));
  }();
};

// ---- What is read ----

struct ProgramInput : ProgramFiles {
  std::string read(const std::string& path, std::size_t bytes = 1 << 20) {
    InputLimits limits;
    limits.bytes = bytes;
    limits.silence = std::chrono::milliseconds(0);
    reason.clear();
    return readInput(path, limits, &reason).value_or("nothing");
  }
  std::string reason;
};

TEST_F(ProgramInput, IsReadWhole) {
  const std::string lengthy(200'000, 'x');
  EXPECT_EQ(read(make("file", lengthy)), lengthy);
  EXPECT_EQ(read(make("empty", "")), "");
  EXPECT_EQ(reason, "");
}

TEST_F(ProgramInput, HasALimitThatItMayReach) {
  const std::string path = make("file", "12345");
  EXPECT_EQ(read(path, 5), "12345");
  EXPECT_EQ(read(path, 4), "nothing");
  EXPECT_EQ(reason, "it has more than 4 bytes");
}

TEST_F(ProgramInput, IsNotTakenIntoMemoryIfItIsHuge) {
  fs::resize_file(make("huge", ""), std::uintmax_t{1} << 40);
  EXPECT_EQ(read(in("huge"), 16 << 20), "nothing");
  EXPECT_EQ(reason, "it has more than 16 MiB");
}

TEST_F(ProgramInput, MayNotGoOnForEver) {
  EXPECT_EQ(read("/dev/zero"), "nothing");
  EXPECT_EQ(reason, "it has more than 1 MiB, if it ends at all");
}

TEST_F(ProgramInput, MayBeAPipeThatEnds) {
  ASSERT_EQ(mkfifo(in("pipe").c_str(), 0600), 0);
  const int reader = open(in("pipe").c_str(), O_RDONLY | O_NONBLOCK);
  const int writer = open(in("pipe").c_str(), O_WRONLY);
  ASSERT_EQ(write(writer, "text", 4), 4);
  const std::string copy = "/dev/fd/" + std::to_string(reader);
  close(writer);
  EXPECT_EQ(read(copy), "text");
  close(reader);
}

TEST_F(ProgramInput, IsNotWaitedForWithoutEnd) {
  ASSERT_EQ(mkfifo(in("pipe").c_str(), 0600), 0);
  EXPECT_EQ(read(in("pipe")), "nothing") << "nobody writes";
  EXPECT_EQ(reason, "it does not end, and nothing comes from it any more");
  const int reader = open(in("pipe").c_str(), O_RDONLY | O_NONBLOCK);
  const int writer = open(in("pipe").c_str(), O_WRONLY);
  ASSERT_EQ(write(writer, "text", 4), 4);
  EXPECT_EQ(read(in("pipe")), "nothing") << "somebody does not go on writing";
  EXPECT_EQ(reason, "it does not end, and nothing comes from it any more");
  close(writer);
  close(reader);
}

TEST_F(ProgramInput, SaysWhyItCannotBeRead) {
  EXPECT_EQ(read(in("none")), "nothing");
  EXPECT_EQ(reason, "No such file or directory");
  EXPECT_EQ(read(folder), "nothing");
  EXPECT_EQ(reason, "Is a directory");
}

// ---- What is named twice ----

struct ProgramFileNames : ProgramFiles {
  static std::string both(const std::string& first, const std::string& second) {
    return namedTwice({{"--a", first}, {"--b", second}});
  }
};

TEST_F(ProgramFileNames, MayAllBeDifferent) {
  EXPECT_EQ(both(make("one", ""), make("two", "")), "");
  EXPECT_EQ(both(in("three"), in("four")), "") << "none of them is there";
  EXPECT_EQ(both(in("one"), in("three")), "");
  EXPECT_EQ(both("", ""), "");
}

TEST_F(ProgramFileNames, AreToldOfOneFile) {
  make("one", "");
  EXPECT_EQ(namedTwice({{"--a", in("one")}, {"--b", ""}, {"--c", in("two")}, {"--d", in("one")}}),
            "--a and --d name one file, " + in("one"));
}

TEST_F(ProgramFileNames, MayBeOneFileIfItsWordIsOne) {
  EXPECT_EQ(namedTwice({{"--a", make("one", "")}, {"--a", in("one")}}), "");
}

TEST_F(ProgramFileNames, MayBeSpeltInManyWays) {
  make("one", "");
  fs::create_directory(in("below"));
  for (const char* const name : {"one", "none"}) {
    EXPECT_NE(both(in(name), folder + "//" + name), "") << name;
    EXPECT_NE(both(in(name), in("below/../" + std::string(name))), "") << name;
    EXPECT_NE(both(in(name), fs::relative(in(name)).string()), "") << name;
  }
}

TEST_F(ProgramFileNames, MayBeLinks) {
  make("one", "");
  fs::create_symlink("one", in("soft"));
  fs::create_hard_link(in("one"), in("hard"));
  fs::create_symlink("none", in("ahead"));
  fs::create_directory_symlink(".", in("round"));
  EXPECT_NE(both(in("one"), in("soft")), "");
  EXPECT_NE(both(in("hard"), in("soft")), "");
  EXPECT_NE(both(in("none"), in("ahead")), "") << "it leads to what is not there yet";
  EXPECT_NE(both(in("none"), in("round/none")), "");
  EXPECT_EQ(both(in("one"), in("ahead")), "");
}

TEST_F(ProgramFileNames, MayShareATerminalButNoPipe) {
  EXPECT_EQ(both("/dev/zero", "/dev/zero"), "");
  ASSERT_EQ(mkfifo(in("pipe").c_str(), 0600), 0);
  EXPECT_NE(both(in("pipe"), in("pipe")), "");
}

}  // namespace
}  // namespace programs
