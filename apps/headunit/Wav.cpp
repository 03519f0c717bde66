#include "headunit/Wav.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <vector>

namespace headunit {
namespace {

constexpr std::uint32_t HEADER = 44;
constexpr std::uint32_t SAMPLE = 2;

// Null with errno on failure: ESPIPE for a pipe, since the length at the beginning is written at the end.
std::FILE* openFile(const std::string& path) {
  // Nobody is waited for who might come to read a pipe.
  const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOCTTY | O_NONBLOCK, 0666);
  if (file < 0 && errno == ENXIO) errno = ESPIPE;
  if (file < 0) return nullptr;
  if (lseek(file, 0, SEEK_CUR) == 0) return fdopen(file, "wb");
  close(file);
  errno = ESPIPE;
  return nullptr;
}

}  // namespace

std::unique_ptr<WavWriter> WavWriter::create(const std::string& path, unsigned int rate,
                                             unsigned int channels, std::string* error) {
  std::FILE* const file = openFile(path);
  if (file == nullptr) {
    *error = "cannot write " + path + ": " +
             (errno == ESPIPE ? "a WAVE file cannot be a pipe" : std::strerror(errno));
    return nullptr;
  }
  // What the disk has not taken must not stand in the way of the header.
  std::setvbuf(file, nullptr, _IONBF, 0);
  std::unique_ptr<WavWriter> writer(new WavWriter(path, file, rate, channels));
  if (!writer->told(writer->writeHeader(), error)) return nullptr;
  return writer;
}

WavWriter::~WavWriter() {
  if (file_) flush();
}

bool WavWriter::write(const std::int16_t* samples, std::size_t count, std::string* error) {
  if (bytes_ > UINT32_MAX - HEADER - count * SAMPLE) {
    errno = EFBIG;
    return told(false, error);
  }
  std::vector<unsigned char> bytes(count * SAMPLE);
  for (std::size_t i = 0; i < count; ++i) {
    bytes[2 * i] = static_cast<unsigned char>(samples[i] & 0xff);
    bytes[2 * i + 1] = static_cast<unsigned char>(samples[i] >> 8 & 0xff);
  }
  if (std::fwrite(bytes.data(), 1, bytes.size(), file_.get()) != bytes.size()) return told(false, error);
  bytes_ += static_cast<std::uint32_t>(bytes.size());
  return true;
}

void WavWriter::flush() { writeHeader(); }

bool WavWriter::close(std::string* error) {
  const bool written = writeHeader();
  return told(std::fclose(file_.release()) == 0 && written, error);
}

bool WavWriter::told(bool succeeds, std::string* error) const {
  if (!succeeds) *error = "cannot write " + path_ + ": " + std::strerror(errno);
  return succeeds;
}

//   0       4          8       12      16  20     22        24    28           32     34    36      40
//   "RIFF"  size - 8   "WAVE"  "fmt "  16  1 PCM  channels  rate  bytes per s  frame  bits  "data"  bytes
bool WavWriter::writeHeader() {
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
  const bool written = std::fwrite(header.data(), 1, header.size(), file_.get()) == header.size();
  std::fseek(file_.get(), 0, SEEK_END);
  return written;
}

}  // namespace headunit
