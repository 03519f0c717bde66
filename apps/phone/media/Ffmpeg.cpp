#include "phone/media/Ffmpeg.h"

#include <array>

extern "C" {
#include <libavutil/error.h>
#include <libavutil/log.h>
}

namespace phone {

std::string ffmpegError(int number) {
  std::array<char, AV_ERROR_MAX_STRING_SIZE> text{};
  av_strerror(number, text.data(), text.size());
  return text.data();
}

std::string breakOff(const std::string& path, const std::string& problem) {
  return problem.empty() ? problem : "the file '" + path + "' breaks off: " + problem;
}

std::string notTurned(const std::string& path, int degrees, const std::string& reason) {
  return "The pictures of '" + path + "' are to be turned by " + std::to_string(degrees) +
         " degrees clockwise, and are shown unturned: " + reason + ".";
}

FramePtr makeYuvFrame(int width, int height) {
  FramePtr frame(av_frame_alloc());
  if (!frame) return nullptr;
  frame->format = AV_PIX_FMT_YUV420P;
  frame->width = width;
  frame->height = height;
  if (av_frame_get_buffer(frame.get(), 0) < 0) return nullptr;
  return frame;
}

void quietFfmpeg() {
  static const bool once = [] {
    av_log_set_level(AV_LOG_QUIET);
    return true;
  }();
  static_cast<void>(once);
}

}  // namespace phone
