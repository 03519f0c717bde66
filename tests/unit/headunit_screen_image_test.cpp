#include <gmock/gmock.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>

#include "headunit/media/Png.h"
#include "headunit/media/ScreenImage.h"
#include "headunit/media/Snapshot.h"
#include "headunit/strip/StripPainter.h"
#include "phone/media/Png.h"

namespace headunit {
namespace {

const TimePoint NOW = TimePoint(std::chrono::seconds(100));
constexpr std::uint32_t BLACK = 0xFF000000;

/// A picture that is light on its left half and dark on its right one.
Picture halved(Size size) {
  const auto luma = static_cast<std::size_t>(size.width * size.height);
  const auto pixels = std::make_shared<std::vector<std::uint8_t>>(luma + luma / 2, std::uint8_t{128});
  for (std::size_t i = 0; i < luma; ++i) {
    const bool isLeft = static_cast<int>(i) % size.width < size.width / 2;
    (*pixels)[i] = isLeft ? 235 : 16;
  }
  Picture picture;
  picture.width = size.width;
  picture.height = size.height;
  picture.planes = {{{pixels->data(), size.width},
                     {pixels->data() + luma, size.width / 2},
                     {pixels->data() + luma + luma / 4, size.width / 2}}};
  picture.pixels = pixels;
  return picture;
}

std::uint32_t at(const Bitmap& bitmap, int x, int y) {
  return bitmap.pixels[static_cast<std::size_t>(y * bitmap.size.width + x)];
}

int lightness(const Bitmap& bitmap, int x, int y) { return static_cast<int>(at(bitmap, x, y) & 0xFF); }

void expectStripIn(const Bitmap& whole, const ScreenLayout& layout, const ClusterView& view) {
  const Rect place = layout.strip;
  const Bitmap strip = drawStrip(view, {place.width, place.height}, NOW).bitmap;
  for (int y = 0; y < place.height; ++y) {
    for (int x = 0; x < place.width; ++x)
      ASSERT_EQ(at(whole, place.x + x, place.y + y), at(strip, x, y)) << x << ", " << y;
  }
}

ClusterView guided() {
  ClusterView view;
  view.turn.guiding = true;
  view.turn.road = "Mill Lane";
  return view;
}

TEST(HeadunitScreenImage, HasThePictureInItsOwnSizeAndTheStripBesideIt) {
  for (const Size size : {Size{800, 480}, {1280, 720}, {1920, 1080}}) {
    const ScreenLayout layout = besidePicture(size);
    const Bitmap image = drawScreen(layout, {halved(size), guided()}, {}, NOW);
    EXPECT_EQ(image.size.width, size.width + size.height * 3 / 5);
    EXPECT_EQ(image.size.height, size.height);
    EXPECT_GT(lightness(image, size.width / 2 - 1, size.height - 1), 250);
    EXPECT_LT(lightness(image, size.width / 2, 0), 5);
    EXPECT_LT(lightness(image, size.width - 1, size.height - 1), 5);
    expectStripIn(image, layout, guided());
  }
}

TEST(HeadunitScreenImage, HasAStripThoughNothingHasBeenSaidAndNoPictureHasCome) {
  const ScreenLayout layout = layoutFor({}, {});
  const Bitmap image = drawScreen(layout, {}, {}, NOW);
  EXPECT_EQ(image.size.width, 1088);
  EXPECT_EQ(image.size.height, 480);
  EXPECT_EQ(at(image, 0, 0), BLACK);
  EXPECT_EQ(at(image, 799, 479), BLACK);
  expectStripIn(image, layout, {});
}

TEST(HeadunitScreenImage, LeavesOutTheMargins) {
  const Picture picture = halved({800, 480});
  const Size margins{400, 80};
  const ScreenLayout layout = layoutFor(picture, margins);
  const Bitmap image = drawScreen(layout, {picture, {}}, margins, NOW);
  EXPECT_EQ(image.size.width, 400 + 240);
  EXPECT_EQ(image.size.height, 400);
  EXPECT_GT(lightness(image, 199, 200), 250);
  EXPECT_LT(lightness(image, 200, 200), 5);
}

TEST(HeadunitScreenImage, ScalesThePictureIntoAWindow) {
  const ScreenLayout layout = splitScreen({1000, 700});  // leaves 700x700 to the picture: 700x420 of it
  const Bitmap image = drawScreen(layout, {halved({800, 480}), guided()}, {}, NOW);
  EXPECT_EQ(at(image, 100, 139), BLACK);
  EXPECT_GT(lightness(image, 0, 141), 250);
  EXPECT_GT(lightness(image, 340, 350), 250);
  EXPECT_LT(lightness(image, 360, 350), 5);
  EXPECT_EQ(at(image, 100, 560), BLACK);
  expectStripIn(image, layout, guided());
}

TEST(HeadunitScreenImage, SurvivesAScreenWithoutRoom) {
  for (const Size size : {Size{1, 1}, {2, 500}, {0, 0}})
    EXPECT_EQ(drawScreen(splitScreen(size), {halved({800, 480}), {}}, {}, NOW).size.width, size.width);
}

// What is shown, and where, come from one look at the screen.
TEST(HeadunitScreenImage, IsLaidOutForThePictureThatIsInIt) {
  PictureSlot slot;
  Cluster cluster;
  HeadlessScreen screen(&slot, &cluster, {});
  EXPECT_EQ(screen.showsNow().layout.size.width, screen.layout().size.width);
  slot.put(halved({1280, 720}));
  slot.close();
  screen.run();
  const Screen::Shown shown = screen.showsNow();
  ASSERT_TRUE(shown.picture);
  EXPECT_EQ(shown.layout.picture.width, shown.picture->width);
  EXPECT_EQ(shown.layout.size.width, 1712);
}

// ---- The file ----

struct HeadunitPng : testing::Test {
  std::string folder = [] {
    std::string name = (std::filesystem::temp_directory_path() / "headunit-XXXXXX").string();
    return std::string(mkdtemp(name.data()));
  }();
  ~HeadunitPng() override { std::filesystem::remove_all(folder); }

