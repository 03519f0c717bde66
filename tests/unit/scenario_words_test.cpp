#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "phone/scenario/WireFields.h"
#include "phone/verify/TypeNames.h"

namespace test {
namespace {

using phone::scenario::bytesOfHex;
using phone::scenario::fieldsInWords;
using phone::verify::typeName;
using testing::EndsWith;
using testing::SizeIs;

TEST(ScenarioWords, TellFieldsAsAScenarioWritesThem) {
  EXPECT_EQ(fieldsInWords({}), "{}");
  EXPECT_EQ(fieldsInWords(bytesOfHex("10 05 08 ed ff ff ff ff ff ff ff ff 01")), R"({"2":5,"1":-19})");
  EXPECT_EQ(fieldsInWords(bytesOfHex("12 02 68 69 12 00 12 01 ff")),
            R"({"2":["hi",{"hex":""},{"hex":"ff"}]})");
  EXPECT_EQ(fieldsInWords(bytesOfHex("0d 01 02 03 04")), R"({"1":{"hex":"01 02 03 04"}})");
}

TEST(ScenarioWords, TellWhatIsNoRecordAsBytes) {
  EXPECT_EQ(fieldsInWords(bytesOfHex("0a 05 01")), "the bytes 0a 05 01");
  EXPECT_EQ(fieldsInWords(bytesOfHex("08")), "the bytes 08");
}

TEST(ScenarioWords, AreCutWhereARecordIsLong) {
  phone::Bytes body = bytesOfHex("0a ff 07");
  body.resize(body.size() + 1023, 'x');
  EXPECT_THAT(fieldsInWords(body), SizeIs(303));
  EXPECT_THAT(fieldsInWords(body), EndsWith("xxx..."));
}

TEST(ScenarioWords, NameATypeByTheServiceThatItTravelsOn) {
  Service radio;
  radio.mutable_radio_service();
  Service sink;
  sink.mutable_media_sink_service();
  Service vendor;
  vendor.mutable_vendor_extension_service();
  EXPECT_EQ(typeName(0x8001, &radio), "MESSAGE_RADIO_SCAN_REQUEST (0x8001)");
  EXPECT_EQ(typeName(0x8001, &sink), "MESSAGE_START (0x8001)");
  EXPECT_EQ(typeName(1, &sink), "MESSAGE_CODEC_CONFIG (0x0001)");
  EXPECT_EQ(typeName(1, nullptr), "MESSAGE_VERSION_REQUEST (0x0001)");
  EXPECT_EQ(typeName(0xff, &radio), "MESSAGE_UNEXPECTED_MESSAGE (0x00ff)");
  EXPECT_EQ(typeName(0x8001, &vendor), "0x8001");
  EXPECT_EQ(typeName(0x8001, nullptr), "0x8001");
}

}  // namespace
}  // namespace test
