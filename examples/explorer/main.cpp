// A phone manager.
//
//   explorer [--server ADDRESS]
//
// ADDRESS is that of an adb server, as in ADB_SERVER_SOCKET; otherwise the one that adb itself would use, which is started
// where none runs.
#include <QApplication>
#include <QCommandLineParser>
#include <QMessageBox>
#include <QStandardPaths>

#include "main_window.h"
#include "tasks.h"

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  QApplication::setApplicationName("explorer");
  QApplication::setApplicationDisplayName("Explorer");

  QCommandLineParser arguments;
  arguments.addHelpOption();
  arguments.addOption({"server", "The adb server, for example tcp:5037.", "address"});
  arguments.process(application);

  dk::ClientOptions options;
  options.server = arguments.value("server").toStdString();
  options.adb_path = QStandardPaths::findExecutable("adb").toStdString();
  try {
    explorer::Threads threads;  // outlives the window; waits for calls that are still ending
    explorer::MainWindow window(threads, dk::Client(options));
    window.show();
    return QApplication::exec();
  } catch (const dk::Error& error) {
    QMessageBox::critical(nullptr, QString(), QString::fromStdString(error.message()));
    return 1;
  }
}
