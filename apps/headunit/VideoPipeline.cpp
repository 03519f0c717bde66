#include "headunit/VideoPipeline.h"

#include <spdlog/spdlog.h>

#include <exception>

namespace headunit {
namespace {

constexpr std::size_t QUEUE_LIMIT = 256;
constexpr std::size_t MOST_BYTES_WAITING = 64U << 20;
// A whole picture of the largest size offered takes less, uncompressed. A length is only what the phone
// announced; decoders take no more than an int can tell.
constexpr unsigned int LONGEST_FRAME = 8U << 20;
constexpr std::uint64_t FAULTS_TOLD = 3;  // a damaged stream has one in each frame

}  // namespace

VideoPipeline::VideoPipeline(std::unique_ptr<VideoDecoder> decoder, Ends ends)
    : ends_(std::move(ends)),
      decoder_(std::move(decoder)),
      queue_({QUEUE_LIMIT, MOST_BYTES_WAITING}),
      thread_([this] { run(); }) {}

void VideoPipeline::configure(CodecConfig config) {
  if (!queue_.push(std::move(config))) spdlog::warn("A codec configuration of the phone's finds no room.");
}

void VideoPipeline::startOrStop() {
  if (!queue_.push(StreamBoundary())) spdlog::debug("A start or stop of the phone's video finds no room.");
}

void VideoPipeline::receive(VideoFrame frame) {
  ends_.stats->received(frame);
  const int session = frame.session;
  if (frame.length <= LONGEST_FRAME && queue_.push(std::move(frame))) return;
  ends_.stats->refused();
  ends_.acknowledge(session, 1);
}

void VideoPipeline::abandon() {
  for (std::size_t left = queue_.drop(); left > 0; --left) ends_.stats->refused();
  finish();
}

void VideoPipeline::finish() {
  queue_.close();
  if (thread_.joinable()) thread_.join();
}

void VideoPipeline::run() {
  for (VideoItem item; queue_.pop(&item);
       item = CodecConfig()) {  // a frame is not held on to while none comes
    if (auto* const config = std::get_if<CodecConfig>(&item)) {
      decoder_->configure(*config);
    } else if (auto* const frame = std::get_if<VideoFrame>(&item)) {
      decode(std::move(*frame));
    } else {
      forgetFaults();
    }
  }
  for (const std::string& fault : decoder_->finish([this](Picture picture) { show(std::move(picture)); })) {
    count(fault);
  }
}

void VideoPipeline::decode(VideoFrame frame) {
  frame.times.dequeued = Clock::now();
  const int session = frame.session;
  const TimePoint received = frame.times.received;
  std::string fault;
  try {
    fault = decoder_->decode(std::move(frame), [this](Picture picture) { show(std::move(picture)); });
  } catch (const std::exception& error) {
    fault = error.what();
  }
  if (!fault.empty()) remark(fault, received);
  ends_.acknowledge(session, 1);
}

void VideoPipeline::show(Picture picture) {
  forgetFaults();
  if (!ends_.budget->spend()) return;
  picture.stats = ends_.stats;
  ends_.stats->decoded(picture.times, picture.width, picture.height);
  if (ends_.slot->put(std::move(picture))) ends_.stats->dropped();
  if (ends_.budget->exhausted()) ends_.changed();
}

// One damaged frame and a lull behind it are no failing stream: nothing says that the next frame is damaged,
// too. So the time goes on only with the frames.
void VideoPipeline::remark(const std::string& fault, TimePoint received) {
  if (!firstFault_) firstFault_ = received;
  failingFor_ = (received - *firstFault_).count();
  count(fault);
  ends_.changed();
}

void VideoPipeline::count(const std::string& fault) {
  ends_.stats->damaged();
  if (++faults_ > FAULTS_TOLD) return;
  spdlog::warn("The phone's video is damaged: {}{}", fault,
               faults_ == FAULTS_TOLD ? " (further damage is only counted)" : "");
}

void VideoPipeline::forgetFaults() {
  firstFault_.reset();
  failingFor_ = 0;
}

}  // namespace headunit
