// Shell sessions on simulated phones.
#include <gmock/gmock.h>

#include <mutex>
#include <string>

#include "tests/client/client_on_phone.h"
#include "tests/support/eventually.h"

namespace darokleim::test {
namespace {

using ::testing::HasSubstr;

class PhoneShell : public ClientOnPhone {
 protected:
  dk::Shell Open(const dk::ShellOptions& options) {
    return phone()
        .shell(
            options,
            [this](dk_stream, std::string_view data) {
              const std::lock_guard lock(mutex_);
              output_.append(data);
            },
            [this](dk_code code, int status, const dk::Error*) {
              const std::lock_guard lock(mutex_);
              end_ = dk_code_name(code) + (" " + std::to_string(status));
            })
        .value();
  }
  bool Prints(const std::string& text) {
    return Eventually([&] {
      const std::lock_guard lock(mutex_);
      return output_.find(text) != std::string::npos;
    });
  }
  std::string End() {
    const auto end = [this] {
      const std::lock_guard lock(mutex_);
      return end_;
    };
    EXPECT_TRUE(Eventually([&] { return !end().empty(); }));
    return end();
  }

 private:
  std::mutex mutex_;
  std::string output_, end_;
};
DAROKLEIM_ON_BOTH_GENERATIONS(PhoneShell);

TEST_P(PhoneShell, IsUsedThroughATerminal) {
  dk::ShellOptions options;
  options.terminal = true;
  options.terminal_type = "xterm";
  options.rows = 33;
  options.columns = 99;
  dk::Shell shell = Open(options);
  EXPECT_TRUE(Prints("$"));
  // The output differs from what the terminal shows of the input.
  EXPECT_TRUE(shell.write("test -t 0 && echo is-a-\"\"terminal\n"));
  EXPECT_TRUE(Prints("is-a-terminal\r\n"));
  if (!legacy()) {
    EXPECT_TRUE(shell.write("echo size-$LINES-$COLUMNS-$TERM\n"));
    EXPECT_TRUE(Prints("size-33-99-xterm")) << "rows and columns";
    EXPECT_TRUE(shell.resize(40, 120));
    EXPECT_TRUE(shell.write("echo size-$LINES-$COLUMNS-$TERM\n"));
    EXPECT_TRUE(Prints("size-40-120-xterm"));
  }
  EXPECT_TRUE(shell.write("sh -c 'echo it-\"\"sleeps; exec sleep 60'\n"));
  EXPECT_TRUE(Prints("it-sleeps\r\n"));
  EXPECT_TRUE(shell.write("\x03"));
  EXPECT_TRUE(shell.write("exit 5\n"));
  EXPECT_EQ(End(), legacy() ? "DK_OK -1" : "DK_OK 5");
}

TEST_P(PhoneShell, EndsWithItsInput) {
  dk::ShellOptions options;
  options.terminal = true;
  dk::Shell shell = Open(options);
  EXPECT_TRUE(Prints("$"));
  EXPECT_TRUE(shell.close_input());
  EXPECT_THAT(End(), HasSubstr("DK_OK"));
}

TEST_P(PhoneShell, CarriesAnyBytesWithoutATerminal) {
  if (legacy()) {
    EXPECT_EQ(phone().shell(dk::ShellOptions{"cat"}, [](dk_stream, std::string_view) {}).code(),
              DK_UNSUPPORTED);
    return;
  }
  dk::Shell shell = Open({"od -c | head -1; exit 4"});
  EXPECT_TRUE(shell.write(std::string("\r\n\0\4\3", 5)));
  EXPECT_TRUE(shell.close_input());
  EXPECT_EQ(End(), "DK_OK 4");
  EXPECT_TRUE(Prints("\\r  \\n  \\0 004 003"));
}

TEST_P(PhoneShell, TakesMoreThanAConnectionHolds) {
  if (legacy()) return;
  dk::Shell shell = Open({"cat | wc -c"});
  EXPECT_TRUE(shell.write(std::string(20'000'000, 'x')));
  EXPECT_TRUE(shell.close_input());
  EXPECT_EQ(End(), "DK_OK 0");
  EXPECT_TRUE(Prints("20000000"));
}

TEST_P(PhoneShell, SaysThatThePhoneIsGone) {
  dk::ShellOptions options;
  options.terminal = true;
  const dk::Shell shell = Open(options);
  EXPECT_TRUE(Prints("$"));
  phones().Control({kSerial, "unplug"});
  EXPECT_EQ(End(), legacy() ? "DK_OK -1" : "DK_CONNECTION_LOST -1");
}

}  // namespace
}  // namespace darokleim::test
