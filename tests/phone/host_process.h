#ifndef DAROKLEIM_TESTS_PHONE_HOST_PROCESS_H
#define DAROKLEIM_TESTS_PHONE_HOST_PROCESS_H

#include <sys/types.h>

#include <string>
#include <utility>
#include <vector>

namespace darokleim::phone_test {

using Words = std::vector<std::string>;
using Environment = std::vector<std::pair<std::string, std::string>>;

// What a finished program did.
struct Outcome {
  int status = -1;     // the exit status; 128 + N when signal N ended it
  std::string output;  // what it printed on its standard output
  std::string errors;  // and on its standard error
};

// A program with its streams in pipes, ended at the latest with this object.
class HostProcess {
 public:
  // `variables` are added to this process's environment; one with an empty value is taken out of it.
  HostProcess(const Words& command, const Environment& variables);
  ~HostProcess();
  HostProcess(const HostProcess&) = delete;
  HostProcess& operator=(const HostProcess&) = delete;

  pid_t pid() const { return pid_; }
  void Signal(int signal) const;
  // The next line of its standard output without its end; an empty text at the end of the output.
  std::string ReadLine();
  void Write(const std::string& input);
  void CloseInput();
  // Reads everything and waits for the end.
  Outcome Finish();

 private:
  pid_t pid_ = -1;
  int input_ = -1;
  int output_ = -1;
  int errors_ = -1;
};

Outcome RunProgram(const Words& command, const Environment& variables, const std::string& input = "");

}  // namespace darokleim::phone_test

#endif  // DAROKLEIM_TESTS_PHONE_HOST_PROCESS_H
