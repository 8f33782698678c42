// Transfers as the user sees them, of both generations.
#include <QMessageBox>
#include <QMimeData>
#include <QSignalSpy>
#include <QUrl>
#include <csignal>
#include <filesystem>
#include <fstream>

#include "examples/explorer/computer_files.h"
#include "examples/explorer/files_page.h"
#include "examples/explorer/phone_paths.h"
#include "tests/explorer/suites.h"
#include "tests/explorer/window_under_test.h"

namespace darokleim::test {

namespace {

constexpr std::uintmax_t kLarge = 100'000'000;  // bytes: takes five seconds
constexpr char kSlow[] = "bandwidth=20M";

namespace paths = std::filesystem;

std::string ContentOf(const paths::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

void MakeFile(const paths::path& file, const std::string& content) {
  paths::create_directories(file.parent_path());
  std::ofstream(file, std::ios::binary) << content;
}

void MakeLargeFile(const paths::path& file) {
  MakeFile(file, "");
  paths::resize_file(file, kLarge);
}

// Every file below a folder.
std::vector<std::string> FilesBelow(const paths::path& folder) {
  std::vector<std::string> found;
  for (const auto& entry : paths::recursive_directory_iterator(folder)) {
    if (!entry.is_directory()) found.push_back(entry.path().lexically_relative(folder).native());
  }
  std::sort(found.begin(), found.end());
  return found;
}

}  // namespace

class TransfersTest : public QObject {
  Q_OBJECT

 private:
  std::unique_ptr<SimulatedPhones> phones_;
  std::unique_ptr<WindowUnderTest> test_;
  std::unique_ptr<TemporaryDirectory> computer_;
  explorer::FilesPage* page_ = nullptr;
  explorer::TransferPtr newest_;
  std::string serial_;
  paths::path storage_;

  void Choose(const std::string& serial) {
    serial_ = serial;
    storage_ = paths::path(phones_->FilesOf(serial)) / "storage/emulated/0";
    test_->Choose(serial);
    page_ = static_cast<explorer::FilesPage*>(test_->Page("Files"));
  }
  // On any computer there is time to act while a large file is transferred.
  void MakeTransfersSlow() { QCOMPARE(phones_->Control({serial_, "fault", kSlow}).status, 0); }
  // From another program onto the folder that is shown.
  void DropOnPhone(const std::vector<paths::path>& files) {
    QMimeData data;
    QList<QUrl> urls;
    for (const paths::path& file : files) urls += QUrl::fromLocalFile(QString::fromStdString(file.native()));
    data.setUrls(urls);
    Model().dropMimeData(&data, Qt::CopyAction, -1, -1, {});
  }
  explorer::FilesModel& Model() {
    for (QTreeView* view : page_->findChildren<QTreeView*>()) {
      if (auto* model = qobject_cast<explorer::FilesModel*>(view->model())) return *model;
    }
    throw std::runtime_error("there is no list of files");
  }
  // From the phone onto a folder of this computer.
  void DropOnComputer(const std::string& serial, const std::vector<std::string>& files) {
    for (QTreeView* view : page_->findChildren<QTreeView*>()) {
      if (auto* model = qobject_cast<explorer::ComputerModel*>(view->model())) {
        const auto data = explorer::ToMimeData({serial, files});
        const QModelIndex folder = model->index(QString::fromStdString(computer_->path().native()));
        QVERIFY(model->canDropMimeData(data.get(), Qt::CopyAction, -1, -1, folder));
        model->dropMimeData(data.get(), Qt::CopyAction, -1, -1, folder);
        return;
      }
    }
    QFAIL("there is no view of this computer");
  }
  void Open(const std::string& folder) {
    page_->Open(folder);
    Await([&] { return Model().folder() == folder; }, folder.c_str());
  }
  void AwaitBytes() {
    Await([&] { return newest_ && newest_->progress().bytes_done > 0; }, "the first bytes");
  }
  void AwaitState(explorer::Transfer::State state) {
    Await([&] { return newest_ && newest_->state() == state; },
          ("state " + std::to_string(state) + " of " + newest_->title.toStdString()).c_str());
  }

 private slots:
  void initTestCase() { phones_ = StartBothPhones(); }
  void init() {
    computer_ = std::make_unique<TemporaryDirectory>();
    test_ = std::make_unique<WindowUnderTest>(*phones_);
    connect(&test_->window().transfers(), &explorer::TransferQueue::Added, this,
            [this](const explorer::TransferPtr& added) { newest_ = added; });
  }
  void cleanup() {
    for (const char* serial : {kModernPhone, kLegacyPhone}) phones_->Control({serial, "clear", "bandwidth"});
    test_.reset();
    newest_.reset();
    computer_.reset();
  }
  void cleanupTestCase() { phones_.reset(); }

