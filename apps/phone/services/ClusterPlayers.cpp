#include "phone/services/ClusterPlayers.h"

#include <algorithm>

#include "phone/media/CoverArt.h"

namespace phone {

namespace {

constexpr Micros second = 1'000'000;
using Action = InstrumentClusterInput;

}  // namespace

// ---- Playback ----

void PlaybackPlayer::onOpened() {
  playlist_->onChange([this] {
    tellSong();
    tellState();
  });
  tellSong();
  tellState();
  wake(second);
}

void PlaybackPlayer::onTime() {
  playlist_->tick();
  tellState();
  wake(second);
}

void PlaybackPlayer::onMessage(const Message& message) {
  const auto input = message.type() == MESSAGE_INSTRUMENT_CLUSTER_INPUT ? message.as<InstrumentClusterInput>()
                                                                        : std::nullopt;
  if (!input) return;
  if (input->action() == Action::RIGHT || input->action() == Action::DOWN) playlist_->step(1);
  if (input->action() == Action::LEFT || input->action() == Action::UP) playlist_->step(-1);
  if (input->action() == Action::ENTER) playlist_->toggle();
}

void PlaybackPlayer::tellSong() {
  const Song& song = playlist_->current();
  MediaPlaybackMetadata record;
  record.set_song(song.title);
  record.set_artist(song.artist);
  record.set_album(song.album);
  if (!song.cover.empty()) record.set_album_art(song.cover.data(), song.cover.size());
  record.set_playlist("All songs");
  record.set_duration_seconds(static_cast<std::uint32_t>(song.durationMs / 1000));
  send(MESSAGE_MEDIA_PLAYBACK_METADATA, record);
}

void PlaybackPlayer::tellState() {
  MediaPlaybackStatus record;
  record.set_state(playlist_->isPlaying() ? MediaPlaybackStatus_State_PLAYING
                                          : MediaPlaybackStatus_State_PAUSED);
  record.set_media_source("Library");
  record.set_playback_seconds(playlist_->seconds());
  record.set_shuffle(false);
  record.set_repeat(true);
  record.set_repeat_one(false);
  send(MESSAGE_MEDIA_PLAYBACK_STATUS, record);
}

// ---- Calls ----

void CallPlayer::onTime() {
  act();
  for (Call& call : calls_) call.seconds += call.state == PhoneStatus_State_IN_CALL ? 1 : 0;
  tell();
  wake(second);
}

// Half a minute of a busy phone, over and over.
void CallPlayer::act() {
  constexpr int round = 30;
  switch (second_++ % round) {
    case 4: ring("Ada Winter", "+1 555 0100"); break;
    case 8: answer(); break;
    case 13: ring("Harbour Office", "+1 555 0142"); break;
    case 16: answer(); break;
    case 21: hangUp(); break;
    case 25: hangUp(); break;
    default: break;
  }
}

void CallPlayer::ring(const char* name, const char* number) {
  calls_.push_back({name, number, PhoneStatus_State_INCOMING, 0});
}

// What rings is taken, and what was spoken is held.
void CallPlayer::answer() {
  const bool rings = std::any_of(calls_.begin(), calls_.end(),
                                 [](const Call& call) { return call.state == PhoneStatus_State_INCOMING; });
  if (!rings) return;
  for (Call& call : calls_) {
    call.state =
        call.state == PhoneStatus_State_INCOMING ? PhoneStatus_State_IN_CALL : PhoneStatus_State_ON_HOLD;
  }
}

// The call that is spoken or rings ends; one that was held comes back.
void CallPlayer::hangUp() {
  if (calls_.empty()) return;
  calls_.pop_back();
  if (!calls_.empty()) calls_.back().state = PhoneStatus_State_IN_CALL;
}

void CallPlayer::onMessage(const Message& message) {
  const auto input =
      message.type() == MESSAGE_PHONE_STATUS_INPUT ? message.as<PhoneStatusInput>() : std::nullopt;
  if (!input) return;
  const bool rings = !calls_.empty() && calls_.back().state == PhoneStatus_State_INCOMING;
  const auto action = input->input().action();
  if (action == Action::CALL || action == Action::ENTER) rings ? answer() : hangUp();
  if (action == Action::BACK) hangUp();
  tell();
}

void CallPlayer::tell() {
  PhoneStatus record;
  record.set_signal_strength(static_cast<std::uint32_t>(2 + second_ / 7 % 3));
  for (const Call& call : calls_) {
    PhoneStatus_Call* one = record.add_calls();
    one->set_phone_state(call.state);
    one->set_call_duration_seconds(call.seconds);
    one->set_caller_number(call.number);
    one->set_caller_id(call.name);
    one->set_caller_number_type("mobile");
  }
  send(MESSAGE_PHONE_STATUS, record);
}

// ---- Notifications ----

void NotificationPlayer::onOpened() {
  send(MESSAGE_GENERIC_NOTIFICATION_SUBSCRIBE, GenericNotificationSubscribe());
  wake(3 * second);
}

void NotificationPlayer::onTime() {
  static constexpr const char* texts[] = {"Your parking ends in 20 minutes", "Ada: on my way",
                                          "Rain from six o'clock"};
  const Bytes icon = drawCover(static_cast<unsigned int>(sent_ % 3), 48);
  GenericNotificationMessage record;
  record.set_text(texts[sent_ % 3]);
  record.set_id("note-" + std::to_string(++sent_));
  record.set_icon(icon.data(), icon.size());
  send(MESSAGE_GENERIC_NOTIFICATION_MESSAGE, record);
  wake(20 * second);
}

void NotificationPlayer::onMessage(const Message& message) {
  if (message.type() != MESSAGE_GENERIC_NOTIFICATION_MESSAGE) return;
  const auto notification = message.as<GenericNotificationMessage>();
  if (!notification || !notification->has_id()) return;
  GenericNotificationAck ack;
  ack.set_id(notification->id());
  ack.set_handled(true);
  send(MESSAGE_GENERIC_NOTIFICATION_ACK, ack);
}

}  // namespace phone
