#include "phone/media/CityMap.h"

#include <array>
#include <cmath>
#include <cstring>

namespace phone {
namespace {

constexpr float WIDTH = 1280;  // map units
constexpr float HEIGHT = 896;
constexpr float STREET = 9;  // half a street's width

constexpr std::array<float, 9> STREETS_DOWN{0, 148, 330, 474, 640, 806, 960, 1118, 1280};
constexpr std::array<float, 8> STREETS_ACROSS{0, 130, 262, 400, 536, 680, 790, 896};
constexpr std::array<float, 2> AVENUES_DOWN{330, 960};
constexpr std::array<float, 2> AVENUES_ACROSS{130, 680};

constexpr Colour GROUND = colour(0x2a3240);
constexpr Colour BLOCK = colour(0x1a212c);
constexpr Colour HOUSE = colour(0x232c39);
constexpr Colour PARK = colour(0x17352f);
constexpr Colour TREE = colour(0x1e463c);
constexpr Colour WATER = colour(0x12304a);
constexpr Colour AVENUE = colour(0x46536a);
constexpr Colour ROUTE_EDGE = colour(0x1c4f9c);
constexpr Colour ROUTE = colour(0x3f9bff);

// The same "random" number from 0 to 1 for the same place.
float noise(int x, int y, int salt) {
  const auto part = [](int value, std::uint32_t factor) {
    return static_cast<std::uint32_t>(value) * factor;
  };
  std::uint32_t bits = part(x, 374761393U) + part(y, 668265263U) + part(salt, 362437U);
  bits = (bits ^ bits >> 13) * 1274126177U;
  return static_cast<float>((bits ^ bits >> 16) & 0xffff) / 65535.0F;
}

int evenSize(float length) { return 2 * static_cast<int>(std::lround(length / 2)); }

}  // namespace

CityMap::CityMap(const Route& route, float scale)
    : scale_(scale), width_(evenSize(WIDTH * scale)), height_(evenSize(HEIGHT * scale)) {
  Canvas canvas(width_, height_, true);
  canvas.fill(GROUND);
  paintBlocks(&canvas);
  paintWater(&canvas);
  paintAvenues(&canvas);
  paintRoute(&canvas, route);
  keepPlanes(canvas);
}

void CityMap::paintBlocks(Canvas* canvas) const {
  for (std::size_t i = 0; i + 1 < STREETS_DOWN.size(); ++i) {
    for (std::size_t j = 0; j + 1 < STREETS_ACROSS.size(); ++j) {
      const Point low = Point{STREETS_DOWN[i], STREETS_ACROSS[j]} + Point{STREET, STREET};
      const Point high = Point{STREETS_DOWN[i + 1], STREETS_ACROSS[j + 1]} - Point{STREET, STREET};
      const int x = static_cast<int>(i);
      const int y = static_cast<int>(j);
      const bool park = noise(x, y, 1) > 0.84F;
      canvas->paint(RoundedBox{low * scale_, high * scale_, 8 * scale_}, park ? PARK : BLOCK);
      for (int k = 0; k < 12; ++k) {
        const Point cell{(high.x - low.x) / 4, (high.y - low.y) / 3};
        const Point at = low + Point{static_cast<float>(k % 4) * cell.x, static_cast<float>(k / 4) * cell.y};
        const float size = 0.25F + 0.55F * noise(x * 31 + k, y * 17, 2);
        if (noise(x * 13 + k, y * 7 + k, 3) < 0.25F) continue;
        const Point a = at + cell * 0.12F;
        const Point b = a + Point{cell.x * size, cell.y * (0.9F - 0.4F * size)};
        if (park) {
          canvas->paint(Capsule{(a + b) * (0.5F * scale_), (a + b) * (0.5F * scale_), 7 * scale_ * size},
                        TREE);
        } else {
          canvas->paint(RoundedBox{a * scale_, b * scale_, 2 * scale_}, HOUSE);
        }
      }
    }
  }
}

void CityMap::paintWater(Canvas* canvas) const {
  Mask river(width_, height_, true);
  constexpr int PIECES = 64;
  const auto bank = [this](int i) {
    const float t = static_cast<float>(i) / PIECES;
    const float swing = std::sin(t * 6.2831853F) * 46 + std::sin(t * 12.566371F + 1) * 22;
    return Point{t * WIDTH, 600 + swing} * scale_;
  };
  for (int i = 0; i < PIECES; ++i) river.add(Capsule{bank(i), bank(i + 1), 27 * scale_});
  canvas->paint(river, WATER);
}

void CityMap::paintAvenues(Canvas* canvas) const {
  Mask avenues(width_, height_, true);
  Mask bridges(width_, height_, true);
  const float half = STREET * 1.25F * scale_;
  const auto down = [&](float x, float from, float to) {
    return Capsule{Point{x, from} * scale_, Point{x, to} * scale_, STREET * scale_};
  };
  for (const float x : STREETS_DOWN) bridges.add(down(x, 500, 700));
  for (const float x : AVENUES_DOWN)
    avenues.add(Capsule{Point{x, 0} * scale_, Point{x, HEIGHT} * scale_, half});
  for (const float y : AVENUES_ACROSS) {
    avenues.add(Capsule{Point{0, y} * scale_, Point{WIDTH, y} * scale_, half});
  }
  canvas->paint(bridges, GROUND);
  canvas->paint(avenues, AVENUE);
}

void CityMap::paintRoute(Canvas* canvas, const Route& route) const {
  Mask edge(width_, height_, true);
  Mask line(width_, height_, true);
  const std::vector<Route::Step>& steps = route.steps();
  for (std::size_t i = 1; i < steps.size(); ++i) {
    const Point from = steps[i - 1].at * scale_;
    const Point to = steps[i].at * scale_;
    edge.add(Capsule{from, to, 8 * scale_});
    line.add(Capsule{from, to, 5 * scale_});
  }
  canvas->paint(edge, ROUTE_EDGE);
  canvas->paint(line, ROUTE);
}

void CityMap::keepPlanes(const Canvas& canvas) {
  for (int y = 0; y < height_; ++y) {
    for (int x = 0; x < width_; ++x) luma_.push_back(canvas.at(x, y).y);
  }
  for (int phase = 0; phase < 4; ++phase) {
    for (int y = phase / 2; y < height_ + phase / 2; y += 2) {
      for (int x = phase % 2; x < width_ + phase % 2; x += 2) {
        int u = 2;
        int v = 2;
        for (int i = 0; i < 4; ++i) {
          const Canvas::Pixel& p = canvas.at((x + i % 2) % width_, (y + i / 2) % height_);
          u += p.u;
          v += p.v;
        }
        chroma_[0][phase].push_back(static_cast<std::uint8_t>(u / 4));
        chroma_[1][phase].push_back(static_cast<std::uint8_t>(v / 4));
      }
    }
  }
}

void CityMap::draw(const YuvView& picture, int rows, Point position, Point centre) const {
  const auto wrap = [](float offset, int size) {
    const int pixel = static_cast<int>(std::lround(offset)) % size;
    return pixel < 0 ? pixel + size : pixel;
  };
  const int left = wrap(position.x * scale_ - centre.x, width_);
  const int top = wrap(position.y * scale_ - centre.y, height_);
  const int phase = top % 2 * 2 + left % 2;
  for (int plane = 0; plane < 3; ++plane) {
    const int step = plane == 0 ? 1 : 2;
    const std::vector<std::uint8_t>& map = plane == 0 ? luma_ : chroma_[plane - 1][phase];
    const int mapWidth = width_ / step;
    for (int y = 0; y < rows / step; ++y) {
      const std::uint8_t* from = map.data() + (top / step + y) % (height_ / step) * mapWidth;
      std::uint8_t* to = picture.row(plane, y);
      int at = left / step;
      for (int x = 0; x < picture.width / step;) {
        const int run = std::min(mapWidth - at, picture.width / step - x);
        std::memcpy(to + x, from + at, static_cast<std::size_t>(run));
        x += run;
        at = 0;
      }
    }
  }
}

}  // namespace phone
