#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace phone {

/// Writes signed 16-bit PCM to a RIFF/WAVE file. The file is whole after every `write`: a process that is
/// killed leaves one that players open. Not thread-safe.
class WavWriter {
 public:
  /// Creates or replaces `path`. Null on failure, with a whole sentence for the user in `*error`.
  static std::unique_ptr<WavWriter> create(const std::string& path, int sampleRate, int channels,
                                           std::string* error);

  /// Appends interleaved little-endian samples; `length` is in bytes, a multiple of 2 * channels. False when
  /// the disk is full or the file would pass the format's 4 GiB; what was written before stays valid.
  [[nodiscard]] bool write(const void* samples, std::size_t length);

  std::int64_t bytesWritten() const { return dataBytes_; }

 private:
  struct Close {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };

  WavWriter(std::FILE* file, int sampleRate, int channels)
      : file_(file), sampleRate_(sampleRate), channels_(channels) {}
  bool writeHeader();

  std::unique_ptr<std::FILE, Close> file_;
  int sampleRate_;
  int channels_;
  std::int64_t dataBytes_ = 0;
};

struct WavAudio {
  int sampleRate = 0;
  int channels = 0;
  std::vector<std::int16_t> samples;  // interleaved
};

/// Reads a whole WAVE file of 16-bit PCM; one cut short gives the samples that are there. Nothing on failure,
/// with a whole sentence for the user in `*error`.
std::optional<WavAudio> readWav(const std::string& path, std::string* error);

}  // namespace phone
