#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "phone/program/Stats.h"

namespace test {
namespace {

using nlohmann::json;
using testing::HasSubstr;

const phone::LinkEnd refused{false, phone::Side::medium, "connection refused", "start it first"};

std::vector<std::string> namesIn(const json& object) {
  std::vector<std::string> names;
  for (const auto& item : object.items()) names.push_back(item.key());
  return names;
}

TEST(PhoneProgramStats, TellWhyThereWasNoLink) {
  const json figures = json::parse(phone::statsJson(nullptr, refused, 2));
  EXPECT_EQ(figures.at("end").at("clean"), false);
  EXPECT_EQ(figures.at("end").at("words"), refused.words());
  EXPECT_EQ(figures.at("end").at("exit_status"), 2);
  EXPECT_TRUE(figures.at("handshake_ms").is_null());
  EXPECT_TRUE(figures.at("video").is_null());
}

TEST(PhoneProgramStats, HaveTheSameNamesWithAndWithoutALink) {
  phone::PhoneLink link{phone::LinkOptions()};
  phone::Timers timers;
  const phone::PhoneSession session(&link, &timers, {}, nullptr);
  const json with = json::parse(phone::statsJson(&session, {}, 0));
  const json without = json::parse(phone::statsJson(nullptr, refused, 2));
  EXPECT_EQ(namesIn(with), namesIn(without));
  EXPECT_EQ(with.at("touches"), without.at("touches"));
  EXPECT_EQ(with.at("audio"), without.at("audio"));
  EXPECT_EQ(with.at("troubles"), without.at("troubles"));
  EXPECT_EQ(with.at("violations"), without.at("violations"));
}

TEST(PhoneProgramStats, CountTheRulesThatTheHeadUnitBroke) {
  phone::PhoneLink link{phone::LinkOptions()};
  phone::Timers timers;
  phone::PhoneSession session(&link, &timers, {}, nullptr);
  session.onViolation("a message that does not parse");
  session.onViolation("another");
  EXPECT_EQ(json::parse(phone::statsJson(&session, {}, 0)).at("violations"), 2);
}

}  // namespace
}  // namespace test
