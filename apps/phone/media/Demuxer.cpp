#include "phone/media/Demuxer.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string_view>

extern "C" {
#include <libavutil/display.h>
#include <libavutil/parseutils.h>
}

namespace phone {
namespace {

constexpr AVRational MICROSECONDS{1, 1'000'000};
constexpr std::int64_t FARTHEST_US = 1'000'000'000'000'000;  // some 30 years

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

// A transport stream announces no end, but it is made of packets of one size, and FFmpeg passes over the rest
// of one.
bool endsInsideTransportPacket(const std::string& path, const AVFormatContext& format) {
  constexpr int packetSize = 188;
  constexpr char firstByte = 0x47;
  if (std::string_view(format.iformat->name) != "mpegts") return false;
  std::array<char, packetSize + 1> start{};
  std::ifstream file(path, std::ios::binary | std::ios::ate);
  const std::streamoff size = file.tellg();
  if (!file.seekg(0) || !file.read(start.data(), start.size())) return false;
  return start.front() == firstByte && start.back() == firstByte && size % packetSize != 0;
}

// Plain samples come in packets of any size: the last one is small, and no part of anything.
bool isWholeSamples(const AVCodecParameters& codec, const AVPacket& packet) {
  return av_get_bits_per_sample(codec.codec_id) > 0 && codec.block_align > 0 &&
         packet.size % codec.block_align == 0;
}

// A damaged file may tell any number; none of them may overflow what is computed from it.
std::int64_t microseconds(std::int64_t time, AVRational base) {
  return std::clamp(av_rescale_q(time, base, MICROSECONDS), -FARTHEST_US, FARTHEST_US);
}

// 0 if the container does not tell. What FFmpeg estimates from the file itself is no announcement.
std::int64_t announcedUs(const AVFormatContext& format, const AVStream& stream) {
  if (format.duration_estimation_method != AVFMT_DURATION_FROM_STREAM) return 0;
  if (stream.duration > 0) return microseconds(stream.duration, stream.time_base);
  std::int64_t tagged = 0;
  const AVDictionaryEntry* tag = av_dict_get(stream.metadata, "DURATION", nullptr, 0);
  if (tag != nullptr && av_parse_time(&tagged, tag->value, 1) >= 0) return tagged;
  // The whole file may have to be so long for another stream's sake.
  return format.nb_streams == 1 ? std::max<std::int64_t>(format.duration, 0) : 0;
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
  const bool isCut = endsInsideTransportPacket(path, *format);
  return std::unique_ptr<Demuxer>(new Demuxer(std::move(format), stream, isCut));
}

bool Demuxer::next(AVPacket* packet) {
  int result = 0;
  while ((result = av_read_frame(format_.get(), packet)) >= 0) {
    if (packet->stream_index == stream_) return note(*packet), true;
    av_packet_unref(packet);
  }
  result = troubleAtEnd(*format_, result);
  problem_ = result < 0 ? ffmpegError(result) : shortfall();
  return false;
}

void Demuxer::note(const AVPacket& packet) {
  isLastPart_ = (packet.flags & AV_PKT_FLAG_CORRUPT) != 0 && !isWholeSamples(*stream().codecpar, packet);
  const std::int64_t time = packet.pts != AV_NOPTS_VALUE ? packet.pts : packet.dts;
  if (time == AV_NOPTS_VALUE) return;
  endUs_ = std::max(
      endUs_, microseconds(time, stream().time_base) + microseconds(packet.duration, stream().time_base));
}

// Some containers round what they announce, or count pictures that are left out.
std::string Demuxer::shortfall() const {
  constexpr std::int64_t slackUs = 1'000'000;
  const std::int64_t announced = announcedUs(*format_, stream());
  if (announced / 100 * 99 - slackUs <= endUs_) {
    return isLastPart_ || isCut_ ? "it ends in the middle of what it holds" : "";
  }
  std::array<char, 100> text{};
  std::snprintf(text.data(), text.size(), "it ends after %.1f s of the %.1f s that it announces",
                static_cast<double>(endUs_) / 1e6, static_cast<double>(announced) / 1e6);
  return text.data();
}

int Demuxer::turn() const {
  std::size_t size = 0;
  const std::uint8_t* const matrix = av_stream_get_side_data(&stream(), AV_PKT_DATA_DISPLAYMATRIX, &size);
  if (matrix == nullptr || size < 9 * sizeof(std::int32_t)) return 0;
  const double back = av_display_rotation_get(reinterpret_cast<const std::int32_t*>(matrix));
  return std::isfinite(back) ? (static_cast<int>(std::lround(-back)) % 360 + 360) % 360 : 0;
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
