#ifndef EXPLORER_FILES_PAGE_H
#define EXPLORER_FILES_PAGE_H

#include <QLabel>
#include <QLineEdit>
#include <QToolBar>
#include <QTreeView>
#include <QWidget>

#include "computer_files.h"
#include "files_model.h"
#include "folder_tree.h"
#include "tasks.h"
#include "transfers.h"

namespace explorer {

// The files of a phone, beside those of this computer.
class FilesPage : public QWidget {
  Q_OBJECT

 public:
  FilesPage(Threads& threads, dk::Device phone, TransferQueue& queue);

  // Shows a folder once it is read. Another one meanwhile takes its place.
  void Open(const std::string& folder);
  void Refresh();

 private:
  // Something that changes files of the phone, one after the other.
  struct Step {
    std::string from;
    std::string to;  // empty: `from` is removed
    bool moves;
  };

  void MakeActions();
  void MakeLayout();
  void Show(const std::string& folder, dk::Result<std::vector<FileRow>> rows);
  void Activate(const QModelIndex& index);
  std::vector<std::string> Selected() const;
  bool Drop(const QMimeData& data, Qt::DropAction action, const std::string& folder);

  void NewFolder();
  void Delete();
  void Keep(bool to_move);  // for Paste()
  void Paste();
  void ChooseAndPull();
  void ChooseAndPush();
  void Put(const std::vector<std::string>& paths, const std::string& folder, bool moves);
  void Change(const std::vector<Step>& steps, bool replace = false);
  void Changed(const std::vector<Step>& steps);

  const dk::Device phone_;
  TransferQueue& queue_;
  FilesModel model_;
  ComputerModel computer_;
  QToolBar* const actions_;
  QLineEdit* const path_;
  FolderTree* const tree_;
  QTreeView* const list_;
  QLabel* const status_;
  std::string wanted_;  // the folder that is shown, or read to be shown
  std::vector<std::string> kept_;
  bool kept_to_move_ = false;
  Tasks reading_, changing_;
};

}  // namespace explorer

#endif  // EXPLORER_FILES_PAGE_H
