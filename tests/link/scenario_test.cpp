#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "../unit/phone_head_unit.h"
#include "VerifyHeadUnit.h"
#include "phone/scenario/Scenario.h"
#include "phone/scenario/WireFields.h"

// Scenarios, played in memory to a head unit that is built from the library.

namespace test {
namespace {

using phone::scenario::bytesOfHex;
using phone::scenario::encodeFields;
using phone::scenario::hasFields;
using phone::scenario::Verdict;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;
using json = nlohmann::json;

Verdict play(const std::string& text, const HeadUnitFaults& faults = {}) {
  std::string error;
  const auto scenario = phone::scenario::parseScenario(text, &error);
  EXPECT_TRUE(scenario.has_value()) << error;
  MemoryHeadUnit headUnit(faults);
  return phone::scenario::play(*scenario, &headUnit, phoneCredentials());
}

std::string errorOf(const std::string& text) {
  std::string error;
  EXPECT_FALSE(phone::scenario::parseScenario(text, &error).has_value());
  return error;
}

TEST(Scenario, BuiltInOnesHold) {
  for (const auto& scenario : phone::scenario::builtInScenarios()) {
    MemoryHeadUnit headUnit;
    const Verdict verdict = phone::scenario::play(scenario, &headUnit, phoneCredentials());
    EXPECT_TRUE(verdict.kept) << scenario.name << ", " << verdict.step << ": " << verdict.why;
  }
}

TEST(Scenario, NamesTheStepWhoseExpectationFails) {
  HeadUnitFaults faults;
  faults.endsScans = false;
  MemoryHeadUnit headUnit(faults);
  for (const auto& scenario : phone::scenario::builtInScenarios()) {
    if (scenario.name != "radio") continue;
    const Verdict verdict = phone::scenario::play(scenario, &headUnit, phoneCredentials());
    EXPECT_FALSE(verdict.kept);
    EXPECT_EQ(verdict.step, "the scan ends");
    EXPECT_THAT(verdict.why, HasSubstr("0x8002"));
    return;
  }
  FAIL() << "there is no radio scenario";
}

TEST(Scenario, ExpectsFieldsAndNotOnlyTypes) {
  const std::string ping = R"({"steps": [
    {"send": {"on": "control", "type": "MESSAGE_PING_REQUEST", "fields": {"1": 5}}},
    {"name": "six", "expect": {"on": "control", "type": "MESSAGE_PING_RESPONSE", "fields": {"1": 6}}}]})";
  const Verdict verdict = play(ping);
  EXPECT_FALSE(verdict.kept);
  EXPECT_EQ(verdict.step, "six");
}

TEST(Scenario, FailsWhenWhatMustNotComeComes) {
  const Verdict verdict = play(R"({"steps": [
    {"send": {"on": "control", "type": 100, "hex": ""}},
    {"expect_none": {"on": "control", "type": "MESSAGE_UNEXPECTED_MESSAGE"}}]})");
  EXPECT_FALSE(verdict.kept);
  EXPECT_EQ(verdict.step, "step 2");
}

TEST(Scenario, TellsWhatIsNotOffered) {
  const Verdict verdict = play(R"({"steps": [{"open": "200"}]})");
  EXPECT_FALSE(verdict.kept);
  EXPECT_THAT(verdict.why, HasSubstr("does not offer"));
}

TEST(Scenario, ALinkThatEndsFailsTheStepThatEndedIt) {
  const Verdict verdict = play(R"({"steps": [
    {"name": "bye", "send": {"on": "control", "type": "MESSAGE_BYE_BYE_REQUEST", "fields": {"1": 1}}},
    {"name": "pause", "wait_ms": 10},
    {"name": "ping", "send": {"on": "control", "type": "MESSAGE_PING_REQUEST", "fields": {"1": 5}}}]})");
  EXPECT_FALSE(verdict.kept);
  EXPECT_EQ(verdict.step, "pause");
  EXPECT_THAT(verdict.why, HasSubstr("the link has ended"));
}

