#pragma once

#include <memory>
#include <vector>

#include "InputSource.h"
#include "SensorSource.h"
#include "VantryReceiver.h"

/// A head unit that offers one of each service, on a link without threads or a medium, and without TLS unless
/// it has loaded credentials. Its host accepts everything, reads every byte that it is given, and releases
/// what is its own.
class EveryService {
 public:
  EveryService();
  ~EveryService();
  EveryService(const EveryService&) = delete;
  EveryService& operator=(const EveryService&) = delete;

  /// Number of services; their ids are 1 to this number.
  int services() const { return static_cast<int>(endpoints_.size()); }
  /// From now on it is ready for TLS, with random numbers that are the same every time.
  void loadsCredentials();
  /// Asks for the version.
  void startsUp();
  /// The phone opens channel n to service n, for each.
  void openAll();
  /// One frame as the reader hands it over. Two kinds are left out: a control frame of an unknown type, which
  /// ends the process, as it is meant to, on a channel that is not open; and an announced length above 1 MiB
  /// is a test of the fuzzer's memory limit.
  void feed(const unsigned char* frame, std::size_t size);
  /// Bytes from the phone, cut into frames as the reader thread does it.
  void feedStream(const unsigned char* data, std::size_t size);
  /// A whole message on `channel`.
  void feedMessage(unsigned char channel, const unsigned char* message, std::size_t size);

  bool tlsStands();
  /// What it has sent since the last call.
  std::vector<unsigned char> takeOutput();

  SensorSource& sensors() { return *sensors_; }
  InputSource& input() { return *input_; }

 private:
  bool isLeftOut(const unsigned char* frame, std::size_t size);
  void takeEncipheredControl(const shared_ptr<IoBuffer>& buffer);
  void drain();

  VantryReceiver receiver_;
  std::vector<std::unique_ptr<ProtocolEndpointBase>> endpoints_;
  SensorSource* sensors_ = nullptr;
  InputSource* input_ = nullptr;
  std::vector<unsigned char> output_;
  bool broken_ = false;
};
