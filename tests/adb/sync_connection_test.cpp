#include "adb/sync_connection.h"

#include <gtest/gtest.h>

#include <thread>

#include "base/little_endian.h"
#include "tests/adb/connected_pair.h"
#include "tests/adb/within.h"
#include "tests/support/scripted_server.h"

namespace darokleim::adb_test {
namespace {

using namespace adb;
using namespace test;
using std::chrono::milliseconds;
using Links = SyncConnection::Links;

std::string Message(const char (&id)[5], std::string_view bytes) {
  return SyncRequest(SyncId(id), bytes);
}

std::string Entry(std::string_view name) {
  return "DENT" + std::string(kEntry1Size - 8, '\1') + SyncRequest(0, name).substr(4);
}

const std::string kEndOfList = "DONE" + std::string(kEntry1Size - 4, '\0');
const std::string kEndOfFile = "DONE" + std::string(4, '\0');
const std::string kOkay = "OKAY" + std::string(4, '\0');

ErrorCode CodeOf(const Status& status) {
  return status.ok() ? ErrorCode::kCannotConnect : status.error().code;  // never an error of these tests
}

bool Any(std::string_view) {
  return true;
}
bool AnyEntry(const DirectoryEntry&) {
  return true;
}

// A connection whose phone answers as the test has it.
class SyncConnectionTest : public testing::Test {
 protected:
  SyncConnectionTest() {
    WriteBytes(far(), "OKAY");
    auto started = SyncConnection::Start(pair_.Take(), FeatureSet(), Within(5000));
    if (!started.ok()) throw std::runtime_error("no connection");
    sync_ = std::make_unique<SyncConnection>(*std::move(started));
    ReadBytes(far(), Request("sync:").size());
  }

  int far() const { return pair_.far.get(); }
  void Answer(std::string_view bytes) { ASSERT_TRUE(WriteBytes(far(), bytes)); }

