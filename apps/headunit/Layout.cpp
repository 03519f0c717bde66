#include "headunit/Layout.h"

#include <algorithm>

namespace headunit {
namespace {

// The source pixel under the middle of a target pixel.
int scaled(int at, int target, int source) {
  if (target <= 0 || source <= 0) return 0;
  const long long twice = (2LL * at + 1) * source / target;
  return static_cast<int>(std::clamp(twice / 2, 0LL, static_cast<long long>(source) - 1));
}

// At five to three the strip has the proportions in which it looks best.
int widthBeside(int height) { return height * 3 / 5; }

}  // namespace

Rect fitted(Size picture, Size window) {
  if (picture.width <= 0 || picture.height <= 0 || window.width <= 0 || window.height <= 0) return {};
  Rect area{0, 0, window.width, window.height};
  const long long byWidth = static_cast<long long>(window.width) * picture.height;
  const long long byHeight = static_cast<long long>(window.height) * picture.width;
  if (byWidth < byHeight) {
    area.height = static_cast<int>(byWidth / picture.width);
  } else {
    area.width = static_cast<int>(byHeight / picture.height);
  }
  if (area.width == 0 || area.height == 0) return {};
  area.x = (window.width - area.width) / 2;
  area.y = (window.height - area.height) / 2;
  return area;
}

Rect withoutMargins(Size picture, Size margins) {
  if (margins.width >= picture.width || margins.height >= picture.height)
    return {0, 0, picture.width, picture.height};
  return {margins.width / 2, margins.height / 2, picture.width - margins.width,
          picture.height - margins.height};
}

ScreenLayout splitScreen(Size screen) {
  const int strip = std::min(widthBeside(screen.height), screen.width * 3 / 10);
  const int rest = screen.width - strip;
  return {screen, {0, 0, rest, screen.height}, {rest, 0, strip, screen.height}};
}

ScreenLayout besidePicture(Size picture) {
  const int strip = widthBeside(picture.height);
  return {{picture.width + strip, picture.height},
          {0, 0, picture.width, picture.height},
          {picture.width, 0, strip, picture.height}};
}

bool contains(const Rect& rect, Point place) {
  return place.x >= rect.x && place.x < rect.x + rect.width && place.y >= rect.y &&
         place.y < rect.y + rect.height;
}

PictureView::PictureView(Size picture, Size margins, Size space, Point origin)
    : picture_(picture),
      shown_(withoutMargins(picture, margins)),
      area_(fitted({shown_.width, shown_.height}, space)) {
  area_.x += origin.x;
  area_.y += origin.y;
}

bool PictureView::isInside(Point inWindow) const { return contains(area_, inWindow); }

Point PictureView::toPicture(Point inWindow) const {
  return {shown_.x + scaled(inWindow.x - area_.x, area_.width, shown_.width),
          shown_.y + scaled(inWindow.y - area_.y, area_.height, shown_.height)};
}

}  // namespace headunit
