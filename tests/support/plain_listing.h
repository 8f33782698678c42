// Reference implementations of the listing parsers, with the standard library's regular expressions, strtoul,
// localtime and the string helpers. They are slow; the real parsers must give the same records.
#ifndef DAROKLEIM_TESTS_SUPPORT_PLAIN_LISTING_H
#define DAROKLEIM_TESTS_SUPPORT_PLAIN_LISTING_H

#include <cstdint>
#include <list>
#include <ostream>
#include <regex>
#include <string>
#include <vector>

#include "src/filesystem/file_info.h"

bool operator==(const FileInfo& a, const FileInfo& b);
std::ostream& operator<<(std::ostream& out, const FileInfo& info);

namespace darokleim::test {

// Needs stack in proportion to the length of a line.
bool PlainMatchLsLine(const std::string& line, std::smatch& match);

// Lines that the parser prints are appended to trace.
bool PlainDecodeLSOut(const std::string& text, std::list<FileInfo>* files, std::string* trace);

std::string PlainLocalTime(std::uint64_t timestamp);

std::vector<FileInfo> PlainDecodeADBLSOut(const std::string& dir, const std::string& text);

bool PlainDecodeFindOut(std::string text, std::list<FileInfo>* files);

}  // namespace darokleim::test

#endif  // DAROKLEIM_TESTS_SUPPORT_PLAIN_LISTING_H
