// Answers that a server or a phone may give, and that no other test has: refusals in odd forms, odd serials, several phones with
// one serial, lists that change between two questions, numbers and lines beyond all measure, clocks that are set back.
#include <gmock/gmock.h>
#include <sys/stat.h>

#include <atomic>
#include <chrono>
#include <limits>
#include <map>
#include <mutex>
#include <optional>

#include "tests/client/calls.h"
#include "tests/client/spoilt_phone.h"
#include "tests/support/eventually.h"
#include "tests/support/file_content.h"
#include "tests/support/scripted_server.h"
#include "tests/support/temporary_directory.h"

namespace darokleim::client_test {
namespace {

using std::chrono::seconds;
using test::Number32;
using test::Number64;
using test::Request;
using test::WriteBytes;
using testing::ElementsAre;
using testing::HasSubstr;

// A server that answers each request with what the test has for it, then closes where that says so. Answers to requests for a
// phone's service follow those for the phone on the same connection.
class AnsweringServer {
 public:
  // Nothing: the connection ends.
  using Answer = std::function<std::optional<std::string>(const std::string& request)>;
  explicit AnsweringServer(Answer answer)
      : answer_(std::move(answer)),
        server_([this](int connection) { Serve(connection); }, test::ScriptedServer::Socket::kLocal) {}

  std::string address() const { return server_.name(); }
  std::vector<std::string> requests() const {
    const std::lock_guard lock(mutex_);
    return requests_;
  }

 private:
  void Serve(int connection) {
    for (;;) {
      const std::string request = test::ReadRequest(connection);
      if (request.empty()) return;
      {
        const std::lock_guard lock(mutex_);
        requests_.push_back(request);
      }
      const auto answer = answer_(request);
      if (!answer || !WriteBytes(connection, *answer)) return;
    }
  }

