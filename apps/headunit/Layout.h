#pragma once

namespace headunit {

struct Size {
  int width = 0;
  int height = 0;
};

/// Of those that are offered to a phone.
constexpr Size SMALLEST_PICTURE{800, 480};
constexpr Size LARGEST_PICTURE{1920, 1080};

struct Point {
  int x = 0;
  int y = 0;
};

struct Rect {
  int x = 0;
  int y = 0;
  int width = 0;
  int height = 0;
};

/// Where a picture goes in a window: as large as it can be with its proportions kept, in the middle. Empty if
/// either is empty, or if the picture is too narrow for one whole pixel of the window.
Rect fitted(Size picture, Size window);

/// The part of a picture that is shown if it has margins, which are cut off by halves on either side.
Rect withoutMargins(Size picture, Size margins);

/// How a screen is shared out: the phone's picture, and on its right what the car shows beside it.
struct ScreenLayout {
  Size size;     ///< of the whole screen
  Rect picture;  ///< where the picture may stand
  Rect strip;
};

/// For a screen of a given size: the strip is three tenths of its width, or less if it is very wide.
ScreenLayout splitScreen(Size screen);

/// For a screen that is made to measure: the strip stands beside a picture of this size, as high as it is.
ScreenLayout besidePicture(Size picture);

bool contains(const Rect& rect, Point place);

/// How a window shows a picture, and which place of the picture a place in the window is.
class PictureView {
 public:
  PictureView() = default;
  /// `margins`: the pixels of the picture's width and height that are not shown. `space`: the size of the
  /// part of the window that the picture has for itself, from `origin`.
  PictureView(Size picture, Size margins, Size space, Point origin = {});

  Size picture() const { return picture_; }
  Rect shown() const { return shown_; }  ///< of the picture
  Rect area() const { return area_; }    ///< of the window

  bool isInside(Point inWindow) const;

  /// The picture's own coordinates, margins and scaling undone. Outside of the area it is the nearest place
  /// that is shown; the first pixel if nothing is.
  Point toPicture(Point inWindow) const;

 private:
  Size picture_;
  Rect shown_;
  Rect area_;
};

}  // namespace headunit
