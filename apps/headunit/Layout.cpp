#include "headunit/Layout.h"

namespace headunit {

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
  area.x = (window.width - area.width) / 2;
  area.y = (window.height - area.height) / 2;
  return area;
}

}  // namespace headunit
