#include "src/filesystem/json_text.h"

#include <gtest/gtest.h>

namespace darokleim::sdk {
namespace {

TEST(JsonTextTest, NothingPutInIsNull) {
  EXPECT_EQ(JsonToString(Json::Value()), "null");
  EXPECT_EQ(JsonToString(Json::Value(Json::arrayValue)), "[]");
}

TEST(JsonTextTest, AShortArrayIsOnOneLine) {
  Json::Value list;
  list.append("a");
  list.append("b");
  EXPECT_EQ(JsonToString(list), "[ \"a\", \"b\" ]");
}

TEST(JsonTextTest, IndentsByThreeSpaces) {
  const std::string name(40, 'n');
  Json::Value root;
  root["list"].append(name);
  root["list"].append(name);
  root["empty"] = Json::Value();
  EXPECT_EQ(JsonToString(root), "{\n   \"empty\" : null,\n   \"list\" : \n   [\n      \"" + name +
                                    "\",\n      \"" + name + "\"\n   ]\n}");
}

TEST(JsonTextTest, WritesNoComments) {
  Json::Value value = 1;
  value.setComment(std::string("// said"), Json::commentBefore);
  EXPECT_EQ(JsonToString(value), "1");
}

TEST(JsonTextTest, IsPureAscii) {
  Json::Value list;
  list.append("\xe6\xb7\xbb\"\\\n");
  list.append("\xff");
  EXPECT_EQ(JsonToString(list), "[ \"\\u6dfb\\\"\\\\\\n\", \"\\ufffd\" ]");
}

}  // namespace
}  // namespace darokleim::sdk
