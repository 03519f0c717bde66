#include "phone/media/TestPicture.h"

#include <algorithm>

#include "phone/media/CityMap.h"
#include "phone/media/Dashboard.h"
#include "phone/media/DataStrip.h"

namespace phone {
namespace {

constexpr std::uint32_t SEQUENCE_MASK = 0xffffff;
constexpr int SEQUENCE_SHIFT = 8;

float scaleFor(int width, int height) {
  return std::min(static_cast<float>(width) / 800, static_cast<float>(height) / 480);
}

std::uint32_t touchValue(const TestFrame& frame) {
  const auto fingers = std::count_if(frame.touches.begin(), frame.touches.end(),
                                     [](const TouchMark& touch) { return !touch.lifted; });
  return frame.touchSequence << SEQUENCE_SHIFT |
         static_cast<std::uint32_t>(std::min<std::ptrdiff_t>(fingers, 255));
}

std::optional<TouchEvidence> touchesIn(const LumaView& picture) {
  const std::optional<std::uint32_t> value = readStripRow(picture, StripRow::Touch);
  if (!value) return {};
  return TouchEvidence{*value >> SEQUENCE_SHIFT & SEQUENCE_MASK, static_cast<int>(*value & 0xff)};
}

}  // namespace

struct TestPicturePainter::Parts {
  Parts(int width, int height)
      : map(route, scaleFor(width, height)), dashboard(width, height, scaleFor(width, height)) {}

  Route route;
  CityMap map;
  Dashboard dashboard;
};

TestPicturePainter::TestPicturePainter(int width, int height)
    : parts_(std::make_unique<const Parts>(width, height)) {}

TestPicturePainter::~TestPicturePainter() = default;

void TestPicturePainter::draw(const TestFrame& frame, const YuvView& picture) const {
  const Dashboard& dashboard = parts_->dashboard;
  const Route::Place place = parts_->route.placeAt(frame.timeUs);
  const int mapRows = picture.height - stripHeight(picture.height);
  parts_->map.draw(picture, mapRows, place.position, dashboard.carPosition());
  dashboard.drawCar(picture, frame, place);
  dashboard.drawCards(picture, frame, place);
  dashboard.drawTouches(picture, frame);
  // Last, so that no finger hides what programs read.
  dashboard.drawStripFrame(picture, frame);
  drawStripRow(picture, StripRow::Counter, frame.counter);
  drawStripRow(picture, StripRow::Touch, touchValue(frame));
}

std::optional<std::uint32_t> readCounter(const std::uint8_t* luma, int width, int height, int stride) {
  return readStripRow({luma, width, height, stride, false}, StripRow::Counter);
}

std::optional<std::uint32_t> readCounterRgb(const std::uint8_t* rgb, int width, int height, int stride) {
  return readStripRow({rgb, width, height, stride, true}, StripRow::Counter);
}

std::optional<TouchEvidence> readTouches(const std::uint8_t* luma, int width, int height, int stride) {
  return touchesIn({luma, width, height, stride, false});
}

std::optional<TouchEvidence> readTouchesRgb(const std::uint8_t* rgb, int width, int height, int stride) {
  return touchesIn({rgb, width, height, stride, true});
}

}  // namespace phone
