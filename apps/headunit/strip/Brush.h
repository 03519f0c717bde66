#pragma once

#include <pango/pangocairo.h>

#include <memory>
#include <string>

#include "headunit/Bitmap.h"
#include "headunit/strip/Theme.h"

namespace headunit::strip {

/// A place in the strip's own units.
struct Box {
  double x = 0;
  double y = 0;
  double width = 0;
  double height = 0;

  double right() const { return x + width; }
  double bottom() const { return y + height; }
  double middleX() const { return x + width / 2; }
  double middleY() const { return y + height / 2; }
  Box inset(double by) const { return {x + by, y + by, width - 2 * by, height - 2 * by}; }
  /// Cuts off the top or the left, and leaves the rest.
  Box takeTop(double size);
  Box takeLeft(double size);
  Box takeBottom(double size);
  Box takeRight(double size);
};

enum class Align { left, middle, right };

/// Draws on a bitmap, never outside of it. One thread.
class Brush {
 public:
  /// `target` must stay, and keep its size; `scale`: pixels to one of the strip's units.
  Brush(Bitmap* target, double scale);
  ~Brush();
  Brush(const Brush&) = delete;
  Brush& operator=(const Brush&) = delete;

  void fill(const Box& box, Colour colour, double radius = 0);
  /// The whole image, as large as it can be with its proportions kept.
  void image(const Bitmap& image, const Box& box, double radius);
  /// The same, but it fills the box and loses what stands over.
  void imageCovering(const Bitmap& image, const Box& box, double radius);

  /// One line, cut short with an ellipsis, in the middle of the box's height. Any bytes.
  void text(const std::string& words, const Box& box, const Type& type, Align align = Align::left);
  /// Up to `lines` lines from the top of the box. Returns their height.
  double paragraph(const std::string& words, const Box& box, const Type& type, int lines,
                   Align align = Align::left);
  /// How wide one line would be.
  double widthOf(const std::string& words, const Type& type);

  /// For drawings that are no boxes: colour and line width are set, ends and joins are round.
  cairo_t* line(Colour colour, double width);

 private:
  void roundedPath(const Box& box, double radius);
  void paintImage(const Bitmap& image, const Box& box, double radius, double scale);
  void show(PangoLayout* text, const Box& box, double top, Colour colour);
  void setColour(Colour colour);

  std::unique_ptr<cairo_surface_t, decltype(&cairo_surface_destroy)> surface_;
  std::unique_ptr<cairo_t, decltype(&cairo_destroy)> cairo_;
};

}  // namespace headunit::strip