  const Bitmap drawing{{3, 2}, {0xFF000001, 0xFF102030, 0xFFFFFFFF, 0xFFFF0000, 0xFF00FF00, 0xFF0000FF}};
  std::string error;
};

TEST_F(HeadunitPng, HoldsEveryPixel) {
  const std::string path = folder + "/image.png";
  ASSERT_TRUE(writePng(drawing, path, &error)) << error;
  const auto read = phone::readPicture(path, &error);
  ASSERT_TRUE(read) << error;
  EXPECT_EQ(read->width, 3);
  EXPECT_EQ(read->height, 2);
  EXPECT_THAT(read->rgb, testing::ElementsAre(0, 0, 1, 0x10, 0x20, 0x30, 255, 255, 255, 255, 0, 0, 0, 255, 0,
                                              0, 0, 255));
}

TEST_F(HeadunitPng, IsNoFileIfItCannotBeWritten) {
  EXPECT_FALSE(writePng(drawing, folder + "/missing/image.png", &error));
  EXPECT_THAT(error, testing::HasSubstr("No such file or directory"));
}

TEST_F(HeadunitPng, LeavesAnEarlierFileIfThereIsNothingToWrite) {
  const std::string path = folder + "/image.png";
  std::ofstream(path) << "earlier";
  EXPECT_FALSE(writePng({}, path, &error));
  EXPECT_EQ(std::filesystem::file_size(path), 7U);
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder), {}), 1) << "and nothing else";
}

TEST_F(HeadunitPng, IsWrittenAfterEachLinkAndNeverAfterTheLastTime) {
  const std::string path = folder + "/image.png";
  Snapshot snapshot(path);
  snapshot.write({}, {});
  EXPECT_FALSE(std::filesystem::exists(path)) << "before the first picture";
  snapshot.write({halved({800, 480}), {}}, {});
  EXPECT_EQ(phone::readPicture(path, &error)->width, 1088);
  EXPECT_TRUE(snapshot.writeLast({halved({1280, 720}), {}}, {}));
  EXPECT_EQ(phone::readPicture(path, &error)->width, 1712);
  snapshot.write({halved({800, 480}), {}}, {});
  EXPECT_EQ(phone::readPicture(path, &error)->width, 1712) << "a link that ended earlier";
}

TEST_F(HeadunitPng, IsNotWrittenWithoutAPictureAndThatIsNoFailure) {
  Snapshot snapshot(folder + "/image.png");
  EXPECT_TRUE(snapshot.writeLast({}, {}));
  EXPECT_TRUE(std::filesystem::is_empty(folder));
}

TEST_F(HeadunitPng, TellsIfItsLastOneCannotBeWritten) {
  Snapshot snapshot(folder + "/missing/image.png");
  EXPECT_FALSE(snapshot.writeLast({halved({800, 480}), {}}, {}));
}

TEST_F(HeadunitPng, IsWhatASpectatorGets) {
  PictureSlot slot;
  Cluster cluster;
  HeadlessScreen screen(&slot, &cluster, {});
  const Screenshots camera(&screen);
  EXPECT_EQ(camera.size().width, 1088) << "before the first picture";
  slot.put(halved({1280, 720}));
  slot.close();
  screen.run();
  EXPECT_EQ(camera.size().width, 1712);
  const std::string path = folder + "/image.png";
  std::ofstream(path, std::ios::binary) << camera.png();
  const auto read = phone::readPicture(path, &error);
  ASSERT_TRUE(read) << error;
  EXPECT_EQ(read->width, camera.size().width);
  EXPECT_EQ(read->height, camera.size().height);
}

}  // namespace
}  // namespace headunit
