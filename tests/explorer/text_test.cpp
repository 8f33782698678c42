#include "examples/explorer/text.h"

#include "tests/explorer/suites.h"

namespace darokleim::test {

class TextTest : public QObject {
  Q_OBJECT

 private slots:
  void ShowsEveryByte_data() {
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("shown");
    QTest::newRow("plain") << QByteArray("my photo (1).jpg") << QString("my photo (1).jpg");
    QTest::newRow("UTF-8") << QByteArray("caf\xC3\xA9 \xF0\x9F\x93\xB7")
                           << QString::fromUtf8("caf\xC3\xA9 \xF0\x9F\x93\xB7");
    QTest::newRow("Latin-1") << QByteArray("caf\xE9") << QString("caf\\xE9");
    QTest::newRow("Latin-1 within") << QByteArray("\xE9t\xE9") << QString("\\xE9t\\xE9");
    QTest::newRow("a character that is cut") << QByteArray("a\xF0\x9F") << QString("a\\xF0\\x9F");
    QTest::newRow("a longer form than needed") << QByteArray("\xC0\xAF") << QString("\\xC0\\xAF");
    QTest::newRow("a line break") << QByteArray("two\nlines") << QString("two\\nlines");
    QTest::newRow("an escape sequence") << QByteArray("\x1B[31m") << QString("\\u{001b}[31m");
    QTest::newRow("right to left") << QByteArray("\xE2\x80\xAEgpj.exe") << QString("\\u{202e}gpj.exe");
    QTest::newRow("nothing") << QByteArray("") << QString("");
  }
  void ShowsEveryByte() {
    QFETCH(const QByteArray, bytes);
    QTEST(explorer::Shown(bytes.toStdString()), "shown");
  }

  void TakesPathsApart() {
    QCOMPARE(explorer::Joined("/", "a"), std::string("/a"));
    QCOMPARE(explorer::Joined("/a", "b\nc"), std::string("/a/b\nc"));
    QCOMPARE(explorer::NameOf("/a/b c"), std::string("b c"));
    QCOMPARE(explorer::FolderOf("/a/b"), std::string("/a"));
    QCOMPARE(explorer::FolderOf("/a"), std::string("/"));
    QCOMPARE(explorer::FolderOf("/"), std::string("/"));
  }

  void ShowsDurations() {
    QCOMPARE(explorer::ShownDuration(std::chrono::seconds(59)), QString("59 s"));
    QCOMPARE(explorer::ShownDuration(std::chrono::seconds(61)), QString("1 min 1 s"));
    QCOMPARE(explorer::ShownDuration(std::chrono::seconds(7300)), QString("2 h 1 min"));
  }
};

std::unique_ptr<QObject> MakeTextTest() {
  return std::make_unique<TextTest>();
}

}  // namespace darokleim::test

#include "text_test.moc"
