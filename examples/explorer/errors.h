#ifndef EXPLORER_ERRORS_H
#define EXPLORER_ERRORS_H

#include <QString>
#include <QWidget>
#include <darokleim/client.hpp>
#include <functional>
#include <vector>

namespace explorer {

// What went wrong, in one sentence, with Android's reason where it has one.
QString Sentence(const dk::Error& error);

// Shows errors without waiting for the answer; nothing when there are none.
void ShowErrors(QWidget* parent, const std::vector<dk::Error>& errors);

// Asks, and calls `yes` when the user agrees. Does not wait: the window goes on meanwhile.
void Ask(QWidget* parent, const QString& question, const QString& yes_text, std::function<void()> yes);

}  // namespace explorer

#endif  // EXPLORER_ERRORS_H
