#include "headunit/media/ImageDecoder.h"
#include "headunit/services/GreetingIcon.h"
#include "headunit_services.h"
#include "phone/media/CoverArt.h"
#include "phone/media/Png.h"
#include "phone/services/TurnImage.h"

namespace headunit {
namespace {

// ---- Decoding ----

std::string textOf(const std::vector<std::uint8_t>& bytes) { return {bytes.begin(), bytes.end()}; }

const std::string PNG(reinterpret_cast<const char*>(GREETING_ICON), sizeof GREETING_ICON);

TEST(HeadunitImageDecoder, DecodesAPngWithTransparency) {
  const Image image = decodeImage(PNG);
  ASSERT_TRUE(image);
  EXPECT_EQ(image->size.width, 24);
  EXPECT_EQ(image->size.height, 24);
  ASSERT_EQ(image->pixels.size(), 24U * 24);
  EXPECT_EQ(image->pixels[0], 0U) << "clear, and therefore black";
  EXPECT_EQ(image->pixels[12 * 24 + 12], 0xff5ec8ffU) << "the hub";
}

TEST(HeadunitImageDecoder, DecodesWhatThePhoneDraws) {
  const Image turn = decodeImage(textOf(phone::drawTurn(90, 128, 96)));
  ASSERT_TRUE(turn);
  EXPECT_EQ(turn->size.width, 128);
  EXPECT_EQ(turn->size.height, 96);
  const Image cover = decodeImage(textOf(phone::drawCover(1, 48)));
  ASSERT_TRUE(cover);
  EXPECT_EQ(cover->size.width, 48);
}

TEST(HeadunitImageDecoder, MakesLargePicturesSmallerInProportion) {
  const Image image = decodeImage(textOf(phone::drawTurn(90, 1024, 256)));
  ASSERT_TRUE(image);
  EXPECT_EQ(image->size.width, 512);
  EXPECT_EQ(image->size.height, 128);
  EXPECT_EQ(image->pixels.size(), 512U * 128);
}

TEST(HeadunitImageDecoder, NoColourExceedsItsAlpha) {
  const Image turn = decodeImage(textOf(phone::drawTurn(40, 64, 64)));
  ASSERT_TRUE(turn);
  for (const std::uint32_t pixel : turn->pixels) {
    const std::uint32_t alpha = pixel >> 24;
    EXPECT_LE(pixel >> 16 & 0xff, alpha);
    EXPECT_LE(pixel >> 8 & 0xff, alpha);
    EXPECT_LE(pixel & 0xff, alpha);
  }
}

TEST(HeadunitImageDecoder, TellsWhatIsNoImage) {
  EXPECT_FALSE(decodeImage(""));
  EXPECT_FALSE(decodeImage(std::string(20'000, '\0')));
  EXPECT_FALSE(decodeImage(std::string(40'000, '\x7f')));
  EXPECT_FALSE(decodeImage(PNG.substr(0, 8)));
  EXPECT_FALSE(decodeImage(PNG.substr(0, 30)));
  EXPECT_FALSE(decodeImage("\xff\xd8\xff and nothing"));
}

TEST(HeadunitImageDecoder, SurvivesEveryCutAndDamage) {
  for (std::size_t length = 0; length < PNG.size(); ++length) {
    const Image image = decodeImage(PNG.substr(0, length));
    EXPECT_TRUE(!image || image->pixels.size() == 24U * 24);
    std::string damaged = PNG;
    damaged[length] = static_cast<char>(damaged[length] ^ 0x5a);
    const Image other = decodeImage(damaged);
    EXPECT_TRUE(!other || other->pixels.size() == static_cast<std::size_t>(other->size.width) *
                                                      static_cast<std::size_t>(other->size.height));
  }
}

// Width and height stand in the header, behind its length and name; its checksum no longer holds, which a
// decoder may let pass or not.
TEST(HeadunitImageDecoder, RefusesHugeDimensions) {
  std::string huge = PNG;
  huge[18] = huge[22] = '\x70';  // 28672 and some by as many
  EXPECT_FALSE(decodeImage(huge));
}

// ---- Loading ----

struct HeadunitImageLoader : ServicesTest {
  Newest newest;
  static void show(ClusterView& view, const Image& image) { view.media.cover = image; }
};

TEST_F(HeadunitImageLoader, DecodesElsewhereAndShows) {
  images.load("image 1", newest.next(), show);
  EXPECT_FALSE(view().media.cover);
  decodeAll();
  EXPECT_EQ(lengthOf(view().media.cover), 7U);
  EXPECT_EQ(images.decoded(), 1U);
}

TEST_F(HeadunitImageLoader, KnowsWhatItHasDecoded) {
  EXPECT_FALSE(images.known("image 1"));
  images.load("image 1", newest.next(), show);
  images.load("image 1", newest.next(), show);
  images.load("image 1", newest.next(), show);
  decodeAll();
  EXPECT_EQ(lengthOf(images.known("image 1")), 7U);
  EXPECT_EQ(images.decoded(), 1U);
}

TEST_F(HeadunitImageLoader, ShowsALargeImageWithoutKeepingIt) {
  const std::string large = "image" + std::string(1 << 20, 'x');
  images.load(large, newest.next(), show);
  decodeAll();
  EXPECT_EQ(lengthOf(view().media.cover), large.size());
  EXPECT_FALSE(images.known(large));
}

TEST_F(HeadunitImageLoader, KeepsAWholePageAndForgetsTheOldestFirst) {
  const auto load = [this](int number) {
    images.load("image " + std::to_string(number), newest.next(), show);
    decodeAll();
  };
  for (int i = 0; i < 100; ++i) load(i);
  for (int i = 0; i < 100; ++i) EXPECT_TRUE(images.known("image " + std::to_string(i))) << i;
  for (int i = 100; i < 150; ++i) load(i);
  EXPECT_FALSE(images.known("image 0"));
  EXPECT_TRUE(images.known("image 149"));
  EXPECT_TRUE(images.known("image 60")) << "no more goes than must";
}

TEST_F(HeadunitImageLoader, DecodesNothingThatIsWantedNoMore) {
  images.load("image 1", newest.next(), show);
  newest.next();
  decodeAll();
  EXPECT_EQ(images.decoded(), 0U);
}

TEST_F(HeadunitImageLoader, ShowsNothingForAServiceThatHasGone) {
  {
    Newest brief;
    images.load("image 1", brief.next(), show);
  }
  decodeAll();
  EXPECT_FALSE(view().media.cover);
}

TEST_F(HeadunitImageLoader, MayGoBeforeItsWork) {
  {
    ImageLoader brief([this](std::function<void()> work) { posted.push_back(std::move(work)); }, decode,
                      &cluster);
    brief.load("image 1", newest.next(), show);
  }
  decodeAll();
  EXPECT_EQ(lengthOf(view().media.cover), 7U);
}

TEST_F(HeadunitImageLoader, LeavesTheViewAloneForWhatIsNoImage) {
  images.load("garbage", newest.next(), show);
  images.load("", newest.next(), show);
  const std::uint64_t before = cluster.version();
  decodeAll();
  EXPECT_EQ(cluster.version(), before);
}

TEST_F(HeadunitImageLoader, LetsNoMoreWaitThanMemoryAllows) {
  const std::string large(10 << 20, 'x');
  for (int i = 0; i < 10; ++i) images.load(large, newest.next(), show);
  EXPECT_THAT(posted, SizeIs(3));
  decodeAll();
  images.load(large, newest.next(), show);
  EXPECT_THAT(posted, SizeIs(1));
}

}  // namespace
}  // namespace headunit
