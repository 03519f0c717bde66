#include <gmock/gmock.h>

#include <set>

#include "media_files.h"
#include "phone/media/MusicLibrary.h"
#include "phone/media/Png.h"

namespace test::media {
namespace {

using phone::RgbPicture;
using phone::Song;
using testing::ElementsAre;
using testing::Field;
using testing::HasSubstr;
using testing::IsEmpty;
using Bytes = std::vector<std::uint8_t>;

struct PhoneMusicFolder : testing::Test {
  TemporaryFolder folder;

  void song(const std::string& name, const SoundRecipe& recipe, int milliseconds = 500) {
    writeSound(folder / name, recipe, std::vector<std::int16_t>(static_cast<std::size_t>(96 * milliseconds)));
  }

  std::vector<Song> scan() {
    std::string error;
    std::vector<Song> songs = phone::scanMusic(folder.path(), &error);
    EXPECT_EQ(error, "");
    return songs;
  }

  std::string complaint(const std::string& path) {
    std::string error;
    EXPECT_THAT(phone::scanMusic(path, &error), IsEmpty());
    return error;
  }
};

SoundRecipe flac(const FileMaker::Settings& tags = {}, const Bytes& cover = {}) {
  SoundRecipe recipe;
  recipe.codec = "flac";
  recipe.tags = tags;
  recipe.cover = cover;
  return recipe;
}

RgbPicture chequered() {
  RgbPicture picture{256, 256, {}};
  for (int i = 0; i < 256 * 256; ++i) {
    const bool light = (i / 32 + i / 256 / 32) % 2 == 0;
    for (const int part : {light ? 250 : 10, i % 256, i / 256})
      picture.rgb.push_back(static_cast<std::uint8_t>(part));
  }
  return picture;
}

Bytes coverBytes() { return phone::encodePng(chequered().rgb.data(), 256, 256); }

std::string text(const Bytes& bytes) { return {bytes.begin(), bytes.end()}; }

TEST_F(PhoneMusicFolder, TagsDurationAndCoverAreRead) {
  const Bytes cover = coverBytes();
  song("a.flac", flac({{"title", "Salt"}, {"artist", "Tide"}, {"album", "Shore"}, {"genre", "Folk"}}, cover),
       1500);
  const std::vector<Song> songs = scan();
  ASSERT_EQ(songs.size(), 1U);
  EXPECT_EQ(songs[0].path, folder / "a.flac");
  EXPECT_EQ(songs[0].title, "Salt");
  EXPECT_EQ(songs[0].artist, "Tide");
  EXPECT_EQ(songs[0].album, "Shore");
  EXPECT_EQ(songs[0].genre, "Folk");
  EXPECT_EQ(songs[0].durationMs, 1500);
  EXPECT_EQ(songs[0].cover, cover);
}

TEST_F(PhoneMusicFolder, ASongWithoutATitleTakesItsFileName) {
  song("Long Way.wav", {});
  const std::vector<Song> songs = scan();
  ASSERT_EQ(songs.size(), 1U);
  EXPECT_EQ(songs[0].title, "Long Way");
  EXPECT_EQ(songs[0].artist, "");
  EXPECT_THAT(songs[0].cover, IsEmpty());
}

TEST_F(PhoneMusicFolder, SongsOfFoldersBelowComeInTheOrderOfTheirPaths) {
  std::filesystem::create_directories(folder / "b/deep");
  song("c.wav", {});
  song("b/deep/y.wav", {});
  song("b/x.flac", flac());
  song("a.wav", {});
  EXPECT_THAT(scan(), ElementsAre(Field(&Song::title, "a"), Field(&Song::title, "y"),
                                  Field(&Song::title, "x"), Field(&Song::title, "c")));
}

TEST_F(PhoneMusicFolder, APictureInTheFolderServesSongsWithoutOne) {
  std::filesystem::create_directory(folder / "other");
  writeFile(folder / "cover.png", text(coverBytes()));
  const Bytes own = phone::encodePng(Bytes(256 * 256 * 3, 9).data(), 256, 256);
  song("a.wav", {});
  song("b.flac", flac({}, own));
  song("other/c.wav", {});
  EXPECT_THAT(scan(), ElementsAre(Field(&Song::cover, coverBytes()), Field(&Song::cover, own),
                                  Field(&Song::cover, IsEmpty())));
}

TEST_F(PhoneMusicFolder, WhatIsNoMusicIsPassedOver) {
  writeFile(folder / "notes.txt", std::string(5000, 'n'));
  writeFile(folder / "broken.mp3", "ID3");
  std::string noise;
  std::uint32_t state = 7;
  for (int i = 0; i < 50'000; ++i) noise += static_cast<char>((state = state * 1664525 + 1013904223) >> 24);
  for (const char* name : {"noise.mp3", "noise.flac", "noise.ogg", "noise"}) writeFile(folder / name, noise);
  writeFile(folder / "cover.png", text(coverBytes()));
  VideoRecipe film;
  film.frames = 2;
  writeNumberedVideo(folder / "silent.mp4", film);
  SoundRecipe sounding = flac({}, coverBytes());
  sounding.coverMoves = true;
  song("film.mkv", sounding);
  song("a.wav", {});
  EXPECT_THAT(scan(), ElementsAre(Field(&Song::title, "a")));
}

TEST_F(PhoneMusicFolder, WithoutSongsSaysSo) {
  writeFile(folder / "notes.txt", "nothing to hear");
  EXPECT_THAT(complaint(folder.path()), HasSubstr("holds no songs."));
  EXPECT_THAT(complaint(folder / "missing"),
              HasSubstr("missing' cannot be read: No such file or directory."));
  EXPECT_THAT(complaint(folder / "notes.txt"), HasSubstr("notes.txt' cannot be read: Not a directory."));
}

TEST(PhoneBuiltInMusic, IsWholeAndTheSameEachTime) {
  const std::vector<Song> songs = phone::builtInMusic();
  const std::vector<Song> again = phone::builtInMusic();
  ASSERT_EQ(songs.size(), again.size());
  std::set<std::string> titles;
  std::set<Bytes> covers;
  for (std::size_t i = 0; i < songs.size(); ++i) {
    EXPECT_FALSE(songs[i].artist.empty() || songs[i].album.empty() || songs[i].genre.empty());
    EXPECT_GT(songs[i].durationMs, 60'000);
    EXPECT_EQ(songs[i].cover, again[i].cover);
    titles.insert(songs[i].title);
    covers.insert(songs[i].cover);
  }
  EXPECT_EQ(titles.size(), songs.size());
  EXPECT_EQ(covers.size(), 3U) << "one for each album";
}

TEST(PhoneBuiltInMusic, CoversArePictures) {
  const TemporaryFolder folder;
  writeFile(folder / "cover.png", text(phone::builtInMusic().front().cover));
  std::string error;
  const std::optional<RgbPicture> picture = phone::readPicture(folder / "cover.png", &error);
  ASSERT_TRUE(picture) << error;
  EXPECT_EQ(picture->width, 256);
  EXPECT_EQ(picture->height, 256);
  EXPECT_GT(std::set<std::uint8_t>(picture->rgb.begin(), picture->rgb.end()).size(), 50U);
}

TEST(PhonePng, KeepsEveryPixel) {
  const TemporaryFolder folder;
  const RgbPicture picture = chequered();
  writeFile(folder / "a.png", text(phone::encodePng(picture.rgb.data(), 256, 256)));
  std::string error;
  const std::optional<RgbPicture> read = phone::readPicture(folder / "a.png", &error);
  ASSERT_TRUE(read) << error;
  EXPECT_EQ(read->rgb, picture.rgb);
}

TEST(PhonePng, OddSizesAreEncoded) {
  const TemporaryFolder folder;
  const Bytes pixels{1, 2, 3, 4, 5, 6, 7, 8, 9};
  writeFile(folder / "a.png", text(phone::encodePng(pixels.data(), 3, 1)));
  std::string error;
  const std::optional<RgbPicture> read = phone::readPicture(folder / "a.png", &error);
  ASSERT_TRUE(read) << error;
  EXPECT_EQ(read->rgb, pixels);
}

TEST(PhonePng, NothingIsMadeOfNoPixels) {
  const std::uint8_t pixel[3] = {};
  EXPECT_THAT(phone::encodePng(pixel, 0, 1), IsEmpty());
  EXPECT_THAT(phone::encodePng(pixel, 1, -1), IsEmpty());
}

TEST(PhonePng, WhatIsNoPictureIsRefusedInWords) {
  const TemporaryFolder folder;
  writeFile(folder / "a.png", "no picture");
  std::string error;
  EXPECT_FALSE(phone::readPicture(folder / "a.png", &error));
  EXPECT_THAT(error, HasSubstr("a.png'"));
}

}  // namespace
}  // namespace test::media
