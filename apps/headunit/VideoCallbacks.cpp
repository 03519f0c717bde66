#include "headunit/VideoCallbacks.h"

#include <spdlog/spdlog.h>

namespace headunit {
namespace {

// Far more than any codec's parameter sets take. A length that a phone only announces fills no memory here.
constexpr unsigned int LARGEST_CONFIGURATION = 64 * 1024;

}  // namespace

void VideoCallbacks::dataAvailable(int sessionId, unsigned long long timestamp,
                                   ::shared_ptr<IoBuffer> const& buffer, void* data, unsigned int length) {
  VideoFrame frame;
  frame.buffer = buffer;
  frame.offset = static_cast<unsigned int>(static_cast<unsigned char*>(data) - buffer->data);
  frame.length = length;
  frame.session = sessionId;
  frame.timestamp = timestamp;
  frame.times.read = transport_->lastReadAt();
  frame.times.received = Clock::now();
  pipeline_->receive(std::move(frame));
}

void VideoCallbacks::codecConfig(void* data, unsigned int length) {
  if (length > LARGEST_CONFIGURATION) {
    return spdlog::warn("The phone's codec configuration of {} bytes cannot be one; it is left out.", length);
  }
  const auto* const bytes = static_cast<const std::uint8_t*>(data);
  pipeline_->configure({{bytes, bytes + length}});
}

int VideoCallbacks::setup(int) { return 0; }

void VideoCallbacks::playbackStart(int sessionId) {
  spdlog::debug("The video starts, session {}.", sessionId);
  pipeline_->startOrStop();
}

void VideoCallbacks::playbackStop(int sessionId) {
  spdlog::debug("The video stops, session {}.", sessionId);
  pipeline_->startOrStop();
}

void VideoCallbacks::mediaConfiguration(int configurationIndex) {
  spdlog::debug("The phone chose video configuration {}.", configurationIndex);
}

// The whole screen is the phone's: it gets the focus that it asks for.
void VideoCallbacks::videoFocusRequest(int mode, int) { sink_->setVideoFocus(mode, false); }

}  // namespace headunit
