#include <deque>

#include "phone/scenario/Scenario.h"
#include "phone/scenario/Services.h"
#include "phone/scenario/WireFields.h"
#include "phone/verify/Probe.h"

namespace phone::scenario {

namespace {

using verify::Mismatch;
using verify::Probe;

std::uint8_t channelFor(Probe& probe, const std::string& kind) {
  if (kind == "control") return 0;
  const std::string name = "a service \"" + kind + "\"";
  return probe.channelOf(
      probe.find([&kind](const Service& one) { return isCalled(one, kind); }, name.c_str()));
}

void send(Probe& probe, const Step& step) {
  const std::uint8_t channel = channelFor(probe, step.service);
  const Bytes body = step.raw ? *step.raw : step.fields.is_null() ? Bytes() : encodeFields(step.fields);
  probe.link().send(channel, static_cast<std::uint16_t>(step.type), body);
}

bool fits(const Message& message, const Step& step) {
  const Bytes body(message.body(), message.body() + message.bodySize());
  if (step.raw) return body == *step.raw;
  return step.fields.is_null() || hasFields(body, step.fields);
}

std::string contentOf(const Message& message, const Step& step) {
  const Bytes body(message.body(), message.body() + message.bodySize());
  return step.raw || step.fields.is_null() ? "the bytes " + verify::hex(body) : fieldsInWords(body);
}

// Messages of the type that do not fit are passed over: a car says many things at once. The last few of them
// are kept in words.
std::optional<Message> awaitFitting(Probe& probe, std::uint8_t channel, const Step& step,
                                    std::deque<std::string>* passedOver) {
  constexpr std::size_t most = 5;
  const auto look = [&](const Message& message) {
    if (fits(message, step)) return true;
    passedOver->push_back(contentOf(message, step));
    if (passedOver->size() > most) passedOver->pop_front();
    return false;
  };
  return probe.awaitFitting(channel, step.type, look, step.within);
}

std::string wanted(const Probe& probe, std::uint8_t channel, const Step& step) {
  const std::string content = step.raw                ? " with the bytes " + verify::hex(*step.raw)
                              : step.fields.is_null() ? ""
                                                      : " with " + step.fields.dump();
  return "message " + probe.typeOn(channel, step.type) + content;
}

void expect(Probe& probe, const Step& step) {
  const std::uint8_t channel = channelFor(probe, step.service);
  std::deque<std::string> passedOver;
  if (awaitFitting(probe, channel, step, &passedOver)) return;
  std::string came = probe.cameOn(channel);
  for (const std::string& content : passedOver) {
    came += (&content == &passedOver.front() ? "; of that type with " : ", ") + content;
  }
  throw Mismatch{wanted(probe, channel, step) + " within " + std::to_string(step.within / 1000) + " ms",
                 came};
}

void expectNone(Probe& probe, const Step& step) {
  const std::uint8_t channel = channelFor(probe, step.service);
  std::deque<std::string> passedOver;
  const auto message = awaitFitting(probe, channel, step, &passedOver);
  if (message) throw Mismatch{"no " + wanted(probe, channel, step), "one with " + contentOf(*message, step)};
}

void run(Probe& probe, const Step& step) {
  switch (step.kind) {
    case Step::Kind::open: channelFor(probe, step.service); return;
    case Step::Kind::close: probe.close(channelFor(probe, step.service)); return;
    case Step::Kind::send: send(probe, step); return;
    case Step::Kind::wait: probe.runUntil([] { return false; }, step.within); return;
    case Step::Kind::expect: expect(probe, step); return;
    case Step::Kind::expectNone: expectNone(probe, step); return;
  }
}

}  // namespace

Verdict play(const Scenario& scenario, verify::HeadUnit* headUnit, const Credentials& credentials,
             const std::function<void(const Step&)>& onStep) {
  Probe probe(headUnit, credentials);
  std::string at = "bring-up";
  try {
    probe.freshUpLink();
    for (const Step& step : scenario.steps) {
      at = step.name;
      if (onStep) onStep(step);
      run(probe, step);
      if (const auto end = probe.end()) return {false, at, "the link has ended: " + end->words()};
    }
  } catch (const Mismatch& mismatch) {
    return {false, at, "expected " + mismatch.expected + "; came " + mismatch.came};
  } catch (const verify::NotOffered& missing) {
    return {false, at, "the head unit does not offer " + missing.what};
  } catch (const verify::Interrupted&) {
    return {false, at, "interrupted"};
  }
  return {};
}

}  // namespace phone::scenario
