#ifndef DAROKLEIM_TESTS_EXPLORER_SUITES_H
#define DAROKLEIM_TESTS_EXPLORER_SUITES_H

#include <QObject>
#include <QTest>
#include <memory>
#include <vector>

namespace darokleim::test {

std::unique_ptr<QObject> MakeTextTest();
std::unique_ptr<QObject> MakeTasksTest();
std::unique_ptr<QObject> MakePhonesTest();
std::unique_ptr<QObject> MakeFilesTest();
std::unique_ptr<QObject> MakeTransfersTest();

struct Suite {
  const char* name;
  std::unique_ptr<QObject> (*make)();
};

inline std::vector<Suite> Suites() {
  return {{"text", MakeTextTest},
          {"tasks", MakeTasksTest},
          {"phones", MakePhonesTest},
          {"files", MakeFilesTest},
          {"transfers", MakeTransfersTest}};
}

}  // namespace darokleim::test

#endif  // DAROKLEIM_TESTS_EXPLORER_SUITES_H
