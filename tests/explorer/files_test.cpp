// The files of a phone, of both generations.
#include <QInputDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPainter>
#include <QRandomGenerator>
#include <QTreeView>
#include <QTreeWidget>
#include <filesystem>
#include <fstream>

#include "examples/explorer/files_model.h"
#include "examples/explorer/files_page.h"
#include "examples/explorer/folder_tree.h"
#include "tests/explorer/suites.h"
#include "tests/explorer/window_under_test.h"

namespace darokleim::test {

namespace {

namespace fs = std::filesystem;

constexpr int kMany = 20000;
// Not UTF-8, a line break, characters that reorder others, what a shell and HTML would read.
const std::vector<std::string> kAwkward = {
    "caf\xE9.txt", "two\nlines", "\xE2\x80\xAEgpj.exe", "$(reboot) 'a' \"b\"", "<b>bold", " ", "-rf"};

void WriteFile(const fs::path& file, const std::string& content) {
  std::ofstream(file, std::ios::binary) << content;
}

// A landscape; each number gives another sky.
void PaintPhoto(const fs::path& file, int number) {
  QImage image(640, 480, QImage::Format_RGB32);
  QPainter painter(&image);
  QLinearGradient sky(0, 0, 0, 480);
  sky.setColorAt(0, QColor::fromHsv((200 + 37 * number) % 360, 160, 230));
  sky.setColorAt(1, QColor::fromHsv((30 + 37 * number) % 360, 90, 250));
  painter.fillRect(image.rect(), sky);
  painter.setBrush(QColor(60, 90, 60));
  painter.drawPolygon(QPolygon({{0, 480}, {200, 260}, {360, 380}, {500, 300}, {640, 480}}));
  image.save(QString::fromStdString(file.native()));
}

}  // namespace

class FilesTest : public QObject {
  Q_OBJECT

 private:
  const TemporaryDirectory home_;
  std::unique_ptr<SimulatedPhones> phones_;
  std::unique_ptr<WindowUnderTest> test_;
  explorer::FilesPage* page_ = nullptr;
  QTreeView* list_ = nullptr;
  fs::path storage_;  // /sdcard as this computer sees it

  fs::path Storage(const std::string& serial) {
    return fs::path(phones_->FilesOf(serial)) / "storage/emulated/0";
  }
  void Choose(const std::string& serial) {
    storage_ = Storage(serial);
    test_->Choose(serial);
    page_ = static_cast<explorer::FilesPage*>(test_->Page("Files"));
    for (QTreeView* view : page_->findChildren<QTreeView*>()) {
      if (qobject_cast<explorer::FilesModel*>(view->model()) != nullptr) list_ = view;
    }
  }
  explorer::FilesModel& model() { return *static_cast<explorer::FilesModel*>(list_->model()); }
  QString Path() { return page_->findChild<QLineEdit*>()->text(); }
  void Open(const std::string& folder) {
    page_->Open(folder);
    Await([&] { return model().folder() == folder; }, folder.c_str());
  }
  std::vector<std::string> Names() {
    std::vector<std::string> names;
    for (int i = 0; i < model().rowCount(); ++i) names.push_back(model().row(model().index(i, 0)).name);
    return names;
  }
  void Select(const std::string& name) {
    list_->clearSelection();
    for (int i = 0; i < model().rowCount(); ++i) {
      if (model().row(model().index(i, 0)).name == name) list_->setCurrentIndex(model().index(i, 0));
    }
    QCOMPARE(list_->selectionModel()->selectedRows().size(), 1);
  }
  // The files of a folder on the phone, as they really are.
  std::vector<std::string> OnPhone(const std::string& folder) {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(storage_ / folder))
      names.push_back(entry.path().filename().native());
    std::sort(names.begin(), names.end());
    return names;
  }

 private slots:
  void initTestCase() {
    phones_ = StartBothPhones();
    for (const char* serial : {kModernPhone, kLegacyPhone}) {
      const fs::path many = Storage(serial) / "Many";
      fs::create_directory(many);
      for (int i = 0; i < kMany; ++i) WriteFile(many / ("IMG_" + std::to_string(i) + ".txt"), "");
    }
    // What the pane of this computer shows.
    for (const char* folder : {"Documents", "Music", "Pictures"}) fs::create_directory(home_.path() / folder);
    WriteFile(home_.path() / "notes.txt", "notes");
    qputenv("HOME", QByteArray::fromStdString(home_.path().native()));
  }
  void init() { test_ = std::make_unique<WindowUnderTest>(*phones_); }
  void cleanup() { test_.reset(); }
  void cleanupTestCase() { phones_.reset(); }

