#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "LogCapture.h"
#include "PlainLink.h"

namespace test {

using testing::_;
using testing::ElementsAre;
using testing::InSequence;
using testing::IsEmpty;
using testing::Return;

/// The fixture for one endpoint on an open channel. A test of a service reads
///
///     struct VideoSinkTest : EndpointTest {
///       shared_ptr<IVideoSinkCallbacks> held;
///       MockVideoSinkCallbacks& host = mock<MockVideoSinkCallbacks>(&held);
///       VideoSink sink{1, link.router(), held};
///       VideoSinkTest() {
///         link.registers(&sink);
///         link.opens(3, 1);
///       }
///     };
///
///     TEST_F(VideoSinkTest, AnswersSetupWithConfig) {
///       EXPECT_CALL(host, setup(3));
///       link.sends(3, MESSAGE_SETUP, bytes("08 03"));
///       EXPECT_THAT(link.sent(3), ElementsAre(bytes("80 03"     // MESSAGE_CONFIG
///                                                   "08 02"     // status: ready
///                                                   "10 01")));  // max_unacked 1
///     }
class EndpointTest : public testing::Test {
 protected:
  /// Makes a mock (a NiceMock) of an interface, owned by `*held`.
  template <class Mock, class Interface>
  static Mock& mock(shared_ptr<Interface>* held) {
    auto* const made = new testing::NiceMock<Mock>();
    *held = shared_ptr<Interface>(made);
    return *made;
  }

  LogCapture log;
  PlainLink link;
};

/// What a service logs of a message that does not parse, found in `sourceFile` of the library. A compiler
/// cache may put a relative path before the project's own folders.
inline auto parseFailureIn(const std::string& sourceFile) {
  return testing::MatchesRegex("\\[LHU\\] Failed to parse proto at [^ ]*src/" + sourceFile + "\\.cpp:[0-9]+");
}

/// What the router sends for a message that an endpoint does not take.
inline Bytes unexpectedMessage() { return bytes("00 FF"); }

}  // namespace test
