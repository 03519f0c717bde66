#include <functional>

#include "RecordTest.h"
#include "record_table.h"

// The number and the type on the wire of single fields: those that no service fills, and those in which a
// service's own tests put small numbers alone.

namespace test {
namespace {

struct Field {
  const char* name;
  std::function<Bytes()> writtenAlone;
  const char* bytes;
};

void PrintTo(const Field& field, std::ostream* out) { *out << field.name; }

/// `set` sets or adds.
template <class Record, class Value>
Field field(const char* name, void (Record::*set)(Value), std::uint32_t value, const char* hex) {
  return {name,
          [set, value] {
            Record record;
            (record.*set)(static_cast<Value>(value));
            return written(record);
          },
          hex};
}

struct RecordFields : testing::TestWithParam<Field> {};

TEST_P(RecordFields, IsWrittenAsTheseBytes) { EXPECT_EQ(GetParam().writtenAlone(), bytes(GetParam().bytes)); }

using Discovery = ServiceDiscoveryResponse;

const Field NUMBERS[] = {
    field("ServiceDiscoveryResponse.can_play_native_media_during_vr",
          &Discovery::set_can_play_native_media_during_vr, 1, "58 01"),
    field("MediaSinkService.available_while_in_call", &MediaSinkService::set_available_while_in_call, 1,
          "28 01"),
    field("MediaSourceService.available_while_in_call", &MediaSourceService::set_available_while_in_call, 1,
          "18 01"),
    field("VideoFocusRequestNotification.disp_channel_id",
          &VideoFocusRequestNotification::set_disp_channel_id, 5, "08 05"),
    field("RadioStationInfoNotification.current_frequency_hz",
          &RadioStationInfoNotification::set_current_frequency_hz, 300, "40 AC 02"),
    field("GenericNotificationAck.handled", &GenericNotificationAck::set_handled, 1, "10 01"),
};

// From 2^31 on an unsigned number has five bytes, where a signed one, then negative, would have ten.
constexpr std::uint32_t HIGH_BIT = 0x80000000U;
constexpr std::uint32_t ALL_ONES = 0xFFFFFFFFU;

const Field UNSIGNED[] = {
    field("Start.configuration_index", &Start::set_configuration_index, HIGH_BIT, "10 80 80 80 80 08"),
    field("Config.max_unacked", &Config::set_max_unacked, HIGH_BIT, "10 80 80 80 80 08"),
    field("Config.configuration_indices", &Config::add_configuration_indices, ALL_ONES, "18 FF FF FF FF 0F"),
    field("Ack.ack", &Ack::set_ack, HIGH_BIT, "10 80 80 80 80 08"),
    field("AudioConfiguration.sampling_rate", &AudioConfiguration::set_sampling_rate, HIGH_BIT,
          "08 80 80 80 80 08"),
    field("AudioConfiguration.number_of_bits", &AudioConfiguration::set_number_of_bits, ALL_ONES,
          "10 FF FF FF FF 0F"),
    field("AudioConfiguration.number_of_channels", &AudioConfiguration::set_number_of_channels, HIGH_BIT,
          "18 80 80 80 80 08"),
    field("VideoConfiguration.width_margin", &VideoConfiguration::set_width_margin, HIGH_BIT,
          "18 80 80 80 80 08"),
    field("VideoConfiguration.height_margin", &VideoConfiguration::set_height_margin, ALL_ONES,
          "20 FF FF FF FF 0F"),
    field("VideoConfiguration.density", &VideoConfiguration::set_density, HIGH_BIT, "28 80 80 80 80 08"),
    field("LocationData.accuracy_e3", &LocationData::set_accuracy_e3, HIGH_BIT, "20 80 80 80 80 08"),
    field("TouchEvent.Pointer.x", &TouchEvent::Pointer::set_x, HIGH_BIT, "08 80 80 80 80 08"),
    field("TouchEvent.Pointer.y", &TouchEvent::Pointer::set_y, ALL_ONES, "10 FF FF FF FF 0F"),
    field("TouchEvent.Pointer.pointer_id", &TouchEvent::Pointer::set_pointer_id, HIGH_BIT,
          "18 80 80 80 80 08"),
    field("TouchEvent.action_index", &TouchEvent::set_action_index, HIGH_BIT, "10 80 80 80 80 08"),
    field("KeyEvent.Key.keycode", &KeyEvent::Key::set_keycode, HIGH_BIT, "08 80 80 80 80 08"),
    field("KeyEvent.Key.metastate", &KeyEvent::Key::set_metastate, ALL_ONES, "18 FF FF FF FF 0F"),
    field("AbsoluteEvent.Abs.keycode", &AbsoluteEvent::Abs::set_keycode, HIGH_BIT, "08 80 80 80 80 08"),
    field("RelativeEvent.Rel.keycode", &RelativeEvent::Rel::set_keycode, HIGH_BIT, "08 80 80 80 80 08"),
    field("MediaPlaybackStatus.playback_seconds", &MediaPlaybackStatus::set_playback_seconds, HIGH_BIT,
          "18 80 80 80 80 08"),
    field("MediaPlaybackMetadata.duration_seconds", &MediaPlaybackMetadata::set_duration_seconds, HIGH_BIT,
          "30 80 80 80 80 08"),
    field("PhoneStatus.Call.call_duration_seconds", &PhoneStatus::Call::set_call_duration_seconds, HIGH_BIT,
          "10 80 80 80 80 08"),
    field("PhoneStatus.signal_strength", &PhoneStatus::set_signal_strength, ALL_ONES, "10 FF FF FF FF 0F"),
    field("MediaSongNode.duration_seconds", &MediaSongNode::set_duration_seconds, HIGH_BIT,
          "18 80 80 80 80 08"),
};

INSTANTIATE_TEST_SUITE_P(Numbers, RecordFields, testing::ValuesIn(NUMBERS),
                         rowName<testing::TestParamInfo<Field>>);
INSTANTIATE_TEST_SUITE_P(Unsigned, RecordFields, testing::ValuesIn(UNSIGNED),
                         rowName<testing::TestParamInfo<Field>>);

}  // namespace
}  // namespace test
