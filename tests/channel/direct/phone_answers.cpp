#include "tests/channel/direct/phone_answers.h"

namespace darokleim::channel {
namespace {

// One request, with the data of a file that is sent. Empty when there is nothing more to answer.
std::string ReadWholeRequest(int connection) {
  const std::string request = ReadSyncRequest(connection);
  if (request == "QUIT") return "";
  if (request.rfind("SEND", 0) == 0) {
    while (ReadSyncRequest(connection).rfind("DATA", 0) == 0) {
    }
  }
  return request;
}

}  // namespace

std::string Packet(char id, const std::string& data) {
  return id + Number32(static_cast<uint32_t>(data.size())) + data;
}

std::string ShellAnswer() {
  return Packet(1, "line\n") + Packet(2, "error\n") + Packet(3, std::string(1, '\0'));
}

std::string Status1(const std::string& id, uint32_t mode, uint32_t size) {
  return id + Number32(mode) + Number32(size) + Number32(1577934245);
}

std::string Status2(const std::string& id, uint32_t error, uint32_t mode, uint64_t size) {
  return id + Number32(error) + Number64(1) + Number64(2) + Number32(mode) + Number32(1) + Number32(0) +
         Number32(0) + Number64(size) + Number64(3) + Number64(1577934245) + Number64(4);
}

std::string Entry1(const std::string& name) {
  return Status1("DENT", 0100644, 5) + Number32(static_cast<uint32_t>(name.size())) + name;
}

std::string Entry2(const std::string& name) {
  return Status2("DNT2", 0, 0100644, 5) + Number32(static_cast<uint32_t>(name.size())) + name;
}

std::string List1() {
  return Entry1("a") + Entry1("b") + "DONE" + std::string(16, '\0');
}

std::string List2() {
  return Entry2("a") + Entry2("b") + "DONE" + std::string(72, '\0');
}

std::string Content() {
  return "DATA" + Number32(3) + "abc" + "DATA" + Number32(3) + "def" + "DONE" + Number32(0);
}

std::string ReadSyncRequest(int connection) {
  const std::string header = ReadBytes(connection, 8);
  if (header.size() < 8) return "";
  size_t length = 0;
  for (size_t i = 8; i-- > 4;) length = length * 256 + static_cast<unsigned char>(header[i]);
  return header.substr(0, 4) + (header.substr(0, 4) == "DONE" ? "" : ReadBytes(connection, length));
}

PhoneServer::Serve Files(std::vector<std::string> answers) {
  return [answers](const std::string&, int connection) {
    WriteBytes(connection, "OKAY");
    for (const std::string& answer : answers) {
      if (ReadWholeRequest(connection).empty() || !WriteBytes(connection, answer)) return;
    }
  };
}

PhoneServer::Serve FilesByRequest(std::map<std::string, std::string> answers) {
  return [answers](const std::string&, int connection) {
    WriteBytes(connection, "OKAY");
    for (;;) {
      const std::string request = ReadWholeRequest(connection);
      if (request.empty() || !WriteBytes(connection, answers.at(request.substr(0, 4)))) return;
    }
  };
}

}  // namespace darokleim::channel
