#pragma once

#include <utility>

#include "headunit/services/ServiceContext.h"
#include "headunit/services/Sparing.h"

namespace headunit {

/// An endpoint of the library together with this program's side of it, a `Host`, which implements the
/// endpoint's callbacks (Host::Interface) and has
///
///     answerThrough(Endpoint*)   once, before the link: describe the endpoint, and keep it to send through
///     opened(), closed()         reader thread: the phone has opened or closed the channel
///
/// The host lives as long as the endpoint.
template <class Endpoint, class Host>
class Hosted : public Sparing<Endpoint> {
 public:
  template <class... Arguments>
  Hosted(int service, const ServiceContext& context, Arguments&&... arguments)
      : Hosted(service, context.router, new Host(context, std::forward<Arguments>(arguments)...)) {}

  Host& host() { return *host_; }

  void onChannelOpened(unsigned char channel) override {
    Endpoint::onChannelOpened(channel);
    host_->opened();
  }

  bool onChannelClosed(unsigned char channel) override {
    const bool wasOpen = Endpoint::onChannelClosed(channel);
    if (wasOpen) host_->closed();
    return wasOpen;
  }

 private:
  Hosted(int service, MessageRouter* messages, Host* host)
      : Sparing<Endpoint>(service, messages, ::shared_ptr<typename Host::Interface>(host)), host_(host) {
    host->answerThrough(this);
  }

  Host* const host_;  // owned by the endpoint
};

}  // namespace headunit
