#include "transfers.h"

#include <algorithm>

#include "text.h"

namespace explorer {

namespace {

QString Counted(const std::vector<std::string>& paths) {
  return paths.size() == 1 ? Shown(NameOf(paths.front())) : QString("%1 items").arg(paths.size());
}

std::vector<dk::Item> ItemsInto(const std::string& folder, const std::vector<std::string>& sources) {
  std::vector<dk::Item> items;
  for (const std::string& source : sources) items.push_back({source, Joined(folder, NameOf(source))});
  return items;
}

}  // namespace

Transfer::Transfer(Kind of_kind, dk::Device of_phone, QString with_title, std::vector<dk::Item> with_items,
                   dk_existing existing)
    : kind(of_kind),
      phone(std::move(of_phone)),
      title(std::move(with_title)),
      items_(std::move(with_items)),
      existing_(existing) {}

Transfer::State Transfer::state() const {
  if (result_ != kWaiting) return result_;
  return has_begun_ ? kRunning : kWaiting;
}

Progress Transfer::progress() const {
  const std::lock_guard lock(mutex_);
  return progress_;
}

std::vector<dk::Error> Transfer::errors() const {
  const std::lock_guard lock(mutex_);
  return errors_;
}

std::size_t Transfer::error_count() const {
  const std::lock_guard lock(mutex_);
  return errors_.size();
}

void Transfer::AddError(const dk::Error& error) {
  const std::lock_guard lock(mutex_);
  errors_.push_back(error);
}

// What was not transferred because it exists. Errors name the targets, which may be deep in the folders of an item.
std::vector<dk::Item> Transfer::ExistingItems() const {
  std::vector<dk::Item> existing;
  for (const dk::Error& error : errors_) {
    const std::string& path = error.path();
    for (const dk::Item& item : items_) {
      if (path.compare(0, item.target.size(), item.target) != 0) continue;
      const std::string below = path.substr(item.target.size());
      if (!below.empty() && below.front() != '/') continue;
      existing.push_back({item.source + below, path});
      break;
    }
  }
  return existing;
}

void Transfer::Restart(dk_existing existing) {
  if (result_ == kAsking) items_ = ExistingItems();
  existing_ = existing;
  cancel_ = dk::Cancel();
  has_begun_ = false;
  result_ = kWaiting;
  progress_ = {};
  errors_.clear();
}

void Transfer::Run() {
  has_begun_ = true;
  dk::Limits limits;
  limits.cancel = cancel_;
  const dk::Result<dk_summary> done = kind == kInstall ? Install(limits) : Copy(limits);
  // The errors of single files were reported as they came.
  if (!done && done.code() != DK_PARTLY_DONE) AddError(done.error());
}

dk::Result<dk_summary> Transfer::Copy(const dk::Limits& limits) {
  dk::TransferOptions options;
  options.existing = existing_;
  options.keep_going = true;
  options.on_progress = [this](const dk_progress& progress) {
    const std::lock_guard lock(mutex_);
    progress_ = {progress.bytes_done, progress.bytes_total, progress.files_done, progress.files_total,
                 progress.path};
    return true;
  };
  options.on_error = [this](const dk::Error& error) {
    AddError(error);
    return true;
  };
  return kind == kPush ? phone.push(items_, options, limits) : phone.pull(items_, options, limits);
}

dk::Result<dk_summary> Transfer::Install(const dk::Limits& limits) {
  dk::InstallOptions options;
  options.on_progress = [this](std::uint64_t done, std::uint64_t total) {
    const std::lock_guard lock(mutex_);
    progress_ = {done, total, 0, 1, items_.front().source};
    return true;
  };
  std::vector<std::string> apks;
  for (const dk::Item& item : items_) apks.push_back(item.source);
  const dk::Result<void> installed = phone.install(apks, options, limits);
  if (!installed) return installed.error();
  return dk_summary{};
}

void Transfer::Finish() {
  const auto is = [](dk_code code) {
    return [code](const dk::Error& error) { return error.code() == code; };
  };
  if (errors_.empty()) {
    result_ = kDone;
  } else if (errors_.back().code() == DK_CANCELLED) {
    errors_.pop_back();
    result_ = kCancelled;
  } else {
    const bool only_exist = std::all_of(errors_.begin(), errors_.end(), is(DK_EXISTS));
    result_ = only_exist && existing_ == DK_FAIL_IF_EXISTS ? kAsking : kFailed;
  }
}

TransferQueue::TransferQueue(Threads& threads) : threads_(threads) {}

TransferQueue::~TransferQueue() {
  CancelAll();
}

void TransferQueue::Push(const dk::Device& phone, const std::vector<std::string>& local,
                         const std::string& folder) {
  Add(std::make_shared<Transfer>(Transfer::kPush, phone,
                                 QString("%1 to %2").arg(Counted(local), Shown(folder)),
                                 ItemsInto(folder, local), existing_));
}

void TransferQueue::Pull(const dk::Device& phone, const std::vector<std::string>& paths,
                         const std::string& folder) {
  Pull(phone, QString("%1 to %2").arg(Counted(paths), Shown(folder)), ItemsInto(folder, paths));
}

void TransferQueue::Pull(const dk::Device& phone, const QString& title, const std::vector<dk::Item>& items) {
  Add(std::make_shared<Transfer>(Transfer::kPull, phone, title, items, existing_));
}

void TransferQueue::Install(const dk::Device& phone, const std::vector<std::string>& apks) {
  std::vector<dk::Item> items;
  for (const std::string& apk : apks) items.push_back({apk, {}});
  Add(std::make_shared<Transfer>(Transfer::kInstall, phone, QString("Installing %1").arg(Counted(apks)),
                                 items, DK_REPLACE));
}

void TransferQueue::Again(const TransferPtr& transfer, dk_existing existing) {
  transfer->Restart(existing);
  Start(transfer);
}

void TransferQueue::CancelAll() {
  for (const TransferPtr& transfer : transfers_) transfer->Cancel();
}

void TransferQueue::Add(const TransferPtr& transfer) {
  emit Added(transfer);
  Start(transfer);
}

void TransferQueue::Start(const TransferPtr& transfer) {
  ++running_;
  transfers_.push_back(transfer);
  emit Busy();
  Tasks& tasks = tasks_.try_emplace(transfer->phone.serial(), threads_).first->second;
  tasks.Run([transfer](const dk::Limits&) { transfer->Run(); },  // which has a token of its own
            [this, transfer](const dk::Result<void>&) {
              transfer->Finish();
              transfers_.erase(std::find(transfers_.begin(), transfers_.end(), transfer));
              --running_;
              emit Ended(transfer);
              if (!is_busy()) emit Idle();
            });
}

}  // namespace explorer