  void FilesGoBothWays_data() { AddBothPhones(); }
  void FilesGoBothWays() {
    QFETCH(const std::string, serial);
    Choose(serial);
    const std::string awkward = "two\nlines '\"$HOME";
    MakeFile(computer_->path() / "album/a.txt", "first");
    MakeFile(computer_->path() / "album" / awkward, "second");
    paths::create_directories(storage_ / "Both");
    Open("/sdcard/Both");
    DropOnPhone({computer_->path() / "album"});
    AwaitState(explorer::Transfer::kDone);
    QCOMPARE(FilesBelow(storage_ / "Both"), (std::vector<std::string>{"album/a.txt", "album/" + awkward}));
    QTRY_COMPARE_WITH_TIMEOUT(Model().rowCount(), 1, kLong);  // the list is read again

    // The same once more, changed: the user is asked, and nothing is replaced before.
    MakeFile(computer_->path() / "album/a.txt", "changed");
    DropOnPhone({computer_->path() / "album"});
    AwaitState(explorer::Transfer::kAsking);
    QCOMPARE(ContentOf(storage_ / "Both/album/a.txt"), std::string("first"));
    test_->Click("Keep them");
    AwaitState(explorer::Transfer::kDone);
    QCOMPARE(ContentOf(storage_ / "Both/album/a.txt"), std::string("first"));
    MakeFile(computer_->path() / "album/c.txt", "new");
    DropOnPhone({computer_->path() / "album"});
    AwaitState(explorer::Transfer::kAsking);
    QCOMPARE(ContentOf(storage_ / "Both/album/c.txt"), std::string("new"));
    test_->Click("Replace if different");
    AwaitState(explorer::Transfer::kDone);
    QCOMPARE(newest_->progress().files_total, std::uint64_t{2});  // those that existed
    QCOMPARE(ContentOf(storage_ / "Both/album/a.txt"), std::string("changed"));

    // Back, under another name of the folder.
    paths::rename(storage_ / "Both/album", storage_ / "Both/back");
    const std::string latin = "caf\xE9";
    MakeFile(storage_ / "Both/back" / latin, "third");
    DropOnComputer(serial, {"/sdcard/Both/back"});
    AwaitState(explorer::Transfer::kDone);
    QCOMPARE(FilesBelow(computer_->path() / "back"),
             (std::vector<std::string>{"a.txt", "c.txt", latin, awkward}));
    QCOMPARE(ContentOf(computer_->path() / "back" / latin), std::string("third"));
    CompareHeartbeat(*test_);
  }

  void ATransferIsCancelled_data() { AddBothPhones(); }
  void ATransferIsCancelled() {
    QFETCH(const std::string, serial);
    Choose(serial);
    paths::create_directories(storage_ / "Movies");
    MakeFile(computer_->path() / "holiday/beach.mp4", "small");
    MakeLargeFile(computer_->path() / "holiday/mountains.mp4");
    MakeTransfersSlow();
    Open("/sdcard/Movies");
    DropOnPhone({computer_->path() / "holiday"});
    AwaitBytes();
    if (serial == kModernPhone) {
      QTest::qWait(1000);  // for a rate
      test_->SaveScreenshot("transfers");
    }
    test_->Click("Cancel");
    AwaitState(explorer::Transfer::kCancelled);
    QTRY_VERIFY_WITH_TIMEOUT(
        FilesBelow(storage_ / "Movies") == std::vector<std::string>{"holiday/beach.mp4"} ||
            FilesBelow(storage_ / "Movies").empty(),
        kLong);

    // Once more: what was sent before is asked about, the rest is sent.
    paths::resize_file(computer_->path() / "holiday/mountains.mp4", 1000);
    test_->Click("Try again");
    Await(
        [&] {
          return newest_->state() == explorer::Transfer::kAsking ||
                 newest_->state() == explorer::Transfer::kDone;
        },
        "the end");
    QCOMPARE(FilesBelow(storage_ / "Movies"),
             (std::vector<std::string>{"holiday/beach.mp4", "holiday/mountains.mp4"}));
    CompareHeartbeat(*test_);
  }

