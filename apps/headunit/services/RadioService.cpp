#include "headunit/services/RadioService.h"

namespace headunit {

RadioService::RadioService(const ServiceContext& context, std::vector<Station> stations)
    : context_(context),
      tuner_(std::move(stations),
             {[this] { show(); }, [this](bool found, int hertz) { endOfScan(found, hertz); },
              [this] { endpoint_->sendRdsData(tuner_.station()); }}) {}

void RadioService::answerThrough(RadioEndpoint* endpoint) {
  endpoint_ = endpoint;
  endpoint->setRadioType(RADIO_TYPE_1);
  endpoint->setStartFrequencyHz(Tuner::LOWEST_HZ);
  endpoint->setEndFrequencyHz(Tuner::HIGHEST_HZ);
  endpoint->setChannelSpacingHz(Tuner::SPACING_HZ);
}

// Looked at within the change, so that of two threads the later one does not show what is older.
void RadioService::show() {
  context_.cluster->change([this](ClusterView& view) { view.tuner = tuner_.view(); });
}

void RadioService::endOfScan(bool found, int hertz) {
  context_.tally->count(&ServiceTotals::radioScans);
  const RdsData station = tuner_.station();
  endpoint_->notifyScanComplete(found ? STATUS_SUCCESS : STATUS_INVALID_STATION, hertz,
                                found ? &station : nullptr);
}

void RadioService::toggle() { tuner_.isOn() ? tuner_.switchOff() : tuner_.switchOn(); }

bool RadioService::setStation(int frequencyHz, bool* hasRdsData, RdsData* rdsData) {
  context_.tally->count(&ServiceTotals::radioCommands);
  const bool tuned = tuner_.tune(frequencyHz);
  *hasRdsData = tuner_.hearsStation();
  *rdsData = tuner_.station();
  return tuned;
}

void RadioService::powerOff() {
  context_.tally->count(&ServiceTotals::radioCommands);
  tuner_.switchOff();
}

void RadioService::scan(bool forward) {
  context_.tally->count(&ServiceTotals::radioCommands);
  tuner_.scan(forward);
}

void RadioService::stationInfoRequest() {
  context_.tally->count(&ServiceTotals::radioCommands);
  endpoint_->sendRdsData(tuner_.station());
}

}  // namespace headunit
