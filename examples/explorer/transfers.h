// Files on their way to or from phones, and applications that are installed: what takes long and has progress.
#ifndef EXPLORER_TRANSFERS_H
#define EXPLORER_TRANSFERS_H

#include <QObject>
#include <atomic>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "tasks.h"

namespace explorer {

// How far a transfer is. The client reports each block, far more often than anybody can see: the thread only writes it here,
// and the window looks when it draws.
struct Progress {
  std::uint64_t bytes_done = 0;
  std::uint64_t bytes_total = 0;
  std::uint64_t files_done = 0;
  std::uint64_t files_total = 0;
  std::string path;  // what is at work
};

class Transfer {
 public:
  enum Kind { kPush, kPull, kInstall };
  enum State {
    kWaiting,   // for others of the same phone
    kRunning,   //
    kAsking,    // done but for files that are at the target already: see TransferQueue::Again()
    kDone,      //
    kFailed,    // some files, or all
    kCancelled  // by the user; what was transferred before is kept
  };

  // Of an installation, the targets are not used. With DK_FAIL_IF_EXISTS the user is asked about existing files at the end.
  Transfer(Kind kind, dk::Device phone, QString title, std::vector<dk::Item> items, dk_existing existing);

  const Kind kind;
  const dk::Device phone;
  const QString title;

  State state() const;
  bool is_over() const { return state() > kRunning; }
  // These may be asked for while it runs.
  Progress progress() const;
  std::vector<dk::Error> errors() const;
  std::size_t error_count() const;

  // Ends it; it is over when the client has removed what is incomplete.
  void Cancel() const { cancel_.set(); }
  bool is_cancelled() const { return cancel_.is_set(); }

 private:
  friend class TransferQueue;
  void Restart(dk_existing existing);
  void Run();  // on a thread
  dk::Result<dk_summary> Copy(const dk::Limits& limits);
  dk::Result<dk_summary> Install(const dk::Limits& limits);
  void Finish();  // on the window's thread, after Run()
  void AddError(const dk::Error& error);
  std::vector<dk::Item> ExistingItems() const;

  std::vector<dk::Item> items_;
  dk_existing existing_;
  dk::Cancel cancel_;
  std::atomic<bool> has_begun_ = false;
  State result_ = kWaiting;  // window's thread; kWaiting until it is over

  mutable std::mutex mutex_;  // of what follows
  Progress progress_;
  std::vector<dk::Error> errors_;
};
using TransferPtr = std::shared_ptr<Transfer>;

// The transfers of all phones: one after the other on each phone, phones at the same time.
class TransferQueue : public QObject {
  Q_OBJECT

 public:
  explicit TransferQueue(Threads& threads);
  ~TransferQueue() override;

  // What to do with existing files in transfers from now on; DK_FAIL_IF_EXISTS asks.
  void set_existing(dk_existing existing) { existing_ = existing; }
  dk_existing existing() const { return existing_; }

  // Local files and folders into a folder of the phone.
  void Push(const dk::Device& phone, const std::vector<std::string>& local, const std::string& folder);
  // The phone's files and folders into a folder of this computer.
  void Pull(const dk::Device& phone, const std::vector<std::string>& paths, const std::string& folder);
  // Each path under a name of its own.
  void Pull(const dk::Device& phone, const QString& title, const std::vector<dk::Item>& items);
  // One application, which may have several APKs.
  void Install(const dk::Device& phone, const std::vector<std::string>& apks);

  // Once more, with an answer to what to do with existing files. After the question only these are transferred; otherwise all,
  // and those that were transferred before count as existing.
  void Again(const TransferPtr& transfer, dk_existing existing);

  bool is_busy() const { return running_ > 0; }
  void CancelAll();

 signals:
  void Added(const explorer::TransferPtr& transfer);
  // A transfer, also one that is tried again, waits or runs.
  void Busy();
  void Ended(const explorer::TransferPtr& transfer);
  // The last one has ended.
  void Idle();

 private:
  void Add(const TransferPtr& transfer);
  void Start(const TransferPtr& transfer);

  Threads& threads_;
  dk_existing existing_ = DK_FAIL_IF_EXISTS;
  std::vector<TransferPtr> transfers_;  // that are not over
  int running_ = 0;                     // that wait or run
  std::map<std::string, Tasks> tasks_;  // by serial
};

}  // namespace explorer

#endif  // EXPLORER_TRANSFERS_H
