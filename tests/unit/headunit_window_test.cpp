#include "headunit/media/Window.h"

#include <SDL.h>
#include <gtest/gtest.h>

#include "headunit/LinkStats.h"

namespace headunit {
namespace {

constexpr Size SMALL{800, 480};

/// One colour all over.
Picture light(const std::shared_ptr<LinkStats>& link) {
  constexpr std::size_t LUMA = 800 * 480;
  const auto pixels = std::make_shared<std::vector<std::uint8_t>>(LUMA + LUMA / 2, std::uint8_t{128});
  std::fill_n(pixels->begin(), LUMA, std::uint8_t{235});
  Picture picture;
  picture.width = SMALL.width;
  picture.height = SMALL.height;
  picture.planes = {{{pixels->data(), SMALL.width},
                     {pixels->data() + LUMA, SMALL.width / 2},
                     {pixels->data() + LUMA + LUMA / 4, SMALL.width / 2}}};
  picture.pixels = pixels;
  picture.stats = link;
  return picture;
}

std::vector<std::uint32_t> pixelsOf(const Rect& place) {
  std::vector<std::uint32_t> pixels(static_cast<std::size_t>(place.width * place.height));
  SDL_Renderer* renderer = nullptr;
  for (Uint32 id = 1; id < 1000 && renderer == nullptr; ++id) {
    if (SDL_Window* const window = SDL_GetWindowFromID(id)) renderer = SDL_GetRenderer(window);
  }
  const SDL_Rect area{place.x, place.y, place.width, place.height};
  EXPECT_EQ(SDL_RenderReadPixels(renderer, &area, SDL_PIXELFORMAT_ARGB8888, pixels.data(), place.width * 4),
            0)
      << SDL_GetError();
  return pixels;
}

/// A window that nobody sees.
struct HeadunitWindow : testing::Test {
  PictureSlot slot;
  Cluster cluster;
  Controls controls;
  ClusterKeys keys;
  std::shared_ptr<LinkStats> first = std::make_shared<LinkStats>(Clock::now());
  std::shared_ptr<LinkStats> second = std::make_shared<LinkStats>(Clock::now());
  Window window{&slot, &cluster, {}, WindowInput(&controls, &keys, &cluster), [] {}};

  HeadunitWindow() {
    SDL_SetHint(SDL_HINT_VIDEODRIVER, "dummy");
    std::string error;
    if (!window.open(&error)) ADD_FAILURE() << error;
    cluster.whenChanged([] {});
    window.refresh();
  }
  ~HeadunitWindow() override { SDL_SetHint(SDL_HINT_VIDEODRIVER, nullptr); }

  /// The phone of this link, or none, is there from now on.
  void links(const std::shared_ptr<LinkStats>& link, bool tellsSong = false) {
    cluster.change([&](ClusterView& view) {
      view.link = link.get();
      view.media.known = view.media.known || tellsSong;
    });
  }
  static bool isBright(std::uint32_t pixel) { return (pixel & 0xFF) > 0xF0; }
  /// Of the pixels in the picture's place.
  double brightShare() const {
    const auto pixels = pixelsOf(window.layout().picture);
    return static_cast<double>(std::count_if(pixels.begin(), pixels.end(), isBright)) /
           static_cast<double>(pixels.size());
  }
  bool showsPicture() const { return brightShare() > 0.5; }
  bool showsWords() const { return brightShare() > 0 && brightShare() < 0.1; }
  bool showsNothing() const { return brightShare() == 0; }
  std::vector<std::uint32_t> strip() const { return pixelsOf(window.layout().strip); }
};

TEST_F(HeadunitWindow, SaysThatThereIsNoPhoneYet) { EXPECT_TRUE(showsWords()); }

TEST_F(HeadunitWindow, IsDarkUntilThePhonesFirstPicture) {
  links(first);
  window.refresh();
  EXPECT_TRUE(showsNothing());
  slot.put(light(first));
  window.refresh();
  EXPECT_TRUE(showsPicture());
}

TEST_F(HeadunitWindow, ShowsNothingOfAPhoneThatHasGone) {
  const auto before = strip();
  links(first, true);
  slot.put(light(first));
  window.refresh();
  EXPECT_NE(strip(), before);
  links(nullptr);
  window.refresh();
  EXPECT_TRUE(showsWords());
  EXPECT_EQ(strip(), before);
}

TEST_F(HeadunitWindow, KeepsTheLastPictureForTheSnapshot) {
  links(first, true);
  slot.put(light(first));
  window.refresh();
  links(nullptr);
  window.refresh();
  const Screen::Shown shown = window.showsNow();
  ASSERT_TRUE(shown.picture);
  EXPECT_EQ(shown.picture->stats, first);
  EXPECT_TRUE(shown.cluster.media.known);
}

TEST_F(HeadunitWindow, ShowsAPictureThatComesWhenThePhoneHasGoneForNoLonger) {
  links(first);
  window.refresh();
  slot.put(light(first));
  links(nullptr);
  window.refresh();
  EXPECT_TRUE(showsWords());
  EXPECT_TRUE(window.lastShown()) << "it has been seen, and counts";
}

TEST_F(HeadunitWindow, ShowsNothingOfAPhoneToTheNext) {
  links(first);
  slot.put(light(first));
  window.refresh();
  links(second);  // so soon that nobody has seen the time between
  window.refresh();
  EXPECT_TRUE(showsNothing());
  slot.put(light(second));
  window.refresh();
  EXPECT_TRUE(showsPicture());
}

}  // namespace
}  // namespace headunit
