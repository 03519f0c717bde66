#include "FullLink.h"

#include "Pump.h"
#include "TestCredentials.h"

namespace test {

void CarArrivals::onSensorBatch(const SensorBatch& batch) {
  const int type = sensorTypeOf(batch);
  Arrivals& arrivals = sensors_[static_cast<std::size_t>(type)];
  const auto due = static_cast<int>(arrivals.due());
  arrivals.takes(type == 0 ||
                 batch.SerializeAsString() == sensorReport(type, due).SerializePartialAsString());
}

void CarArrivals::onInputReport(const InputReport& report) {
  Arrivals& arrivals = report.has_key_event() ? keys_ : touches_;
  const std::uint64_t due = arrivals.due();
  const InputReport expected = report.has_key_event() ? keyReport(due) : touchReport(due);
  arrivals.takes(report.SerializeAsString() == expected.SerializeAsString());
}

phone::CarOptions CarArrivals::options() {
  phone::CarOptions car;
  car.listener = this;
  car.microphoneMaxUnacked = MICROPHONE_LIMIT;
  car.recordMicrophone = [this](int, int, std::string*) {
    return [this](const std::uint8_t* samples, std::size_t length) {
      speech_.takes(Bytes(samples, length) == numberedContent(speech_.due()));
      return true;
    };
  };
  return car;
}

phone::LinkOptions quietPhone() {
  phone::LinkOptions options;
  const TestCredentials& known = credentials();
  options.credentials = {known.root, known.phone.certificate, known.phone.key};
  options.interleaves = true;
  options.records = false;
  return options;
}

FullLink::FullLink()
    : phone_(std::make_unique<phone::PhoneLink>(quietPhone())),
      car_(std::make_unique<phone::CarServices>(phone_.get(), &timers_, heard_.options())) {}

bool FullLink::pumpUntil(const std::function<bool()>& done) { return pump(phone_.get(), &transport_, done); }

bool FullLink::comesUp() {
  headUnit_.starts(&transport_);
  if (!pumpUntil([this] { return phone_->state() == phone::LinkState::up; })) return false;
  // The phone opens them in this order, each on the next channel.
  sensorChannel_ = phone_->unusedChannel();
  inputChannel_ = static_cast<std::uint8_t>(sensorChannel_ + 1);
  car_->open(*phone_->services());
  return pumpUntil([this] {
    return car_->microphone()->isOpen() && car_->sensors()->stats().granted == SENSOR_TYPES &&
           car_->input()->stats().bound == keysOfFullHeadUnit().size();
  });
}

// What the head unit answers to a ping, it answers after it has taken all that came before.
bool FullLink::settles() {
  struct Answer : phone::ChannelHandler {
    bool came = false;
    void onMessage(const phone::Message& message) override {
      if (message.type() == MESSAGE_PING_RESPONSE) came = true;
    }
  } answer;
  phone_->attach(0, &answer);
  // Channels take turns in what waits to be sent: the ping must not overtake any of it.
  const bool settled =
      pumpUntil([] { return true; }) && (phone_->sendPing(0), pumpUntil([&] { return answer.came; }));
  phone_->attach(0, nullptr);
  return settled;
}

}  // namespace test
