#ifndef EXPLORER_PHONE_LIST_H
#define EXPLORER_PHONE_LIST_H

#include <QAbstractListModel>
#include <darokleim/client.hpp>
#include <string>
#include <vector>

namespace explorer {

// The phones that are attached, in every state, as a watch reports them.
class PhoneList : public QAbstractListModel {
  Q_OBJECT

 public:
  explicit PhoneList(const dk::Client& client);

  const dk::DeviceInfo& phone(int row) const { return phones_[static_cast<std::size_t>(row)]; }
  int RowOf(const std::string& serial) const;  // -1: it is not attached
  bool has_server() const { return has_server_; }

  int rowCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;

 signals:
  // Any change, of phones or of the server, after it was made.
  void Changed();

 private:
  void Apply(dk_change change, const dk::DeviceInfo& info);

  std::vector<dk::DeviceInfo> phones_;
  bool has_server_ = false;
  dk::Watch watch_;  // goes first: no change comes afterwards
};

// Its model, or its serial where the model is not known.
QString ShownName(const dk::DeviceInfo& phone);
// What its state means, and what to do about it; empty when it is ready.
QString Advice(const dk::DeviceInfo& phone);

}  // namespace explorer

#endif  // EXPLORER_PHONE_LIST_H