  void APhoneIsUnpluggedInMidTransfer_data() { AddBothPhones(); }
  void APhoneIsUnpluggedInMidTransfer() {
    QFETCH(const std::string, serial);
    Choose(serial);
    MakeLargeFile(storage_ / "Unplug/large");
    MakeTransfersSlow();
    MakeFile(computer_->path() / "large", "older");
    Open("/sdcard/Unplug");
    test_->window().transfers().set_existing(DK_REPLACE);
    DropOnComputer(serial, {"/sdcard/Unplug/large"});
    AwaitBytes();
    phones_->Control({serial, "unplug"});
    AwaitState(explorer::Transfer::kFailed);
    const std::vector<dk::Error> errors = newest_->errors();
    QVERIFY(!errors.empty());
    QVERIFY2(errors.back().code() == DK_CONNECTION_LOST || errors.back().code() == DK_NO_DEVICE,
             errors.back().what());
    // Nothing incomplete, and the older file is unharmed.
    QCOMPARE(FilesBelow(computer_->path()), std::vector<std::string>{"large"});
    QCOMPARE(ContentOf(computer_->path() / "large"), std::string("older"));
    QTRY_COMPARE_WITH_TIMEOUT(test_->window().phones().RowOf(serial), -1, kLong);

    phones_->Control({serial, "plug"});
    test_->Choose(serial);
    paths::resize_file(storage_ / "Unplug/large", 1000);
    test_->Click("Try again");
    AwaitState(explorer::Transfer::kDone);
    QCOMPARE(paths::file_size(computer_->path() / "large"), 1000U);
    CompareHeartbeat(*test_);
  }

  // The errors of single files are shown one by one, and the others are transferred.
  void OneFileFailsAndTheOthersAreTransferred() {
    Choose(kModernPhone);
    MakeFile(storage_ / "Partly/a", "a");
    MakeFile(storage_ / "Partly/b", "b");
    paths::create_directories(computer_->path() / "Partly/b");  // a folder in the way
    DropOnComputer(kModernPhone, {"/sdcard/Partly"});
    AwaitState(explorer::Transfer::kFailed);
    QCOMPARE(newest_->errors().size(), 1U);
    QCOMPARE(FilesBelow(computer_->path()), std::vector<std::string>{"Partly/a"});
    auto* errors = test_->Find<QListWidget>();
    QTRY_COMPARE_WITH_TIMEOUT(errors->count(), 1, kLong);
    QVERIFY(errors->isVisible());
    test_->Click("Remove ended");
    QTRY_VERIFY_WITH_TIMEOUT(test_->Find<QListWidget>() == nullptr, kLong);
  }

  // The server stops in the middle: the window lives, and a cancel ends the transfer after the client's limit for removing
  // what is incomplete.
  void ATransferThatHangsIsCancelled() {
    Choose(kModernPhone);
    paths::create_directories(storage_ / "Hang");
    MakeLargeFile(computer_->path() / "large");
    MakeTransfersSlow();
    Open("/sdcard/Hang");
    DropOnPhone({computer_->path() / "large"});
    AwaitBytes();
    phones_->process().Signal(SIGSTOP);
    QTest::qWait(200);
    QElapsedTimer since;
    since.start();
    test_->Click("Cancel");
    const bool ended = QTest::qWaitFor([&] { return newest_->is_over(); }, kLong);
    phones_->process().Signal(SIGCONT);
    QVERIFY(ended);
    QCOMPARE(newest_->state(), explorer::Transfer::kCancelled);
    qInfo("cancelled after %d ms", static_cast<int>(since.elapsed()));
    CompareHeartbeat(*test_);
  }

  void ClosingAsksCancelsAndLeavesNoHalfFile_data() {
    QTest::addColumn<std::string>("serial");
    QTest::addColumn<bool>("to_phone");
    QTest::newRow("to a modern phone") << std::string(kModernPhone) << true;
    QTest::newRow("to a legacy phone") << std::string(kLegacyPhone) << true;
    QTest::newRow("from a phone") << std::string(kModernPhone) << false;
  }
  void ClosingAsksCancelsAndLeavesNoHalfFile() {
    QFETCH(const std::string, serial);
    QFETCH(const bool, to_phone);
    Choose(serial);
    paths::remove_all(storage_ / "Close");
    paths::create_directories(storage_ / "Close");
    MakeTransfersSlow();
    Open("/sdcard/Close");
    if (to_phone) {
      MakeLargeFile(computer_->path() / "large");
      DropOnPhone({computer_->path() / "large"});
    } else {
      MakeLargeFile(storage_ / "Close/large");
      DropOnComputer(serial, {"/sdcard/Close/large"});
    }
    AwaitBytes();
    explorer::MainWindow& window = test_->window();
    window.close();
    QVERIFY(window.isVisible());
    test_->Find<QMessageBox>()->close();  // not now
    QTest::qWait(10);
    QVERIFY(window.isVisible() && window.transfers().is_busy());
    window.close();
    test_->Click("Cancel and close");
    QTRY_VERIFY_WITH_TIMEOUT(!window.isVisible(), kLong);
    QCOMPARE(newest_->state(), explorer::Transfer::kCancelled);
    QVERIFY(paths::is_empty(to_phone ? storage_ / "Close" : computer_->path()));
    CompareHeartbeat(*test_);
  }
};

std::unique_ptr<QObject> MakeTransfersTest() {
  return std::make_unique<TransfersTest>();
}

}  // namespace darokleim::test

#include "transfers_test.moc"
