#include "headunit/services/LateImages.h"

#include "headunit_services.h"

namespace headunit {
namespace {

struct HeadunitLateImages : ServicesTest {
  Newest newest;
  LateImages late{&images};

  static void showCover(ClusterView& view, const Image& image) { view.media.cover = image; }
  static void showTurn(ClusterView& view, const Image& image) { view.turn.image = image; }

  void hasDecoded(const std::string& bytes) {
    images.load(bytes, newest.next(), [](ClusterView&, const Image&) {});
    decodeAll();
  }
};

TEST_F(HeadunitLateImages, FollowOnceTheyAreDecoded) {
  const std::string bytes = "image 1";
  EXPECT_FALSE(late.take(bytes, showCover));
  late.follow(newest.next());
  EXPECT_FALSE(view().media.cover);
  decodeAll();
  EXPECT_EQ(lengthOf(view().media.cover), 7U);
}

TEST_F(HeadunitLateImages, KnownOnesAreThereAtOnceAndDoNotFollow) {
  const std::string bytes = "image 1";
  hasDecoded(bytes);
  EXPECT_EQ(lengthOf(late.take(bytes, showCover)), 7U);
  late.follow(newest.next());
  EXPECT_THAT(posted, IsEmpty());
}

TEST_F(HeadunitLateImages, EachGoesToItsOwnPlace) {
  const std::string known = "image 1";
  const std::string cover = "image 22";
  const std::string turn = "image 333";
  hasDecoded(known);
  late.take(known, showCover);
  late.take(cover, showCover);
  late.take(turn, showTurn);
  late.follow(newest.next());
  decodeAll();
  EXPECT_EQ(lengthOf(view().media.cover), cover.size());
  EXPECT_EQ(lengthOf(view().turn.image), turn.size());
}

TEST_F(HeadunitLateImages, DoNotFollowANewerThing) {
  const std::string bytes = "image 1";
  late.take(bytes, showCover);
  late.follow(newest.next());
  newest.next();
  decodeAll();
  EXPECT_FALSE(view().media.cover);
  EXPECT_EQ(images.decoded(), 0U);
}

TEST_F(HeadunitLateImages, DoNotFollowUnlessTheyAreTold) {
  const std::string bytes = "image 1";
  late.take(bytes, showCover);
  EXPECT_THAT(posted, IsEmpty());
}

TEST_F(HeadunitLateImages, FollowOnce) {
  const std::string bytes = "image 1";
  late.take(bytes, showCover);
  late.follow(newest.next());
  late.follow(newest.next());
  EXPECT_THAT(posted, SizeIs(1));
}

TEST_F(HeadunitLateImages, NothingComesOfNoImage) {
  const std::string none;
  EXPECT_FALSE(late.take(none, showCover));
  late.follow(newest.next());
  EXPECT_THAT(posted, IsEmpty());
}

TEST_F(HeadunitLateImages, MayGoBeforeTheirPictures) {
  const std::string bytes = "image 1";
  {
    LateImages brief(&images);
    brief.take(bytes, showCover);
    brief.follow(newest.next());
  }
  decodeAll();
  EXPECT_EQ(lengthOf(view().media.cover), 7U);
}

}  // namespace
}  // namespace headunit
