#include "Log.h"

#include <gmock/gmock.h>

namespace test {
namespace {

TEST(LogTest, NamesEveryAudioFocusRequest) {
  EXPECT_STREQ(Log::getAudioFocusRequestTypeString(AUDIO_FOCUS_GAIN), "AUDIO_FOCUS_GAIN");
  EXPECT_STREQ(Log::getAudioFocusRequestTypeString(AUDIO_FOCUS_GAIN_TRANSIENT), "AUDIO_FOCUS_GAIN_TRANSIENT");
  EXPECT_STREQ(Log::getAudioFocusRequestTypeString(AUDIO_FOCUS_GAIN_TRANSIENT_MAY_DUCK),
               "AUDIO_FOCUS_GAIN_TRANSIENT_MAY_DUCK");
  EXPECT_STREQ(Log::getAudioFocusRequestTypeString(AUDIO_FOCUS_RELEASE), "AUDIO_FOCUS_RELEASE");
}

TEST(LogTest, AnyOtherAudioFocusRequestIsNotValid) {
  for (const int number : {-1, 0, 5, 9, 1000}) {
    EXPECT_STREQ(Log::getAudioFocusRequestTypeString(static_cast<AudioFocusRequestType>(number)),
                 "NOT_VALID");
  }
}

TEST(LogTest, NamesEveryAudioStream) {
  EXPECT_STREQ(Log::getAudioStreamTypeString(AUDIO_STREAM_GUIDANCE), "AUDIO_STREAM_GUIDANCE");
  EXPECT_STREQ(Log::getAudioStreamTypeString(AUDIO_STREAM_SYSTEM_AUDIO), "AUDIO_STREAM_SYSTEM_AUDIO");
  EXPECT_STREQ(Log::getAudioStreamTypeString(AUDIO_STREAM_MEDIA), "AUDIO_STREAM_MEDIA");
  EXPECT_STREQ(Log::getAudioStreamTypeString(AUDIO_STREAM_TELEPHONY), "AUDIO_STREAM_TELEPHONY");
}

TEST(LogTest, AnyOtherAudioStreamIsNotValid) {
  for (const int number : {-1, 0, 5, 1000}) {
    EXPECT_STREQ(Log::getAudioStreamTypeString(static_cast<AudioStreamType>(number)), "NOT_VALID");
  }
}

}  // namespace
}  // namespace test
