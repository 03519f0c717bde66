#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "phone/scenario/Scenario.h"
#include "phone_head_unit.h"

namespace test {
namespace {

using phone::Micros;
using phone::scenario::Verdict;
using testing::EndsWith;
using testing::HasSubstr;

constexpr Micros interval = 10'000;

/// A head unit that says the same again and again, in a time that passes only while somebody waits.
class RepeatingLink : public phone::verify::LinkUnderTest {
 public:
  RepeatingLink(const phone::LinkOptions& options, const Bytes& saying, Micros* waited)
      : link_(options), headUnit_(&link_), saying_(saying), waited_(waited) {
    headUnit_.bringsUp();
  }

  phone::PhoneLink& link() override { return link_; }

  bool runUntil(const std::function<bool()>& done, Micros limit) override {
    if (link_.state() == phone::LinkState::leaving) return false;
    const Micros end = *waited_ + limit;
    while (!done()) {
      if (*waited_ >= end) return false;
      *waited_ += interval;
      // One who waits for ever is to be told from one who waits for the right time, so this has an end.
      if (said_++ < 1000) headUnit_.sends(0, saying_);
    }
    return true;
  }

 private:
  phone::PhoneLink link_;
  HandMadeHeadUnit headUnit_;
  Bytes saying_;
  Micros* waited_;
  int said_ = 0;
};

struct RepeatingHeadUnit : phone::verify::HeadUnit {
  explicit RepeatingHeadUnit(Bytes what) : saying(std::move(what)) {}
  std::unique_ptr<phone::verify::LinkUnderTest> connect(phone::LinkOptions options, std::string*) override {
    return std::make_unique<RepeatingLink>(options, saying, &waited);
  }
  Bytes saying;
  Micros waited = 0;
};

Bytes pong(std::int64_t timestamp) {
  PingResponse record;
  record.set_timestamp(timestamp);
  return message(MESSAGE_PING_RESPONSE, record);
}

Verdict play(const std::string& text, phone::verify::HeadUnit* headUnit) {
  std::string error;
  const auto scenario = phone::scenario::parseScenario(text, &error);
  EXPECT_TRUE(scenario.has_value()) << error;
  return phone::scenario::play(*scenario, headUnit, phoneCredentials());
}

TEST(ScenarioPlayer, OneDeadlineHoldsForAStepThatPassesMessagesOver) {
  RepeatingHeadUnit headUnit(pong(6));
  const Verdict verdict = play(R"({"steps": [
    {"expect": {"on": "control", "type": "MESSAGE_PING_RESPONSE", "fields": {"1": 5}, "within_ms": 200}}]})",
                               &headUnit);
  EXPECT_FALSE(verdict.kept);
  EXPECT_EQ(headUnit.waited, 200'000);
}

TEST(ScenarioPlayer, OneDeadlineHoldsForAStepThatExpectsNothing) {
  RepeatingHeadUnit headUnit(pong(6));
  const Verdict verdict = play(R"({"steps": [
    {"expect_none": {"on": "control", "type": "MESSAGE_PING_RESPONSE", "fields": {"1": 5}, "within_ms": 300}}]})",
                               &headUnit);
  EXPECT_TRUE(verdict.kept) << verdict.why;
  EXPECT_EQ(headUnit.waited, 300'000);
}

TEST(ScenarioPlayer, TellsWhatCameInPlaceOfTheFieldsThatWereExpected) {
  RepeatingHeadUnit headUnit(pong(-6));
  const Verdict verdict = play(R"({"steps": [
    {"expect": {"on": "control", "type": "MESSAGE_PING_RESPONSE", "fields": {"1": 5}, "within_ms": 20}}]})",
                               &headUnit);
  EXPECT_THAT(verdict.why,
              HasSubstr(R"(expected message MESSAGE_PING_RESPONSE (0x000c) with {"1":5} within 20 ms)"));
  EXPECT_THAT(verdict.why, HasSubstr("MESSAGE_PING_RESPONSE (0x000c) 2 times"));
  EXPECT_THAT(verdict.why, EndsWith(R"(; of that type with {"1":-6}, {"1":-6})"));
}

TEST(ScenarioPlayer, TellsWhatCameInPlaceOfTheBytesThatWereExpected) {
  RepeatingHeadUnit headUnit(pong(6));
  const Verdict verdict = play(R"({"steps": [
    {"expect": {"on": "control", "type": "MESSAGE_PING_RESPONSE", "hex": "08 05", "within_ms": 10}}]})",
                               &headUnit);
  EXPECT_THAT(verdict.why, HasSubstr("with the bytes 08 05"));
  EXPECT_THAT(verdict.why, EndsWith("; of that type with the bytes 08 06"));
}

TEST(ScenarioPlayer, TellsWhatCameThoughNothingWasToCome) {
  RepeatingHeadUnit headUnit(pong(6));
  const Verdict verdict = play(R"({"steps": [
    {"expect_none": {"on": "control", "type": "MESSAGE_PING_RESPONSE", "fields": {"1": 6}}}]})",
                               &headUnit);
  EXPECT_EQ(verdict.why,
            R"(expected no message MESSAGE_PING_RESPONSE (0x000c) with {"1":6}; came one with {"1":6})");
}

TEST(ScenarioPlayer, KeepsOnlyTheLastOfWhatWasPassedOver) {
  RepeatingHeadUnit headUnit(pong(6));
  const Verdict verdict = play(R"({"steps": [
    {"expect": {"on": "control", "type": "MESSAGE_PING_RESPONSE", "fields": {"1": 5}, "within_ms": 1000}}]})",
                               &headUnit);
  EXPECT_THAT(verdict.why, HasSubstr("MESSAGE_PING_RESPONSE (0x000c) 100 times"));
  EXPECT_THAT(verdict.why, EndsWith(R"(; of that type with {"1":6}, {"1":6}, {"1":6}, {"1":6}, {"1":6})"));
}

TEST(ScenarioPlayer, TakesEachMessageOnce) {
  RepeatingHeadUnit headUnit(pong(6));
  const std::string one =
      R"({"expect": {"on": "control", "type": "MESSAGE_PING_RESPONSE", "fields": {"1": 6}, "within_ms": 200}})";
  const Verdict verdict = play("{\"steps\": [" + one + ", " + one + ", " + one + "]}", &headUnit);
  EXPECT_TRUE(verdict.kept) << verdict.why;
  EXPECT_EQ(headUnit.waited, 3 * interval);
}

}  // namespace
}  // namespace test
