// The bytes that phones answer with.
#ifndef DAROKLEIM_TESTS_CHANNEL_DIRECT_PHONE_ANSWERS_H
#define DAROKLEIM_TESTS_CHANNEL_DIRECT_PHONE_ANSWERS_H

#include <map>
#include <string>
#include <vector>

#include "tests/channel/direct/phone_server.h"

namespace darokleim::channel {

// The features of a phone that knows the second form of everything; an old one has none.
inline constexpr char kModern[] = "shell_v2,stat_v2,ls_v2";

// A packet of the shell's second form. 1: output, 2: error output, 3: the exit status.
std::string Packet(char id, const std::string& data);
std::string ShellAnswer();  // one line of each stream, and success

// The status of a file, and an entry of a folder, in both forms of the file service.
std::string Status1(const std::string& id, uint32_t mode, uint32_t size);
std::string Status2(const std::string& id, uint32_t error, uint32_t mode, uint64_t size);
std::string Entry1(const std::string& name);
std::string Entry2(const std::string& name);
// A folder with the files a and b.
std::string List1();
std::string List2();
// The file abcdef, in two pieces.
std::string Content();

// One request of the file service: its four letters and its path. Empty when the client has closed.
std::string ReadSyncRequest(int connection);

// Answers each request of the file service with the next text, and one more with the end of the connection.
PhoneServer::Serve Files(std::vector<std::string> answers);
// Answers each by its four letters.
PhoneServer::Serve FilesByRequest(std::map<std::string, std::string> answers);

}  // namespace darokleim::channel

#endif  // DAROKLEIM_TESTS_CHANNEL_DIRECT_PHONE_ANSWERS_H
