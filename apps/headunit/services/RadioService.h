#pragma once

#include <RadioEndpoint.h>

#include "headunit/services/Hosted.h"
#include "headunit/services/Tuner.h"

namespace headunit {

/// Lets the phone control the car's tuner, and shows the tuner in the cluster. A scan that found a station
/// ends with status 0, and any other with STATUS_INVALID_STATION.
class RadioService : public IRadioCallbacks {
 public:
  using Interface = IRadioCallbacks;

  RadioService(const ServiceContext& context, std::vector<Station> stations);
  void answerThrough(RadioEndpoint* endpoint);
  void opened() { context_.tally->count(&ServiceTotals::radioOpened); }
  void closed() {}

  /// Its time has to be driven.
  Tuner* tuner() { return &tuner_; }
  /// Any thread: the user switches it on or off.
  void toggle();

  bool setStation(int frequencyHz, bool* hasRdsData, RdsData* rdsData) override;
  void powerOff() override;
  void scan(bool forward) override;
  void stationInfoRequest() override;

 private:
  void show();
  void endOfScan(bool found, int hertz);

  const ServiceContext context_;
  RadioEndpoint* endpoint_ = nullptr;
  Tuner tuner_;
};

using TunerEndpoint = Hosted<RadioEndpoint, RadioService>;

}  // namespace headunit
