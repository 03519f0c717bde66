#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <spdlog/sinks/ostream_sink.h>
#include <spdlog/spdlog.h>

#include <sstream>

#include "phone/program/Console.h"

namespace test {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::SizeIs;

struct PhoneProgramConsole : testing::Test {
  PhoneProgramConsole() {
    auto logger =
        std::make_shared<spdlog::logger>("test", std::make_shared<spdlog::sinks::ostream_sink_st>(log));
    logger->set_pattern("%v");
    spdlog::set_default_logger(std::move(logger));
  }
  ~PhoneProgramConsole() override { spdlog::set_default_logger(before); }

  std::vector<std::string> lines() const {
    std::istringstream text(log.str());
    std::vector<std::string> all;
    for (std::string line; std::getline(text, line);) all.push_back(line);
    return all;
  }

  const std::shared_ptr<spdlog::logger> before = spdlog::default_logger();
  std::ostringstream log;
  phone::PhoneLink link{phone::LinkOptions()};
  phone::Timers timers;
  phone::Console console{&link, &timers};
};

TEST_F(PhoneProgramConsole, TellsTheFirstFewOfManyViolations) {
  for (int i = 1; i <= 1000; ++i) console.onViolation("number " + std::to_string(i));
  EXPECT_THAT(lines(),
              ElementsAre("head unit broke a rule: number 1", "head unit broke a rule: number 2",
                          "head unit broke a rule: number 3", "head unit broke a rule: number 4",
                          "head unit broke a rule: number 5 (further ones are told only with --verbose)"));
}

TEST_F(PhoneProgramConsole, TellsTheFirstFewOfManyMessagesThatWereNotExpected) {
  phone::Message message;
  message.channel = 7;
  message.bytes = {0, 255};
  ASSERT_EQ(message.type(), MESSAGE_UNEXPECTED_MESSAGE);
  console.onViolation("something else");
  for (int i = 0; i < 1000; ++i) console.onMessage(message);
  EXPECT_THAT(lines(), SizeIs(6));
}

TEST_F(PhoneProgramConsole, TellsAllToWhoeverWantsToKnowEverything) {
  spdlog::default_logger()->set_level(spdlog::level::debug);
  for (int i = 0; i < 100; ++i) console.onViolation("it");
  EXPECT_THAT(lines(), SizeIs(100));
  EXPECT_THAT(lines(), Each(HasSubstr("head unit broke a rule: it")));
}

}  // namespace
}  // namespace test
