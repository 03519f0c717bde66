#include "phone/media/Demuxer.h"

#include <filesystem>
#include <string_view>

namespace phone {
namespace {

bool isRegularFile(const std::string& path, std::string* error) {
  std::error_code failure;
  const auto status = std::filesystem::status(path, failure);
  if (!std::filesystem::exists(status)) {
    *error = "The file '" + path + "' cannot be opened: " +
             (failure ? failure.message() : std::string("no such file or directory")) + ".";
    return false;
  }
  if (std::filesystem::is_directory(status)) {
    *error = "'" + path + "' is a folder, not a file.";
    return false;
  }
  // A pipe or a device could keep us waiting for ever, and cannot start again.
  if (!std::filesystem::is_regular_file(status)) {
    *error = "'" + path + "' is no ordinary file.";
    return false;
  }
  return true;
}

// FFmpeg "plays" plain text as the picture of an old terminal; nobody who names a text file means that.
bool isTextAsPicture(const AVFormatContext& format) {
  const std::string_view name = format.iformat->name;
  for (const char* text : {"tty", "bin", "xbin", "adf", "idf"}) {
    if (name == text) return true;
  }
  return false;
}

FormatPtr openFormat(const std::string& path, std::string* error) {
  AVFormatContext* raw = nullptr;
  // The explicit protocol keeps a colon in a file name from being taken for one.
  int result = avformat_open_input(&raw, ("file:" + path).c_str(), nullptr, nullptr);
  FormatPtr format(raw);
  if (result >= 0 && isTextAsPicture(*format)) result = AVERROR_INVALIDDATA;
  if (result >= 0) result = avformat_find_stream_info(format.get(), nullptr);
  if (result >= 0) return format;
  if (result == AVERROR_INVALIDDATA || result == AVERROR_EOF) {
    *error = "The file '" + path + "' is not a media file that can be read.";
  } else {
    *error = "The file '" + path + "' cannot be opened: " + ffmpegError(result) + ".";
  }
  return nullptr;
}

// What reading came to; 0 for the end of the file. Some formats take a failed read for the end, and some tell
// the end as a failed read: whether one failed, the input itself knows.
int troubleAtEnd(const AVFormatContext& format, int result) {
  const AVIOContext* input = format.pb;
  if (input != nullptr && input->error < 0 && input->error != AVERROR_EOF) return input->error;
  const bool atEnd = input != nullptr && input->eof_reached != 0;
  return result == AVERROR_EOF || (result == AVERROR(EIO) && atEnd) ? 0 : result;
}

}  // namespace

std::unique_ptr<Demuxer> Demuxer::open(const std::string& path, AVMediaType kind, std::string* error) {
  quietFfmpeg();
  if (!isRegularFile(path, error)) return nullptr;
  FormatPtr format = openFormat(path, error);
  if (!format) return nullptr;
  const int stream = av_find_best_stream(format.get(), kind, -1, -1, nullptr, 0);
  if (stream < 0 || (format->streams[stream]->disposition & AV_DISPOSITION_ATTACHED_PIC) != 0) {
    *error = "The file '" + path + "' holds no " + (kind == AVMEDIA_TYPE_VIDEO ? "video." : "sound.");
    return nullptr;
  }
  for (unsigned int i = 0; i < format->nb_streams; ++i) {
    if (static_cast<int>(i) != stream) format->streams[i]->discard = AVDISCARD_ALL;
  }
  return std::unique_ptr<Demuxer>(new Demuxer(std::move(format), stream));
}

bool Demuxer::next(AVPacket* packet) {
  int result = 0;
  while ((result = av_read_frame(format_.get(), packet)) >= 0) {
    if (packet->stream_index == stream_) return true;
    av_packet_unref(packet);
  }
  problem_ = troubleAtEnd(*format_, result);
  return false;
}

std::string Demuxer::tag(const char* name) const {
  for (const AVDictionary* tags : {format_->metadata, stream().metadata}) {
    const AVDictionaryEntry* entry = av_dict_get(tags, name, nullptr, 0);
    if (entry != nullptr && *entry->value != '\0') return entry->value;
  }
  return {};
}

AVRational Demuxer::frameRate(int fallback) const {
  const AVRational rate = av_guess_frame_rate(format_.get(), format_->streams[stream_], nullptr);
  return rate.num > 0 && rate.den > 0 ? rate : AVRational{fallback, 1};
}

}  // namespace phone
