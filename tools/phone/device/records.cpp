#include "tools/phone/device/records.h"

#include <fcntl.h>

#include <algorithm>

#include "tools/phone/common/io.h"
#include "tools/phone/device/layout.h"

namespace darokleim::phone {

void AppendRecord(const std::string& record, std::string line) {
  std::replace(line.begin(), line.end(), '\n', ' ');
  line += "\n";
  const std::string path = std::string(kStateFolder) + "/" + record;
  const base::UniqueFd file(open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0644));
  WriteAll(file.get(), line.data(), line.size());
}

}  // namespace darokleim::phone