  void FoldersAreBrowsed_data() { AddBothPhones(); }
  void FoldersAreBrowsed() {
    QFETCH(const std::string, serial);
    Choose(serial);
    fs::create_directories(storage_ / "Browse/b folder/inner");
    for (const char* name : {"10.txt", "9.txt", "A.txt"}) WriteFile(storage_ / "Browse" / name, name);
    Open("/sdcard/Browse");
    QCOMPARE(Names(), (std::vector<std::string>{"b folder", "9.txt", "10.txt", "A.txt"}));
    list_->sortByColumn(explorer::FilesModel::kName, Qt::DescendingOrder);
    QCOMPARE(Names(), (std::vector<std::string>{"b folder", "A.txt", "10.txt", "9.txt"}));
    list_->sortByColumn(explorer::FilesModel::kSize, Qt::DescendingOrder);
    QCOMPARE(Names().at(1), std::string("10.txt"));
    list_->sortByColumn(explorer::FilesModel::kName, Qt::AscendingOrder);

    emit list_->activated(model().index(0, 0));
    QTRY_COMPARE_WITH_TIMEOUT(Path(), QString("/sdcard/Browse/b folder"), kLong);
    test_->Trigger("Up");
    QTRY_COMPARE_WITH_TIMEOUT(Path(), QString("/sdcard/Browse"), kLong);

    // A folder that is not there leaves what is shown.
    page_->Open("/sdcard/absent");
    QTRY_VERIFY_WITH_TIMEOUT(test_->Shows("No such file or directory"), kLong);
    QCOMPARE(Names().size(), 4U);

    auto* tree = page_->findChild<explorer::FolderTree*>();
    tree->topLevelItem(0)->setExpanded(true);
    const auto browse = [&]() -> QTreeWidgetItem* {
      return tree->findItems("Browse", Qt::MatchExactly | Qt::MatchRecursive).value(0);
    };
    QTRY_VERIFY_WITH_TIMEOUT(browse() != nullptr, kLong);
    browse()->setExpanded(true);
    QTRY_COMPARE_WITH_TIMEOUT(browse()->childCount(), 1, kLong);
    tree->setCurrentItem(browse()->child(0));
    QTRY_COMPARE_WITH_TIMEOUT(Path(), QString("/sdcard/Browse/b folder"), kLong);
    CompareHeartbeat(*test_);
  }

  void FilesAreChanged_data() { AddBothPhones(); }
  void FilesAreChanged() {
    QFETCH(const std::string, serial);
    Choose(serial);
    fs::create_directories(storage_ / "Change");
    for (const std::string& name : kAwkward) WriteFile(storage_ / "Change" / name, name);
    Open("/sdcard/Change");
    auto sorted = kAwkward;
    std::sort(sorted.begin(), sorted.end());
    auto names = Names();
    std::sort(names.begin(), names.end());
    QCOMPARE(names, sorted);

    test_->Trigger("New folder");
    auto* dialog = test_->Find<QInputDialog>();
    dialog->setTextValue("new");
    dialog->accept();
    QTRY_COMPARE_WITH_TIMEOUT(model().rowCount(), static_cast<int>(kAwkward.size()) + 1, kLong);
    QVERIFY(fs::is_directory(storage_ / "Change/new"));

    // Each awkward file is copied into the new folder, renamed there, and removed.
    list_->selectAll();
    list_->selectionModel()->select(model().index(0, 0),
                                    QItemSelectionModel::Deselect | QItemSelectionModel::Rows);
    const std::unique_ptr<QMimeData> dragged(model().mimeData(list_->selectionModel()->selectedRows()));
    model().dropMimeData(dragged.get(), Qt::CopyAction, -1, -1, model().index(0, 0));
    QTRY_COMPARE_WITH_TIMEOUT(OnPhone("Change/new"), sorted, kLong);
    Open("/sdcard/Change/new");
    QTRY_COMPARE_WITH_TIMEOUT(model().rowCount(), static_cast<int>(kAwkward.size()), kLong);
    Select("two\nlines");
    model().setData(list_->currentIndex(), QString::fromUtf8("caf\xC3\xA9"), Qt::EditRole);
    QTRY_VERIFY_WITH_TIMEOUT(fs::exists(storage_ / "Change/new/caf\xC3\xA9"), kLong);
    QTRY_COMPARE_WITH_TIMEOUT(OnPhone("Change/new").size(), kAwkward.size(), kLong);
    Await([&] { return Shown("caf\xC3\xA9"); }, "the new name");
    Select("caf\xE9.txt");
    test_->Trigger("Delete");
    test_->Click("Delete");
    QTRY_VERIFY_WITH_TIMEOUT(!fs::exists(storage_ / "Change/new/caf\xE9.txt"), kLong);

    // Moving onto a name that exists asks first.
    Open("/sdcard/Change");
    WriteFile(storage_ / "Change/new/-rf", "other");
    Select("-rf");
    test_->Trigger("Cut");
    Open("/sdcard/Change/new");
    test_->Trigger("Paste");
    test_->Click("Replace");
    QTRY_VERIFY_WITH_TIMEOUT(!fs::exists(storage_ / "Change/-rf"), kLong);
    QCOMPARE(fs::file_size(storage_ / "Change/new/-rf"), 3U);
    CompareHeartbeat(*test_);
  }