TEST(Scenario, RefusesFilesThatAreWrongAndTellsWhere) {
  EXPECT_THAT(errorOf("{"), StartsWith("parse error at line 1, column 2"));
  EXPECT_THAT(errorOf(R"({"steps": [{"name": 1, "open": "radio"}]})"),
              AllOf(StartsWith("step 1: "), Not(HasSubstr("exception"))));
  EXPECT_THAT(errorOf("{\"steps\": []}"), HasSubstr("no steps"));
  EXPECT_THAT(errorOf("{\"steps\": [{\"open\": \"radio\"}, {}]}"),
              HasSubstr("step 2: a step does exactly one thing"));
  EXPECT_THAT(errorOf("{\"steps\": [{\"opne\": \"radio\"}]}"), HasSubstr("\"opne\" means nothing here"));
  EXPECT_THAT(errorOf(R"({"steps": [{"send": {"on": "radio", "type": "MESSAGE_NONE"}}]})"),
              HasSubstr("there is no message MESSAGE_NONE"));
  EXPECT_THAT(errorOf(R"({"steps": [{"send": {"on": "radio", "type": 1, "fields": {"one": 1}}}]})"),
              HasSubstr("no field number"));
  EXPECT_THAT(errorOf(R"({"steps": [{"send": {"on": "radio", "type": 1, "hex": "0"}}]})"),
              HasSubstr("hexadecimal"));
  EXPECT_THAT(errorOf(R"({"steps": [{"wait_ms": -1}]})"), HasSubstr("milliseconds"));
  EXPECT_THAT(errorOf(R"({"steps": [{"wait_ms": 1, "open": "radio"}]})"), HasSubstr("exactly one thing"));
}

TEST(ScenarioFields, EncodeAsTheWireHasThem) {
  EXPECT_EQ(encodeFields({{"1", 150}}), bytesOfHex("08 96 01"));
  EXPECT_EQ(encodeFields({{"1", -19}}), bytesOfHex("08 ed ff ff ff ff ff ff ff ff 01"));
  EXPECT_EQ(encodeFields({{"2", "hi"}, {"3", true}}), bytesOfHex("12 02 68 69 18 01"));
  EXPECT_EQ(encodeFields({{"1", {{"1", 3}}}}), bytesOfHex("0a 02 08 03"));
  EXPECT_EQ(encodeFields({{"4", json::array({1, 2})}}), bytesOfHex("20 01 20 02"));
  EXPECT_EQ(encodeFields({{"5", {{"hex", "00 ff"}}}}), bytesOfHex("2a 02 00 ff"));
  EXPECT_THROW(encodeFields({{"1", 1.5}}), std::invalid_argument);
  EXPECT_THROW(encodeFields({{"0", 1}}), std::invalid_argument);
}

TEST(ScenarioFields, AreFoundInARecordThatHoldsMore) {
  const phone::Bytes body = bytesOfHex("08 96 01 12 02 68 69 1a 02 08 03 20 01 20 02");
  EXPECT_TRUE(hasFields(body, json::object()));
  EXPECT_TRUE(hasFields(body, {{"1", 150}, {"2", "hi"}}));
  EXPECT_TRUE(hasFields(body, {{"3", {{"1", 3}}}}));
  EXPECT_TRUE(hasFields(body, {{"4", json::array({1, 2})}}));
  EXPECT_FALSE(hasFields(body, {{"4", json::array({2, 1})}}));
  EXPECT_FALSE(hasFields(body, {{"4", json::array({1})}}));
  EXPECT_FALSE(hasFields(body, {{"1", 151}}));
  EXPECT_FALSE(hasFields(body, {{"9", 1}}));
  EXPECT_FALSE(hasFields(bytesOfHex("0a 05 01"), {{"1", "x"}}));
}

}  // namespace
}  // namespace test
