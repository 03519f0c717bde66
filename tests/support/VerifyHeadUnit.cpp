#include "VerifyHeadUnit.h"

#include "VerifyHost.h"

namespace test {

namespace {

class MemoryLink : public phone::verify::LinkUnderTest {
 public:
  MemoryLink(const phone::LinkOptions& options, const HeadUnitFaults& faults)
      : link_(options), host_(faults) {
    if (!faults.sent && !faults.received && !faults.relayed && faults.showsCertificate) return;
    relay_ = std::make_unique<TamperingRelay>(options, faults.showsCertificate, faults.sent, faults.received);
  }

  phone::PhoneLink& link() override { return link_; }

  // What no longer moves will not come, so there is no reason to wait out the limit.
  bool runUntil(const std::function<bool()>& done, phone::Micros) override {
    while (!done()) {
      const bool moved = bringAlong();
      if (!moved && host_.hasStopped()) link_.streamEnded();
      if (!moved) return done();
    }
    return true;
  }

 private:
  bool bringAlong() {
    const bool toPhone = bringToPhone();
    const bool toHeadUnit = bringToHeadUnit();
    return toPhone || toHeadUnit || host_.work();
  }

  bool bringToPhone() {
    bool moved = false;
    phone::Bytes wire;
    while (host_.takeFrame(&wire)) {
      link_.feed(relay_ ? relay_->fromHeadUnit(wire) : wire);
      moved = true;
    }
    return moved;
  }

  bool bringToHeadUnit() {
    const phone::Bytes sent = link_.takeOutput();
    decoder_.feed(sent.data(), sent.size());
    bool moved = false;
    phone::Frame frame;
    while (decoder_.next(&frame)) {
      for (const phone::Bytes& wire :
           relay_ ? relay_->fromPhone(frame) : std::vector<phone::Bytes>{phone::encodeFrame(frame)}) {
        if (!host_.hasStopped()) host_.giveFrame(wire);
      }
      moved = true;
    }
    return moved;
  }

  phone::PhoneLink link_;
  VerifyHost host_;
  std::unique_ptr<TamperingRelay> relay_;
  phone::FrameDecoder decoder_;
};

}  // namespace

std::unique_ptr<phone::verify::LinkUnderTest> MemoryHeadUnit::connect(phone::LinkOptions options,
                                                                      std::string*) {
  return std::make_unique<MemoryLink>(options, faults_);
}

}  // namespace test
