#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>

namespace headunit {

/// Writes signed 16-bit samples as a WAVE file. The header tells the length up to the last `flush`, of which
/// there is one at creation and one at destruction: of a program that is killed the file can be read, but it
/// tells of no samples.
class WavWriter {
 public:
  /// Null on failure, with the reason in `*error`.
  static std::unique_ptr<WavWriter> create(const std::string& path, unsigned int rate, unsigned int channels,
                                           std::string* error);
  ~WavWriter() { flush(); }

  /// Returns false if the disk takes no more; the file then stays as it was after the last flush.
  bool write(const std::int16_t* samples, std::size_t count);
  void flush();

 private:
  struct Close {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };

  WavWriter(std::FILE* file, unsigned int rate, unsigned int channels)
      : file_(file), rate_(rate), channels_(channels) {}
  void writeHeader();

  std::unique_ptr<std::FILE, Close> file_;
  const unsigned int rate_;
  const unsigned int channels_;
  std::uint32_t bytes_ = 0;
};

}  // namespace headunit