  // What a phone refuses is shown, and nothing else happens.
  void ErrorsAreShown() {
    Choose(kModernPhone);
    Open("/");
    Select("storage");
    test_->Trigger("Delete");
    test_->Click("Delete");
    const auto box = [&]() -> QMessageBox* { return test_->Find<QMessageBox>(); };
    QTRY_VERIFY_WITH_TIMEOUT(box() != nullptr && box()->icon() == QMessageBox::Warning, kLong);
    QVERIFY(box()->text().contains("/storage"));
    QCOMPARE(box()->textFormat(), Qt::PlainText);
    QVERIFY(fs::exists(storage_));
    box()->close();
  }

  void PicturesHaveThumbnails_data() { AddBothPhones(); }
  void PicturesHaveThumbnails() {
    QFETCH(const std::string, serial);
    Choose(serial);
    fs::create_directories(storage_ / "DCIM/Camera");
    for (int i = 0; i < 8; ++i) {
      PaintPhoto(storage_ / "DCIM/Camera" / ("IMG_2024060" + std::to_string(i + 1) + ".jpg"), i);
    }
    // Larger than the beginning that is read first.
    QImage noise(400, 400, QImage::Format_RGB32);
    for (int i = 0; i < 400 * 400; ++i)
      noise.setPixel(i % 400, i / 400, QRandomGenerator::global()->generate());
    noise.save(QString::fromStdString((storage_ / "DCIM/Camera/scan.png").native()));
    QVERIFY(fs::file_size(storage_ / "DCIM/Camera/scan.png") > 128 * 1024);
    WriteFile(storage_ / "DCIM/Camera/text only.jpg", "text");
    Open("/sdcard/DCIM/Camera");
    const auto picture = [&](int row) {
      return model().data(model().index(row, 0), Qt::DecorationRole).value<QIcon>().pixmap(40, 40).toImage();
    };
    const int last = model().rowCount() - 1;
    const QImage none = picture(last);
    for (int row = 0; row < last; ++row) QTRY_VERIFY_WITH_TIMEOUT(picture(row) != none, kLong);
    QTest::qWait(50);
    QCOMPARE(picture(last), none);
    if (serial == kModernPhone) {
      auto* tree = page_->findChild<explorer::FolderTree*>();
      tree->topLevelItem(0)->setExpanded(true);
      QTRY_VERIFY_WITH_TIMEOUT(tree->topLevelItem(0)->childCount() > 0, kLong);
      list_->setCurrentIndex(model().index(2, 0));
      test_->SaveScreenshot("files");
    }
    CompareHeartbeat(*test_);
  }

  void AFolderMayHaveManyFiles_data() { AddBothPhones(); }
  void AFolderMayHaveManyFiles() {
    QFETCH(const std::string, serial);
    Choose(serial);
    Open("/sdcard/Many");
    QCOMPARE(model().rowCount(), kMany);
    QCOMPARE(Names().at(10), std::string("IMG_10.txt"));
    list_->sortByColumn(explorer::FilesModel::kName, Qt::DescendingOrder);
    QCOMPARE(Names().front(), "IMG_" + std::to_string(kMany - 1) + ".txt");
    list_->scrollToBottom();
    list_->selectAll();
    QTest::qWait(100);
    Open("/sdcard");  // lets go of them
    CompareHeartbeat(*test_);
  }

 private:
  bool Shown(const std::string& name) {
    const auto names = Names();
    return std::find(names.begin(), names.end(), name) != names.end();
  }
};

std::unique_ptr<QObject> MakeFilesTest() {
  return std::make_unique<FilesTest>();
}

}  // namespace darokleim::test

#include "files_test.moc"
