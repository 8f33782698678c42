#ifndef EXPLORER_OVERVIEW_PAGE_H
#define EXPLORER_OVERVIEW_PAGE_H

#include <QFormLayout>
#include <QLabel>
#include <QTimer>
#include <QWidget>
#include <map>

#include "tasks.h"

namespace explorer {

// What a phone is, its battery, and how full its volumes are. Asked again from time to time while it is seen.
class OverviewPage : public QWidget {
  Q_OBJECT

 public:
  OverviewPage(Threads& threads, dk::Device phone);

 protected:
  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;

 private:
  using Properties = std::vector<std::pair<std::string, std::string>>;

  QLabel* AddFact(const QString& title);
  // Asks one question and shows the answer in `label`, or why there is none.
  template <typename Question, typename Show>
  void AskFor(QLabel* label, Question question, Show show);
  void AskAll();
  void ShowProperties(const Properties& properties);
  void ShowVolumes(const std::vector<dk::Volume>& volumes);

  const dk::Device phone_;
  QFormLayout* const facts_;
  QVBoxLayout* volumes_ = nullptr;
  QLabel *model_, *android_, *build_, *battery_, *screen_, *memory_, *storage_;
  QTimer timer_;
  Tasks tasks_;
};

}  // namespace explorer

#endif  // EXPLORER_OVERVIEW_PAGE_H
