#ifndef PHONE_SERVICES_CLUSTERPLAYERS_H
#define PHONE_SERVICES_CLUSTERPLAYERS_H

#include "phone/services/Playlist.h"
#include "phone/services/ServicePlayer.h"

namespace phone {

/// Tells what plays, second by second, and obeys the cluster's keys: left and right step, enter pauses.
class PlaybackPlayer : public ServicePlayer {
 public:
  PlaybackPlayer(PhoneLink* link, Timers* timers, Playlist* playlist)
      : ServicePlayer(link, timers), playlist_(playlist) {}
  void onOpened() override;
  void onMessage(const Message& message) override;

 protected:
  void onTime() override;

 private:
  void tellSong();
  void tellState();
  Playlist* playlist_;
};

/// Calls that ring, are answered, held while another comes, and end; the cluster's keys answer and hang up.
class CallPlayer : public ServicePlayer {
 public:
  using ServicePlayer::ServicePlayer;
  void onOpened() override { onTime(); }
  void onMessage(const Message& message) override;

 protected:
  void onTime() override;

 private:
  struct Call {
    const char* name;
    const char* number;
    PhoneStatus_State state;
    std::uint32_t seconds;
  };
  void act();
  void tell();
  void ring(const char* name, const char* number);
  void answer();
  void hangUp();
  std::vector<Call> calls_;
  int second_ = 0;
};

/// Sends a notification now and then, and acknowledges each that comes.
class NotificationPlayer : public ServicePlayer {
 public:
  using ServicePlayer::ServicePlayer;
  void onOpened() override;
  void onMessage(const Message& message) override;

 protected:
  void onTime() override;

 private:
  int sent_ = 0;
};

}  // namespace phone

#endif
