#pragma once

#include <RdsData.h>

#include <functional>
#include <mutex>
#include <vector>

#include "headunit/Cluster.h"
#include "headunit/PacedThread.h"

namespace headunit {

/// A station that can be received where this car stands.
struct Station {
  int frequencyHz = 0;
  std::string name;            ///< up to eight characters, as such stations have
  std::string identification;  ///< four hexadecimal digits
  std::string kind;
  std::vector<std::string> texts;  ///< that it sends in turn
  bool stereo = false;
  int alternativeHz = 0;  ///< where it can be heard too; 0: nowhere
};

/// What a tuner finds on its band.
std::vector<Station> stationsAround();

/// A tuner for the FM band, simulated: it hears the stations that it is given, scans a channel after the
/// other, and shows each station's texts in turn. All operations on any thread; those of the listener are
/// called without a lock, on the thread that made them happen.
class Tuner : public PacedTask {
 public:
  static constexpr int LOWEST_HZ = 87'500'000;
  static constexpr int HIGHEST_HZ = 108'000'000;
  static constexpr int SPACING_HZ = 100'000;

  struct Listener {
    std::function<void()> changed;                         ///< what `view` tells
    std::function<void(bool found, int hertz)> scanEnded;  ///< where, and whether a station is there
    std::function<void()> textChanged;                     ///< of the station that is tuned to
  };

  /// `stations` are sorted by frequency.
  Tuner(std::vector<Station> stations, Listener listener);

  /// Switches on if need be. False, and nothing changes, for what is no channel of the band.
  bool tune(int hertz);
  void switchOn();
  void switchOff();
  bool isOn() const;
  /// Switches on if need be, and goes on to the next station, round the band's end; a scan that is under way
  /// turns.
  void scan(bool forward);

  TunerView view() const;
  /// Of the station that is heard; empty if there is none.
  RdsData station() const;
  bool hearsStation() const;

  TimePoint act(TimePoint now) override;

 private:
  const Station* heard() const;
  const Station* stationHere() const;
  void step(std::unique_lock<std::mutex>* lock);
  void showText(TimePoint now, std::unique_lock<std::mutex>* lock);
  void endScan(std::unique_lock<std::mutex>* lock, bool found);

  const std::vector<Station> stations_;
  const Listener listener_;
  mutable std::mutex mutex_;  // guards what follows
  bool on_ = false;
  int frequencyHz_;
  int scanning_ = 0;  ///< 1 upwards, -1 downwards
  int scannedFrom_ = 0;
  std::size_t text_ = 0;
  TimePoint nextText_ = TimePoint::max();
};

}  // namespace headunit
