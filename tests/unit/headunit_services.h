#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

#include "LogCapture.h"
#include "PlainLink.h"
#include "ServiceTest.h"
#include "headunit/services/ServiceContext.h"

namespace headunit {

using test::bytes;
using test::Bytes;
using test::message;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

/// One service of the cluster on a link without a medium. Images are texts that begin with "image"; whatever
/// decodes them waits for `decodeAll`, and the clock stands still.
class ServicesTest : public testing::Test {
 protected:
  static constexpr int SERVICE = 7;
  static constexpr int CHANNEL = 3;

  static Image decode(const std::string& bytes) {
    if (bytes.compare(0, 5, "image") != 0) return nullptr;
    const auto length = static_cast<std::uint32_t>(bytes.size());
    return std::make_shared<const Bitmap>(Bitmap{{1, 1}, {length}});
  }

  /// Offers the service, and has the phone open it.
  void open(ProtocolEndpointBase* endpoint) {
    link.registers(endpoint);
    link.opens(CHANNEL, SERVICE);
  }

  void sends(int type, const google::protobuf::MessageLite& record) { link.sends(CHANNEL, type, record); }
  std::vector<Bytes> sent() { return link.sent(CHANNEL); }
  ClusterView view() const { return cluster.view(); }

  void decodeAll() {
    const std::vector<std::function<void()>> all = std::exchange(posted, {});
    for (const auto& work : all) work();
  }

  /// The length of the text that a picture was made of; 0 if there is no picture.
  static std::size_t lengthOf(const Image& image) { return image ? image->pixels[0] : 0; }

  test::LogCapture log;
  test::PlainLink link;
  Cluster cluster;
  std::vector<std::function<void()>> posted;
  ServiceTally tally;
  ImageLoader images{[this](std::function<void()> work) { posted.push_back(std::move(work)); }, decode,
                     &cluster};
  TimePoint now = TimePoint(std::chrono::seconds(1000));
  ServiceContext context{link.router(), &cluster, &images, &tally, [this] { return now; }};
};

}  // namespace headunit
