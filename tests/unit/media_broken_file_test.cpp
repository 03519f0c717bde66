#include <fcntl.h>
#include <gmock/gmock.h>
#include <unistd.h>

#include <sstream>

#include "media_files.h"
#include "phone/media/PcmSource.h"
#include "phone/media/VideoSource.h"

// Files that can be read no further while they are played, as on a stick that is pulled out, and files of
// which only a part is there, as behind a copy that did not come to its end.

namespace test::media {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Lt;
using testing::SizeIs;

/// From now on, whoever has `path` open cannot read it.
void breakReading(const std::string& path) {
  int count = 0;
  for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
    std::error_code gone;
    if (std::filesystem::read_symlink(entry, gone) != path || gone) continue;
    const int unreadable = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
    ::dup2(unreadable, std::stoi(entry.path().filename()));
    ::close(unreadable);
    ++count;
  }
  ASSERT_EQ(count, 1);
}

struct MediaBrokenFile : testing::Test {
  static constexpr int frames = 120;
  TemporaryFolder folder;
  phone::VideoOptions options;

  void write(const std::string& name, const char* codec) const {
    VideoRecipe recipe;
    recipe.codec = codec;
    recipe.frames = frames;
    recipe.keyframeEvery = 1;
    // Otherwise what is needed to read the file at all stands at its end.
    if (name == "a.mp4") recipe.container = {{"movflags", "faststart"}};
    writeNumberedVideo(folder / name, recipe);
  }

  std::unique_ptr<phone::VideoSource> open(const std::string& name, const char* codec) {
    write(name, codec);
    return reopen(name);
  }

  std::unique_ptr<phone::VideoSource> reopen(const std::string& name) {
    std::string error;
    auto source = phone::openVideoFile(folder / name, options, &error);
    EXPECT_TRUE(source) << error;
    return source;
  }

  void expectBreak(const std::string& name, const char* codec) {
    const auto source = open(name, codec);
    EXPECT_THAT(source->problem(), IsEmpty());
    breakReading(folder / name);
    EXPECT_THAT(drain(source.get()), SizeIs(Lt(static_cast<std::size_t>(frames))));
    EXPECT_THAT(source->problem(),
                AllOf(HasSubstr("'" + (folder / name) + "' breaks off"), HasSubstr("Bad file descriptor")));
  }

  static std::string contentOf(const std::string& path) {
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
  }

  void cut(const std::string& name, std::uintmax_t missing) const {
    std::filesystem::resize_file(folder / name, std::filesystem::file_size(folder / name) - missing);
  }

  // A transport stream's packets are of 188 bytes: half a file may be whole packets.
  void expectShort(const std::string& name, const char* codec, const std::string& words) {
    SCOPED_TRACE(name);
    write(name, codec);
    cut(name, std::filesystem::file_size(folder / name) / 376 * 188 + 1);
    const auto source = reopen(name);
    EXPECT_THAT(drain(source.get()), SizeIs(Lt(static_cast<std::size_t>(frames))));
    EXPECT_THAT(source->problem(),
                AllOf(HasSubstr("'" + (folder / name) + "' breaks off"), HasSubstr(words)));
  }

  static std::unique_ptr<phone::PcmSource> sound(const std::string& path) {
    SoundRecipe recipe;
    writeSound(path, recipe, std::vector<std::int16_t>(48000 * 2 * 4));
    std::string error;
    auto source = phone::openAudioFile(path, 48000, 2, false, &error);
    EXPECT_TRUE(source) << error;
    return source;
  }
};

TEST_F(MediaBrokenFile, TellsOfAVideoThatIsHandedOn) {
  expectBreak("a.mkv", "libx264");
  expectBreak("a.mp4", "libx264");
  expectBreak("a.ts", "libx264");
}

TEST_F(MediaBrokenFile, TellsOfAVideoThatIsTranscoded) { expectBreak("a.avi", "mpeg4"); }

TEST_F(MediaBrokenFile, IsNotPlayedAgain) {
  options.loop = true;
  expectBreak("a.mkv", "libx264");
  expectBreak("a.avi", "mpeg4");
}

