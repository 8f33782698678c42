#include "src/core/connection_word.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace std::string_literals;

TEST(ConnectionWordTest, KnowsTwoStatesAndTakesTheRestForAuthorised) {
  EXPECT_EQ(convert_connect_string("unauthorized"), "unauthor");
  EXPECT_EQ(convert_connect_string("offline"), "offline");
  for (const std::string& state :
       {"device"s, ""s, "Unauthorized"s, "unauthorized "s, " offline"s, "OFFLINE"s, "recovery"s,
        "unauthorized\0"s, "unauthor"s, "\xff\xfe"s, std::string(1'000'000, 'o')}) {
    EXPECT_EQ(convert_connect_string(state), "author") << state.substr(0, 20);
  }
}

}  // namespace
