#include "Log.h"

const char* Log::getAudioFocusRequestTypeString(AudioFocusRequestType request) {
  switch (request) {
    case AUDIO_FOCUS_GAIN: return "AUDIO_FOCUS_GAIN";
    case AUDIO_FOCUS_GAIN_TRANSIENT: return "AUDIO_FOCUS_GAIN_TRANSIENT";
    case AUDIO_FOCUS_GAIN_TRANSIENT_MAY_DUCK: return "AUDIO_FOCUS_GAIN_TRANSIENT_MAY_DUCK";
    case AUDIO_FOCUS_RELEASE: return "AUDIO_FOCUS_RELEASE";
  }
  return "NOT_VALID";
}

const char* Log::getAudioStreamTypeString(AudioStreamType type) {
  switch (type) {
    case AUDIO_STREAM_GUIDANCE: return "AUDIO_STREAM_GUIDANCE";
    case AUDIO_STREAM_SYSTEM_AUDIO: return "AUDIO_STREAM_SYSTEM_AUDIO";
    case AUDIO_STREAM_MEDIA: return "AUDIO_STREAM_MEDIA";
    case AUDIO_STREAM_TELEPHONY: return "AUDIO_STREAM_TELEPHONY";
  }
  return "NOT_VALID";
}
