#pragma once

#include <mutex>
#include <set>
#include <string>

namespace headunit {

/// Phones, by their addresses. Any thread.
class PhoneAddresses {
 public:
  bool knows(const std::string& address) const {
    const std::lock_guard lock(mutex_);
    return addresses_.count(address) > 0;
  }
  void add(const std::string& address) {
    const std::lock_guard lock(mutex_);
    if (addresses_.size() >= MOST) addresses_.clear();
    addresses_.insert(address);
  }

 private:
  // More than a car meets, and few enough for a phone that invents addresses.
  static constexpr std::size_t MOST = 256;

  mutable std::mutex mutex_;
  std::set<std::string> addresses_;
};

/// Those that this car has been paired with, for as long as the program runs.
using PairedPhones = PhoneAddresses;

}  // namespace headunit
