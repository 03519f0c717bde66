#include "headunit/strip/Brush.h"

#include <algorithm>
#include <cmath>

#include "headunit/strip/Words.h"

#ifdef __SANITIZE_ADDRESS__
// Fontconfig finds its patterns by offsets instead of pointers, which a leak checker cannot follow. And
// D-Bus, which SDL asks for, keeps some memory when a window has gone.
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() { return "leak:libfontconfig\nleak:libdbus\n"; }
#endif

namespace headunit::strip {
namespace {

constexpr double QUARTER_TURN = 1.57079632679489662;

using Surface = std::unique_ptr<cairo_surface_t, decltype(&cairo_surface_destroy)>;
using Text = std::unique_ptr<PangoLayout, decltype(&g_object_unref)>;

Surface surfaceOver(const Bitmap& bitmap) {
  // The drawing library has no type for a surface that is only read.
  auto* const bytes = reinterpret_cast<unsigned char*>(const_cast<std::uint32_t*>(bitmap.pixels.data()));
  const int stride = bitmap.size.width * static_cast<int>(sizeof(std::uint32_t));
  return Surface(cairo_image_surface_create_for_data(bytes, CAIRO_FORMAT_ARGB32, bitmap.size.width,
                                                     bitmap.size.height, stride),
                 &cairo_surface_destroy);
}

bool hasPixels(const Bitmap& bitmap) {
  const Size size = bitmap.size;
  return size.width > 0 && size.height > 0 &&
         bitmap.pixels.size() >= static_cast<std::size_t>(size.width) * static_cast<std::size_t>(size.height);
}

PangoAlignment alignmentFor(Align align) {
  return align == Align::left     ? PANGO_ALIGN_LEFT
         : align == Align::middle ? PANGO_ALIGN_CENTER
                                  : PANGO_ALIGN_RIGHT;
}

Text layOut(cairo_t* cairo, const std::string& words, const Type& type, double width, Align align) {
  Text text(pango_cairo_create_layout(cairo), &g_object_unref);
  const std::unique_ptr<PangoFontDescription, decltype(&pango_font_description_free)> font(
      pango_font_description_from_string("DejaVu Sans"), &pango_font_description_free);
  pango_font_description_set_absolute_size(font.get(), type.size * PANGO_SCALE);
  pango_font_description_set_weight(font.get(), type.bold ? PANGO_WEIGHT_BOLD : PANGO_WEIGHT_NORMAL);
  pango_layout_set_font_description(text.get(), font.get());
  const std::string valid = drawable(words);
  pango_layout_set_text(text.get(), valid.c_str(), static_cast<int>(valid.size()));
  if (width >= 0) {
    pango_layout_set_width(text.get(), pango_units_from_double(width));
    pango_layout_set_ellipsize(text.get(), PANGO_ELLIPSIZE_END);
    pango_layout_set_alignment(text.get(), alignmentFor(align));
  }
  return text;
}

PangoRectangle extentsOf(PangoLayout* text) {
  PangoRectangle extents;
  pango_layout_get_extents(text, nullptr, &extents);
  return extents;
}

}  // namespace

Box Box::takeTop(double size) {
  const Box taken{x, y, width, size};
  y += size;
  height -= size;
  return taken;
}

Box Box::takeLeft(double size) {
  const Box taken{x, y, size, height};
  x += size;
  width -= size;
  return taken;
}

Box Box::takeBottom(double size) {
  height -= size;
  return {x, y + height, width, size};
}

Box Box::takeRight(double size) {
  width -= size;
  return {x + width, y, size, height};
}

Brush::Brush(Bitmap* target, double scale)
    : surface_(surfaceOver(*target)), cairo_(cairo_create(surface_.get()), &cairo_destroy) {
  cairo_scale(cairo_.get(), scale, scale);
  cairo_set_line_cap(cairo_.get(), CAIRO_LINE_CAP_ROUND);
  cairo_set_line_join(cairo_.get(), CAIRO_LINE_JOIN_ROUND);
}

Brush::~Brush() { cairo_surface_flush(surface_.get()); }

void Brush::setColour(Colour colour) {
  const auto part = [&](int shift) { return static_cast<double>(colour.rgb >> shift & 0xFF) / 255; };
  cairo_set_source_rgba(cairo_.get(), part(16), part(8), part(0), colour.alpha);
}

void Brush::roundedPath(const Box& box, double radius) {
  const double r = std::min({radius, box.width / 2, box.height / 2});
  cairo_new_path(cairo_.get());
  if (r <= 0) return cairo_rectangle(cairo_.get(), box.x, box.y, box.width, box.height);
  cairo_arc(cairo_.get(), box.right() - r, box.y + r, r, -QUARTER_TURN, 0);
  cairo_arc(cairo_.get(), box.right() - r, box.bottom() - r, r, 0, QUARTER_TURN);
  cairo_arc(cairo_.get(), box.x + r, box.bottom() - r, r, QUARTER_TURN, 2 * QUARTER_TURN);
  cairo_arc(cairo_.get(), box.x + r, box.y + r, r, 2 * QUARTER_TURN, 3 * QUARTER_TURN);
  cairo_close_path(cairo_.get());
}

void Brush::fill(const Box& box, Colour colour, double radius) {
  if (box.width <= 0 || box.height <= 0) return;
  setColour(colour);
  roundedPath(box, radius);
  cairo_fill(cairo_.get());
}

void Brush::image(const Bitmap& image, const Box& box, double radius) {
  if (!hasPixels(image) || box.width <= 0 || box.height <= 0) return;
  const double scale = std::min(box.width / image.size.width, box.height / image.size.height);
  const double width = image.size.width * scale;
  const double height = image.size.height * scale;
  paintImage(image, {box.middleX() - width / 2, box.middleY() - height / 2, width, height}, radius, scale);
}

void Brush::imageCovering(const Bitmap& image, const Box& box, double radius) {
  if (!hasPixels(image) || box.width <= 0 || box.height <= 0) return;
  paintImage(image, box, radius, std::max(box.width / image.size.width, box.height / image.size.height));
}

void Brush::paintImage(const Bitmap& image, const Box& box, double radius, double scale) {
  const Surface source = surfaceOver(image);
  cairo_save(cairo_.get());
  roundedPath(box, radius);
  cairo_translate(cairo_.get(), box.middleX() - image.size.width * scale / 2,
                  box.middleY() - image.size.height * scale / 2);
  cairo_scale(cairo_.get(), scale, scale);
  cairo_set_source_surface(cairo_.get(), source.get(), 0, 0);
  cairo_pattern_set_filter(cairo_get_source(cairo_.get()), CAIRO_FILTER_GOOD);
  cairo_pattern_set_extend(cairo_get_source(cairo_.get()), CAIRO_EXTEND_PAD);
  cairo_fill(cairo_.get());
  cairo_restore(cairo_.get());
}

void Brush::text(const std::string& words, const Box& box, const Type& type, Align align) {
  if (words.empty() || box.width <= 0) return;
  const Text text = layOut(cairo_.get(), words, type, box.width, align);
  show(text.get(), box, box.middleY() - pango_units_to_double(extentsOf(text.get()).height) / 2, type.colour);
}

double Brush::paragraph(const std::string& words, const Box& box, const Type& type, int lines, Align align) {
  if (words.empty() || box.width <= 0) return 0;
  const Text text = layOut(cairo_.get(), words, type, box.width, align);
  pango_layout_set_wrap(text.get(), PANGO_WRAP_WORD_CHAR);
  pango_layout_set_height(text.get(), -lines);
  show(text.get(), box, box.y, type.colour);
  return std::min(pango_units_to_double(extentsOf(text.get()).height), box.height);
}

void Brush::show(PangoLayout* text, const Box& box, double top, Colour colour) {
  cairo_save(cairo_.get());
  // Marks that are piled upon a letter reach as far as the phone likes.
  cairo_rectangle(cairo_.get(), box.x, box.y, box.width, box.height);
  cairo_clip(cairo_.get());
  setColour(colour);
  cairo_move_to(cairo_.get(), box.x, top);
  pango_cairo_show_layout(cairo_.get(), text);
  cairo_restore(cairo_.get());
}

double Brush::widthOf(const std::string& words, const Type& type) {
  return pango_units_to_double(extentsOf(layOut(cairo_.get(), words, type, -1, Align::left).get()).width);
}

cairo_t* Brush::line(Colour colour, double width) {
  setColour(colour);
  cairo_set_line_width(cairo_.get(), width);
  cairo_new_path(cairo_.get());
  return cairo_.get();
}

}  // namespace headunit::strip
