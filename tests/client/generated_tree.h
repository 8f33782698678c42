// Folders, files and links that nobody would name so: the same ones for the same number.
#ifndef DAROKLEIM_TESTS_CLIENT_GENERATED_TREE_H
#define DAROKLEIM_TESTS_CLIENT_GENERATED_TREE_H

#include <cstdint>
#include <string>
#include <vector>

namespace darokleim::test {

// Numbers that are the same on every system.
class Dice {
 public:
  explicit Dice(std::uint64_t seed) : state_(seed) {}
  // Below `count`.
  std::uint64_t Roll(std::uint64_t count) { return Next() % count; }
  bool OneIn(std::uint64_t count) { return Roll(count) == 0; }
  template <typename Value>
  const Value& Pick(const std::vector<Value>& values) {
    return values[Roll(values.size())];
  }

 private:
  std::uint64_t Next();

  std::uint64_t state_;
};

// Any bytes but the slash: spaces, quotes, line breaks, no UTF-8, a dash in front, up to 255 of them.
std::string AwkwardName(Dice* dice);

enum class Readable { kAll, kNearlyAll };

// Makes a tree of a few folders at `path`, which is not there. It has empty folders, links to files inside, to nowhere, to
// folders without folders in them and to what is outside, sizes from nothing to a few blocks, and modes and times of every kind
// that 32 bits can say. With kNearlyAll some files and folders cannot be read.
void MakeTree(Dice* dice, const std::string& path, const std::string& outside, Readable readable);

// What is below a folder, links not followed: paths with a slash in front, a folder before what is in it, sorted.
std::vector<std::string> PathsBelow(const std::string& folder);

// Also what cannot be read.
void RemoveTree(const std::string& path);

}  // namespace darokleim::test

#endif  // DAROKLEIM_TESTS_CLIENT_GENERATED_TREE_H
