#include "headunit/services/Tuner.h"

#include <algorithm>

namespace headunit {
namespace {

constexpr milliseconds CHANNEL_TAKES(20);
constexpr milliseconds IDLE(50);
constexpr std::chrono::seconds TEXT_STAYS(5);

// How RdsData tells a yes from a no.
constexpr int YES = 2;
constexpr int NO = 1;

bool isChannel(int hertz) {
  return hertz >= Tuner::LOWEST_HZ && hertz <= Tuner::HIGHEST_HZ &&
         (hertz - Tuner::LOWEST_HZ) % Tuner::SPACING_HZ == 0;
}

}  // namespace

std::vector<Station> stationsAround() {
  return {
      {88'400'000,
       "HARBOUR",
       "D318",
       "News",
       {"Harbour Radio: news on the hour", "Fog on the quays"},
       false,
       0},
      {91'700'000,
       "NORTH 91",
       "D31A",
       "Pop",
       {"Now: Glass Kites - Low Tide", "Traffic at half past"},
       true,
       104'900'000},
      {96'100'000,
       "CLASSIC",
       "D322",
       "Classics",
       {"Evening concert", "Strings in G, second movement"},
       true,
       0},
      {99'300'000, "CAMPUS", "D327", "Rock", {"Campus FM", "Call us: 555 0199"}, true, 0},
      {102'600'000, "TALK 102", "D32C", "Culture", {"Talk 102: the book hour"}, false, 0},
      {104'900'000,
       "NORTH 91",
       "D31A",
       "Pop",
       {"Now: Glass Kites - Low Tide", "Traffic at half past"},
       true,
       91'700'000},
      {107'200'000, "NIGHT", "D33F", "Jazz", {"Night line", "Blue hour until two"}, true, 0},
  };
}

Tuner::Tuner(std::vector<Station> stations, Listener listener)
    : stations_(std::move(stations)),
      listener_(std::move(listener)),
      frequencyHz_(stations_.empty() ? LOWEST_HZ : stations_.front().frequencyHz) {}

const Station* Tuner::stationHere() const {
  const auto found = std::find_if(stations_.begin(), stations_.end(), [this](const Station& station) {
    return station.frequencyHz == frequencyHz_;
  });
  return found == stations_.end() ? nullptr : &*found;
}

const Station* Tuner::heard() const { return on_ && scanning_ == 0 ? stationHere() : nullptr; }

bool Tuner::tune(int hertz) {
  if (!isChannel(hertz)) return false;
  std::unique_lock lock(mutex_);
  on_ = true;
  frequencyHz_ = hertz;
  text_ = 0;
  nextText_ = TimePoint::max();
  endScan(&lock, false);
  return true;
}

void Tuner::switchOn() {
  {
    const std::lock_guard lock(mutex_);
    on_ = true;
  }
  listener_.changed();
}

void Tuner::switchOff() {
  std::unique_lock lock(mutex_);
  on_ = false;
  endScan(&lock, false);
}

bool Tuner::isOn() const {
  const std::lock_guard lock(mutex_);
  return on_;
}

void Tuner::scan(bool forward) {
  {
    const std::lock_guard lock(mutex_);
    on_ = true;
    if (scanning_ == 0) scannedFrom_ = frequencyHz_;
    scanning_ = forward ? 1 : -1;
  }
  listener_.changed();
}

// Whoever had a scan begun hears of its end, whatever ended it.
void Tuner::endScan(std::unique_lock<std::mutex>* lock, bool found) {
  const bool scanned = scanning_ != 0;
  const int hertz = frequencyHz_;
  scanning_ = 0;
  lock->unlock();
  listener_.changed();
  if (scanned) listener_.scanEnded(found, hertz);
}

TunerView Tuner::view() const {
  const std::lock_guard lock(mutex_);
  TunerView view;
  view.on = on_;
  view.scanning = scanning_ != 0;
  view.frequencyHz = frequencyHz_;
  if (const Station* const station = heard()) {
    view.station = station->name;
    view.text = station->texts[text_ % station->texts.size()];
    view.stereo = station->stereo;
  }
  return view;
}

RdsData Tuner::station() const {
  const std::lock_guard lock(mutex_);
  RdsData data;
  const Station* const station = heard();
  if (station == nullptr) return data;
  data.alternativeFrequencyHz = station->alternativeHz;
  data.programIdentification = station->identification;
  data.programService = station->name;
  data.programType = station->kind;
  data.radioText = station->texts[text_ % station->texts.size()];
  data.stereo = station->stereo ? YES : NO;
  data.hd = NO;
  return data;
}

bool Tuner::hearsStation() const {
  const std::lock_guard lock(mutex_);
  return heard() != nullptr;
}

// One channel further.
void Tuner::step(std::unique_lock<std::mutex>* lock) {
  frequencyHz_ += scanning_ * SPACING_HZ;
  if (frequencyHz_ > HIGHEST_HZ) frequencyHz_ = LOWEST_HZ;
  if (frequencyHz_ < LOWEST_HZ) frequencyHz_ = HIGHEST_HZ;
  text_ = 0;
  nextText_ = TimePoint::max();
  const bool found = stationHere() != nullptr;
  if (found || frequencyHz_ == scannedFrom_) return endScan(lock, found);
  lock->unlock();
  listener_.changed();
}

void Tuner::showText(TimePoint now, std::unique_lock<std::mutex>* lock) {
  if (heard() == nullptr) return;
  if (nextText_ == TimePoint::max()) nextText_ = now + TEXT_STAYS;
  if (now < nextText_) return;
  nextText_ = now + TEXT_STAYS;
  ++text_;
  lock->unlock();
  listener_.changed();
  listener_.textChanged();
}

TimePoint Tuner::act(TimePoint now) {
  std::unique_lock lock(mutex_);
  if (scanning_ != 0) {
    step(&lock);
    return now + CHANNEL_TAKES;
  }
  showText(now, &lock);
  return now + IDLE;
}

}  // namespace headunit
