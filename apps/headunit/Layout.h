#pragma once

namespace headunit {

struct Size {
  int width = 0;
  int height = 0;
};

struct Rect {
  int x = 0;
  int y = 0;
  int width = 0;
  int height = 0;
};

/// Where a picture goes in a window: as large as it can be with its proportions kept, in the middle. Empty if
/// either is empty.
Rect fitted(Size picture, Size window);

}  // namespace headunit
