// How a request names the phone that it is for.
#include "adb/transport.h"

#include <gtest/gtest.h>

#include <string>

namespace darokleim::adb_test {
namespace {

using namespace adb;

struct Named {
  DeviceSelector selector;
  std::string of_the_server;  // a request that the server answers
  std::string transport;      // a connection to the phone
};

TEST(DeviceSelectorTest, EachHasItsRequests) {
  for (const Named& named : {
           Named{DeviceSelector::Serial("S:1"), "host-serial:S:1:features", "host:tport:serial:S:1"},
           Named{DeviceSelector::TransportId(18446744073709551615U),
                 "host-transport-id:18446744073709551615:features", "host:transport-id:18446744073709551615"},
           Named{DeviceSelector::Any(), "host:features", "host:tport:any"},
           Named{DeviceSelector::Usb(), "host-usb:features", "host:tport:usb"},
           Named{DeviceSelector::Network(), "host-local:features", "host:tport:local"},
       }) {
    EXPECT_EQ(named.selector.HostRequest("features"), named.of_the_server);
    EXPECT_EQ(named.selector.TransportRequest(), named.transport);
  }
}

// A server tells the number of the transport that it chose to those that did not name it.
TEST(DeviceSelectorTest, ATransportsNumberIsAnsweredWithoutIt) {
  EXPECT_FALSE(DeviceSelector::TransportId(7).AnswersWithId());
  EXPECT_TRUE(DeviceSelector::Any().AnswersWithId());
}

}  // namespace
}  // namespace darokleim::adb_test