TEST_F(MediaBrokenFile, TellsOfAVideoThatEndsBeforeItsAnnouncedEnd) {
  expectShort("a.mp4", "libx264", "s of the 4.0 s that it announces");
  expectShort("a.mkv", "libx264", "s of the 4.0 s that it announces");
  expectShort("a.mkv", "mpeg4", "s of the 4.0 s that it announces");
}

TEST_F(MediaBrokenFile, TellsOfAVideoThatEndsInTheMiddleOfAPicture) {
  expectShort("a.ts", "libx264", "ends in the middle of what it holds");
  expectShort("a.avi", "mpeg4", "ends in the middle of what it holds");
  write("a.mp4", "libx264");
  cut("a.mp4", 10);
  const auto source = reopen("a.mp4");
  drain(source.get());
  EXPECT_THAT(source->problem(), HasSubstr("ends in the middle of what it holds"));
}

TEST_F(MediaBrokenFile, WhatEndsTooEarlyIsNotPlayedAgain) {
  options.loop = true;
  expectShort("a.mp4", "libx264", "announces");
  expectShort("a.mkv", "mpeg4", "announces");
}

TEST_F(MediaBrokenFile, AnEndThatWasAskedForIsNoBreak) {
  options.frames = 5;
  write("a.mp4", "libx264");
  cut("a.mp4", std::filesystem::file_size(folder / "a.mp4") / 2);
  const auto source = reopen("a.mp4");
  EXPECT_THAT(drain(source.get()), SizeIs(5));
  EXPECT_THAT(source->problem(), IsEmpty());
}

TEST_F(MediaBrokenFile, TellsOfAFileThatIsGoneWhenItIsToBePlayedAgain) {
  options.loop = true;
  const auto source = open("a.mkv", "libx264");
  std::filesystem::remove(folder / "a.mkv");
  EXPECT_THAT(drain(source.get()), SizeIs(frames));
  EXPECT_THAT(source->problem(), HasSubstr("cannot be opened"));
}

TEST_F(MediaBrokenFile, AnEndIsNoBreak) {
  for (const char* name : {"a.mkv", "a.mp4", "a.ts", "a.h264"}) {
    const auto source = open(name, "libx264");
    EXPECT_THAT(drain(source.get()), SizeIs(frames)) << name;
    EXPECT_THAT(source->problem(), IsEmpty()) << name;
  }
  const auto source = open("a.avi", "mpeg4");
  drain(source.get());
  EXPECT_THAT(source->problem(), IsEmpty());
}

TEST_F(MediaBrokenFile, TellsOfSound) {
  const auto source = sound(folder / "a.wav");
  breakReading(folder / "a.wav");
  phone::PcmBlock block;
  int blocks = 0;
  while (source->next(20, &block)) ++blocks;
  EXPECT_LT(blocks, 4 * 50);
  EXPECT_THAT(source->problem(), HasSubstr("breaks off"));
}

TEST_F(MediaBrokenFile, TellsOfSoundThatEndsTooEarly) {
  sound(folder / "a.wav");
  cut("a.wav", 200'001);
  std::string error;
  const auto source = phone::openAudioFile(folder / "a.wav", 48000, 2, true, &error);
  phone::PcmBlock block;
  int blocks = 0;
  while (blocks < 4 * 50 && source->next(20, &block)) ++blocks;
  EXPECT_LT(blocks, 4 * 50);
  EXPECT_THAT(source->problem(), HasSubstr("breaks off"));
}

// As of sound that went through a pipe while it was written.
TEST_F(MediaBrokenFile, SoundThatAnnouncesNoEndMayEndAnywhere) {
  sound(folder / "a.wav");
  std::string content = contentOf(folder / "a.wav");
  content.replace(content.find("data") + 4, 4, 4, '\xff');
  content.resize(content.size() - 3000);
  writeFile(folder / "a.wav", content);
  std::string error;
  const auto source = phone::openAudioFile(folder / "a.wav", 48000, 2, false, &error);
  phone::PcmBlock block;
  while (source->next(20, &block)) {
  }
  EXPECT_THAT(source->problem(), IsEmpty());
}

TEST_F(MediaBrokenFile, TheEndOfSoundIsNoBreak) {
  const auto source = sound(folder / "a.wav");
  phone::PcmBlock block;
  while (source->next(20, &block)) {
  }
  EXPECT_THAT(source->problem(), IsEmpty());
}

}  // namespace
}  // namespace test::media
