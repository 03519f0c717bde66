#pragma once

#include <cstdint>
#include <functional>
#include <mutex>
#include <vector>

#include "headunit/PacedThread.h"

namespace headunit {

/// The one format in which the car's microphone is offered: mono, signed 16-bit samples.
constexpr unsigned int MICROPHONE_RATE = 16000;
/// What is sent at once: 20 ms.
constexpr std::size_t MICROPHONE_BLOCK = MICROPHONE_RATE / 50;

/// What the driver says. One for the whole run of the program; it listens only while it is open.
class Microphone {
 public:
  /// Gets MICROPHONE_BLOCK samples on a thread of the microphone's; returns whether they could be sent.
  using Take = std::function<bool(const std::int16_t* samples)>;

  virtual ~Microphone() = default;

  /// Any thread. Returns false if it cannot listen.
  virtual bool open(Take take) = 0;

  /// Any thread: `take` is not called any more once this has returned.
  virtual void close() = 0;
};

/// Says what has been recorded, in real time and once each time it is opened. What cannot be sent now waits.
class RecordedMicrophone : public Microphone, public PacedTask {
 public:
  /// The last block is filled up with silence.
  explicit RecordedMicrophone(std::vector<std::int16_t> samples);

  bool open(Take take) override;
  void close() override;
  TimePoint act(TimePoint now) override;

 private:
  std::vector<std::int16_t> samples_;
  std::mutex mutex_;
  Take take_;
  std::size_t position_ = 0;
  bool fresh_ = false;  // opened since the last call
  TimePoint next_;
};

}  // namespace headunit
