#include "headunit/Report.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

namespace headunit {
namespace {

using nlohmann::json;

TEST(HeadunitReport, TellsWhatCameByEachService) {
  LinkRecord record;
  record.stats = std::make_shared<LinkStats>(Clock::now());
  ServiceTotals& totals = record.services;
  totals.pairingOpened = 1;
  totals.pairingRequests = 3;
  totals.pairingsDelayed = 2;
  totals.pairingsAccepted = 1;
  totals.radioScans = 4;
  totals.turns = 5;
  totals.songs = 6;
  totals.calls = 7;
  totals.browserPages = 8;
  totals.notificationsShown = 9;
  totals.notificationsAcknowledged = 10;
  totals.echoes = 11;
  totals.images = 12;
  totals.keys = 13;
  const json services = json::parse(toJson(record)).at("services");
  EXPECT_EQ(services.at("pairing"),
            json({{"opened", 1}, {"requests", 3}, {"delayed", 2}, {"accepted", 1}, {"refused", 0}}));
  EXPECT_EQ(services.at("radio"), json({{"opened", 0}, {"commands", 0}, {"scans", 4}}));
  EXPECT_EQ(services.at("navigation").at("turns"), 5);
  EXPECT_EQ(services.at("playback").at("songs"), 6);
  EXPECT_EQ(services.at("phone").at("calls"), 7);
  EXPECT_EQ(services.at("browser").at("pages"), 8);
  EXPECT_EQ(services.at("notification").at("shown"), 9);
  EXPECT_EQ(services.at("notification").at("acknowledged"), 10);
  EXPECT_EQ(services.at("echo").at("messages"), 11);
  EXPECT_EQ(services.at("images_decoded"), 12);
  EXPECT_EQ(services.at("keys"), 13);
}

TEST(HeadunitReport, SaysInWordsWhatTheServicesBrought) {
  ServiceTotals totals;
  EXPECT_EQ(inWords(totals), "") << "none was opened";
  totals.navigationOpened = 1;
  totals.turns = 2;
  totals.pairingsRefused = 1;
  EXPECT_EQ(inWords(totals),
            "turns 2, songs 0, calls 0, pages of the list 0, notifications 0, requests to the tuner 0, "
            "pairings accepted 0, refused 1");
}

}  // namespace
}  // namespace headunit
