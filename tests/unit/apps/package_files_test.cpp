#include "src/apps/package_files.h"

#include <gtest/gtest.h>
#include <pthread.h>

#include <string>

#include "tests/support/sanitizers.h"

namespace darokleim::sdk {
namespace {

using namespace std::string_literals;

// The files, each in brackets; "unreadable".
std::string Files(const std::string& json) {
  const auto files = ReadPackageFiles(json);
  if (!files) return "unreadable";
  std::string list;
  for (const std::string& file : *files) list += "[" + file + "]";
  return list;
}

std::string Nested(int depth, const std::string& open, const std::string& close) {
  std::string json;
  for (int i = 0; i < depth; ++i) json += open;
  json += "0";
  for (int i = 0; i < depth; ++i) json += close;
  return json;
}

TEST(PackageFilesTest, AreTheElementsOfTheArraysInOrder) {
  EXPECT_EQ(Files(R"({"apks": ["/tmp/base.apk", "/tmp/split_de.apk"]})"),
            "[/tmp/base.apk][/tmp/split_de.apk]");
  EXPECT_EQ(Files(R"({"b": ["3", "1"], "a": ["9"], "B": ["0"], "": ["first"]})"), "[first][0][9][3][1]");
  EXPECT_EQ(Files(R"({"a10": ["x"], "a9": ["y"]})"), "[x][y]") << "by bytes, not by number";
}

TEST(PackageFilesTest, OtherMembersAreIgnored) {
  EXPECT_EQ(Files(R"({"s": "/a", "n": 1, "t": true, "z": null, "o": {"a": ["/b"]}, "p": ["/c"], "r": 1.5})"),
            "[/c]");
}

TEST(PackageFilesTest, ThereMayBeNone) {
  for (const char* json : {"{}", "{\"a\": []}", "{\"a\": 1}", "null", " null "})
    EXPECT_EQ(Files(json), "") << json;
}

TEST(PackageFilesTest, OtherElementsAreConvertedToText) {
  EXPECT_EQ(Files(R"({"a": [null, true, false, 0, -5, 18446744073709551615, 1.5, ""]})"),
            "[][true][false][0][-5][18446744073709551615][1.5][]");
}

TEST(PackageFilesTest, AnElementThatIsAnArrayOrAnObjectIsUnreadable) {
  EXPECT_EQ(Files(R"({"a": ["/a", ["/b"]]})"), "unreadable");
  EXPECT_EQ(Files(R"({"a": ["/a", {"b": "/b"}]})"), "unreadable");
  EXPECT_EQ(Files(R"({"a": [[]]})"), "unreadable");
  EXPECT_EQ(Files(R"({"a": [{}]})"), "unreadable");
}

TEST(PackageFilesTest, AnyOtherTopIsUnreadable) {
  for (const char* json : {"[]", "[\"/a\"]", "\"/a\"", "1", "-1", "1.5", "true", "false"}) {
    EXPECT_EQ(Files(json), "unreadable") << json;
  }
}

TEST(PackageFilesTest, WhatIsNotJsonIsUnreadable) {
  for (const char* json : {"",
                           " ",
                           "{",
                           "}",
                           "{\"a\"",
                           "{\"a\": [\"/a\"",
                           "{\"a\": [\"/a\"]",
                           "{a: []}",
                           "{\"a\": [/a]}",
                           "{\"a\": [\"/a]}",
                           "nul",
                           "/tmp/base.apk",
                           "\xff\xfe",
                           "{\"a\": [\"\\x\"]}",
                           "{\"a\": [\"\\ud800\"]}",
                           "{\"a\": [NaN]}",
                           "{'a': ['/a']}",
                           "// only a comment",
                           "/* unended",
                           "{\"a\" [\"/a\"]}"}) {
    EXPECT_EQ(Files(json), "unreadable") << json;
  }
}

TEST(PackageFilesTest, TheReaderIsLenientInItsUsualWays) {
  EXPECT_EQ(Files("// files\n{ /* all */ \"a\": [\"/a\", // first\n \"/b\"] } // end"), "[/a][/b]");
  EXPECT_EQ(Files("{\"a\": [\"/a\",]}"), "[/a]") << "comma at the end";
  EXPECT_EQ(Files("{\"a\": [\"/a\"]} what follows"), "[/a]");
  EXPECT_EQ(Files("\xef\xbb\xbf{\"a\": [\"/a\"]}"), "[/a]") << "byte order mark";
}

TEST(PackageFilesTest, OfEqualNamesTheLastCounts) {
  EXPECT_EQ(Files(R"({"a": ["/1", "/2"], "a": ["/3"]})"), "[/3]");
  EXPECT_EQ(Files(R"({"a": ["/1"], "a": 7})"), "");
}

TEST(PackageFilesTest, TextsAreBytes) {
  EXPECT_EQ(Files("{\"a\": [\"/\xff\xe6\xb7\xbb\"]}"), "[/\xff\xe6\xb7\xbb]");
  EXPECT_EQ(Files("{\"a\": [\"\\u6dfb\\n\\\"\\/\"]}"), "[\xe6\xb7\xbb\n\"/]");
  EXPECT_EQ(Files("{\"a\": [\"/a\\u0000b\"]}"), "[/a\0b]"s);
}

TEST(PackageFilesTest, ADeepDocumentIsUnreadableNotACrash) {
  EXPECT_EQ(Files("{\"a\": " + Nested(490, "{\"a\":", "}") + ", \"b\": [\"/b\"]}"), "[/b]");
  for (const int depth : {510, 2'000, 1'000'000}) {
    EXPECT_EQ(Files("{\"a\": " + Nested(depth, "[", "]") + "}"), "unreadable");
    EXPECT_EQ(Files("{\"a\": " + Nested(depth, "{\"a\":", "}") + "}"), "unreadable");
    EXPECT_EQ(Files(std::string(static_cast<std::size_t>(depth), '[')), "unreadable");
  }
}

// What macOS gives to every thread but the first. The frames of the sanitizers are larger.
#if defined(DAROKLEIM_SANITIZED)
constexpr std::size_t kThreadStack = 8 * 1024 * 1024;
#else
constexpr std::size_t kThreadStack = 512 * 1024;
#endif

TEST(PackageFilesTest, TheDeepestDocumentsFitTheStackOfAThread) {
  pthread_attr_t attributes;
  ASSERT_EQ(pthread_attr_init(&attributes), 0);
  ASSERT_EQ(pthread_attr_setstacksize(&attributes, kThreadStack), 0);
  std::string files;
  const auto read = [](void* result) -> void* {
    *static_cast<std::string*>(result) = Files(Nested(490, "{\"a\":", "}")) +
                                         Files(Nested(2'000, "{\"a\":", "}")) +
                                         Files("{\"a\":" + Nested(490, "[", "]") + "}");
    return nullptr;
  };
  pthread_t thread;
  ASSERT_EQ(pthread_create(&thread, &attributes, read, &files), 0);
  pthread_join(thread, nullptr);
  pthread_attr_destroy(&attributes);
  EXPECT_EQ(files, "unreadableunreadable") << "no array, too deep, an array in an array";
}

TEST(PackageFilesTest, TenMegabytes) {
  std::string json = "{\"a\": [";
  std::string expected;
  for (int i = 0; json.size() < 10'000'000; ++i) {
    const std::string path = "/tmp/" + std::to_string(i) + ".apk";
    json += (i > 0 ? ",\"" : "\"") + path + "\"";
    expected += "[" + path + "]";
  }
  EXPECT_EQ(Files(json + "]}"), expected);
  const std::string path(10'000'000, 'p');
  EXPECT_EQ(Files("{\"a\": [\"" + path + "\"]}"), "[" + path + "]");
}

}  // namespace
}  // namespace darokleim::sdk
