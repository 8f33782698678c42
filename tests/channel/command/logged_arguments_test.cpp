#include "channel/command/logged_arguments.h"

#include <gtest/gtest.h>

namespace darokleim::channel {
namespace {

TEST(LoggedArguments, EndWhereATypedTextBegins) {
  for (const char* arguments : {R"( -s X shell input text "my secret")", " -s X shell input text secret",
                                R"(-s X 'shell input text secret')", R"(-s X shell "input text 'secret'")",
                                R"(-s X shell 'input' "text" secret)", "-s X shell -T input\ttext\nsecret",
                                R"(-s X shell in"pu"t text secret)"}) {
    const std::string logged = LoggedArguments(arguments);
    EXPECT_EQ(logged.find("secret"), std::string::npos) << logged;
    EXPECT_TRUE(logged.starts_with("-s X shell ")) << logged;
    EXPECT_TRUE(logged.ends_with("text ***")) << logged;
  }
  EXPECT_EQ(LoggedArguments(R"( -s X shell input text "my secret")"), "-s X shell input text ***");
}

TEST(LoggedArguments, EndThereInAnyCommandOfTheShell) {
  for (const char* arguments :
       {"shell input keyboard text secret", "shell input -d 0 text secret",
        "shell input keyevent 66; input text secret", "shell ls;input text secret",
        "shell /system/bin/input text secret", "shell cmd input text secret",
        R"(shell sh -c "input text 'secret'")", R"(shell su -c 'sh -c "input text secret"')",
        "exec-out input text secret", "shell (input text secret)",
        "shell sleep 1 && input text secret && input text secret"}) {
    const std::string logged = LoggedArguments(arguments);
    EXPECT_EQ(logged.find("secret"), std::string::npos) << logged;
    EXPECT_TRUE(logged.ends_with("text ***")) << logged;
  }
}

TEST(LoggedArguments, AreThoseOfOtherCommandsUnchanged) {
  for (const char* arguments :
       {"", " devices", R"( -s X shell ls -l ""/sdcard/input/text"")", " shell cat /x/input.text a",
        " shell input keyevent 66", " shell input tap 10 20; echo text", " shell echo context",
        " shell cat my-input text-file", R"( -s X push "/my input" "/text")"})
    EXPECT_EQ(LoggedArguments(arguments), arguments);
}

}  // namespace
}  // namespace darokleim::channel
