// Every function that takes a path, on names that a shell would not leave alone. docs/paths.md holds the results,
// and a test fails that finds others. To write them again: DAROKLEIM_WRITE_PATHS=1 in its environment.
#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <thread>

#include "tests/phone/each_phone.h"
#include "tests/phone/path_trials.h"
#include "tests/phone/paths_document.h"
#include "tests/support/adb_version.h"

namespace darokleim::test {
namespace {

struct AwkwardName {
  std::string shown;  // in the table
  std::string name;
};

// No hexadecimal digits: AdbGetFileCreateTimeFromLs takes the first line that holds the name, also in a number.
const std::vector<AwkwardName>& AwkwardNames() {
  static const std::vector<AwkwardName> names = {
      {"`xy`", "xy"},
      {"`x y`", "x y"},
      {"`x  y`", "x  y"},
      {"space first", " xy"},
      {"space last", "xy "},
      {"`x'y`", "x'y"},
      {"`x\"y`", "x\"y"},
      {"`x\" y`", "x\" y"},
      {"`x$y`", "x$y"},
      // One ampersand would send a command to the background, to end or not before its shell does.
      {"`x&&y`", "x&&y"},
      {"`x;y`", "x;y"},
      {"`x(y)`", "x(y)"},
      {"`x*y`", "x*y"},
      {"`x\\y`", "x\\y"},
      {"`x\\\\y`", "x\\\\y"},
      {"`xy\\`", "xy\\"},
      {"`-xy`", "-xy"},
      {"相机", "\xE7\x9B\xB8\xE6\x9C\xBA"},
      {"😀", "\xF0\x9F\x98\x80"},
      {"line feed", "x\ny"},
  };
  return names;
}

// A cell that adb 34 fills otherwise than adb 29, for which the page is written.
struct Difference {
  bool assist;
  std::string title;
  std::string shown;  // the name
  std::string with_adb_29;
  std::string with_adb_34;
};

const std::vector<Difference>& Differences() {
  static const std::vector<Difference> differences = {
      // The quote ends the path, so that there are two: 29 refuses that, 34 looks for the first.
      {false, "AdbRestoreApp", "`x\" y`", "1001", "25"},
  };
  return differences;
}

class Paths : public EachPhone {
 protected:
  // Works, says that it does and does not, or a code; with a warning where it worked on other files.
  static std::string Cell(const TrialResult& result, const TrialPlace& place) {
    const std::string answer = result.code != 0 ? std::to_string(result.code) : result.done ? "✓" : "✗";
    return place.OthersAreUntouched() ? answer : answer + " ⚠";
  }

  std::string CellOf(const PathTrial& trial, const std::string& name, size_t number) const {
    const TrialPlace place(serial(), name, phone_files(), host_folder() / "trials", number);
    return Cell(trial.run(place), place);
  }

  std::vector<std::string> CellsOf(const PathTrial& trial) const {
    const std::vector<AwkwardName>& names = AwkwardNames();
    std::vector<std::string> cells(names.size());
    std::atomic<size_t> next{0};
    const auto work = [&] {
      for (size_t i; (i = next++) < names.size();) cells[i] = CellOf(trial, names[i].name, i);
    };
    std::vector<std::thread> others;
    // A command mostly waits: for adb, for the phone.
    constexpr int kAtOnce = 4;
    for (int i = 1; i < kAtOnce && !trial.alone; ++i) others.emplace_back(work);
    work();
    for (std::thread& other : others) other.join();
    return cells;
  }

  // The assist makes everything work on a plain name. Where something does not, the phone is what is broken.
  static bool PlainNamesWork(const std::vector<std::string>& cells) {
    return !GetParam().assist() || cells.front() == "✓";
  }

  // Expects what adb 34 does otherwise, and replaces it by what adb 29 does.
  static void TakeBackDifferences(const std::string& title, std::vector<std::string>* cells) {
    if (!AdbIsOfRelease34()) return;
    for (const Difference& difference : Differences()) {
      if (difference.title != title || difference.assist != GetParam().assist()) continue;
      for (size_t i = 0; i < cells->size(); ++i) {
        if (AwkwardNames()[i].shown != difference.shown) continue;
        EXPECT_EQ((*cells)[i], difference.with_adb_34) << title << " " << difference.shown;
        (*cells)[i] = difference.with_adb_29;
      }
    }
  }

  // Fails on a phone that does not do what any phone does.
  void MakeTable(std::string* table) const {
    std::vector<std::string> columns;
    for (const AwkwardName& name : AwkwardNames()) columns.push_back(name.shown);
    std::vector<std::pair<std::string, std::vector<std::string>>> rows;
    for (const PathTrial& trial : PathTrials()) {
      rows.emplace_back(trial.title, CellsOf(trial));
      ASSERT_TRUE(PlainNamesWork(rows.back().second)) << trial.title << " " << rows.back().second.front();
      TakeBackDifferences(trial.title, &rows.back().second);
    }
    *table = RenderTable(columns, rows);
  }

  static std::string Key() { return GetParam().android + ", assist " + (GetParam().assist() ? "on" : "off"); }
};

TEST_P(Paths, AreTreatedAsDocumented) {
  std::string table;
  ASSERT_NO_FATAL_FAILURE(MakeTable(&table));
  if (std::getenv("DAROKLEIM_WRITE_PATHS") != nullptr) DocumentTable(Key(), table);
  EXPECT_EQ(table, DocumentedTable(Key()));
}

INSTANTIATE_FOR_EACH_PHONE(Paths);

}  // namespace
}  // namespace darokleim::test
