#ifndef EXPLORER_APPLICATIONS_PAGE_H
#define EXPLORER_APPLICATIONS_PAGE_H

#include <QAbstractTableModel>
#include <QComboBox>
#include <QLabel>
#include <QSortFilterProxyModel>
#include <QTreeView>
#include <QWidget>
#include <vector>

#include "tasks.h"
#include "transfers.h"

namespace explorer {

class ApplicationsModel : public QAbstractTableModel {
  Q_OBJECT

 public:
  enum Column { kPackage, kVersion, kSize, kOrigin, kColumnCount };
  static constexpr int kSortRole = Qt::UserRole;  // sizes as numbers

  void Show(std::vector<dk::App> apps);
  const dk::App& app(int row) const { return apps_[static_cast<std::size_t>(row)]; }

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

 private:
  std::vector<dk::App> apps_;
};

// The applications of a phone. APKs that are dropped here are installed.
class ApplicationsPage : public QWidget {
  Q_OBJECT

 public:
  ApplicationsPage(Threads& threads, dk::Device phone, TransferQueue& queue);

  void Install(const std::vector<std::string>& apks);
  void Uninstall();
  // The APKs of the selected applications, into a folder of this computer.
  void SaveApks(const QString& folder);

 protected:
  void showEvent(QShowEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;

 private:
  void MakeLayout();
  void Read();
  void Remove(const std::vector<std::string>& packages);
  std::vector<const dk::App*> Selected() const;

  const dk::Device phone_;
  TransferQueue& queue_;
  ApplicationsModel model_;
  QSortFilterProxyModel found_;
  QComboBox* const set_;
  QTreeView* const view_;
  QLabel* const status_;
  Tasks reading_, changing_;
};

}  // namespace explorer

#endif  // EXPLORER_APPLICATIONS_PAGE_H
