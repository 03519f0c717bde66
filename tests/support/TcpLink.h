#pragma once

#include <future>

#include "FullLink.h"
#include "SocketTransport.h"
#include "phone/SocketRunner.h"

namespace test {

/// A FullHeadUnit and a phone at the two ends of a TCP connection. The phone plays a picture and all sounds,
/// listens to the microphone, and says good-bye.
class TcpLink : private phone::LinkObserver {
 public:
  TcpLink();
  ~TcpLink() override { headUnit_.ends(); }

  /// From the connection to the good-bye, with `messages` on each stream and from the microphone. False if
  /// the link ended in any other way. Once.
  bool runs(Number messages);
  /// Whether all of that came as it was due, both ways.
  void expectArrivals(Number messages);

  FullHeadUnit& headUnit() { return headUnit_; }

 private:
  void onState(phone::LinkState state) override;
  void onMessage(const phone::Message& message) override;
  bool isDone() const;

  FullHeadUnit headUnit_;
  TcpPair sockets_;
  SocketTransport transport_{&headUnit_.receiver, std::move(sockets_.headUnit)};
  CarArrivals heard_;
  phone::Timers timers_;  // never wound: no limit of time runs out
  std::unique_ptr<phone::PhoneLink> phone_;
  std::unique_ptr<phone::CarServices> car_;
  std::vector<std::unique_ptr<NumberedStream>> streams_;
  std::future<bool> speaker_;
  Number messages_ = 0;
};

}  // namespace test
