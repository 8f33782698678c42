// What the application of the soak does with files: it writes, transfers, looks at and reads them, and compares.
#ifndef DAROKLEIM_TESTS_ENDURANCE_SOAK_FILE_ACTS_H
#define DAROKLEIM_TESTS_ENDURANCE_SOAK_FILE_ACTS_H

#include <darokleim/client.hpp>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "tests/endurance/soak/caller.h"
#include "tests/endurance/soak/known_files.h"

namespace darokleim::soak {

// The same set of files on the phone and, as it was fetched, on this computer.
class SharedSet {
 public:
  SharedSet(const FileSet& set, Act push, Act pull, const std::string& host, const std::string& there);

  // The folder on the phone that the set's folder is in.
  std::string parent() const { return there_.substr(0, there_.rfind('/')); }

  // A new version. random: now and then it stops itself; null: it does not.
  void Push(Caller* caller, const dk::Device& phone, Random* random = nullptr);
  // The latest version once more, where the phone does not have it.
  void Update(Caller* caller, const dk::Device& phone);
  void Pull(Caller* caller, const dk::Device& phone);
  // Also whether the names on the phone are right.
  void List(Caller* caller, const dk::Device& phone) const;
  void Walk(Caller* caller, const dk::Device& phone) const;
  void Stat(Caller* caller, const dk::Device& phone, Random* random) const;
  // Whole, or a part.
  void Read(Caller* caller, const dk::Device& phone, Random* random);
  void Write(Caller* caller, const dk::Device& phone);
  // A folder is made; the first file is copied into it, moved there, and all is removed.
  void Rearrange(Caller* caller, const dk::Device& phone) const;

 private:
  using Names = std::vector<std::string>;

  void WriteSources();
  // A set of one file is transferred as that file, others as their folder.
  std::vector<dk::Item> ItemFrom(const std::string& source, const std::string& target) const;
  std::string PathOf(std::size_t file) const { return there_ + "/" + set_->files[file].name; }
  bool MayBeAbsent() const;
  // What of the names on the phone is too much, and what of the certain ones is missing.
  void Compare(const Caller& caller, const Names& found) const;
  void TakeFetched(const Caller& caller, std::size_t file, bool is_whole);
  bool IsCopy(const std::string& content) const;

  const FileSet* const set_;
  const Act push_, pull_;
  const std::string source_, fetched_, there_;
  Version version_ = 0;  // of the latest change
  std::vector<KnownFile> on_phone_, on_host_;
};

}  // namespace darokleim::soak

#endif  // DAROKLEIM_TESTS_ENDURANCE_SOAK_FILE_ACTS_H
