#pragma once

#include <memory>
#include <vector>

#include "ProtocolEndpointBase.h"
#include "VantryReceiver.h"

/// A head unit that offers one of each service, on a link without TLS, threads or a medium. Its host accepts
/// everything, reads every byte that it is given, and releases what is its own.
class EveryService {
 public:
  EveryService();
  ~EveryService();
  EveryService(const EveryService&) = delete;
  EveryService& operator=(const EveryService&) = delete;

  /// Number of services; their ids are 1 to this number.
  int services() const { return static_cast<int>(endpoints_.size()); }
  /// The phone opens channel n to service n, for each.
  void openAll();
  /// One frame as the reader hands it over. Two kinds are left out: a control frame of an unknown type on a
  /// channel that is not open ends the process, as it is meant to; and an announced length above 1 MiB is a
  /// test of the fuzzer's memory limit.
  void feed(const unsigned char* frame, std::size_t size);
  /// A whole message on `channel`.
  void feedMessage(unsigned char channel, const unsigned char* message, std::size_t size);

  VantryReceiver& receiver() { return receiver_; }

 private:
  void drain();

  VantryReceiver receiver_;
  std::vector<std::unique_ptr<ProtocolEndpointBase>> endpoints_;
  bool broken_ = false;
};
