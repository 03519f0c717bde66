#include "phone/media/Wav.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace phone {
namespace {

// A WAVE file as written here; all numbers are little-endian.
//
//      0  "RIFF"   4  size of all that follows   8  "WAVE"
//     12  "fmt "  16  16: size of this chunk    20  1: PCM       22  channels
//     24  samples a second   28  bytes a second  32  bytes a sample of all channels  34  16: bits
//     36  "data"  40  size of the samples       44  samples
constexpr std::int64_t HEADER_SIZE = 44;
constexpr std::int64_t MOST_DATA = 0xffffffff - HEADER_SIZE;
constexpr unsigned int PCM = 1;
constexpr unsigned int EXTENSIBLE = 0xfffe;  // the true format then starts the GUID at byte 24 of the chunk

class Header {
 public:
  void text(const char* four) {
    std::memcpy(bytes_.data() + at_, four, 4);
    at_ += 4;
  }
  void number(std::int64_t value, std::size_t size) {
    for (std::size_t i = 0; i < size; ++i) bytes_[at_++] = static_cast<std::uint8_t>(value >> (8 * i));
  }
  const std::uint8_t* data() const { return bytes_.data(); }

 private:
  std::array<std::uint8_t, HEADER_SIZE> bytes_{};
  std::size_t at_ = 0;
};

unsigned int readNumber(const std::uint8_t* bytes, std::size_t size) {
  unsigned int value = 0;
  for (std::size_t i = 0; i < size; ++i) value |= static_cast<unsigned int>(bytes[i]) << (8 * i);
  return value;
}

struct Chunk {
  const std::uint8_t* data = nullptr;
  std::size_t size = 0;
};

// The first chunk of this name, as much of it as is there.
Chunk findChunk(const std::vector<std::uint8_t>& file, const char* name) {
  std::size_t at = 12;
  while (at + 8 <= file.size()) {
    const std::size_t size = readNumber(file.data() + at + 4, 4);
    const std::size_t there = std::min(size, file.size() - at - 8);
    if (std::memcmp(file.data() + at, name, 4) == 0) return {file.data() + at + 8, there};
    at += 8 + size + size % 2;
  }
  return {};
}

bool isWave(const std::vector<std::uint8_t>& file) {
  return file.size() >= 12 && std::memcmp(file.data(), "RIFF", 4) == 0 &&
         std::memcmp(file.data() + 8, "WAVE", 4) == 0;
}

bool isPcm16(const Chunk& format) {
  if (format.size < 16 || readNumber(format.data + 14, 2) != 16) return false;
  const unsigned int tag = readNumber(format.data, 2);
  return tag == PCM || (tag == EXTENSIBLE && format.size >= 26 && readNumber(format.data + 24, 2) == PCM);
}

}  // namespace

std::unique_ptr<WavWriter> WavWriter::create(const std::string& path, int sampleRate, int channels,
                                             std::string* error) {
  std::FILE* file = std::fopen(path.c_str(), "wb");
  if (file == nullptr) {
    *error = "The file '" + path + "' cannot be written: " + std::strerror(errno) + ".";
    return nullptr;
  }
  std::unique_ptr<WavWriter> writer(new WavWriter(file, sampleRate, channels));
  if (!writer->writeHeader()) {
    *error = "The file '" + path + "' cannot be written: " + std::strerror(errno) + ".";
    return nullptr;
  }
  return writer;
}

bool WavWriter::writeHeader() {
  const int frameSize = 2 * channels_;
  Header header;
  header.text("RIFF");
  header.number(HEADER_SIZE - 8 + dataBytes_, 4);
  header.text("WAVE");
  header.text("fmt ");
  header.number(16, 4);
  header.number(PCM, 2);
  header.number(channels_, 2);
  header.number(sampleRate_, 4);
  header.number(static_cast<std::int64_t>(sampleRate_) * frameSize, 4);
  header.number(frameSize, 2);
  header.number(16, 2);
  header.text("data");
  header.number(dataBytes_, 4);
  std::FILE* file = file_.get();
  return std::fseek(file, 0, SEEK_SET) == 0 && std::fwrite(header.data(), HEADER_SIZE, 1, file) == 1 &&
         std::fflush(file) == 0;
}

bool WavWriter::write(const void* samples, std::size_t length) {
  if (length == 0) return true;
  if (static_cast<std::int64_t>(length) > MOST_DATA - dataBytes_) return false;
  // The samples reach the file before the header that counts them.
  std::FILE* file = file_.get();
  if (std::fseek(file, static_cast<long>(HEADER_SIZE + dataBytes_), SEEK_SET) != 0) return false;
  if (std::fwrite(samples, length, 1, file) != 1 || std::fflush(file) != 0) return false;
  dataBytes_ += static_cast<std::int64_t>(length);
  return writeHeader();
}

std::optional<WavAudio> readWav(const std::string& path, std::string* error) {
  std::ifstream stream(path, std::ios::binary);
  if (!stream || std::filesystem::is_directory(path)) {
    *error = "The file '" + path + "' cannot be read: " + std::strerror(stream ? EISDIR : errno) + ".";
    return {};
  }
  const std::vector<std::uint8_t> file{std::istreambuf_iterator<char>(stream), {}};
  const Chunk format = isWave(file) ? findChunk(file, "fmt ") : Chunk{};
  if (!isPcm16(format)) {
    *error = "The file '" + path + "' is no WAVE file of 16-bit samples.";
    return {};
  }
  WavAudio audio;
  audio.channels = static_cast<int>(readNumber(format.data + 2, 2));
  audio.sampleRate = static_cast<int>(readNumber(format.data + 4, 4));
  const Chunk data = findChunk(file, "data");
  if (audio.channels < 1 || audio.sampleRate < 1 || data.data == nullptr) {
    *error = "The WAVE file '" + path + "' is damaged.";
    return {};
  }
  const std::size_t frame = 2 * static_cast<std::size_t>(audio.channels);
  for (std::size_t i = 0; i + 2 <= data.size / frame * frame; i += 2) {
    audio.samples.push_back(static_cast<std::int16_t>(readNumber(data.data + i, 2)));
  }
  return audio;
}

}  // namespace phone
