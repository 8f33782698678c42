// What every benchmark program of this folder shares: our time against a floor measured in the same run.
//
// A program prints a table, or with --json an array of objects {name, ours, floor, ratio, goal}. Times are
// seconds (memory: bytes); the goal is the highest ratio that is good enough.
#ifndef DAROKLEIM_BENCH_REPORT_H
#define DAROKLEIM_BENCH_REPORT_H

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

namespace darokleim::bench {

struct Row {
  std::string name;
  double ours = 0;
  double floor = 0;
  double goal = 0;
  // The middle one of the ratios of runs made side by side, which whatever else the machine does disturbs less
  // than the ratio of the two middle times.
  double ratio = 0;
};

template <typename Function>
double SecondsOf(Function&& function) {
  using Clock = std::chrono::steady_clock;
  const Clock::time_point start = Clock::now();
  function();
  return std::chrono::duration<double>(Clock::now() - start).count();
}

inline double Median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

// Runs the two in turn, each of them first every other time, after one unmeasured run of each. Both return the
// seconds that count, for what a run must do besides (giving memory back).
template <typename Ours, typename Floor>
Row CompareSeconds(const std::string& name, double goal, int repetitions, Ours ours, Floor floor) {
  ours();
  floor();
  std::vector<double> our_times, floor_times, ratios;
  for (int i = 0; i < repetitions; ++i) {
    const bool ours_first = i % 2 == 0;
    double our_time = ours_first ? ours() : 0;
    const double floor_time = floor();
    if (!ours_first) our_time = ours();
    our_times.push_back(our_time);
    floor_times.push_back(floor_time);
    ratios.push_back(our_time / floor_time);
  }
  return {name, Median(our_times), Median(floor_times), goal, Median(ratios)};
}

// The same for runs that count as a whole.
template <typename Ours, typename Floor>
Row Compare(const std::string& name, double goal, int repetitions, Ours ours, Floor floor) {
  return CompareSeconds(
      name, goal, repetitions, [&] { return SecondsOf(ours); }, [&] { return SecondsOf(floor); });
}

inline void PrintJson(const std::vector<Row>& rows) {
  std::printf("[");
  for (size_t i = 0; i < rows.size(); ++i) {
    const Row& row = rows[i];
    std::printf("%s\n  {\"name\": \"%s\", \"ours\": %.9g, \"floor\": %.9g, \"ratio\": %.4f, \"goal\": %.4g}",
                i == 0 ? "" : ",", row.name.c_str(), row.ours, row.floor, row.ratio, row.goal);
  }
  std::printf("\n]\n");
}

inline void PrintTable(const std::vector<Row>& rows) {
  std::printf("%-56s %14s %14s %8s %6s\n", "", "ours", "floor", "ratio", "goal");
  for (const Row& row : rows) {
    std::printf("%-56s %14.6g %14.6g %8.3f %6.2f  %s\n", row.name.c_str(), row.ours, row.floor, row.ratio,
                row.goal, row.ratio <= row.goal ? "" : "missed");
  }
}

inline void Print(int argc, char** argv, const std::vector<Row>& rows) {
  const bool json =
      std::any_of(argv + 1, argv + argc, [](const char* word) { return !strcmp(word, "--json"); });
  json ? PrintJson(rows) : PrintTable(rows);
}

}  // namespace darokleim::bench

#endif  // DAROKLEIM_BENCH_REPORT_H
