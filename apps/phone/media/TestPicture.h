#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "phone/media/YuvView.h"

namespace phone {

/// A finger on the picture, in the picture's own pixels.
struct TouchMark {
  int x = 0;
  int y = 0;
  int pointerId = 0;
  bool lifted = false;  // no longer there: drawn faintly, and not counted among the fingers
};

/// What one frame of the test picture shows.
struct TestFrame {
  std::uint32_t counter = 0;
  std::int64_t timeUs = 0;
  std::uint32_t touchSequence = 0;  // the low 24 bits are shown
  std::vector<TouchMark> touches;
};

/// Draws the test picture of one size. What takes long (the map, the lettering, the cards) is drawn once by
/// the constructor; `draw` then puts a frame together. The same frame always gives the same picture.
class TestPicturePainter {
 public:
  /// Even numbers; 160x120 at least.
  TestPicturePainter(int width, int height);
  ~TestPicturePainter();
  TestPicturePainter(const TestPicturePainter&) = delete;
  TestPicturePainter& operator=(const TestPicturePainter&) = delete;

  /// Fills every pixel of `picture`, which has the painter's size. Any thread may call it, several at once.
  void draw(const TestFrame& frame, const YuvView& picture) const;

 private:
  struct Parts;
  std::unique_ptr<const Parts> parts_;
};

/// The touches that a picture shows in its data strip.
struct TouchEvidence {
  std::uint32_t sequence = 0;  // 24 bits
  int fingers = 0;             // 255 stands for 255 and more
};

/// Read back what `TestPicturePainter` drew, from a decoded and perhaps scaled picture: the whole picture,
/// without borders, given by its luma plane or by packed red, green and blue bytes. Strides are in bytes.
/// Nothing is returned for a picture without a data strip, or one too damaged to be sure of it.
std::optional<std::uint32_t> readCounter(const std::uint8_t* luma, int width, int height, int stride);
std::optional<std::uint32_t> readCounterRgb(const std::uint8_t* rgb, int width, int height, int stride);
std::optional<TouchEvidence> readTouches(const std::uint8_t* luma, int width, int height, int stride);
std::optional<TouchEvidence> readTouchesRgb(const std::uint8_t* rgb, int width, int height, int stride);

}  // namespace phone
