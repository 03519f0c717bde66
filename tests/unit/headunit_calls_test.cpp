#include "headunit/services/PhoneService.h"
#include "headunit_services.h"

namespace headunit {
namespace {

constexpr auto ENTER = InstrumentClusterInput_InstrumentClusterAction_ENTER;

struct HeadunitCalls : ServicesTest {
  PhoneEndpoint phone{SERVICE, context};
  PhoneStatus status;

  PhoneStatus_Call* call(PhoneStatus_State state, const std::string& number, const std::string& caller) {
    PhoneStatus_Call* const added = status.add_calls();
    added->set_phone_state(state);
    added->set_call_duration_seconds(9);
    if (!number.empty()) added->set_caller_number(number);
    if (!caller.empty()) added->set_caller_id(caller);
    return added;
  }
  void tells() { sends(MESSAGE_PHONE_STATUS, status); }
};

TEST_F(HeadunitCalls, ShowsCallsAndSignal) {
  open(&phone);
  status.set_signal_strength(3);
  call(PhoneStatus_State_ON_HOLD, "+1 555 0100", "Ada");
  call(PhoneStatus_State_INCOMING, "+1 555 0142", "");
  tells();
  const PhoneView shown = view().phone;
  EXPECT_TRUE(shown.known);
  EXPECT_EQ(shown.signal, 3U);
  ASSERT_THAT(shown.calls, SizeIs(2));
  EXPECT_EQ(shown.calls[0].state, PhoneStatus_State_ON_HOLD);
  EXPECT_EQ(shown.calls[0].number, "+1 555 0100");
  EXPECT_EQ(shown.calls[0].caller, "Ada");
  EXPECT_EQ(shown.calls[0].seconds, 9U);
  EXPECT_EQ(shown.calls[1].state, PhoneStatus_State_INCOMING);
  EXPECT_EQ(shown.calls[1].caller, "");
}

TEST_F(HeadunitCalls, EachStateIsAWholeOne) {
  open(&phone);
  call(PhoneStatus_State_IN_CALL, "1", "Ada");
  tells();
  EXPECT_TRUE(phone.host().hasCall());
  status.Clear();
  tells();
  EXPECT_THAT(view().phone.calls, IsEmpty());
  EXPECT_FALSE(phone.host().hasCall());
}

TEST_F(HeadunitCalls, CountsEachCallOnce) {
  open(&phone);
  call(PhoneStatus_State_INCOMING, "1", "Ada");
  tells();
  status.mutable_calls(0)->set_phone_state(PhoneStatus_State_IN_CALL);
  tells();
  call(PhoneStatus_State_INCOMING, "2", "Bo");
  tells();
  EXPECT_EQ(tally.totals().calls, 2U);
  EXPECT_EQ(tally.totals().phoneStates, 3U);
}

TEST_F(HeadunitCalls, TakesNoCallWhoseNumberIsTooLongToKeep) {
  open(&phone);
  call(PhoneStatus_State_INCOMING, std::string(5000, '1'), "Ada");
  call(PhoneStatus_State_INCOMING, "1", std::string(5000, 'A'));
  tells();
  EXPECT_FALSE(phone.host().hasCall());
}

TEST_F(HeadunitCalls, ACallThatIsOverIsShownButIsNoCallAnyMore) {
  open(&phone);
  call(PhoneStatus_State_INACTIVE, "1", "Ada");
  tells();
  EXPECT_THAT(view().phone.calls, SizeIs(1));
  EXPECT_FALSE(phone.host().hasCall());
  EXPECT_EQ(tally.totals().calls, 0U);
}

TEST_F(HeadunitCalls, ShowsPortraitsAtTheirCalls) {
  open(&phone);
  call(PhoneStatus_State_IN_CALL, "1", "Ada")->set_caller_thumbnail("image 1");
  call(PhoneStatus_State_ON_HOLD, "2", "Bo");
  call(PhoneStatus_State_ON_HOLD, "3", "Cy")->set_caller_thumbnail("image number 3");
  tells();
  decodeAll();
  EXPECT_EQ(lengthOf(view().phone.calls[0].portrait), 7U);
  EXPECT_EQ(view().phone.calls[1].portrait, nullptr);
  EXPECT_EQ(lengthOf(view().phone.calls[2].portrait), 14U);
  tells();  // as each second, with the same pictures
  EXPECT_THAT(posted, IsEmpty());
  EXPECT_EQ(lengthOf(view().phone.calls[2].portrait), 14U);
}

TEST_F(HeadunitCalls, ALatePortraitDoesNotComeToAnotherCall) {
  open(&phone);
  call(PhoneStatus_State_IN_CALL, "1", "Ada")->set_caller_thumbnail("image 1");
  tells();
  status.Clear();
  tells();
  decodeAll();
  EXPECT_THAT(view().phone.calls, IsEmpty());
  call(PhoneStatus_State_IN_CALL, "2", "Bo");
  tells();
  EXPECT_EQ(view().phone.calls[0].portrait, nullptr);
}

TEST_F(HeadunitCalls, ShowsNoMoreThanAScreenHolds) {
  open(&phone);
  for (int i = 0; i < 1000; ++i) call(PhoneStatus_State_ON_HOLD, std::to_string(i), "");
  tells();
  EXPECT_THAT(view().phone.calls, SizeIs(8));
}

TEST_F(HeadunitCalls, AKeyConcernsTheCallThatRings) {
  open(&phone);
  call(PhoneStatus_State_IN_CALL, "1", "Ada");
  call(PhoneStatus_State_INCOMING, "2", "Bo");
  tells();
  EXPECT_TRUE(phone.host().rings());
  EXPECT_TRUE(phone.host().press(ENTER));
  EXPECT_THAT(sent(), ElementsAre(bytes("80 02"            // MESSAGE_PHONE_STATUS_INPUT
                                        "0A 02 08 05"      // input: enter
                                        "12 01 32"         // caller_number "2"
                                        "1A 02 42 6F")));  // caller_id "Bo"
}

TEST_F(HeadunitCalls, AKeyConcernsTheCallThatIsSpokenOtherwise) {
  open(&phone);
  call(PhoneStatus_State_ON_HOLD, "1", "");
  call(PhoneStatus_State_IN_CALL, "", "Bo");
  tells();
  EXPECT_FALSE(phone.host().rings());
  EXPECT_TRUE(phone.host().press(ENTER));
  EXPECT_THAT(sent(), ElementsAre(bytes("80 02 0A 02 08 05 1A 02 42 6F")));
}

TEST_F(HeadunitCalls, AKeyWithoutACallNamesNone) {
  open(&phone);
  EXPECT_TRUE(phone.host().press(InstrumentClusterInput_InstrumentClusterAction_CALL));
  EXPECT_THAT(sent(), ElementsAre(bytes("80 02 0A 02 08 07")));
}

TEST_F(HeadunitCalls, NamesTheCallByItsWholeNumberHoweverLong) {
  open(&phone);
  const std::string number(1000, '5');
  call(PhoneStatus_State_INCOMING, number, "");
  tells();
  EXPECT_LT(view().phone.calls[0].number.size(), number.size());
  phone.host().press(ENTER);
  EXPECT_THAT(sent(), ElementsAre(bytes("80 02 0A 02 08 05 12 E8 07") + test::text(number)));
}

TEST_F(HeadunitCalls, ForgetsTheCallsWhenTheChannelCloses) {
  open(&phone);
  call(PhoneStatus_State_INCOMING, "1", "Ada");
  tells();
  link.closes(CHANNEL);
  EXPECT_FALSE(view().phone.known);
  EXPECT_FALSE(phone.host().rings());
  EXPECT_FALSE(phone.host().press(ENTER));
}

}  // namespace
}  // namespace headunit