  const Answer answer_;
  mutable std::mutex mutex_;
  std::vector<std::string> requests_;
  const test::ScriptedServer server_;
};

// The outcome of a call, with its error.
struct Failure {
  dk_code code = DK_OK;
  std::string message, words;
  bool has_words = false;
};

template <typename Run>
Failure FailureOf(Run run) {
  dk_error* error = nullptr;
  dk_call call = DK_CALL_INIT;
  call.timeout_ms = 20'000;
  call.error = &error;
  Failure failure;
  failure.code = run(&call);
  if (failure.code != DK_OK) {
    failure.message = dk_error_message(error);
    failure.has_words = dk_error_words(error) != nullptr;
    if (failure.has_words) failure.words = dk_error_words(error);
  }
  dk_error_free(error);
  return failure;
}

// --- Forms of answers

TEST(OddAnswers, LengthsMayBeInUpperOrLowerCaseAndAreDigitsAlone) {
  const std::string line = "X device transport_id:7 " + std::string(0xab - 25, 'x') + "\n";
  ASSERT_EQ(line.size(), 0xabU);
  const std::map<std::string, dk_code> lengths = {
      {"00ab", DK_OK},
      {"00AB", DK_OK},
      {"00aB", DK_OK},
      {"+0ab", DK_SERVER_PROTOCOL},
      {" 0ab", DK_SERVER_PROTOCOL},
      {"0xab", DK_SERVER_PROTOCOL},
      {"-001", DK_SERVER_PROTOCOL},
      {"ab\n ", DK_SERVER_PROTOCOL},
  };
  for (const auto& [length, code] : lengths) {
    const AnsweringServer server([&, digits = length](const std::string&) { return "OKAY" + digits + line; });
    const Client client(server.address());
    int devices = 0;
    const auto count = [](void* user, const dk_device_info*) { return ++*static_cast<int*>(user) > 0; };
    EXPECT_EQ(dk_devices(client.context(), count, &devices, nullptr), code) << length;
    EXPECT_EQ(devices, code == DK_OK ? 1 : 0) << length;
  }
}

TEST(OddAnswers, OkayAndFailAreMixed) {
  struct Row {
    std::string answer;
    dk_code code;
    std::string words;
  };
  const std::vector<Row> rows = {
      {"OKAYFAIL0006closed", DK_SERVER_PROTOCOL, ""},  // where a length has to be
      {"FAILOKAY", DK_SERVER_PROTOCOL, ""},
      {"FAIL0004OKAY", DK_SERVER_REFUSED, "OKAY"},
      {"FAIL000AOKAYOKAYOK", DK_SERVER_REFUSED, "OKAYOKAYOK"},
      {"FAIL0006clos", DK_CONNECTION_LOST, ""},
      {"okay00040029", DK_SERVER_PROTOCOL, ""},
      {"fail0006closed", DK_SERVER_PROTOCOL, ""},
      {"OKAYOKAY00040029", DK_SERVER_PROTOCOL, ""},
      {"OKAY0004zzzz", DK_SERVER_PROTOCOL, ""},
      {"OKAY0000", DK_SERVER_PROTOCOL, ""},
  };
  for (const Row& row : rows) {
    const test::ScriptedServer server([&](int connection) {
      test::ReadRequest(connection);
      WriteBytes(connection, row.answer);
    });
    const Client client(server.name());
    int version = -1;
    const Failure failure =
        FailureOf([&](const dk_call* call) { return dk_server_version(client.context(), &version, call); });
    EXPECT_EQ(failure.code, row.code) << row.answer;
    EXPECT_EQ(failure.words, row.words) << row.answer;
    EXPECT_EQ(version, -1) << row.answer;
  }
}

// The second status of a mapping is the one that counts; the first has accepted the question.
TEST(OddAnswers, AFailAfterTheFirstOkayIsARefusal) {
  const AnsweringServer server([](const std::string& request) -> std::string {
    if (request.find(":forward:") != std::string::npos)
      return "OKAYFAIL" + Request("cannot bind listener: Address already in use");
    if (request == "host:tport:serial:X") return "OKAY" + Number64(7);
    if (request == "sync:") return "OKAYFAIL" + Number32(6) + "closed";
    return "OKAY" + Request("shell_v2,stat_v2,ls_v2");
  });
  const Client client(server.address());
  int port = 5;
  EXPECT_EQ(dk_forward_add(client.device(), "tcp:1", "tcp:2", false, &port, nullptr), DK_ADDRESS_IN_USE);
  EXPECT_EQ(port, 5) << "unchanged";
  dk_entry* entry = nullptr;
  const Failure failure = FailureOf(
      [&](const dk_call* call) { return dk_stat(client.device(), "/sdcard", DK_FOLLOW, &entry, call); });
  EXPECT_EQ(failure.code, DK_SERVER_REFUSED);
  EXPECT_EQ(failure.words, "closed");
  EXPECT_EQ(entry, nullptr);
}

TEST(OddAnswers, AServerThatNamesNoPortListensWhereItWasAskedTo) {
  const test::ScriptedServer server([](int connection) {
    const bool names_port = test::ReadRequest(connection).find("tcp:3") != std::string::npos;
    WriteBytes(connection, "OKAYOKAY" + (names_port ? Request("4000") : ""));
  });
  const Client client(server.name());
  for (const auto& [from, expected] : {std::pair("tcp:1", 1), {"tcp:3", 4000}, {"localabstract:5", 0}}) {
    int port = -1;
    EXPECT_EQ(dk_forward_add(client.device(), from, "tcp:2", false, &port, nullptr), DK_OK);
    EXPECT_EQ(port, expected) << from;
  }
}

// A server says "closed" where the phone goes between its transport and the service.
TEST(OddAnswers, AClosedServiceOfAPhoneThatIsGoneHasTheCodeOfItsState) {
  const std::pair<std::string, dk_code> rows[] = {
      {"FAIL" + Request("device 'X' not found"), DK_NO_DEVICE},
      {"FAIL" + Request("device unauthorized."), DK_DEVICE_UNAUTHORIZED},
      {"OKAY" + Request("offline"), DK_DEVICE_OFFLINE},
      {"OKAY" + Request("device"), DK_SERVER_REFUSED},
  };
  for (const auto& [state, code] : rows) {
    const AnsweringServer server([answer = state](const std::string& request) -> std::string {
      if (request == "host-serial:X:get-state") return answer;
      if (request.find(":features") != std::string::npos) return "OKAY" + Request("shell_v2,stat_v2,ls_v2");
      return request == "host:tport:serial:X" ? "OKAY" + Number64(7) : "FAIL" + Request("closed");
    });
    const Client client(server.address());
    dk_entry* entry = nullptr;
    EXPECT_EQ(dk_stat(client.device(), "/sdcard", DK_FOLLOW, &entry, nullptr), code);
    const char* const words[] = {"true"};
    EXPECT_EQ(dk_run(client.device(), words, 1, nullptr, nullptr, nullptr), code);
    dk_shell* shell = nullptr;
    EXPECT_EQ(dk_shell_start(
                  client.device(), nullptr, [](void*, dk_stream, const char*, size_t) {}, nullptr, nullptr,
                  &shell, nullptr),
              code);
    EXPECT_EQ(dk_device_reboot(client.device(), nullptr, nullptr), code);
  }
}

TEST(OddAnswers, ARefusalMayHaveNoText) {
  const AnsweringServer server([](const std::string&) { return "FAIL0000"; });
  const Client client(server.address());
  dk_state state = DK_STATE_UNKNOWN;
  const Failure failure =
      FailureOf([&](const dk_call* call) { return dk_device_state(client.device(), &state, call); });
  EXPECT_EQ(failure.code, DK_SERVER_REFUSED);
  EXPECT_FALSE(failure.has_words) << "it said nothing";
  EXPECT_EQ(failure.message, "Cannot ask for the state of X: the adb server refused, and gave no reason.");
}

// --- Serials

dk_code StateOf(const Client& client, const std::string& serial, dk_state* state, const dk_call* call) {
  dk_device* device = nullptr;
  EXPECT_EQ(dk_device_open(client.context(), serial.c_str(), &device, nullptr), DK_OK);
  EXPECT_EQ(dk_device_serial(device), serial);
  const dk_code code = dk_device_state(device, state, call);
  dk_device_free(device);
  return code;
}

TEST(OddSerials, GoToTheServerByteForByteAndAreShownEscaped) {
  const std::vector<std::string> serials = {
      "a b",      "it's", "\"q\"", "two\nlines", "\xff\xfe",  "[::1]:5555",   "-s",
      "a;reboot", "..",   "%s%n",  "\x1b[2J",    "host:kill", "X' not found", std::string(4000, 'x')};
  for (const std::string& serial : serials) {
    std::atomic<bool> attached = true;
    const AnsweringServer server([&](const std::string&) {
      return attached ? "OKAY" + Request("device") : "FAIL" + Request("device '" + serial + "' not found");
    });
    const Client client(server.address());
    dk_state state = DK_STATE_UNKNOWN;
    EXPECT_EQ(StateOf(client, serial, &state, nullptr), DK_OK);
    EXPECT_EQ(state, DK_STATE_READY);
    EXPECT_THAT(server.requests(), ElementsAre("host-serial:" + serial + ":get-state"));
    attached = false;
    const Failure failure =
        FailureOf([&](const dk_call* call) { return StateOf(client, serial, &state, call); });
    EXPECT_EQ(failure.code, DK_NO_DEVICE) << failure.message;
    for (const char c : failure.message) EXPECT_GE(static_cast<unsigned char>(c), 0x20) << failure.message;
  }
}

TEST(OddSerials, OfMoreBytesThanARequestHasAreRefusedBeforeAnyoneIsAsked) {
  const AnsweringServer server([](const std::string&) { return std::nullopt; });
  const Client client(server.address());
  dk_state state = DK_STATE_UNKNOWN;
  EXPECT_EQ(StateOf(client, std::string(70'000, 'x'), &state, nullptr), DK_NAME_TOO_LONG);
  EXPECT_THAT(server.requests(), testing::IsEmpty());
}

// Some makers give all their phones one serial.
class TwoPhonesWithOneSerial : public testing::Test {
 protected:
  static constexpr char kFirst[] = "TWIN device usb:1-1 product:p model:m device:d transport_id:1\n";
  static constexpr char kSecond[] = "TWIN device usb:1-2 product:p model:m device:d transport_id:2\n";
};

TEST_F(TwoPhonesWithOneSerial, AreListedAndNotMixedUp) {
  const AnsweringServer server([](const std::string& request) {
    if (request == "host:devices-l") return "OKAY" + Request(std::string(kFirst) + kSecond);
    return "FAIL" + Request("more than one device");
  });
  const Client client(server.address());
  std::vector<std::uint64_t> transports;
  const auto keep = [](void* user, const dk_device_info* device) {
    EXPECT_STREQ(device->serial, "TWIN");
    static_cast<std::vector<std::uint64_t>*>(user)->push_back(device->transport_id);
    return true;
  };
  EXPECT_EQ(dk_devices(client.context(), keep, &transports, nullptr), DK_OK);
  EXPECT_THAT(transports, ElementsAre(1U, 2U));
  dk_device* only = nullptr;
  EXPECT_EQ(dk_device_open(client.context(), nullptr, &only, nullptr), DK_SEVERAL_DEVICES);
  EXPECT_EQ(only, nullptr);
  dk_state state = DK_STATE_UNKNOWN;
  EXPECT_EQ(StateOf(client, "TWIN", &state, nullptr), DK_SEVERAL_DEVICES);
}

// What a watch reports of devices, with the transport of each.
class WatchedChanges {
 public:
  using Seen = std::vector<std::pair<dk_change, std::uint64_t>>;
  // Once there are so many, or after a while; the watch has then ended.
  Seen Await(dk_context* context, std::size_t count) {
    dk_watch* watch = nullptr;
    EXPECT_EQ(dk_watch_start(context, Keep, this, &watch, nullptr), DK_OK);
    EXPECT_TRUE(test::Eventually([&] {
      const std::lock_guard lock(mutex_);
      return seen_.size() >= count;
    }));
    dk_watch_stop(watch);
    return seen_;
  }

 private:
  static void Keep(void* user, dk_change change, const dk_device_info* info) {
    auto& self = *static_cast<WatchedChanges*>(user);
    const std::lock_guard lock(self.mutex_);
    if (info != nullptr) self.seen_.emplace_back(change, info->transport_id);
  }

  std::mutex mutex_;
  Seen seen_;
};

TEST(WatchedPhone, IsReportedWhateverOfItChangesAndNotOtherwise) {
  const AnsweringServer server([](const std::string&) {
    std::string lists = "OKAY";
    for (const char* details :
         {"offline usb:1 product:p model:m device:d", "device usb:1 product:p model:m device:d",
          "device usb:2 product:p model:m device:d", "device usb:2 product:q model:m device:d",
          "device usb:2 product:q model:m device:d", "device usb:2 product:q model:n device:d",
          "device usb:2 product:q model:n device:e"})
      lists += Request("X " + std::string(details) + " transport_id:7\n");
    return lists + Request("");
  });
  const Client client(server.address());
  WatchedChanges::Seen expected(7, {DK_DEVICE_CHANGED, 7});
  expected.front().first = DK_DEVICE_ADDED;
  expected.back().first = DK_DEVICE_REMOVED;
  WatchedChanges::Seen seen = WatchedChanges().Await(client.context(), expected.size());
  seen.resize(std::min(seen.size(), expected.size()));  // it begins anew where the server ends
  EXPECT_EQ(seen, expected);
}

TEST_F(TwoPhonesWithOneSerial, AreWatchedEach) {
  const AnsweringServer server([](const std::string&) {
    return "OKAY" + Request(std::string(kFirst) + kSecond) + Request(kFirst) +
           Request(std::string(kFirst) + kSecond) + Request("");
  });
  const Client client(server.address());
  const WatchedChanges::Seen seen = WatchedChanges().Await(client.context(), 6);
  using testing::Pair;
  EXPECT_THAT(
      seen, ElementsAre(Pair(DK_DEVICE_ADDED, 1U), Pair(DK_DEVICE_ADDED, 2U), Pair(DK_DEVICE_REMOVED, 2U),
                        Pair(DK_DEVICE_ADDED, 2U), Pair(DK_DEVICE_REMOVED, 1U), Pair(DK_DEVICE_REMOVED, 2U)));
}

// --- Lists that change

TEST(ChangingLists, EachQuestionForTheOnlyPhoneIsAnsweredByTheListOfItsMoment) {
  std::string list;
  std::mutex mutex;
  const AnsweringServer server([&](const std::string& request) {
    const std::lock_guard lock(mutex);
    if (request == "host:devices-l") return "OKAY" + Request(list);
    const bool is_of_x = request.rfind("host-serial:X:", 0) == 0;
    return "FAIL" + Request(is_of_x ? "device 'X' not found" : "device 'Y' not found");
  });
  const Client client(server.address());
  struct Row {
    std::string list;
    dk_code code;
    std::string serial;
  };
  for (const Row& row : std::vector<Row>{
           {"X device transport_id:1\n", DK_OK, "X"},
           {"", DK_NO_DEVICE, ""},
           {"X offline transport_id:1\nY unauthorized transport_id:2\n", DK_NO_DEVICE, ""},
           {"X offline transport_id:1\nY device transport_id:2\n", DK_OK, "Y"},
           {"X device transport_id:3\nY device transport_id:2\n", DK_SEVERAL_DEVICES, ""},
           {"X\n\nno state here:\nY device", DK_OK, "Y"},
       }) {
    {
      const std::lock_guard lock(mutex);
      list = row.list;
    }
    dk_device* device = nullptr;
    EXPECT_EQ(dk_device_open(client.context(), nullptr, &device, nullptr), row.code) << row.list;
    EXPECT_EQ(device == nullptr ? "" : std::string(dk_device_serial(device)), row.serial) << row.list;
    if (device != nullptr) {  // it has gone since
      EXPECT_EQ(dk_list(
                    device, "/sdcard", [](void*, const dk_entry*) { return true; }, nullptr, nullptr),
                DK_NO_DEVICE);
    }
    dk_device_free(device);
  }
}

TEST(ChangingLists, AWaitLooksAtEachListUntilThePhoneIsReady) {
  const AnsweringServer server([](const std::string&) {
    return "OKAY" + Request("X\toffline\n") + Request("") + Request("\t\n\nX") + Request("Y\tdevice\n") +
           Request("X\tunauthorized\nY\tdevice\n") + Request("X\tdevice\n");
  });
  const Client client(server.address());
  EXPECT_EQ(dk_device_wait(client.device(), DK_STATE_READY, nullptr), DK_OK);
  EXPECT_EQ(dk_device_wait(client.device(), DK_STATE_UNAUTHORIZED, nullptr), DK_OK);
}

TEST(ChangingLists, AMappingThatGoesWhileAllAreRemovedIsNoFailure) {
  std::atomic<bool> is_removed_meanwhile = true;
  std::atomic<int> lists = 0;
  const AnsweringServer server([&](const std::string& request) {
    if (request == "host:list-forward") {
      const bool has_both = lists++ == 0 || !is_removed_meanwhile;
      return "OKAY" + Request(std::string(has_both ? "X tcp:1 tcp:2\n" : "") + "X tcp:3 tcp:4\n");
    }
    if (request == "host-serial:X:killforward:tcp:1") return "FAIL" + Request("listener 'tcp:1' not found");
    return std::string("OKAYOKAY");
  });
  const Client client(server.address());
  EXPECT_EQ(dk_forward_remove(client.device(), nullptr, nullptr), DK_OK);
  EXPECT_THAT(server.requests(), ElementsAre("host:list-forward", "host-serial:X:killforward:tcp:1",
                                             "host:list-forward", "host-serial:X:killforward:tcp:3"));
  EXPECT_EQ(dk_forward_remove(client.device(), "tcp:1", nullptr), DK_SERVER_REFUSED)
      << "the one that is named";
  is_removed_meanwhile = false;
  EXPECT_EQ(dk_forward_remove(client.device(), nullptr, nullptr), DK_SERVER_REFUSED) << "it is still there";
}

// --- What phones print

// A modern phone whose shell prints one text, whatever it is asked, or another one from its second command on, and keeps what it was
// asked.
class PrintingPhone {
 public:
  explicit PrintingPhone(std::string text, std::optional<std::string> later = std::nullopt)
      : first_(std::move(text)),
        later_(later.value_or(first_)),
        phone_("shell_v2,stat_v2,ls_v2", [this](const std::string&, int connection) { Serve(connection); }),
        client_("tcp:" + phone_.port()) {}

  dk_device* device() const { return client_.device(); }
  std::vector<std::string> services() const { return phone_.services(); }

 private:
  void Serve(int connection) {
    const std::string& text = commands_++ == 0 ? first_ : later_;
    WriteBytes(connection, "OKAY");
    constexpr std::size_t kPiece = 1 << 20;
    for (std::size_t at = 0; at < text.size(); at += kPiece) {
      const std::string piece = text.substr(at, kPiece);
      if (!WriteBytes(connection, "\1" + Number32(static_cast<std::uint32_t>(piece.size())) + piece)) return;
    }
    WriteBytes(connection, std::string("\3\1\0\0\0\0", 6));
  }

  const std::string first_, later_;
  std::atomic<int> commands_ = 0;
  const test::ScriptedPhone phone_;
  const Client client_;
};

constexpr std::size_t kMillion = 1'000'000;

struct Texts {
  static bool AddProperty(void* user, const char* name, const char* value) {
    static_cast<Texts*>(user)->all.emplace_back(name, value);
    return true;
  }
  static bool AddApp(void* user, const dk_app* app) {
    static_cast<Texts*>(user)->all.emplace_back(app->package, app->apk_paths[0]);
    return true;
  }
  std::vector<std::pair<std::string, std::string>> all;
};

TEST(OddPackages, OneThatIsRemovedWhileItIsAskedForIsNotInstalled) {
  const std::string dump = "\n--- the dump ---\nPackages:\n";
  dk_app* app = nullptr;
  const PrintingPhone phone("package:/data/app/x/base.apk=com.x\n" + dump, dump);
  EXPECT_EQ(dk_app_get(phone.device(), "com.x", &app, nullptr), DK_NO_PACKAGE);
  EXPECT_EQ(app, nullptr);
}

TEST(EndlessLines, OfPropertiesAreReportedWhole) {
  const std::string value(kMillion, 'v'), name(kMillion, 'n');
  const PrintingPhone phone("[a]: [" + value + "]\n[" + name + "]: [1]\n[" + value + "\n[b]: [2]\n[c]: [" +
                            value);
  Texts texts;
  const auto began = std::chrono::steady_clock::now();
  EXPECT_EQ(dk_properties(phone.device(), Texts::AddProperty, &texts, nullptr), DK_OK);
  EXPECT_LT(std::chrono::steady_clock::now() - began, seconds(20));
  using testing::Pair;
  EXPECT_THAT(texts.all, ElementsAre(Pair("a", value), Pair(name, "1"), Pair("b", "2")));
}

TEST(EndlessLines, OfPackagesAreReportedWhole) {
  const std::string folder(kMillion, 'f'), name(kMillion, 'n');
  const PrintingPhone phone("package:/" + folder + "/base.apk=com.x\npackage:/a/base.apk=" + name + "\n" +
                            std::string(kMillion, '=') + "\n\n--- the dump ---\nPackages:\n  Package [" +
                            name + "\n  Package [com.x] (1):\n    versionName=" + folder + "\n");
  Texts texts;
  const auto began = std::chrono::steady_clock::now();
  EXPECT_EQ(dk_apps(phone.device(), DK_ALL_APPS, false, Texts::AddApp, &texts, nullptr), DK_OK);
  EXPECT_LT(std::chrono::steady_clock::now() - began, seconds(20));
  using testing::Pair;
  EXPECT_THAT(texts.all, ElementsAre(Pair("com.x", "/" + folder + "/base.apk"), Pair(name, "/a/base.apk")));
}

TEST(EndlessLines, ThatAreNoListAtAllEndTheCall) {
  const PrintingPhone phone(std::string(65 * kMillion + 3 * kMillion, 'x'));
  Texts texts;
  EXPECT_EQ(dk_properties(phone.device(), Texts::AddProperty, &texts, nullptr), DK_ANSWER_UNREADABLE);
  EXPECT_EQ(dk_apps(phone.device(), DK_ALL_APPS, false, Texts::AddApp, &texts, nullptr),
            DK_ANSWER_UNREADABLE);
  EXPECT_TRUE(texts.all.empty());
}

TEST(PartsOfFiles, MayBeLongerThanAnyFileIsAndBeyondItsEnd) {
  const PrintingPhone phone("");
  const auto none = [](void*, const char*, size_t) { return true; };
  constexpr std::uint64_t kMost = std::numeric_limits<std::uint64_t>::max();
  EXPECT_EQ(dk_read(phone.device(), "/sdcard/a", 5, kMost, none, nullptr, nullptr), DK_OK);
  EXPECT_EQ(dk_read(phone.device(), "/sdcard/a", kMost, kMost, none, nullptr, nullptr), DK_OK);
  EXPECT_EQ(dk_read(phone.device(), "/sdcard/a", 65'537, 65'536, none, nullptr, nullptr), DK_OK);
  const auto services = phone.services();
  ASSERT_EQ(services.size(), 3U);
  EXPECT_THAT(services[0], HasSubstr(" bs=65536 skip=0 2>"));
  EXPECT_THAT(services[1], HasSubstr(" bs=65536 skip=70368744177664 2>"));
  EXPECT_THAT(services[2], HasSubstr(" bs=65536 skip=1 count=2 2>"));
}

// Of a record at this second by the phone's clock.
std::string RecordAt(std::uint32_t second) {
  std::string record = LogRecord("Tag", std::to_string(second));
  return record.replace(12, 4, Number32(second));
}

TEST(PhoneClock, MayBeSetBackWhileItsLogIsFollowed) {
  const PrintingPhone phone(
      "1000\n", RecordAt(900) + RecordAt(999) + RecordAt(1000) + RecordAt(5) + RecordAt(2000) + RecordAt(6));
  struct Records {
    std::mutex mutex;
    std::vector<std::int64_t> seconds;
    bool ended = false;
  } records;
  dk_log_options options = DK_LOG_OPTIONS_INIT;
  options.only_new = true;
  const auto keep = [](void* user, const dk_log_record* record) {
    auto& all = *static_cast<Records*>(user);
    const std::lock_guard lock(all.mutex);
    all.seconds.push_back(record->seconds);
  };
  const auto end = [](void* user, dk_code, const dk_error*) {
    auto& all = *static_cast<Records*>(user);
    const std::lock_guard lock(all.mutex);
    all.ended = true;
  };
  dk_log* log = nullptr;
  ASSERT_EQ(dk_log_start(phone.device(), &options, keep, end, &records, &log, nullptr), DK_OK);
  EXPECT_TRUE(test::Eventually([&] {
    const std::lock_guard lock(records.mutex);
    return records.ended;
  }));
  dk_log_stop(log);
  EXPECT_THAT(records.seconds, ElementsAre(1000, 5, 2000, 6));
  // The time is that before the log began, so that nothing logged since is missed.
  EXPECT_THAT(phone.services(), ElementsAre(HasSubstr("date +%s"), HasSubstr("logcat -B")));
}

TEST(PhoneClock, ThatShowsNoTimeStartsNoLogOfWhatIsNew) {
  for (const std::string text : {"", "date: bad +%s\n"}) {
    const PrintingPhone phone(text);
    const auto ignore = [](void*, const dk_log_record*) {};
    dk_log_options options = DK_LOG_OPTIONS_INIT;
    dk_log* log = nullptr;
    options.only_new = true;
    EXPECT_EQ(dk_log_start(phone.device(), &options, ignore, nullptr, nullptr, &log, nullptr),
              DK_ANSWER_UNREADABLE);
    EXPECT_EQ(log, nullptr);
  }
}

// --- Numbers of files

constexpr std::uint64_t kHalf = std::uint64_t{1} << 63;
constexpr std::int64_t kEarliest = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kLatest = std::numeric_limits<std::int64_t>::max();

// Has files of one byte each that it says are of these sizes and times.
class BoastingPhone {
 public:
  BoastingPhone()
      : phone_("shell_v2,stat_v2,ls_v2", [](const std::string&, int connection) { Serve(connection); }),
        client_("tcp:" + phone_.port()) {}

  dk_device* device() const { return client_.device(); }

  struct File {
    const char* name;
    std::uint64_t size;
    std::int64_t time;
  };
  static constexpr File kFiles[] = {{"early", kHalf, kEarliest},
                                    {"late", kHalf, kLatest},
                                    {"more", std::numeric_limits<std::uint64_t>::max(), 7},
                                    {"before 1970", 1, -1000}};

 private:
  static std::string Status(const std::string& id, std::uint32_t mode, const File& file) {
    return id + Number32(0) + Number64(1) + Number64(2) + Number32(mode) + Number32(1) + Number32(0) +
           Number32(0) + Number64(file.size) + Number64(7) + Number64(static_cast<std::uint64_t>(file.time)) +
           Number64(7);
  }
  static void Serve(int connection) {
    WriteBytes(connection, "OKAY");
    for (;;) {
      const std::string header = test::ReadBytes(connection, 8);
      if (header.size() < 8) return;
      const std::string path = test::ReadBytes(connection, static_cast<unsigned char>(header[4]));
      const std::string id = header.substr(0, 4), name = path.substr(path.rfind('/') + 1);
      if (id == "RECV") {
        WriteBytes(connection, "DATA" + Number32(1) + "xDONE" + Number32(0));
      } else if (id == "LIS2") {
        std::string list;
        for (const File& file : kFiles) {
          list += Status("DNT2", 0100644, file) +
                  Number32(static_cast<std::uint32_t>(std::string(file.name).size())) + file.name;
        }
        WriteBytes(connection, list + "DONE" + std::string(72, '\0'));
      } else {
        std::string status = Status(id, 040755, {"", 4096, 7});
        for (const File& file : kFiles) {
          if (name == file.name) status = Status(id, 0100644, file);
        }
        WriteBytes(connection, status);
      }
    }
  }

  const test::ScriptedPhone phone_;
  const Client client_;
};

struct Boasts {
  static bool Add(void* user, const dk_entry* entry) {
    auto& self = *static_cast<Boasts*>(user);
    self.sizes.push_back(entry->size);
    self.times.push_back(entry->mtime);
    return true;
  }
  // Sums that do not go back to 0.
  static bool Compare(void* user, const dk_progress* progress) {
    auto& self = *static_cast<Boasts*>(user);
    EXPECT_GE(progress->bytes_total, self.total);
    EXPECT_GE(progress->bytes_done, self.done);
    EXPECT_GE(progress->bytes_total, progress->bytes_done);
    self.total = progress->bytes_total;
    self.done = progress->bytes_done;
    return true;
  }
  std::vector<std::uint64_t> sizes;
  std::vector<std::int64_t> times;
  std::uint64_t total = 0, done = 0;
};

TEST(ImpossibleFiles, AreListedAsThePhoneSaysIt) {
  const BoastingPhone phone;
  Boasts boasts;
  EXPECT_EQ(dk_list(phone.device(), "/sdcard", Boasts::Add, &boasts, nullptr), DK_OK);
  EXPECT_THAT(boasts.sizes, ElementsAre(kHalf, kHalf, std::numeric_limits<std::uint64_t>::max(), 1U));
  EXPECT_THAT(boasts.times, ElementsAre(kEarliest, kLatest, 7, -1000));
  dk_entry* entry = nullptr;
  ASSERT_EQ(dk_stat(phone.device(), "/sdcard/early", DK_NO_FOLLOW, &entry, nullptr), DK_OK);
  EXPECT_EQ(entry->size, kHalf);
  EXPECT_EQ(entry->mtime, kEarliest);
  dk_entry_free(entry);
  boasts = {};
  dk_walk_options options = DK_WALK_OPTIONS_INIT;
  options.min_size = kHalf + 1;
  options.newer_than = -1;
  EXPECT_EQ(dk_walk(phone.device(), "/sdcard", &options, Boasts::Add, &boasts, nullptr), DK_OK);
  EXPECT_THAT(boasts.sizes, ElementsAre(std::numeric_limits<std::uint64_t>::max()));
}

TEST(ImpossibleFiles, AreFetchedWithSumsThatDoNotGoBack) {
  const BoastingPhone phone;
  const test::TemporaryDirectory directory;
  const std::string target = directory.File("back");
  const dk_item items[] = {{"/sdcard", target.c_str()}};
  Boasts boasts;
  dk_transfer_options options = DK_TRANSFER_OPTIONS_INIT;
  options.existing = DK_SKIP_SAME;
  options.on_progress = Boasts::Compare;
  options.user = &boasts;
  dk_summary summary;
  EXPECT_EQ(dk_pull(phone.device(), items, 1, &options, &summary, nullptr), DK_OK);
  EXPECT_EQ(summary.files_sent, 4U);
  EXPECT_EQ(boasts.total, std::numeric_limits<std::uint64_t>::max());
  for (const BoastingPhone::File& file : BoastingPhone::kFiles)
    EXPECT_EQ(test::ReadFile(target + "/" + file.name), "x");
  struct stat status = {};
  ASSERT_EQ(stat((target + "/before 1970").c_str(), &status), 0);
  EXPECT_EQ(status.st_mtime, -1000) << "a time like any other";
  boasts = {};
  EXPECT_EQ(dk_pull(phone.device(), items, 1, &options, &summary, nullptr), DK_OK);
  EXPECT_EQ(summary.files_skipped, 1U) << "the one whose size and time are true";
}

}  // namespace
}  // namespace darokleim::client_test
