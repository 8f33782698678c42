// What the comparing programs of this folder share: ours against something else, measured in turn.
//
// A program prints a JSON array of objects, one for each line: name, against (what ours is compared with), ours, floor
// (the other side), ratio, goal (the highest ratio that is good enough) and unit ("s" or "B"). scripts/bench makes
// a table of them.
#ifndef DAROKLEIM_BENCH_REPORT_H
#define DAROKLEIM_BENCH_REPORT_H

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <string>
#include <vector>

namespace darokleim::bench {

struct Comparison {
  std::string name;
  std::string against;
  double goal;
  int repetitions;
};

struct Row {
  std::string name;
  std::string against;
  double goal = 0;
  double ours = 0;
  double floor = 0;
  double ratio = 0;
  const char* unit = "s";
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
// seconds that count, for what a run must do besides (giving memory back). The ratio is the median of the
// ratios of runs made side by side, which whatever else the machine does disturbs less than the ratio of the two
// median times.
template <typename Ours, typename Floor>
Row CompareSeconds(const Comparison& comparison, Ours ours, Floor floor) {
  ours();
  floor();
  std::vector<double> our_times, floor_times, ratios;
  for (int i = 0; i < comparison.repetitions; ++i) {
    const bool ours_first = i % 2 == 0;
    double our_time = ours_first ? ours() : 0;
    const double floor_time = floor();
    if (!ours_first) our_time = ours();
    our_times.push_back(our_time);
    floor_times.push_back(floor_time);
    ratios.push_back(our_time / floor_time);
  }
  return {comparison.name,   comparison.against,  comparison.goal,
          Median(our_times), Median(floor_times), Median(ratios)};
}

// The same for runs that count as a whole.
template <typename Ours, typename Floor>
Row Compare(const Comparison& comparison, Ours ours, Floor floor) {
  return CompareSeconds(
      comparison, [&] { return SecondsOf(ours); }, [&] { return SecondsOf(floor); });
}

inline void Print(const std::vector<Row>& rows) {
  const char* before = "[";
  for (const Row& row : rows) {
    std::printf(R"(%s
{"name": "%s", "against": "%s", "ours": %.9g, "floor": %.9g, "ratio": %.4f, "goal": %.4g, "unit": "%s"})",
                before, row.name.c_str(), row.against.c_str(), row.ours, row.floor, row.ratio, row.goal,
                row.unit);
    before = ",";
  }
  std::printf("\n]\n");
}

}  // namespace darokleim::bench

#endif  // DAROKLEIM_BENCH_REPORT_H
