// explorer_test SUITE [argument of Qt Test]…
#include <QApplication>
#include <cstdio>
#include <cstring>
#include <iterator>

#include "tests/explorer/suites.h"

using darokleim::test::Suite;

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  for (const Suite& suite : darokleim::test::Suites()) {
    if (argc < 2 || std::strcmp(argv[1], suite.name) != 0) continue;
    argv[1] = argv[0];
    return QTest::qExec(suite.make().get(), argc - 1, argv + 1);
  }
  std::fprintf(stderr, "explorer_test text|tasks|phones|files|transfers [argument of Qt Test]…\n");
  return 2;
}
