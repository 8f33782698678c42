#include "tests/endurance/soak/file_acts.h"

#include <algorithm>

#include "tests/support/file_content.h"

namespace darokleim::soak {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kTemporary = ".darokleim-";

bool IsTemporary(std::string_view path) {
  return path.find(kTemporary) != std::string_view::npos;
}

std::optional<std::string> ContentOfHostFile(const std::string& path) {
  if (!fs::exists(fs::symlink_status(path))) return std::nullopt;
  return test::ReadFile(path);
}

dk::TransferOptions Replacing(dk_summary* summary) {
  dk::TransferOptions options;
  options.existing = DK_REPLACE;
  options.summary = summary;
  return options;
}

Codes IfAbsent(bool may_be_absent) {
  return may_be_absent ? Codes{DK_NOT_FOUND} : Codes{};
}

}  // namespace

SharedSet::SharedSet(const FileSet& set, Act push, Act pull, const std::string& host,
                     const std::string& there)
    : set_(&set),
      push_(push),
      pull_(pull),
      source_(host + "/send/" + set.name),
      fetched_(host + "/fetched/" + set.name),
      there_(there + "/" + set.name),
      on_phone_(set.files.size()),
      on_host_(set.files.size()) {}

void SharedSet::WriteSources() {
  for (const FileForm& form : set_->files) {
    const std::string path = source_ + "/" + form.name;
    fs::create_directories(fs::path(path).parent_path());
    test::WriteFile(path, form.Content(version_));
  }
}

std::vector<dk::Item> SharedSet::ItemFrom(const std::string& source, const std::string& target) const {
  if (set_->files.size() > 1) return {{source, target}};
  const std::string& name = set_->files[0].name;
  return {{source + "/" + name, target + "/" + name}};
}

void SharedSet::Push(Caller* caller, const dk::Device& phone, Random* random) {
  ++version_;
  WriteSources();
  dk_summary summary = {};
  dk::TransferOptions options = Replacing(&summary);
  const bool stops = random != nullptr && random->OneIn(10);
  std::size_t blocks_left = stops ? random->Below(set_->files.size()) : 0;
  if (stops) options.on_progress = [&](const dk_progress&) { return blocks_left-- > 0; };
  const auto pushed = caller->Make(
      push_, [&](const dk::Limits& limits) { return phone.push(ItemFrom(source_, there_), options, limits); },
      stops ? Codes{DK_STOPPED} : Codes{});
  for (KnownFile& file : on_phone_) {
    if (pushed) {
      file.Is(version_);
    } else {
      file.MayBe(version_);
    }
  }
  if (pushed && summary.files_sent != set_->files.size()) {
    caller->Wrong("a push of " + std::to_string(set_->files.size()) + " files sent " +
                  std::to_string(summary.files_sent));
  }
}

void SharedSet::Update(Caller* caller, const dk::Device& phone) {
  dk_summary summary = {};
  dk::TransferOptions options = Replacing(&summary);
  options.existing = DK_SKIP_SAME;
  const auto pushed = caller->Make(Act::kUpdate, [&](const dk::Limits& limits) {
    return phone.push(ItemFrom(source_, there_), options, limits);
  });
  // Of two versions of the same second and the same size the phone may keep the older one.
  for (KnownFile& file : on_phone_) file.MayBe(version_);
  if (pushed && summary.files_sent + summary.files_skipped != set_->files.size())
    caller->Wrong("an update sent and skipped other files than there are");
}

bool SharedSet::MayBeAbsent() const {
  return std::any_of(on_phone_.begin(), on_phone_.end(),
                     [](const KnownFile& file) { return file.Has(kAbsent); });
}

void SharedSet::Pull(Caller* caller, const dk::Device& phone) {
  dk_summary summary = {};
  const auto pulled = caller->Make(
      pull_,
      [&](const dk::Limits& limits) {
        return phone.pull(ItemFrom(there_, fetched_), Replacing(&summary), limits);
      },
      IfAbsent(MayBeAbsent()));
  for (std::size_t i = 0; i < set_->files.size(); ++i) TakeFetched(*caller, i, pulled.ok());
}

void SharedSet::TakeFetched(const Caller& caller, std::size_t file, bool is_whole) {
  const FileForm& form = set_->files[file];
  KnownFile& here = on_host_[file];
  const KnownFile& there = on_phone_[file];
  const auto content = ContentOfHostFile(fetched_ + "/" + form.name);
  const auto fetched = there.Find(form, content);
  const auto older = here.Find(form, content);
  const bool may_be_older = !is_whole || there.Has(kAbsent);
  if (fetched) {
    here.Is(*fetched);
  } else if (may_be_older && older) {
    here.Is(*older);
  } else {
    caller.Wrong("after a pull " + fetched_ + "/" + form.name +
                 " is neither the phone's file nor the older one");
  }
}

void SharedSet::Compare(const Caller& caller, const Names& found) const {
  for (const std::string& name : found) {
    if (IsTemporary(name)) continue;
    const bool is_known = std::any_of(set_->files.begin(), set_->files.end(), [&](const FileForm& form) {
      return form.name == name || form.name.compare(0, name.size() + 1, name + "/") == 0;
    });
    if (!is_known) caller.Wrong("nobody made " + there_ + "/" + name);
  }
  for (std::size_t i = 0; i < set_->files.size(); ++i) {
    const std::string& name = set_->files[i].name;
    if (on_phone_[i].Has(kAbsent) || std::find(found.begin(), found.end(), name) != found.end()) continue;
    caller.Wrong("missing from a list: " + PathOf(i));
  }
}

