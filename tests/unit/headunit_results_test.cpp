#include "headunit/media/Results.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <utility>
#include <vector>

#include "headunit/FileDescriptor.h"
#include "headunit_log.h"

namespace headunit {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

class HeadunitResults : public testing::Test {
 protected:
  ~HeadunitResults() override { std::filesystem::remove_all(folder); }

  Results results(const Results::Paths& paths) {
    return Results(paths, &screen, [this](std::function<void()> work) { posted.push_back(std::move(work)); });
  }

  static LinkRecord linkOf(std::uint64_t bytes) {
    LinkRecord record;
    record.stats = std::make_shared<LinkStats>(Clock::now());
    record.bytesRead = bytes;
    return record;
  }

  std::uint64_t bytesTold() const {
    std::ifstream file(statistics);
    return nlohmann::json::parse(file).at("link").at("bytes_received").get<std::uint64_t>();
  }

  /// What is in a pipe: no more than it holds.
  static std::string contentOf(const FileDescriptor& pipe) {
    std::string text(65'536, ' ');
    text.resize(static_cast<std::size_t>(std::max<ssize_t>(read(pipe.get(), text.data(), text.size()), 0)));
    return text;
  }

  /// A grey picture goes through the screen.
  void shows(Size size) {
    const auto luma = static_cast<std::size_t>(size.width * size.height);
    const auto pixels = std::make_shared<std::vector<std::uint8_t>>(luma, std::uint8_t{128});
    Picture picture;
    picture.width = size.width;
    picture.height = size.height;
    picture.planes = {
        {{pixels->data(), size.width}, {pixels->data(), size.width / 2}, {pixels->data(), size.width / 2}}};
    picture.pixels = pixels;
    slot.put(std::move(picture));
    slot.close();
    screen.run();
  }

  const std::string folder = [] {
    std::string name = (std::filesystem::temp_directory_path() / "headunit-XXXXXX").string();
    return std::string(mkdtemp(name.data()));
  }();
  const std::string statistics = folder + "/link.json";
  const std::string snapshot = folder + "/screen.png";
  PictureSlot slot;
  Cluster cluster;
  HeadlessScreen screen{&slot, &cluster, {}};
  std::vector<std::function<void()>> posted;
};

TEST_F(HeadunitResults, TellOfTheLastLinkAsSoonAsItIsOver) {
  Results wanted = results({statistics, {}});
  wanted.afterLink(linkOf(10));
  EXPECT_EQ(bytesTold(), 10U);
  wanted.afterLink(linkOf(20));
  EXPECT_EQ(bytesTold(), 20U);
}

TEST_F(HeadunitResults, TellAtTheEndWhatHasBeenShownSince) {
  Results wanted = results({statistics, {}});
  const LinkRecord link = linkOf(10);
  wanted.afterLink(link);
  link.stats->dropped();
  EXPECT_TRUE(wanted.atEnd());
  std::ifstream file(statistics);
  EXPECT_EQ(nlohmann::json::parse(file).at("video").at("dropped"), 1);
}

TEST_F(HeadunitResults, HaveTheScreenDrawnElsewhere) {
  Results wanted = results({{}, snapshot});
  shows({800, 480});
  wanted.afterLink(linkOf(10));
  EXPECT_FALSE(std::filesystem::exists(snapshot));
  ASSERT_THAT(posted, SizeIs(1));
  posted[0]();
  EXPECT_TRUE(std::filesystem::exists(snapshot));
}

TEST_F(HeadunitResults, DrawTheScreenAtTheEndAndNotAgain) {
  Results wanted = results({{}, snapshot});
  shows({800, 480});
  wanted.afterLink(linkOf(10));
  EXPECT_TRUE(wanted.atEnd());
  EXPECT_TRUE(std::filesystem::remove(snapshot));
  posted[0]();
  EXPECT_FALSE(std::filesystem::exists(snapshot)) << "it would be an older one";
}

TEST_F(HeadunitResults, MayGoBeforeTheScreenIsDrawn) {
  shows({800, 480});
  results({{}, snapshot}).afterLink(linkOf(10));
  posted[0]();
  EXPECT_TRUE(std::filesystem::exists(snapshot));
}

TEST_F(HeadunitResults, AreNoFilesIfNobodyWantsThem) {
  Results unwanted = results({});
  shows({800, 480});
  unwanted.afterLink(linkOf(10));
  EXPECT_TRUE(unwanted.atEnd());
  EXPECT_THAT(posted, IsEmpty());
  EXPECT_TRUE(std::filesystem::is_empty(folder));
}

TEST_F(HeadunitResults, AreNoFilesIfThereWasNoLink) {
  EXPECT_TRUE(results({statistics, snapshot}).atEnd());
  EXPECT_TRUE(std::filesystem::is_empty(folder));
}

TEST_F(HeadunitResults, TellIfAFileCannotBeWritten) {
  shows({800, 480});
  Results figures = results({folder + "/missing/link.json", {}});
  figures.afterLink(linkOf(10));
  EXPECT_FALSE(figures.atEnd());
  EXPECT_FALSE(results({{}, folder + "/missing/screen.png"}).atEnd());
}

TEST_F(HeadunitResults, TellOnceThatAFileCannotBeWrittenAndWhatToDo) {
  const LoggedLines log;
  shows({800, 480});
  Results wanted = results({folder + "/missing/link.json", folder + "/missing/screen.png"});
  wanted.afterLink(linkOf(10));
  wanted.afterLink(linkOf(20));
  for (const auto& draw : posted) draw();
  EXPECT_FALSE(wanted.atEnd());
  EXPECT_THAT(log.all(), ElementsAre(EndsWith("; choose another file with --stats."),
                                     EndsWith("; choose another file with --snapshot.")));
}

TEST_F(HeadunitResults, TellOfAFaultThatComesBack) {
  const LoggedLines log;
  shows({800, 480});
  Results wanted = results({folder + "/later/link.json", folder + "/later/screen.png"});
  for (const bool isThere : {false, true, false}) {
    if (isThere) std::filesystem::create_directory(folder + "/later");
    if (!isThere) std::filesystem::remove_all(folder + "/later");
    wanted.afterLink(linkOf(10));
    std::exchange(posted, {}).front()();
  }
  EXPECT_THAT(log.all(), SizeIs(4));
}

TEST_F(HeadunitResults, GoIntoAPipeOnlyAtTheEnd) {
  ASSERT_EQ(mkfifo(statistics.c_str(), 0600), 0);
  ASSERT_EQ(mkfifo(snapshot.c_str(), 0600), 0);
  const FileDescriptor reader(open(statistics.c_str(), O_RDONLY | O_NONBLOCK));
  const FileDescriptor spectator(open(snapshot.c_str(), O_RDONLY | O_NONBLOCK));
  shows({16, 16});
  Results wanted = results({statistics, snapshot});
  wanted.afterLink(linkOf(10));
  EXPECT_THAT(posted, IsEmpty());
  wanted.afterLink(linkOf(20));
  EXPECT_TRUE(wanted.atEnd());
  const nlohmann::json told = nlohmann::json::parse(contentOf(reader));
  EXPECT_EQ(told.at("link").at("bytes_received"), 20);
  EXPECT_THAT(contentOf(spectator), StartsWith("\x89PNG"));
}

TEST_F(HeadunitResults, AreTriedBeforehandWithoutATrace) {
  std::string error;
  EXPECT_TRUE(Results::canBeWritten({}, &error));
  EXPECT_TRUE(Results::canBeWritten({statistics, snapshot}, &error)) << error;
  EXPECT_TRUE(std::filesystem::is_empty(folder));
  EXPECT_FALSE(Results::canBeWritten({folder + "/missing/link.json", snapshot}, &error));
  EXPECT_EQ(error, "cannot write " + folder +
                       "/missing/link.json: No such file or directory; choose another file with --stats");
  EXPECT_FALSE(Results::canBeWritten({statistics, folder}, &error));
  EXPECT_EQ(error, "cannot write " + folder + ": Is a directory; choose another file with --snapshot");
}

}  // namespace
}  // namespace headunit
