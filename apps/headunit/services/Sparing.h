#pragma once

#include <IoBuffer.h>
#include <protos.pb.h>
#include <shared_ptr.h>
#include <spdlog/spdlog.h>

#include <exception>

namespace headunit {

/// An endpoint of the library's that survives a message for which there is not enough memory: how large one
/// is, the phone decides. That covers the copies that the endpoint makes and those of the host's callbacks.
/// What is thrown there passes through the endpoint alone, which holds no lock meanwhile; of a list that it
/// was copying, what it had so far is lost.
template <class Endpoint>
class Sparing : public Endpoint {
 public:
  using Endpoint::Endpoint;

  int routeMessage(unsigned char channel, unsigned short type,
                   const ::shared_ptr<IoBuffer>& message) override {
    return sparingly([&] { return Endpoint::routeMessage(channel, type, message); });
  }

  int handleRawMessage(unsigned char channel, const ::shared_ptr<IoBuffer>& message) override {
    return sparingly([&] { return Endpoint::handleRawMessage(channel, message); });
  }

 private:
  template <class Act>
  int sparingly(const Act& act) {
    try {
      return act();
    } catch (const std::exception& error) {
      spdlog::error("A message of the phone's to service {} is left out: {}.", this->id(), error.what());
      return STATUS_INVALID_STATE;
    }
  }
};

}  // namespace headunit
