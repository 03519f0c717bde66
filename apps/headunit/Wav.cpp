#include "headunit/Wav.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <vector>

namespace headunit {
namespace {

constexpr std::uint32_t HEADER = 44;
constexpr std::uint32_t SAMPLE = 2;

}  // namespace

std::unique_ptr<WavWriter> WavWriter::create(const std::string& path, unsigned int rate,
                                             unsigned int channels, std::string* error) {
  std::FILE* const file = std::fopen(path.c_str(), "wb");
  if (file == nullptr) {
    *error = "cannot write " + path + ": " + std::strerror(errno);
    return nullptr;
  }
  std::unique_ptr<WavWriter> writer(new WavWriter(file, rate, channels));
  writer->flush();
  return writer;
}

bool WavWriter::write(const std::int16_t* samples, std::size_t count) {
  if (bytes_ > UINT32_MAX - HEADER - count * SAMPLE) return false;
  std::vector<unsigned char> bytes(count * SAMPLE);
  for (std::size_t i = 0; i < count; ++i) {
    bytes[2 * i] = static_cast<unsigned char>(samples[i] & 0xff);
    bytes[2 * i + 1] = static_cast<unsigned char>(samples[i] >> 8 & 0xff);
  }
  if (std::fwrite(bytes.data(), 1, bytes.size(), file_.get()) != bytes.size()) return false;
  bytes_ += static_cast<std::uint32_t>(bytes.size());
  return true;
}

void WavWriter::flush() {
  writeHeader();
  std::fflush(file_.get());
}

//   0       4          8       12      16  20     22        24    28           32     34    36      40
//   "RIFF"  size - 8   "WAVE"  "fmt "  16  1 PCM  channels  rate  bytes per s  frame  bits  "data"  bytes
void WavWriter::writeHeader() {
  std::array<unsigned char, HEADER> header{};
  const auto text = [&](std::size_t at, const char* word) { std::memcpy(&header[at], word, 4); };
  const auto number = [&](std::size_t at, std::size_t size, std::uint32_t value) {
    for (std::size_t i = 0; i < size; ++i) header[at + i] = static_cast<unsigned char>(value >> 8 * i & 0xff);
  };
  text(0, "RIFF"), number(4, 4, HEADER - 8 + bytes_), text(8, "WAVE");
  text(12, "fmt "), number(16, 4, 16), number(20, 2, 1), number(22, 2, channels_), number(24, 4, rate_);
  number(28, 4, rate_ * channels_ * SAMPLE), number(32, 2, channels_ * SAMPLE), number(34, 2, 8 * SAMPLE);
  text(36, "data"), number(40, 4, bytes_);
  std::fseek(file_.get(), 0, SEEK_SET);
  std::fwrite(header.data(), 1, header.size(), file_.get());
  std::fseek(file_.get(), 0, SEEK_END);
}

}  // namespace headunit
