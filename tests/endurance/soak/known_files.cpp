#include "tests/endurance/soak/known_files.h"

#include <algorithm>
#include <functional>

namespace darokleim::soak {
namespace {

// How long a phone may take to end what a call has begun and given up: a hung one goes on with it when it is let go.
constexpr std::chrono::seconds kLateness{15};

// The next of a sequence that has no pattern.
std::uint64_t Scrambled(std::uint64_t* state) {
  std::uint64_t mixed = (*state += 0x9e3779b97f4a7c15U);
  mixed = (mixed ^ (mixed >> 30)) * 0xbf58476d1ce4e5b9U;
  mixed = (mixed ^ (mixed >> 27)) * 0x94d049bb133111ebU;
  return mixed ^ (mixed >> 31);
}

FileSet MakeManyFiles() {
  FileSet set{"many", {}};
  for (int i = 0; i < 60; ++i) set.files.push_back({"IMG 2026-" + std::to_string(i) + ".jpg", 3000});
  return set;
}

}  // namespace

std::string FileForm::Content(Version version) const {
  std::uint64_t state = version * 31 + std::hash<std::string>{}(name);
  const std::size_t size = Scrambled(&state) % (most_bytes + 1);
  std::string content;
  content.reserve(size + sizeof state);
  while (content.size() < size) {
    const std::uint64_t word = Scrambled(&state);
    content.append(reinterpret_cast<const char*>(&word), sizeof word);
  }
  content.resize(size);
  return content;
}

const FileSet& OneFile() {
  static const FileSet set{"one", {{"it's a $(photo) \xc3\xa4.jpg", 600'000}}};
  return set;
}

const FileSet& ManyFiles() {
  static const FileSet set = MakeManyFiles();
  return set;
}

const FileSet& Tree() {
  static const FileSet set{"tree",
                           {{"a", 40'000},
                            {"empty", 0},
                            {"2025/a b.txt", 10'000},
                            {"2025/c;d", 70'000},
                            {"2025/05/'.jpg", 100},
                            {"2025/05/\".jpg", 40'000},
                            {"2026/-rf", 5000},
                            {"2026/*", 5000},
                            {"2026/x/y/z/\xe6\x97\xa5", 65'536},
                            {"2026/x/y/z/\xf0\x9f\x98\x80", 1}}};
  return set;
}

const FileSet& Note() {
  static const FileSet set{"note", {{"note.txt", 100'000}}};
  return set;
}

void KnownFile::Is(Version version) {
  const auto now = Clock::now();
  late_.erase(std::remove_if(late_.begin(), late_.end(), [&](const Late& late) { return late.until < now; }),
              late_.end());
  versions_ = {version};
  for (const Late& late : late_) Add(late.version);
}

void KnownFile::MayBe(Version version) {
  Add(version);
  late_.push_back({version, Clock::now() + kLateness});
}

void KnownFile::MayBe(const KnownFile& other) {
  for (const Version version : other.versions_) MayBe(version);
}

void KnownFile::Add(Version version) {
  if (!Has(version)) versions_.push_back(version);
}

bool KnownFile::Has(Version version) const {
  return std::find(versions_.begin(), versions_.end(), version) != versions_.end();
}

std::optional<Version> KnownFile::Find(const FileForm& form,
                                       const std::optional<std::string>& content) const {
  for (const Version version : versions_) {
    const bool fits = version == kAbsent ? !content : content == form.Content(version);
    if (fits) return version;
  }
  return std::nullopt;
}

}  // namespace darokleim::soak
