#include "tools/cli/host/run_mark.h"

#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>

#include "base/ascii.h"
#include "base/unique_fd.h"
#include "tools/cli/errors.h"
#include "tools/cli/host/host_directories.h"

namespace darokleim::cli {
namespace {

namespace fs = std::filesystem;

constexpr char kPattern[] = "XXXXXX";  // for mkstemp
constexpr std::size_t kTokenLength = sizeof kPattern - 1;

fs::path MarkDirectory() {
  const auto cache = CacheDirectory();
  const fs::path own = cache.value_or(TemporaryUserDirectory());
  try {
    MakePrivateDirectory(own);
  } catch (const ToolError&) {
    if (!cache) throw;
    MakePrivateDirectory(TemporaryUserDirectory());
    return TemporaryUserDirectory() / "runs";
  }
  return own / "runs";
}

// Marks of other computers and users are not known here, so their runs count as living.
std::string Place(const fs::path& directory) {
  char host[256] = "";
  gethostname(host, sizeof host - 1);
  char text[32];
  std::snprintf(text, sizeof text, "%016llx",
                static_cast<unsigned long long>(StableHash(std::string(host) + ":" + directory.native())));
  return text;
}

class RunMark {
 public:
  RunMark() : directory_(MarkDirectory()) {
    MakePrivateDirectory(directory_);
    std::string path = (directory_ / kPattern).native();
    file_ = base::UniqueFd(mkstemp(path.data()));
    if (!file_.valid() || fcntl(file_.get(), F_SETFD, FD_CLOEXEC) != 0 || flock(file_.get(), LOCK_EX) != 0) {
      throw ToolError("cannot write in " + directory_.native() + ": " + SystemErrorText(errno));
    }
    path_ = path;
  }
  ~RunMark() { unlink(path_.c_str()); }
  RunMark(const RunMark&) = delete;
  RunMark& operator=(const RunMark&) = delete;

  std::string Name() const { return Place(directory_) + "-" + path_.filename().native(); }

 private:
  fs::path directory_;
  fs::path path_;
  base::UniqueFd file_;
};

}  // namespace

std::string OwnRunName() {
  static const RunMark mark;
  return mark.Name();
}

bool HasEnded(std::string_view run_name) {
  const fs::path directory = MarkDirectory();
  const std::string place = Place(directory) + "-";
  const auto token = run_name.substr(std::min(place.size(), run_name.size()));
  if (run_name.substr(0, place.size()) != place || token.size() != kTokenLength ||
      !std::all_of(token.begin(), token.end(), base::IsAsciiLetterOrDigit)) {
    return false;
  }
  const fs::path path = directory / token;
  const base::UniqueFd file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW));
  if (!file.valid()) return errno == ENOENT;
  if (flock(file.get(), LOCK_EX | LOCK_NB) != 0) return false;
  unlink(path.c_str());
  return true;
}

}  // namespace darokleim::cli
