#include "headunit/services/ClusterServices.h"

#include "headunit/services/ServiceIds.h"

namespace headunit {
namespace {

ImageLoader::Post postTo(SlowWork* slowWork) {
  return [slowWork](std::function<void()> work) { slowWork->post(std::move(work)); };
}

std::optional<InstrumentClusterInput_InstrumentClusterAction> actionOf(ClusterKey key) {
  switch (key) {
    case ClusterKey::up: return InstrumentClusterInput_InstrumentClusterAction_UP;
    case ClusterKey::down: return InstrumentClusterInput_InstrumentClusterAction_DOWN;
    case ClusterKey::left: return InstrumentClusterInput_InstrumentClusterAction_LEFT;
    case ClusterKey::right: return InstrumentClusterInput_InstrumentClusterAction_RIGHT;
    case ClusterKey::enter: return InstrumentClusterInput_InstrumentClusterAction_ENTER;
    case ClusterKey::back: return InstrumentClusterInput_InstrumentClusterAction_BACK;
    case ClusterKey::call: return InstrumentClusterInput_InstrumentClusterAction_CALL;
    case ClusterKey::browser:
    case ClusterKey::radio: return {};
  }
  return {};
}

}  // namespace

ClusterServices::ClusterServices(const Equipment& equipment, MessageRouter* router)
    : keys_(equipment.clusterKeys),
      images_(postTo(equipment.slowWork), equipment.decodeImage, equipment.cluster),
      context_{router, equipment.cluster, &images_, &tally_, Clock::now},
      pairing_(BLUETOOTH, context_, PairingManner{equipment.autoPair, equipment.pairedPhones, {}}),
      radio_(RADIO, context_, stationsAround()),
      navigation_(NAVIGATION, context_),
      playback_(PLAYBACK, context_),
      phone_(PHONE, context_),
      browser_(BROWSER, context_, equipment.opensBrowser),
      notifications_(NOTIFICATIONS, context_),
      echo_(ECHO_EXTENSION, context_) {}

std::vector<ProtocolEndpointBase*> ClusterServices::endpoints() {
  return {&pairing_, &radio_, &navigation_, &playback_, &phone_, &browser_, &notifications_, &echo_};
}

void ClusterServices::begin(const LinkStats* link) {
  context_.cluster->change([link](ClusterView& view) {
    view = {};
    view.link = link;
    view.ofPhone = true;
  });
  keys_->attach(this);
  attached_ = true;
}

void ClusterServices::end() {
  if (attached_) keys_->detach();
  attached_ = false;
}

void ClusterServices::gone() {
  context_.cluster->change([](ClusterView& view) { view.link = nullptr; });
}

ServiceTotals ClusterServices::totals() const {
  ServiceTotals totals = tally_.totals();
  totals.images = images_.decoded();
  return totals;
}

void ClusterServices::clusterKey(ClusterKey key) {
  if (key == ClusterKey::radio) return radio_.host().toggle();
  if (key == ClusterKey::browser) return browser_.host().toggle();
  if (const std::optional<Action> action = actionOf(key)) press(key, *action);
}

void ClusterServices::press(ClusterKey key, Action action) {
  const ClusterView view = context_.cluster->view();
  const bool toPhone = key == ClusterKey::call || phone_.host().rings();
  if (view.pairing && key != ClusterKey::call) return answerPairing(key);
  if (!toPhone && key == ClusterKey::back && notifications_.host().dismiss()) return;
  if (!toPhone && view.browser.open) return pressInBrowser(key);
  const bool sent =
      toPhone || phone_.host().hasCall() ? phone_.host().press(action) : playback_.host().press(action);
  if (sent) tally_.count(&ServiceTotals::keys);
}

void ClusterServices::answerPairing(ClusterKey key) {
  if (key == ClusterKey::enter) pairing_.host().answer(true);
  if (key == ClusterKey::back) pairing_.host().answer(false);
}

void ClusterServices::pressInBrowser(ClusterKey key) {
  BrowserService& browser = browser_.host();
  switch (key) {
    case ClusterKey::up: return browser.up();
    case ClusterKey::down: return browser.down();
    case ClusterKey::left: return browser.pageBack();
    case ClusterKey::right: return browser.pageOn();
    case ClusterKey::enter: return browser.enter();
    case ClusterKey::back: return browser.back();
    default: return;
  }
}

}  // namespace headunit
