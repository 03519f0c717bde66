#ifndef PHONE_SENSORREADER_H
#define PHONE_SENSORREADER_H

#include <deque>
#include <map>

#include "phone/CarListener.h"
#include "phone/PhoneLink.h"

namespace phone {

struct SensorStats {
  std::uint64_t requested = 0;
  std::uint64_t granted = 0;
  std::uint64_t refused = 0;
  std::uint64_t batches = 0;
  std::uint64_t damaged = 0;                     ///< Messages that do not parse.
  std::map<SensorType, std::uint64_t> messages;  ///< Batches that hold the sensor, for every requested one.
};

/// Requests all sensors that a service lists, and hears what they tell.
class SensorReader : public ChannelHandler {
 public:
  /// Both outlive the reader; `listener` may be null.
  SensorReader(PhoneLink* link, CarListener* listener) : link_(link), listener_(listener) {}
  ~SensorReader() override;
  SensorReader(const SensorReader&) = delete;
  SensorReader& operator=(const SensorReader&) = delete;

  /// Opens the sensors that `service` lists, on `channel`. Once.
  void open(std::uint8_t channel, const Service& service);

  const SensorStats& stats() const { return stats_; }

  void onOpened() override;
  void onMessage(const Message& message) override;

 private:
  void onResponse(const Message& message);
  void onBatch(const Message& message);

  PhoneLink* link_;
  CarListener* listener_;
  std::uint8_t channel_ = 0;
  SensorSourceService sensors_;
  SensorStats stats_;
};

}  // namespace phone

#endif
