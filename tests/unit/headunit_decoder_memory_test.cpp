extern "C" {
#include <libavutil/mem.h>
}

#include <gtest/gtest.h>

#include <cstring>
#include <limits>

#include "headunit/media/FfmpegDecoder.h"
#include "headunit/media/ImageDecoder.h"
#include "headunit/services/GreetingIcon.h"
#include "phone/media/CoverArt.h"
#include "phone/media/VideoSource.h"

namespace headunit {
namespace {

/// While it lives, libav* gets no block of memory that is larger.
class LargestBlock {
 public:
  explicit LargestBlock(std::size_t bytes) { av_max_alloc(bytes); }
  ~LargestBlock() { av_max_alloc(std::numeric_limits<int>::max()); }
  LargestBlock(const LargestBlock&) = delete;
  LargestBlock& operator=(const LargestBlock&) = delete;
};

/// From too little for anything to enough for all, in steps that let one kind of block after the other
/// through.
std::vector<std::size_t> limits() {
  std::vector<std::size_t> all;
  for (std::size_t bytes = 64; bytes < 16 << 20; bytes += bytes / 4) all.push_back(bytes);
  return all;
}

VideoFrame frameOf(const std::vector<std::uint8_t>& bytes) {
  VideoFrame frame;
  frame.buffer = ::shared_ptr<IoBuffer>(new IoBuffer(static_cast<unsigned int>(bytes.size())));
  frame.length = static_cast<unsigned int>(bytes.size());
  std::memcpy(frame.data(), bytes.data(), bytes.size());
  return frame;
}

struct HeadunitDecoderMemory : testing::Test {
  std::unique_ptr<phone::VideoSource> source = [] {
    phone::VideoOptions options;
    options.width = 320;
    options.height = 240;
    options.frames = 2;
    std::string error;
    auto picture = phone::makeTestPicture(options, &error);
    EXPECT_TRUE(picture) << error;
    return picture;
  }();
  phone::AccessUnit first;
  phone::AccessUnit second;
  int pictures = 0;

  HeadunitDecoderMemory() { EXPECT_TRUE(source->next(&first) && source->next(&second)); }

  std::string decode(FfmpegDecoder* decoder, const phone::AccessUnit& unit) {
    return decoder->decode(frameOf(unit.data), [this](Picture) { ++pictures; });
  }
};

TEST_F(HeadunitDecoderMemory, ItsWantCostsNoMoreThanPictures) {
  int without = 0;
  for (const std::size_t limit : limits()) {
    const LargestBlock largest(limit);
    FfmpegDecoder decoder;
    decoder.configure({source->codecConfig()});
    pictures = 0;
    const std::string fault = decode(&decoder, first);
    EXPECT_EQ(pictures == 0, fault != "") << limit << ": " << fault;
    if (pictures == 0) ++without;
    decoder.finish([](Picture) {});
  }
  EXPECT_GT(without, 20);
  EXPECT_EQ(pictures, 1) << "the last limit is wide enough";
}

TEST_F(HeadunitDecoderMemory, ItDecodesAgainOnceThereIsSome) {
  FfmpegDecoder decoder;
  decoder.configure({source->codecConfig()});
  {
    const LargestBlock largest(64);
    EXPECT_EQ(decode(&decoder, first), "no decoder for it");
  }
  EXPECT_EQ(decode(&decoder, first), "");
  {
    const LargestBlock largest(1);
    EXPECT_EQ(decode(&decoder, second), "no memory for it");
  }
  EXPECT_EQ(decode(&decoder, second), "");
  EXPECT_EQ(pictures, 2);
}

TEST(HeadunitImageMemory, ItsWantCostsNoMoreThanTheImage) {
  const std::string icon(reinterpret_cast<const char*>(GREETING_ICON), sizeof GREETING_ICON);
  const std::vector<std::uint8_t> drawn = phone::drawCover(1, 48);
  const std::string cover(drawn.begin(), drawn.end());
  for (const std::string& bytes : {icon, cover}) {
    const Image whole = decodeImage(bytes);
    ASSERT_TRUE(whole);
    int without = 0;
    for (const std::size_t limit : limits()) {
      const LargestBlock largest(limit);
      const Image image = decodeImage(bytes);
      if (image) {
        EXPECT_EQ(image->pixels, whole->pixels) << limit;
      } else {
        ++without;
      }
    }
    EXPECT_GT(without, 5);
    EXPECT_LT(static_cast<std::size_t>(without), limits().size());
  }
}

}  // namespace
}  // namespace headunit