void SharedSet::List(Caller* caller, const dk::Device& phone) const {
  const auto listed = caller->Make(
      Act::kList, [&](const dk::Limits& limits) { return phone.list(there_, limits); },
      IfAbsent(MayBeAbsent()));
  if (!listed) return;
  Names found;
  for (const dk::Entry& entry : listed.value()) found.push_back(entry.name);
  Compare(*caller, found);
}

void SharedSet::Walk(Caller* caller, const dk::Device& phone) const {
  Names found;
  const auto walked = caller->Make(
      Act::kWalk,
      [&](const dk::Limits& limits) {
        return phone.walk(
            there_, dk::WalkOptions(),
            [&](const dk_entry& entry) {
              found.push_back(std::string(entry.path).substr(there_.size() + 1));
              return true;
            },
            limits);
      },
      IfAbsent(MayBeAbsent()));
  if (walked) Compare(*caller, found);
}

void SharedSet::Stat(Caller* caller, const dk::Device& phone, Random* random) const {
  const std::size_t file = random->Below(set_->files.size());
  const KnownFile& known = on_phone_[file];
  const auto status = caller->Make(
      Act::kStat, [&](const dk::Limits& limits) { return phone.stat(PathOf(file), DK_FOLLOW, limits); },
      IfAbsent(known.Has(kAbsent)));
  if (!status) return;
  const auto& versions = known.versions();
  const bool fits = std::any_of(versions.begin(), versions.end(), [&](Version version) {
    return version != kAbsent && status.value().size == set_->files[file].Content(version).size();
  });
  if (!fits) caller->Wrong("no version of this file has the size that was said: " + PathOf(file));
}

void SharedSet::Read(Caller* caller, const dk::Device& phone, Random* random) {
  const std::size_t file = random->Below(set_->files.size());
  const FileForm& form = set_->files[file];
  KnownFile& known = on_phone_[file];
  const bool is_part = random->OneIn(3);
  const std::uint64_t offset = is_part ? random->Below(form.most_bytes + 1) : 0;
  const std::uint64_t length = is_part ? 1 + random->Below(10'000) : 0;
  const auto read = caller->Make(
      Act::kRead, [&](const dk::Limits& limits) { return phone.read(PathOf(file), offset, length, limits); },
      IfAbsent(known.Has(kAbsent)));
  if (!read) return;
  const auto& versions = known.versions();
  const bool fits = std::any_of(versions.begin(), versions.end(), [&](Version version) {
    if (version == kAbsent) return false;
    const std::string content = form.Content(version);
    if (!is_part) return content == read.value();
    return content.substr(std::min<std::size_t>(offset, content.size()), length) == read.value();
  });
  if (!fits) {
    caller->Wrong("what was read of " + PathOf(file) + " is no version that was written (offset " +
                  std::to_string(offset) + ", " + std::to_string(read.value().size()) + " bytes)");
  }
}

void SharedSet::Write(Caller* caller, const dk::Device& phone) {
  ++version_;
  for (std::size_t i = 0; i < set_->files.size(); ++i) {
    const std::string content = set_->files[i].Content(version_);
    const auto written = caller->Make(Act::kWrite, [&](const dk::Limits& limits) {
      return phone.write(PathOf(i), content, 0644, true, limits);
    });
    if (written) {
      on_phone_[i].Is(version_);
    } else {
      on_phone_[i].MayBe(version_);
    }
  }
}

bool SharedSet::IsCopy(const std::string& content) const {
  const auto version = on_phone_[0].Find(set_->files[0], content);
  return version && *version != kAbsent;
}

void SharedSet::Rearrange(Caller* caller, const dk::Device& phone) const {
  const auto begin = Clock::now();
  const std::string folder = there_ + " copies", copy = folder + "/copy", moved = folder + "/it's moved";
  const Codes source = IfAbsent(on_phone_[0].Has(kAbsent));
  const auto remove = [&](Codes also) {
    return caller->Make(
        Act::kRemove, [&](const dk::Limits& limits) { return phone.remove(folder, true, limits); }, also);
  };
  // What an earlier one left that failed. It may also still be at work on a phone that hung.
  if (const auto removed = remove({DK_NOT_FOUND}); !removed && removed.code() != DK_NOT_FOUND) return;
  const auto made = caller->Make(
      Act::kMakeFolder, [&](const dk::Limits& limits) { return phone.make_folder(folder, true, limits); });
  if (!made) return;
  const auto copied = caller->Make(
      Act::kCopy, [&](const dk::Limits& limits) { return phone.copy(PathOf(0), copy, true, limits); },
      source);
  if (!copied) return;
  const auto renamed = caller->Make(
      Act::kMove, [&](const dk::Limits& limits) { return phone.move(copy, moved, true, limits); });
  if (!renamed) return;
  const auto read =
      caller->Make(Act::kRead, [&](const dk::Limits& limits) { return phone.read(moved, 0, 0, limits); });
  // The cp of the simulated phones does not say that the storage filled up while it wrote.
  const bool may_be_cut = caller->HadSince(begin, Fault::kFull);
  if (read && !may_be_cut && !IsCopy(read.value()))
    caller->Wrong("a copy differs from its file: " + PathOf(0));
  static_cast<void>(remove({}));
}

}  // namespace darokleim::soak