  ConnectedPair pair_;
  std::unique_ptr<SyncConnection> sync_;
};

TEST_F(SyncConnectionTest, RequestsGoAheadOfTheirAnswersAsFarAsTheWindowAllows) {
  sync_->SetWindow(4);
  std::thread phone([&] {
    // Four come before anything is answered, and then, after one answer, no more than one other.
    const std::string request = Message("LIST", "/x");
    EXPECT_EQ(ReadBytes(far(), 4 * request.size()).size(), 4 * request.size());
    std::array<char, 8> more;
    std::this_thread::sleep_for(milliseconds(10));
    EXPECT_LT(recv(far(), more.data(), more.size(), MSG_DONTWAIT), 0);
    for (int answered = 0; answered < 10; ++answered) {
      WriteBytes(far(), Entry("name") + kEndOfList);
      if (answered < 6) {
        EXPECT_EQ(ReadBytes(far(), request.size()), request);
      }
    }
  });
  for (int i = 0; i < 10; ++i) ASSERT_TRUE(sync_->RequestList("/x").ok());
  EXPECT_EQ(sync_->unanswered(), 10u);
  for (int i = 0; i < 10; ++i) EXPECT_TRUE(sync_->ReadList(AnyEntry, Within(5000)).ok()) << i;
  phone.join();
  EXPECT_TRUE(sync_->IsIdle());
}

TEST_F(SyncConnectionTest, EntriesOneByOne) {
  Answer(Entry("a") + Entry("b") + kEndOfList);
  ASSERT_TRUE(sync_->RequestList("/").ok());
  EXPECT_EQ((**sync_->ReadEntry(Within(5000))).name, "a");
  EXPECT_EQ((**sync_->ReadEntry(Within(5000))).name, "b");
  EXPECT_FALSE(sync_->ReadEntry(Within(5000))->has_value());
  EXPECT_TRUE(sync_->IsIdle());
}

TEST_F(SyncConnectionTest, ATimeOutLosesNothing) {
  ASSERT_TRUE(sync_->RequestList("/").ok());
  ASSERT_TRUE(sync_->RequestContent("/f").ok());
  const std::string answers = Entry("abc") + kEndOfList + Message("DATA", "content") + kEndOfFile;
  std::string seen;
  std::string buffer(100, '\0');
  // Adds what is read within the limits; an end is a '|'.
  const auto read = [&](const Limits& limits) {
    if (seen.find('|') == std::string::npos) {
      auto entry = sync_->ReadEntry(limits);
      if (!entry.ok()) return entry.error().code;
      seen += *entry ? std::string((**entry).name) : "|";
    } else {
      auto count = sync_->ReadContent(buffer, limits);
      if (!count.ok()) return count.error().code;
      seen += *count == 0 ? "|" : buffer.substr(0, *count);
    }
    return ErrorCode::kTimedOut;
  };
  for (const char byte : answers) {
    Answer({&byte, 1});
    ASSERT_EQ(read(Within(1)), ErrorCode::kTimedOut);
  }
  while (sync_->unanswered() > 0) ASSERT_EQ(read(Within(5000)), ErrorCode::kTimedOut);
  EXPECT_EQ(seen, "abc|content|");
  EXPECT_TRUE(sync_->IsIdle());
}

// Whoever uses them decides about each of them; the rest of the list follows.
TEST_F(SyncConnectionTest, NamesThatAreNoneAreGivenAsTheyAre) {
  const std::vector<std::string> names = {"", "a/b", "/", "../x", std::string("a\0b", 3), "plain"};
  std::string answer;
  for (const std::string& name : names) {
    EXPECT_EQ(IsEntryName(name), name == "plain") << name;
    answer += Entry(name);
  }
  Answer(answer + kEndOfList);
  std::vector<std::string> seen;
  const auto receive = [&](const DirectoryEntry& entry) {
    seen.emplace_back(entry.name);
    return true;
  };
  EXPECT_TRUE(sync_->List("/", receive, Within(5000)).ok());
  EXPECT_EQ(seen, names);
}

TEST_F(SyncConnectionTest, ANameLongerThanAny) {
  Answer(Entry(std::string(kLongestSyncName + 1, 'x')) + kEndOfList);
  EXPECT_EQ(CodeOf(sync_->List("/", AnyEntry, Within(5000))), ErrorCode::kProtocolFault);
  EXPECT_FALSE(sync_->IsIdle());
}

TEST_F(SyncConnectionTest, TheLongestName) {
  const std::string name(kLongestSyncName, '\n');
  Answer(Entry(name) + kEndOfList);
  std::string seen;
  EXPECT_TRUE(
      sync_
          ->List(
              "/", [&](const DirectoryEntry& entry) { return !(seen = entry.name).empty(); }, Within(5000))
          .ok());
  EXPECT_EQ(seen, name);
}

TEST_F(SyncConnectionTest, ARefusalEndsTheConnection) {
  Answer(Message("FAIL", "open failed: Permission denied"));
  const Status status = sync_->Receive("/secret", Any, Within(5000));
  EXPECT_EQ(CodeOf(status), ErrorCode::kRefused);
  EXPECT_EQ(status.error().message, "open failed: Permission denied");
  EXPECT_FALSE(sync_->IsIdle());
  EXPECT_EQ(sync_->unanswered(), 1u);
  EXPECT_EQ(CodeOf(sync_->RequestList("/")), ErrorCode::kMisuse);
  EXPECT_EQ(CodeOf(sync_->ReadContent(Any, Within(5000))), ErrorCode::kMisuse);
}

TEST_F(SyncConnectionTest, ARefusalInTheMiddleOfAFile) {
  Answer(Message("DATA", "some") + Message("FAIL", "read failed: I/O error"));
  std::string seen;
  const Status status = sync_->Receive(
      "/f", [&](std::string_view data) { return !seen.append(data).empty(); }, Within(5000));
  EXPECT_EQ(CodeOf(status), ErrorCode::kRefused);
  EXPECT_EQ(seen, "some");
}

TEST_F(SyncConnectionTest, LengthsBeyondTheProtocol) {
  const std::string huge = "\xff\xff\xff\x7f";
  const std::string too_much("\x01\x00\x01\x00", 4);
  for (const std::string& answer : {"DATA" + huge, "DATA" + too_much, "FAIL" + huge, "FAIL" + too_much}) {
    ConnectedPair pair;
    WriteBytes(pair.far.get(), "OKAY" + answer + "something");
    auto sync = SyncConnection::Start(pair.Take(), FeatureSet(), Within(5000));
    ASSERT_TRUE(sync.ok());
    EXPECT_EQ(CodeOf(sync->Receive("/", Any, Within(5000))), ErrorCode::kProtocolFault) << answer;
  }
}

TEST_F(SyncConnectionTest, PathsThatNoDaemonTakes) {
  const std::string longest(kLongestSyncPath, 'x');
  EXPECT_EQ(CodeOf(sync_->RequestList(longest + "x")), ErrorCode::kTooLong);
  EXPECT_EQ(CodeOf(sync_->RequestStat(longest + "x", Links::kThemselves)), ErrorCode::kTooLong);
  // The mode is part of the name here.
  EXPECT_EQ(CodeOf(sync_->BeginSend(longest, 0100644, Within(5000))), ErrorCode::kTooLong);
  EXPECT_TRUE(sync_->IsIdle());
  Answer(kEndOfList);
  EXPECT_TRUE(sync_->List(longest, AnyEntry, Within(5000)).ok());
}

TEST_F(SyncConnectionTest, WhatDoesNotFit) {
  EXPECT_EQ(CodeOf(sync_->RequestStat("/", Links::kFollowed)), ErrorCode::kUnsupported);
  EXPECT_EQ(CodeOf(sync_->ReadList(AnyEntry, Within(5000))), ErrorCode::kMisuse);
  EXPECT_EQ(CodeOf(sync_->SendData("x", Within(5000))), ErrorCode::kMisuse);
  EXPECT_EQ(CodeOf(sync_->EndSend(0, Within(5000))), ErrorCode::kMisuse);
  ASSERT_TRUE(sync_->RequestList("/").ok());
  EXPECT_EQ(CodeOf(sync_->ReadContent(Any, Within(5000))), ErrorCode::kMisuse);
  EXPECT_EQ(CodeOf(sync_->BeginSend("/f", 0100644, Within(5000))), ErrorCode::kMisuse);
  Answer(kEndOfList);
  ASSERT_TRUE(sync_->ReadList(AnyEntry, Within(5000)).ok());
  ASSERT_TRUE(sync_->BeginSend("/f", 0100644, Within(5000)).ok());
  EXPECT_EQ(CodeOf(sync_->BeginSend("/g", 0100644, Within(5000))), ErrorCode::kMisuse);
  EXPECT_EQ(CodeOf(sync_->RequestList("/")), ErrorCode::kMisuse);
  EXPECT_EQ(CodeOf(sync_->ReadList(AnyEntry, Within(100))), ErrorCode::kMisuse);
  EXPECT_EQ(CodeOf(sync_->AwaitSends(0, Within(5000))), ErrorCode::kMisuse);
  EXPECT_FALSE(sync_->IsIdle());
}

TEST_F(SyncConnectionTest, TheCallerEndsAList) {
  Answer(Entry("a") + Entry("b") + kEndOfList);
  int calls = 0;
  const Status status = sync_->List(
      "/", [&](const DirectoryEntry&) { return ++calls < 1; }, Within(5000));
  EXPECT_EQ(CodeOf(status), ErrorCode::kStopped);
  EXPECT_EQ(calls, 1);
  EXPECT_FALSE(sync_->IsIdle());
}

TEST_F(SyncConnectionTest, SmallFilesAreGathered) {
  for (const std::string path : {"/a", "/b", "/c"}) {
    ASSERT_TRUE(sync_->BeginSend(path, 0100644, Within(5000)).ok());
    ASSERT_TRUE(sync_->SendData("data", Within(5000)).ok());
    ASSERT_TRUE(sync_->EndSend(1, Within(5000)).ok());
  }
  std::array<char, 8> nothing;
  EXPECT_LT(recv(far(), nothing.data(), nothing.size(), MSG_DONTWAIT), 0);
  Answer(kOkay + kOkay);
  EXPECT_TRUE(sync_->AwaitSends(1, Within(5000)).ok());
  EXPECT_EQ(sync_->unanswered(), 1u);
  std::array<char, 1000> bytes;
  const size_t one_file = Message("SEND", "/a,33188").size() + Message("DATA", "data").size() + 8;
  EXPECT_EQ(recv(far(), bytes.data(), bytes.size(), 0), static_cast<ssize_t>(3 * one_file));
  Answer(kOkay);
  EXPECT_TRUE(sync_->AwaitSends(0, Within(5000)).ok());
  EXPECT_TRUE(sync_->IsIdle());
}

// The phone refuses at once and reads no more, or reads on as daemons do.
TEST_F(SyncConnectionTest, ARefusalInTheMiddleOfSending) {
  std::thread phone([&] {
    ReadBytes(far(), 100'000);
    WriteBytes(far(), Message("FAIL", "No space left on device"));
    pair_.far.Reset();
  });
  ASSERT_TRUE(sync_->BeginSend("/f", 0100644, Within(5000)).ok());
  Status status;
  const std::string data(50'000, 'x');
  for (int i = 0; i < 1000 && status.ok(); ++i) status = sync_->SendData(data, Within(5000));
  phone.join();
  EXPECT_EQ(CodeOf(status), ErrorCode::kRefused);
  EXPECT_EQ(status.ok() ? "" : status.error().message, "No space left on device");
}

TEST_F(SyncConnectionTest, AnAnswerBeforeTheEndOfAFileIsNone) {
  Answer(kOkay);
  ASSERT_TRUE(sync_->BeginSend("/f", 0100644, Within(5000)).ok());
  EXPECT_EQ(CodeOf(sync_->SendData(std::string(100'000, 'x'), Within(5000))), ErrorCode::kProtocolFault);
}

TEST_F(SyncConnectionTest, AnAnswerToAFileThatIsMissing) {
  ASSERT_TRUE(sync_->BeginSend("/f", 0100644, Within(5000)).ok());
  ASSERT_TRUE(sync_->EndSend(1, Within(5000)).ok());
  ASSERT_EQ(shutdown(far(), SHUT_WR), 0);
  const Status status = sync_->AwaitSends(0, Within(5000));
  EXPECT_EQ(CodeOf(status), ErrorCode::kConnectionBroken);
  EXPECT_EQ(status.ok() ? "" : status.error().message, "expected OKAY or FAIL to a file");
}

TEST_F(SyncConnectionTest, NothingFollowsAMessageThatIsCutOff) {
  ASSERT_TRUE(sync_->BeginSend("/f", 0100644, Within(5000)).ok());
  EXPECT_EQ(CodeOf(sync_->SendData(std::string(4'000'000, 'x'), Within(20))), ErrorCode::kTimedOut);
  EXPECT_EQ(CodeOf(sync_->SendData("x", Within(5000))), ErrorCode::kMisuse);
  EXPECT_EQ(CodeOf(sync_->EndSend(0, Within(5000))), ErrorCode::kMisuse);
  EXPECT_FALSE(sync_->IsIdle());
}

TEST_F(SyncConnectionTest, AnIdleConnectionThatBreaksIsNotIdle) {
  EXPECT_TRUE(sync_->IsIdle());
  pair_.far.Reset();
  EXPECT_FALSE(sync_->IsIdle());
}

TEST_F(SyncConnectionTest, QuitIsSaid) {
  sync_->Quit();
  EXPECT_EQ(ReadBytes(far(), 100), Message("QUIT", ""));
  EXPECT_FALSE(sync_->IsIdle());
}

}  // namespace
}  // namespace darokleim::adb_test
