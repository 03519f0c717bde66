#pragma once

// What breaks a head unit on purpose: a layer that rewrites frames on their way, and hosts with faults.

#include <algorithm>
#include <memory>

#include "../unit/phone_head_unit.h"
#include "VerifyHeadUnit.h"
#include "phone/verify/Runner.h"

namespace test {
namespace {

using phone::Frame;
using phone::verify::Outcome;
using phone::verify::Result;
using Frames = std::vector<Frame>;

constexpr std::uint8_t WHOLE = phone::flagFirst | phone::flagLast;

int typeOf(const Frame& frame) {
  return frame.has(phone::flagFirst) && frame.payload.size() >= 2
             ? phone::readBigEndian<std::uint16_t>(frame.payload.data())
             : -1;
}

bool isControlType(const Frame& frame, int type) { return frame.channel == 0 && typeOf(frame) == type; }

Frame withMessage(Frame frame, const phone::Bytes& message) {
  frame.payload = message;
  return frame;
}

Frame around(std::uint8_t channel, const phone::Bytes& message,
             std::uint8_t flags = WHOLE | phone::flagEncrypted) {
  Frame frame;
  frame.channel = channel;
  frame.flags = flags;
  frame.payload = message;
  return frame;
}

// ---- Ways to tamper ----

/// Changes the record in every message of a type, on any channel.
template <class Record>
Tamper rewriting(int type, std::function<void(Record*)> change) {
  return [type, change](Frame frame) -> Frames {
    Record record;
    if (typeOf(frame) != type || frame.has(phone::flagControl) != (type == MESSAGE_CHANNEL_OPEN_RESPONSE))
      return {frame};
    record.ParsePartialFromArray(frame.payload.data() + 2, static_cast<int>(frame.payload.size() - 2));
    change(&record);
    return {withMessage(frame, phone::messageBytes(static_cast<std::uint16_t>(type), record))};
  };
}

/// Swallows every message of a type.
Tamper dropping(int type) {
  return [type](Frame frame) -> Frames { return typeOf(frame) == type ? Frames{} : Frames{frame}; };
}

Tamper doubling(int type) {
  return [type](Frame frame) -> Frames {
    return typeOf(frame) == type ? Frames{frame, frame} : Frames{frame};
  };
}

/// Changes a frame of a type by hand.
Tamper changing(int type, std::function<void(Frame*)> change) {
  return [type, change](Frame frame) -> Frames {
    if (typeOf(frame) == type) change(&frame);
    return {frame};
  };
}

/// Adds a message behind each one of a type.
Tamper adding(int type, const phone::Bytes& message) {
  return [type, message](Frame frame) -> Frames {
    if (typeOf(frame) != type) return {frame};
    const Frame more =
        around(frame.channel, message, static_cast<std::uint8_t>(frame.flags & ~phone::flagControl));
    return {frame, more};
  };
}

/// Holds the first of two messages back until the second has gone.
Tamper swapping(int first, int second) {
  const auto held = std::make_shared<Frames>();
  return [first, second, held](Frame frame) -> Frames {
    if (typeOf(frame) == first && !frame.has(phone::flagControl)) {
      held->push_back(frame);
      return {};
    }
    if (typeOf(frame) != second) return {frame};
    Frames both = {frame};
    both.insert(both.end(), held->begin(), held->end());
    held->clear();
    return both;
  };
}

// ---- The faults ----

struct Fault {
  const char* name;
  const char* caughtBy;
  HeadUnitFaults (*make)();
};

HeadUnitFaults sent(Tamper tamper) {
  HeadUnitFaults faults;
  faults.sent = std::move(tamper);
  return faults;
}

HeadUnitFaults received(Tamper tamper) {
  HeadUnitFaults faults;
  faults.received = std::move(tamper);
  return faults;
}

template <bool HeadUnitFaults::*member, bool value>
HeadUnitFaults host() {
  HeadUnitFaults faults;
  faults.*member = value;
  return faults;
}

template <class Repeated>
void reverse(Repeated* elements) {
  std::reverse(elements->begin(), elements->end());
}

HeadUnitFaults discovery(void (*change)(ServiceDiscoveryResponse*)) {
  return sent(rewriting<ServiceDiscoveryResponse>(MESSAGE_SERVICE_DISCOVERY_RESPONSE, change));
}

Service* serviceOf(ServiceDiscoveryResponse* car, int id) {
  for (Service& service : *car->mutable_services()) {
    if (service.id() == id) return &service;
  }
  return nullptr;
}

phone::Bytes pingOf(std::int64_t timestamp) {
  PingRequest request;
  request.set_timestamp(timestamp);
  return phone::messageBytes(MESSAGE_PING_REQUEST, request);
}

/// What a service's channel brings as soon as it is open: learnt from what the phone asks for.
HeadUnitFaults uponOpening(int service, const phone::Bytes& message) {
  HeadUnitFaults faults;
  const auto channel = std::make_shared<int>(-1);
  faults.received = [service, channel](Frame frame) -> Frames {
    ChannelOpenRequest request;
    if (frame.has(phone::flagControl) && typeOf(frame) == MESSAGE_CHANNEL_OPEN_REQUEST &&
        request.ParsePartialFromArray(frame.payload.data() + 2, static_cast<int>(frame.payload.size() - 2)) &&
        request.service_id() == service) {
      *channel = frame.channel;
    }
    return {frame};
  };
  faults.sent = [channel, message](Frame frame) -> Frames {
    if (frame.channel != *channel || typeOf(frame) != MESSAGE_CHANNEL_OPEN_RESPONSE) return {frame};
    return {frame, around(frame.channel, message)};
  };
  return faults;
}

/// Answers an open request that must stay unanswered, with the next frame that leaves.
HeadUnitFaults answeringEveryOpen() {
  HeadUnitFaults faults;
  const auto waiting = std::make_shared<std::vector<std::uint8_t>>();
  faults.received = [waiting](Frame frame) -> Frames {
    if (frame.has(phone::flagControl) && typeOf(frame) == MESSAGE_CHANNEL_OPEN_REQUEST &&
        frame.channel >= 250) {
      waiting->push_back(frame.channel);
    }
    return {frame};
  };
  faults.sent = [waiting](Frame frame) -> Frames {
    Frames all;
    ChannelOpenResponse refusal;
    refusal.set_status(STATUS_CHANNEL_REFUSED);
    for (const std::uint8_t channel : *waiting) {
      all.push_back(around(channel, phone::messageBytes(MESSAGE_CHANNEL_OPEN_RESPONSE, refusal),
                           WHOLE | phone::flagControl | phone::flagEncrypted));
    }
    waiting->clear();
    all.push_back(frame);
    return all;
  };
  return faults;
}

HeadUnitFaults swappingPings() {
  return sent([held = std::make_shared<Frames>()](Frame frame) -> Frames {
    if (!isControlType(frame, MESSAGE_PING_RESPONSE)) return {frame};
    if (held->empty()) {
      held->push_back(frame);
      return {};
    }
    Frames both = {frame, held->front()};
    held->clear();
    return both;
  });
}

InputReport keyReport() {
  InputReport report;
  report.set_timestamp(1);
  KeyEvent_Key* key = report.mutable_key_event()->add_keys();
  key->set_keycode(3);
  key->set_down(true);
  key->set_metastate(0);
  return report;
}

Frames splitTooShort(Frame frame) {
  if (typeOf(frame) != MESSAGE_CONFIG || frame.payload.size() < 4) return {frame};
  Frame first = frame;
  first.flags = static_cast<std::uint8_t>((frame.flags & ~0x03) | phone::flagFirst);
  first.totalLength = static_cast<std::uint32_t>(frame.payload.size()) + 1;
  first.payload.resize(2);
  Frame last = frame;
  last.flags = static_cast<std::uint8_t>((frame.flags & ~0x03) | phone::flagLast);
  last.payload.erase(last.payload.begin(), last.payload.begin() + 2);
  return {first, last};
}

// Subscribes in the phone's name before each notification.
Frames subscribed(Frame frame) {
  if (frame.channel == 0 || frame.has(phone::flagControl) ||
      typeOf(frame) != MESSAGE_GENERIC_NOTIFICATION_MESSAGE)
    return {frame};
  return {around(frame.channel, phone::messageBytes(MESSAGE_GENERIC_NOTIFICATION_SUBSCRIBE)), frame};
}

}  // namespace
}  // namespace test
