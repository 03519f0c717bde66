#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "phone/scenario/Scenario.h"

namespace test {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

std::string errorOf(const std::string& text) {
  std::string error;
  EXPECT_FALSE(phone::scenario::parseScenario(text, &error).has_value());
  return error;
}

std::string nested(std::size_t levels, const std::string& open, const std::string& close) {
  std::string text;
  for (std::size_t i = 0; i < levels; ++i) text += open;
  text += "{}";
  for (std::size_t i = 0; i < levels; ++i) text += close;
  return text;
}

// The file's object, the list of steps, the step, the message and the innermost object are five levels.
std::string sending(std::size_t levels) {
  return R"({"steps": [{"wait_ms": 1}, {"send": {"on": "control", "type": 1, "fields": )" +
         nested(levels - 5, R"({"1": )", "}") + "}}]}";
}

TEST(ScenarioFile, MayNestSixtyFourLevels) {
  std::string error;
  EXPECT_TRUE(phone::scenario::parseScenario(sending(64), &error).has_value()) << error;
}

TEST(ScenarioFile, IsRefusedWithTheStepThatNestsDeeper) {
  EXPECT_THAT(errorOf(sending(65)), StartsWith("step 2: "));
  EXPECT_THAT(errorOf(sending(65)), HasSubstr("more than 64 levels deep"));
}

TEST(ScenarioFile, IsRefusedHoweverDeepItNests) {
  EXPECT_THAT(errorOf(sending(200'000)), HasSubstr("64 levels"));
  EXPECT_THAT(errorOf(nested(200'000, "[", "]")), HasSubstr("64 levels"));
  EXPECT_THAT(errorOf(R"({"name": )" + nested(200'000, "[", "]") + "}"), StartsWith("lists and objects"));
}

TEST(ScenarioFile, IsRefusedWithTheStepThatNamesAServiceWhichDoesNotExist) {
  EXPECT_THAT(errorOf(R"({"steps": [{"wait_ms": 1}, {"open": "toaster"}]})"),
              "step 2: there is no service \"toaster\"");
  EXPECT_THAT(errorOf(R"({"steps": [{"close": ""}]})"), HasSubstr("no service \"\""));
  EXPECT_THAT(errorOf(R"({"steps": [{"expect": {"on": "Radio", "type": 1}}]})"), HasSubstr("\"Radio\""));
  EXPECT_THAT(errorOf(R"({"steps": [{"open": -1}]})"), HasSubstr("a kind or an id"));
  EXPECT_THAT(errorOf(R"({"steps": [{"open": 1.5}]})"), HasSubstr("a kind or an id"));
}

TEST(ScenarioFile, NamesAServiceByItsKindOrItsId) {
  for (const char* name :
       {"\"control\"", "\"video\"", "\"audio\"", "\"microphone\"", "\"sensors\"", "\"input\"",
        "\"bluetooth\"", "\"radio\"", "\"navigation\"", "\"playback\"", "\"phone\"", "\"browser\"",
        "\"notifications\"", "\"vendor\"", "\"verification\"", "\"200\"", "7"}) {
    std::string error;
    EXPECT_TRUE(phone::scenario::parseScenario(
                    std::string(R"({"steps": [{"send": {"on": )") + name + R"(, "type": 1}}]})", &error)
                    .has_value())
        << error;
  }
}

}  // namespace
}  // namespace test
