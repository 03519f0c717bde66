// What plays, who calls, what there is to play, and notifications.
#include "phone/verify/Probe.h"

namespace phone::verify {

namespace {

const std::string picture(40'000, '\x7f');

// ---- Playback ----

std::uint8_t openPlayback(Probe& probe) {
  return probe.open(
      probe.find([](const Service& one) { return one.has_media_playback_service(); }, "playback"));
}

void takesPlayback(Probe& probe) {
  const std::uint8_t channel = openPlayback(probe);
  MediaPlaybackStatus status;
  probe.expectTaken(channel, messageBytes(MESSAGE_MEDIA_PLAYBACK_STATUS, status),
                    "an empty MediaPlaybackStatus");
  status.set_state(MediaPlaybackStatus_State_PLAYING);
  status.set_media_source("Library");
  status.set_playback_seconds(17);
  probe.expectTaken(channel, messageBytes(MESSAGE_MEDIA_PLAYBACK_STATUS, status), "a MediaPlaybackStatus");
  MediaPlaybackMetadata song;
  song.set_song("Low Tide");
  probe.expectTaken(channel, messageBytes(MESSAGE_MEDIA_PLAYBACK_METADATA, song),
                    "metadata with a song alone");
  song.set_album_art(picture);
  song.set_duration_seconds(200);
  probe.expectTaken(channel, messageBytes(MESSAGE_MEDIA_PLAYBACK_METADATA, song), "metadata with cover art");
  probe.close(channel);
}

void refusesOnPlayback(Probe& probe) {
  const std::uint8_t channel = openPlayback(probe);
  probe.expectRefused(channel, messageBytes(MESSAGE_MEDIA_PLAYBACK_STATUS, Bytes{0x12, 0x09}),
                      "a MediaPlaybackStatus cut short");
  probe.expectRefused(channel, messageBytes(MESSAGE_INSTRUMENT_CLUSTER_INPUT), "an InstrumentClusterInput");
  probe.expectRefused(channel, messageBytes(0x8004), "an unknown type");
  probe.close(channel);
}

// ---- Phone ----

std::uint8_t openPhone(Probe& probe) {
  return probe.open(
      probe.find([](const Service& one) { return one.has_phone_status_service(); }, "phone status"));
}

void takesCalls(Probe& probe) {
  const std::uint8_t channel = openPhone(probe);
  PhoneStatus status;
  probe.expectTaken(channel, messageBytes(MESSAGE_PHONE_STATUS, status), "a PhoneStatus without calls");
  status.set_signal_strength(3);
  for (const PhoneStatus_State state : {PhoneStatus_State_IN_CALL, PhoneStatus_State_ON_HOLD}) {
    PhoneStatus_Call* call = status.add_calls();
    call->set_phone_state(state);
    call->set_call_duration_seconds(9);
    call->set_caller_id("Ada");
    call->set_caller_thumbnail(picture);
  }
  probe.expectTaken(channel, messageBytes(MESSAGE_PHONE_STATUS, status), "a PhoneStatus with two calls");
  probe.expectTaken(channel, messageBytes(MESSAGE_PHONE_STATUS), "the end of all calls");
  probe.close(channel);
}

void refusesOnPhone(Probe& probe) {
  const std::uint8_t channel = openPhone(probe);
  probe.expectRefused(channel, messageBytes(MESSAGE_PHONE_STATUS, Bytes{0x0a, 0x02, 0x08, 0x01}),
                      "a call without a duration");
  probe.expectRefused(channel, messageBytes(MESSAGE_PHONE_STATUS_INPUT), "a PhoneStatusInput");
  probe.expectRefused(channel, messageBytes(0x8003), "an unknown type");
  probe.close(channel);
}

// ---- Browser ----

std::uint8_t openBrowser(Probe& probe) {
  return probe.open(
      probe.find([](const Service& one) { return one.has_media_browser_service(); }, "a media browser"));
}

void takesNodes(Probe& probe) {
  const std::uint8_t channel = openBrowser(probe);
  MediaRootNode root;
  root.set_path("/");
  probe.expectTaken(channel, messageBytes(MESSAGE_MEDIA_ROOT_NODE, root), "a root without sources");
  MediaSourceNode source;
  source.mutable_source()->set_path("/library");
  source.mutable_source()->set_name("Library");
  probe.expectTaken(channel, messageBytes(MESSAGE_MEDIA_SOURCE_NODE, source), "a source without lists");
  MediaListNode list;
  list.mutable_list()->set_path("/library/1");
  list.mutable_list()->set_type(MediaList_Type_ALBUM);
  list.set_start(20);
  list.set_total(25);
  for (int i = 20; i < 25; ++i) {
    MediaSong* song = list.add_songs();
    song->set_path("/library/1/" + std::to_string(i));
    song->set_name("Song " + std::to_string(i));
  }
  probe.expectTaken(channel, messageBytes(MESSAGE_MEDIA_LIST_NODE, list), "the last page of a list");
  MediaSongNode song;
  *song.mutable_song() = list.songs(0);
  song.set_album_art(picture);
  probe.expectTaken(channel, messageBytes(MESSAGE_MEDIA_SONG_NODE, song), "a song with cover art");
  probe.close(channel);
}

void asksWhole(Probe& probe) {
  const std::uint8_t channel = openBrowser(probe);
  const auto message = probe.awaitMaybe(channel, MESSAGE_MEDIA_GET_NODE, 500'000);
  if (!message) throw NotOffered{"a head unit that browses by itself"};
  const auto request = message->as<MediaGetNode>();
  Probe::expect(request && request->has_path() && request->has_start() && request->has_get_album_art(),
                "a MediaGetNode with all three fields", hex(message->bytes));
  probe.close(channel);
}

void refusesOnBrowser(Probe& probe) {
  const std::uint8_t channel = openBrowser(probe);
  probe.expectRefused(channel, messageBytes(MESSAGE_MEDIA_ROOT_NODE), "a root without a path");
  probe.expectRefused(channel, messageBytes(MESSAGE_MEDIA_SOURCE_NODE), "a source node without its source");
  probe.expectRefused(channel, messageBytes(MESSAGE_MEDIA_LIST_NODE), "a list node without its list");
  probe.expectRefused(channel, messageBytes(MESSAGE_MEDIA_SONG_NODE), "a song node without its song");
  probe.expectRefused(channel, messageBytes(MESSAGE_MEDIA_GET_NODE, Bytes{0x0a, 0x00}), "a MediaGetNode");
  probe.expectRefused(channel, messageBytes(MESSAGE_MEDIA_BROWSER_INPUT), "a MediaBrowserInput");
  probe.close(channel);
}

// ---- Notifications ----

Service notifications(Probe& probe) {
  return probe.find([](const Service& one) { return one.has_generic_notification_service(); },
                    "notifications");
}

void takesNotifications(Probe& probe) {
  const std::uint8_t channel = probe.open(notifications(probe));
  GenericNotificationMessage message;
  probe.expectTaken(channel, messageBytes(MESSAGE_GENERIC_NOTIFICATION_MESSAGE, message),
                    "an empty notification");
  message.set_text("Your parking ends soon");
  message.set_id("parking");
  message.set_icon(picture);
  probe.expectTaken(channel, messageBytes(MESSAGE_GENERIC_NOTIFICATION_MESSAGE, message),
                    "a notification with an icon");
  GenericNotificationAck ack;
  ack.set_id("parking");
  ack.set_handled(true);
  probe.expectTaken(channel, messageBytes(MESSAGE_GENERIC_NOTIFICATION_ACK, ack), "an acknowledgement");
  probe.close(channel);
}

void takesSubscriptionUnread(Probe& probe) {
  const std::uint8_t channel = probe.open(notifications(probe));
  probe.expectTaken(channel, messageBytes(MESSAGE_GENERIC_NOTIFICATION_SUBSCRIBE, Bytes{0x08}),
                    "a subscription whose body does not parse");
  probe.expectTaken(channel, messageBytes(MESSAGE_GENERIC_NOTIFICATION_UNSUBSCRIBE, Bytes{0x08}),
                    "its end, whose body does not parse");
  probe.close(channel);
}

void keepsQuietUnsubscribed(Probe& probe) {
  const Service service = notifications(probe);
  probe.freshUpLink();
  const std::uint8_t channel = probe.open(service);
  GenericNotificationMessage message;
  message.set_text("Hello");
  message.set_id("hello");
  probe.link().send(channel, MESSAGE_GENERIC_NOTIFICATION_MESSAGE, message);
  probe.settle();
  probe.runUntil([&] { return false; }, 100'000);
  Probe::expect(probe.count(channel, MESSAGE_GENERIC_NOTIFICATION_MESSAGE) == 0 &&
                    probe.count(channel, MESSAGE_GENERIC_NOTIFICATION_ACK) == 0,
                "neither notifications nor acknowledgements while the phone has not subscribed",
                probe.cameOn(channel));
}

void acknowledgesById(Probe& probe) {
  const std::uint8_t channel = probe.open(notifications(probe));
  probe.link().send(channel, MESSAGE_GENERIC_NOTIFICATION_SUBSCRIBE, GenericNotificationSubscribe());
  GenericNotificationMessage message;
  message.set_text("Your parking ends soon");
  message.set_id("parking-2");
  probe.link().send(channel, MESSAGE_GENERIC_NOTIFICATION_MESSAGE, message);
  const auto came = probe.awaitMaybe(channel, MESSAGE_GENERIC_NOTIFICATION_ACK, 700'000);
  if (!came) throw NotOffered{"a head unit that acknowledges notifications"};
  const auto ack = came->as<GenericNotificationAck>();
  Probe::expect(ack && ack->id() == "parking-2", "an acknowledgement of \"parking-2\"", hex(came->bytes));
  Probe::expect(!ack->has_handled(), "handled left out", "it is present");
  probe.close(channel);
}

void refusesOnNotifications(Probe& probe) {
  const std::uint8_t channel = probe.open(notifications(probe));
  probe.expectRefused(channel, messageBytes(MESSAGE_GENERIC_NOTIFICATION_MESSAGE, Bytes{0x0a, 0x09}),
                      "a notification cut short");
  probe.expectRefused(channel, messageBytes(MESSAGE_GENERIC_NOTIFICATION_ACK, Bytes{0x0a, 0x09}),
                      "an acknowledgement cut short");
  probe.expectRefused(channel, messageBytes(0x8005), "an unknown type");
  probe.close(channel);
}

}  // namespace

Checks clusterServiceChecks() {
  return {
      {"playback.taken", "Status and metadata, with and without cover art, are taken in silence.",
       takesPlayback},
      {"playback.refused", "Damaged and unknown messages are refused.", refusesOnPlayback},
      {"phone.taken", "Calls, and their end, are taken in silence.", takesCalls},
      {"phone.refused", "Damaged and unknown messages are refused.", refusesOnPhone},
      {"browser.taken", "Nodes of all four kinds are taken in silence.", takesNodes},
      {"browser.request", "A request for a node tells all three fields.", asksWhole},
      {"browser.refused", "Damaged and unknown messages are refused.", refusesOnBrowser},
      {"notification.taken", "Notifications and acknowledgements are taken in silence.", takesNotifications},
      {"notification.subscription", "Subscribing and its end are taken unread.", takesSubscriptionUnread},
      {"notification.unsubscribed", "Nothing is sent to a phone that has not subscribed.",
       keepsQuietUnsubscribed},
      {"notification.ack", "An acknowledgement names the notification, and nothing else.", acknowledgesById},
      {"notification.refused", "Damaged and unknown messages are refused.", refusesOnNotifications},
  };
}

}  // namespace phone::verify
