#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <utility>

namespace headunit {

/// Writes signed 16-bit samples as a WAVE file. The header tells the length up to the last `flush`, of which
/// there is one at creation and one at destruction: of a program that is killed the file can be read, but it
/// tells of no samples.
class WavWriter {
 public:
  /// Null on failure, with the reason in `*error`.
  static std::unique_ptr<WavWriter> create(const std::string& path, unsigned int rate, unsigned int channels,
                                           std::string* error);
  ~WavWriter();

  /// Returns false, with the reason in `*error`, if the disk takes no more; what was written before stays.
  bool write(const std::int16_t* samples, std::size_t count, std::string* error);
  void flush();
  /// Flushes for the last time; nothing is written afterwards. False, with the reason in `*error`, if the
  /// file is not whole.
  bool close(std::string* error);

 private:
  struct Close {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };

  WavWriter(std::string path, std::FILE* file, unsigned int rate, unsigned int channels)
      : path_(std::move(path)), file_(file), rate_(rate), channels_(channels) {}
  bool writeHeader();
  bool told(bool succeeds, std::string* error) const;

  const std::string path_;
  std::unique_ptr<std::FILE, Close> file_;  // null once it is closed
  const unsigned int rate_;
  const unsigned int channels_;
  std::uint32_t bytes_ = 0;
};

}  // namespace headunit
