// Keys and touches: what can be bound, and what comes unbidden.
#include "phone/verify/Probe.h"

namespace phone::verify {

namespace {

constexpr int noKey = 999'999;

Service input(Probe& probe) {
  return probe.find([](const Service& one) { return one.has_input_source_service(); }, "input");
}

int bindKeys(Probe& probe, std::uint8_t channel, const std::vector<int>& codes) {
  KeyBindingRequest request;
  for (const int code : codes) request.add_keycodes(code);
  probe.link().send(channel, MESSAGE_KEY_BINDING_REQUEST, request);
  return probe.await<KeyBindingResponse>(channel, MESSAGE_KEY_BINDING_RESPONSE, "a KeyBindingResponse")
      .status();
}

std::vector<int> offeredCodes(const Service& service) {
  const auto& codes = service.input_source_service().keycodes_supported();
  if (codes.empty()) throw NotOffered{"a key"};
  return {codes.begin(), codes.end()};
}

void expectStatus(int status, int wanted, const std::string& what) {
  Probe::expect(status == wanted, "status " + std::to_string(wanted) + " to " + what, std::to_string(status));
}

void bindsAll(Probe& probe) {
  const Service service = input(probe);
  const std::uint8_t channel = probe.open(service);
  expectStatus(bindKeys(probe, channel, offeredCodes(service)), 0, "a request for every key code offered");
  bindKeys(probe, channel, {});
  probe.close(channel);
}

void bindsEachTwice(Probe& probe) {
  const Service service = input(probe);
  const std::uint8_t channel = probe.open(service);
  const int code = offeredCodes(service).front();
  expectStatus(bindKeys(probe, channel, {code, code}), 0, "a request that names a key code twice");
  bindKeys(probe, channel, {});
  probe.close(channel);
}

void bindsNone(Probe& probe) {
  const std::uint8_t channel = probe.open(input(probe));
  expectStatus(bindKeys(probe, channel, {}), 0, "a request for no key codes");
  probe.close(channel);
}

void refusesUnsupported(Probe& probe) {
  const Service service = input(probe);
  const std::uint8_t channel = probe.open(service);
  expectStatus(bindKeys(probe, channel, {noKey}), STATUS_INVALID_KEYCODE, "a key code that is not offered");
  std::vector<int> mixed = offeredCodes(service);
  mixed.push_back(noKey);
  expectStatus(bindKeys(probe, channel, mixed), STATUS_INVALID_KEYCODE,
               "key codes of which one is not offered");
  probe.close(channel);
}

void sendsNoUnboundKey(Probe& probe) {
  const Service service = input(probe);
  probe.freshUpLink();
  const std::uint8_t channel = probe.open(service);
  probe.runUntil([&] { return probe.count(channel, MESSAGE_INPUT_REPORT) > 0; }, 150'000);
  while (const auto message = probe.awaitMaybe(channel, MESSAGE_INPUT_REPORT, 0)) {
    const auto report = message->as<InputReport>();
    Probe::expect(report.has_value(), "an InputReport that parses", hex(message->bytes));
    Probe::expect(!report->has_key_event() && !report->has_absolute_event() && !report->has_relative_event(),
                  "touches at most, while no key is bound", "a report of a key");
  }
}

void refusesNonsense(Probe& probe) {
  const std::uint8_t channel = probe.open(input(probe));
  probe.expectRefused(channel, messageBytes(MESSAGE_KEY_BINDING_REQUEST, Bytes{0x0a, 0x05}),
                      "a KeyBindingRequest cut short");
  probe.expectRefused(channel, messageBytes(MESSAGE_INPUT_REPORT), "an InputReport");
  probe.expectRefused(channel, messageBytes(MESSAGE_KEY_BINDING_RESPONSE), "a KeyBindingResponse");
  probe.expectRefused(channel, messageBytes(0x8004), "an unknown type");
  probe.close(channel);
}

}  // namespace

Checks inputChecks() {
  return {
      {"input.bind", "All key codes offered can be bound at once.", bindsAll},
      {"input.bind-twice", "A key code named twice is bound like one.", bindsEachTwice},
      {"input.bind-none", "A request for no key codes is accepted.", bindsNone},
      {"input.unsupported", "A key code that is not offered refuses the whole request with status -18.",
       refusesUnsupported},
      {"input.unbound", "Without a binding no key is reported.", sendsNoUnboundKey},
      {"input.refused", "Damaged and unknown messages are refused.", refusesNonsense},
  };
}

}  // namespace phone::verify
