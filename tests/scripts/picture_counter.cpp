// usage: picture_counter FILE.png [touches]
// Prints the frame number that the phone simulator drew into the picture, or how many touches it had heard
// of. The picture may be a car's whole screen, on which the phone's stands at the left, in its own size.
#include <cstdio>
#include <string>
#include <utility>

#include "phone/media/Png.h"
#include "phone/media/TestPicture.h"

namespace {

// Whatever stands on the right of it is the car's.
int phonesWidth(const phone::RgbPicture& screen) {
  for (const auto& [width, height] : {std::pair(800, 480), {1280, 720}, {1920, 1080}}) {
    if (screen.height == height && screen.width > width) return width;
  }
  return screen.width;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2 && (argc != 3 || argv[2] != std::string("touches"))) return 1;
  std::string error;
  const auto picture = phone::readPicture(argv[1], &error);
  if (!picture) {
    std::fprintf(stderr, "%s\n", error.c_str());
    return 1;
  }
  const int width = phonesWidth(*picture);
  const auto counter = phone::readCounterRgb(picture->rgb.data(), width, picture->height, picture->stride());
  if (!counter) {
    std::fprintf(stderr, "%s shows no frame number\n", argv[1]);
    return 1;
  }
  if (argc == 2) {
    std::printf("%u\n", *counter);
    return 0;
  }
  const auto touches = phone::readTouchesRgb(picture->rgb.data(), width, picture->height, picture->stride());
  if (!touches) {
    std::fprintf(stderr, "%s shows no touches\n", argv[1]);
    return 1;
  }
  std::printf("%u\n", touches->sequence);
}
