// adbkit, the adb client of Node.js that much is written with, where it is installed (`npm install -g @devicefarmer/adbkit`).
#ifndef DAROKLEIM_BENCH_ADBKIT_H
#define DAROKLEIM_BENCH_ADBKIT_H

#include <memory>
#include <stdexcept>
#include <string>

#include "tests/support/process.h"

namespace darokleim::bench {

class Adbkit {
 public:
  // Nothing where Node.js or the package is missing.
  static std::unique_ptr<Adbkit> Start(const std::string& port, const std::string& serial) {
    std::string folder = test::RunProgram({"npm", "root", "-g"}).output;
    folder = folder.substr(0, folder.find('\n'));
    std::unique_ptr<Adbkit> adbkit(
        new Adbkit({"node", DAROKLEIM_BENCH_FOLDER "/adbkit.js", port, serial}, {{"NODE_PATH", folder}}));
    return adbkit->process_.ReadLine() == "ready" ? std::move(adbkit) : nullptr;
  }

  // Seconds. The operations are those of adbkit.js.
  double Run(const std::string& operation, const std::string& source, const std::string& target = "") {
    process_.Write(operation + "\t" + source + "\t" + target + "\n");
    const std::string seconds = process_.ReadLine();
    if (seconds.empty()) throw std::runtime_error("adbkit fails: " + process_.Finish().errors);
    return std::stod(seconds);
  }

 private:
  Adbkit(const test::Words& command, const test::Environment& variables) : process_(command, variables) {}

  test::HostProcess process_;
};

}  // namespace darokleim::bench

#endif  // DAROKLEIM_BENCH_ADBKIT_H
