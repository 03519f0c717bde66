#ifndef PHONE_PROGRAM_SOUND_H
#define PHONE_PROGRAM_SOUND_H

#include <string>

#include "phone/Microphone.h"
#include "phone/SoundPlayer.h"
#include "phone/program/Options.h"

namespace phone {

/// Decides where the media stream's sound comes from, `options->audio` from then on, and that it can be
/// played. False, with a sentence in `error`, if the user asked for what cannot be heard.
bool settleSound(Options* options, std::string* error);
/// The file that settleSound() chose for the media stream, tones for all else.
SoundFactory soundFactory(const Options& options);

/// Finds out, while there is no link yet, whether the microphone's file can be written.
bool prepareMicrophoneFile(const Options& options, std::string* error);
/// Writes to the microphone's file; empty if none is wanted.
PcmSinkFactory microphoneFile(const Options& options);

}  // namespace phone

#endif
