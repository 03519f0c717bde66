// usage: picture_counter FILE.png
// Prints the frame number that the phone simulator drew into the picture.
#include <cstdio>
#include <string>

#include "phone/media/Png.h"
#include "phone/media/TestPicture.h"

int main(int argc, char** argv) {
  if (argc != 2) return 1;
  std::string error;
  const auto picture = phone::readPicture(argv[1], &error);
  if (!picture) {
    std::fprintf(stderr, "%s\n", error.c_str());
    return 1;
  }
  const auto counter =
      phone::readCounterRgb(picture->rgb.data(), picture->width, picture->height, picture->stride());
  if (!counter) {
    std::fprintf(stderr, "%s shows no frame number\n", argv[1]);
    return 1;
  }
  std::printf("%u\n", *counter);
}
