#ifndef PHONE_INPUTREADER_H
#define PHONE_INPUTREADER_H

#include "phone/CarListener.h"
#include "phone/PhoneLink.h"
#include "phone/TouchScreen.h"

namespace phone {

struct InputStats {
  std::uint64_t bound = 0;  ///< Key codes that the head unit agreed to report.
  std::uint64_t reports = 0;
  std::uint64_t keys = 0;
  std::uint64_t absolute = 0;
  std::uint64_t relative = 0;
  std::uint64_t touchpad = 0;
  std::uint64_t damaged = 0;  ///< Messages that do not parse.
};

/// Binds all key codes that a service offers, and hears touches, keys and knobs.
class InputReader : public ChannelHandler {
 public:
  /// All outlive the reader; `listener` may be null.
  InputReader(PhoneLink* link, TouchScreen* touches, CarListener* listener)
      : link_(link), touches_(touches), listener_(listener) {}
  ~InputReader() override;
  InputReader(const InputReader&) = delete;
  InputReader& operator=(const InputReader&) = delete;

  /// Opens the input that `service` lists, on `channel`. Once.
  void open(std::uint8_t channel, const Service& service);

  const InputStats& stats() const { return stats_; }

  void onOpened() override;
  void onMessage(const Message& message) override;

 private:
  void onBindingResponse(const Message& message);
  void onReport(const Message& message);

  PhoneLink* link_;
  TouchScreen* touches_;
  CarListener* listener_;
  std::uint8_t channel_ = 0;
  InputSourceService offered_;
  InputStats stats_;
};

}  // namespace phone

#endif
