// What the soak knows of the files that it has written: which versions each may have.
#ifndef DAROKLEIM_TESTS_ENDURANCE_SOAK_KNOWN_FILES_H
#define DAROKLEIM_TESTS_ENDURANCE_SOAK_KNOWN_FILES_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tests/endurance/soak/faults.h"

namespace darokleim::soak {

// Counted from 1; 0: there is no file.
using Version = std::uint64_t;
constexpr Version kAbsent = 0;

// A file whose content follows from its name and its version.
struct FileForm {
  std::string name;  // below the folder of its set
  std::size_t most_bytes;

  std::string Content(Version version) const;
};

// Files that are transferred together.
struct FileSet {
  std::string name;  // of its folder; empty parts of the path have none
  std::vector<FileForm> files;
};
// A photo; many small files; files in folders. Names are as difficult as phones allow.
const FileSet& OneFile();
const FileSet& ManyFiles();
const FileSet& Tree();
// What dk_write() makes.
const FileSet& Note();

// The versions that one file may have. A change that failed leaves two of them.
class KnownFile {
 public:
  // It has this version. What a failed change may still do on the phone remains possible: a phone that hung goes on with what it
  // was told.
  void Is(Version version);
  // A change to this version failed: it has that, or what it had.
  void MayBe(Version version);
  void MayBe(const KnownFile& other);

  bool Has(Version version) const;
  bool is_certain() const { return versions_.size() == 1; }
  const std::vector<Version>& versions() const { return versions_; }
  // The version that has this content; none where it is of no version that it may have.
  std::optional<Version> Find(const FileForm& form, const std::optional<std::string>& content) const;

 private:
  struct Late {
    Version version;
    Clock::time_point until;
  };
  void Add(Version version);

  std::vector<Version> versions_ = {kAbsent};
  std::vector<Late> late_;
};

}  // namespace darokleim::soak

#endif  // DAROKLEIM_TESTS_ENDURANCE_SOAK_KNOWN_FILES_H
