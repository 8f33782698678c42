#include "src/filesystem/ls_listing.h"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <stdexcept>

#include "src/core/string_converter.h"
#include "src/core/string_helper.h"
#include "tests/support/plain_listing.h"
#include "tests/support/sanitizers.h"
#include "tests/unit/support/device_output.h"

namespace darokleim::test {
namespace {

using namespace std::string_literals;
using Files = std::list<FileInfo>;

bool DecodeLs(const std::string& text, Files* files) {
  return DecodeLSOut(text.data(), static_cast<int>(text.size()), files);
}

Files Decoded(const std::string& text) {
  Files files;
  EXPECT_TRUE(DecodeLs(text, &files));
  return files;
}

// A record as this parser makes it.
FileInfo File(std::uint64_t size, const std::string& time, const std::string& path) {
  return {size, 0, path, time, 0};
}

// The text as a phone before Android 7 prints it.
std::string AsOldPhone(std::string text) {
  if (text.find("\r\n") == std::string::npos) replace(text, "\n", "\r\n");
  return text;
}

const std::string kLine = "-rw-rw---- 1 root sdcard_rw 1234 2020-01-02 03:04 ";

TEST(LsListingTest, ARegularFile) {
  EXPECT_EQ(Decoded("total 4\r\n" + kLine + "my\\ file.txt\r\n"),
            (Files{File(1234, "2020-01-02 03:04", "/my file.txt")}));
}

TEST(LsListingTest, HeadersNameTheDirectory) {
  EXPECT_EQ(Decoded(kLine + "a\r\n/sdcard:\r\ntotal 8\r\n" + kLine + "b\r\n\r\n/sdcard/DCIM:\r\n" + kLine +
                    "c\r\n/:\r\n" + kLine + "d"),
            (Files{File(1234, "2020-01-02 03:04", "/a"), File(1234, "2020-01-02 03:04", "/sdcard/b"),
                   File(1234, "2020-01-02 03:04", "/sdcard/DCIM/c"), File(1234, "2020-01-02 03:04", "//d")}));
}

TEST(LsListingTest, AHeaderLosesItsLastCharacterWhateverItIs) {
  EXPECT_EQ(Decoded("/sdcard\r\n" + kLine + "a"), (Files{File(1234, "2020-01-02 03:04", "/sdcar/a")}));
  EXPECT_EQ(Decoded("/\r\n" + kLine + "a"), (Files{File(1234, "2020-01-02 03:04", "/a")}));
  EXPECT_EQ(Decoded("/a\\ b:\r\n" + kLine + "c\\ d"), (Files{File(1234, "2020-01-02 03:04", "/a\\ b/c d")}))
      << "a directory stays escaped";
}

TEST(LsListingTest, OnlyRegularFilesGiveARecord) {
  EXPECT_EQ(Decoded("total 4\r\n"
                    "drwxrwx--x 2 root root 4096 2020-01-02 03:04 a\r\n"
                    "lrwxrwxrwx 1 root root 4 2020-01-02 03:04 b\r\n"
                    "brw------- 1 root root 4 2020-01-02 03:04 c\r\n"
                    "srw------- 1 root root 4 2020-01-02 03:04 d\r\n"
                    " " +
                    kLine + "e\r\n"),
            Files());
}

TEST(LsListingTest, LinesEndInCrLfOnly) {
  Files files;
  EXPECT_FALSE(DecodeLs("total 4\n" + kLine + "a\n" + kLine + "b\n", &files));
  EXPECT_EQ(files, Files());
  EXPECT_EQ(Decoded("total 4\r\n" + kLine + "a\n\r\n"), (Files{File(1234, "2020-01-02 03:04", "/a")}));
  EXPECT_EQ(Decoded("total 4\r\r\n" + kLine + "a\r\r\n"), (Files{File(1234, "2020-01-02 03:04", "/a")}));
}

TEST(LsListingTest, FewerThanTwoLinesAreNotAListing) {
  ::testing::internal::CaptureStdout();
  for (const std::string& text : {""s, "\r\n"s, "\r\n\r\n"s, "total 4"s, "total 4\r\n"s,
                                  "\r\n" + kLine + "a\r\n", kLine + "a", "- not read"s, "\n\n\n"s}) {
    Files files;
    EXPECT_FALSE(DecodeLs(text, &files)) << text;
    EXPECT_EQ(files, Files()) << text;
  }
  EXPECT_EQ(::testing::internal::GetCapturedStdout(), "");
}

TEST(LsListingTest, TwoLinesWithoutARecordAreAListing) {
  EXPECT_EQ(Decoded("total 0\r\nx"), Files());
}

TEST(LsListingTest, UnreadableFilesGoToStandardOutput) {
  Files files;
  ::testing::internal::CaptureStdout();
  EXPECT_TRUE(DecodeLs("- one\r\n" + kLine + "a\r\ntotal\r\n-two\0\xff\n\r\r\n-"s, &files));
  EXPECT_EQ(::testing::internal::GetCapturedStdout(), "- one\n-two\0\xff\n\r\n-\n"s);
  EXPECT_EQ(files, (Files{File(1234, "2020-01-02 03:04", "/a")}));
}

TEST(LsListingTest, EscapedSpaces) {
  const auto name = [](const std::string& listed) {
    return Decoded("total\r\n" + kLine + listed).front().file;
  };
  EXPECT_EQ(name("a\\ b\\ \\ c"), "/a b  c");
  EXPECT_EQ(name("\\ a\\ "), "/ a ");
  EXPECT_EQ(name("a\\\\ b"), "/a\\ b");
  EXPECT_EQ(name("a\\b\\"), "/a\\b\\");
  EXPECT_EQ(name("a\\  b"), "/a  b");
  EXPECT_EQ(name("a "), "/a ");
}

TEST(LsListingTest, Sizes) {
  const auto size = [](const std::string& digits) {
    return Decoded("total\r\n-rw-rw---- 1 r r " + digits + " 2020-01-02 03:04 a").front().size;
  };
  EXPECT_EQ(size("0"), 0U);
  EXPECT_EQ(size("0000000000000000000000000000000000000012"), 12U);
  EXPECT_EQ(size("4294967296"), 4294967296U);
  EXPECT_EQ(size("9223372036854775807"), 9223372036854775807U);
  EXPECT_EQ(size("9223372036854775808"), 9223372036854775807U) << "too large for atoll";
  EXPECT_EQ(size("1234567890123456789012345678901234567890"), 9223372036854775807U);
}

TEST(LsListingTest, ANameOfAMillionCharacters) {
  const std::string name(1'000'000, 'n');
  EXPECT_EQ(Decoded("total\r\n" + kLine + name + "\r\n").front().file, "/" + name);
  std::string escaped;
  for (int i = 0; i < 500'000; ++i) escaped += "\\ ";
  EXPECT_EQ(Decoded("total\r\n" + kLine + escaped).front().file, "/" + std::string(500'000, ' '));
}

TEST(LsListingTest, ReadsNoFurtherThanItsLength) {
  const std::string text = "total\r\n" + kLine + "abc";
  Files files;
  EXPECT_TRUE(DecodeLSOut(text.data(), static_cast<int>(text.size()) - 2, &files));
  EXPECT_EQ(files, (Files{File(1234, "2020-01-02 03:04", "/a")}));
  EXPECT_FALSE(DecodeLSOut(text.data(), 0, &files));
}

TEST(LsListingTest, AppendsToWhatIsThere) {
  Files files{File(1, "t", "there")};
  EXPECT_TRUE(DecodeLs("total\r\n" + kLine + "a", &files));
  EXPECT_EQ(files, (Files{File(1, "t", "there"), File(1234, "2020-01-02 03:04", "/a")}));
}

TEST(LsListingTest, NegativeLengthIsALengthError) {
  Files files;
  EXPECT_THROW(DecodeLSOut("", -1, &files), std::length_error);
}

// What each sample of ls -l holds for this parser; the folder's other samples show no regular file.
std::map<std::string, Files> ListedFiles() {
  const std::string time = "1969-12-31 16:00";
  return {
      {"ls-l/android2.0-root-head.txt",
       {File(12383, "1970-01-01 08:00", "/init.rc"), File(1677, "1970-01-01 08:00", "/init.goldfish.rc"),
        File(103164, "1970-01-01 08:00", "/init"), File(118, "1970-01-01 08:00", "/default.prop")}},
      {"ls-l/as-emulator-7.1-root.txt",
       {File(928, time, "/default.prop"),       File(76613, time, "/file_contexts.bin"),
        File(943, time, "/fstab.goldfish"),     File(968, time, "/fstab.ranchu"),
        File(1486420, time, "/init"),           File(887, time, "/init.environ.rc"),
        File(2924, time, "/init.goldfish.rc"),  File(2368, time, "/init.ranchu.rc"),
        File(25583, time, "/init.rc"),          File(9283, time, "/init.usb.configfs.rc"),
        File(5715, time, "/init.usb.rc"),       File(411, time, "/init.zygote32.rc"),
        File(4757, time, "/property_contexts"), File(758, time, "/seapp_contexts"),
        File(79, time, "/selinux_version"),     File(177921, time, "/sepolicy"),
        File(11167, time, "/service_contexts"), File(323, time, "/ueventd.goldfish.rc"),
        File(323, time, "/ueventd.ranchu.rc"),  File(4853, time, "/ueventd.rc")}},
      {"ls-l/as-nexus7-6.0.1-root.txt",
       {File(564, time, "/default.prop"), File(21429, time, "/file_contexts"), File(3447, time, "/fstab.flo"),
        File(852, time, "/init.environ.rc"), File(79, time, "/init.flo.diag.rc"),
        File(15962, time, "/init.flo.rc"), File(8086, time, "/init.flo.usb.rc"),
        File(26830, time, "/init.rc"), File(1921, time, "/init.trace.rc"),
        File(9283, time, "/init.usb.configfs.rc"), File(5339, time, "/init.usb.rc"),
        File(342, time, "/init.zygote32.rc"), File(3405, time, "/property_contexts"),
        File(596, time, "/seapp_contexts"), File(51, time, "/selinux_version"),
        File(149405, time, "/sepolicy"), File(9769, time, "/service_contexts"),
        File(2195, time, "/ueventd.flo.rc"), File(4587, time, "/ueventd.rc")}},
      {"ls-l/as-nexus7-6.0.1-run-as-app-dir.txt",
       {File(468458, "2017-06-12 11:21", "/base.apk"),
        File(1351085, "2017-06-12 11:21", "/split_lib_dependencies_apk.apk"),
        File(3332, "2017-06-12 11:21", "/split_lib_slice_0_apk.apk"),
        File(3088, "2017-06-12 11:21", "/split_lib_slice_1_apk.apk"),
        File(26485, "2017-06-12 11:21", "/split_lib_slice_2_apk.apk"),
        File(3262, "2017-06-12 11:21", "/split_lib_slice_3_apk.apk"),
        File(3088, "2017-06-12 11:21", "/split_lib_slice_4_apk.apk"),
        File(3091, "2017-06-12 11:21", "/split_lib_slice_5_apk.apk"),
        File(3090, "2017-06-12 11:21", "/split_lib_slice_6_apk.apk"),
        File(3254, "2017-06-12 11:21", "/split_lib_slice_7_apk.apk"),
        File(44095, "2017-06-12 11:21", "/split_lib_slice_8_apk.apk"),
        File(6289, "2017-06-12 11:21", "/split_lib_slice_9_apk.apk")}},
      {"ls-l/as-nexus7-6.0.1-system.txt",
       {File(3870, "2016-08-26 12:02", "/build.prop"),
        File(103290, "2008-08-01 05:00", "/recovery-from-boot.p")}},
      {"ls-l/beryllium-documents-la.txt", {File(0, "2025-04-09 17:07", "/configeditorhacked.txt")}},
      {"ls-l/rk3399-media_rw-usb-stick.txt",
       {File(17127363, "2013-05-03 16:27", "/8ch_voices_id_21_ddp.h264"),
        File(34050184, "2013-05-03 16:19", "/8ch_voices_id_21_ddp_DVB_mpeg2_25fps.trp")}},
      {"ls-l/tradefed-system-7.txt",
       {File(5020, "2009-01-01 00:00", "/build.prop"),
        File(137093, "2009-01-01 00:00", "/recovery-from-boot.p")}},
  };
}

TEST(LsListingTest, WhatDevicesPrinted) {
  const auto listed = ListedFiles();
  int found = 0;
  for (const char* folder : {"ls-l", "ls-storage"}) {
    for (const std::string& sample : DeviceOutputsIn(folder)) {
      const auto expected = listed.find(sample);
      found += expected != listed.end();
      Files files;
      ::testing::internal::CaptureStdout();
      DecodeLs(AsOldPhone(DeviceOutput(sample)), &files);
      ::testing::internal::GetCapturedStdout();
      EXPECT_EQ(files, expected != listed.end() ? expected->second : Files()) << sample;
    }
  }
  EXPECT_EQ(found, static_cast<int>(listed.size()));
}

// Phones since Android 7 end their lines in LF.
TEST(LsListingTest, WhatDevicesPrintedInLfIsNotAListing) {
  for (const std::string& sample : DeviceOutputsIn("ls-l")) {
    const std::string text = DeviceOutput(sample);
    if (text.find('\r') != std::string::npos) continue;
    Files files;
    EXPECT_FALSE(DecodeLs(text, &files)) << sample;
    EXPECT_EQ(files, Files()) << sample;
  }
}

TEST(LsListingTest, SingleLinesOfDevicesAreNotAListing) {
  Files files;
  EXPECT_FALSE(DecodeLs(AsOldPhone(DeviceOutput("ls-l/cjk-dir-listing.txt")), &files));
  EXPECT_EQ(files, Files());
  EXPECT_EQ(
      Decoded("/mnt/shell/emulated/0/bestpay/html/\xe6\xb7\xbb\xe7\x9b\x8a\xe5\xae\x9d/css:\r\n" +
              AsOldPhone(DeviceOutput("ls-l/cjk-dir-listing.txt"))),
      (Files{
          File(935, "2014-06-17 17:34",
               "/mnt/shell/emulated/0/bestpay/html/\xe6\xb7\xbb\xe7\x9b\x8a\xe5\xae\x9d/css/question.css")}));
}

TEST(LsListingTest, UnreadableFilesOfDevices) {
  const auto trace = [](const std::string& sample) {
    Files files;
    ::testing::internal::CaptureStdout();
    EXPECT_TRUE(DecodeLs(AsOldPhone(DeviceOutput(sample)), &files));
    EXPECT_EQ(files, Files());
    return ::testing::internal::GetCapturedStdout();
  };
  EXPECT_EQ(trace("ls-l/old-echoed-command-su.txt"),
            "-rwsr-sr-x root     root        79500 2008-08-01 20:00 su\n");
  EXPECT_EQ(trace("ls-l/full-time-p.txt"),
            "-rw-rw---- 1 root sdcard_rw   27 2019-11-06 08:00:00.000000000 -0500 dir-1-listing.txt\n"
            "-rw-rw---- 1 root sdcard_rw 5028 2020-12-06 09:00:00.000000000 -0500 info-1.txt\n");
}

TEST(LsListingTest, SameAsThePlainForm) {
  const std::string pieces[] = {"\r\n",
                                "\r\n",
                                "\r\n",
                                "\r",
                                "\n",
                                "/",
                                "/sdcard:",
                                "total",
                                kLine,
                                kLine + "a",
                                "- x",
                                "\\ ",
                                "\\",
                                " ",
                                "\0"s,
                                "\xe6",
                                "\xb7\xbb",
                                "\xff",
                                "drwxrwxrwx ",
                                "a.txt",
                                kLine + "b\r\n",
                                kLine + "c\\ d\r\n",
                                "x\r\n" + kLine};
  std::mt19937 random(1);
  int records = 0, traces = 0;
  ::testing::internal::CaptureStdout();
  std::string all_traces;
  constexpr int kListings = InputsToCompare(300'000);
  for (int i = 0; i < kListings; ++i) {
    std::string text;
    for (auto left = random() % 16; left > 0; --left) text += pieces[random() % std::size(pieces)];
    Files files, plain;
    std::string trace;
    ASSERT_EQ(DecodeLs(text, &files), PlainDecodeLSOut(text, &plain, &trace))
        << ::testing::PrintToString(text);
    ASSERT_EQ(files, plain) << ::testing::PrintToString(text);
    records += static_cast<int>(files.size());
    traces += !trace.empty();
    all_traces += trace;
  }
  EXPECT_TRUE(::testing::internal::GetCapturedStdout() == all_traces);
  EXPECT_GT(records, kListings / 3);
  EXPECT_GT(traces, kListings / 15);
}

std::string JoinedInWideCharacters(const std::string& directory, const std::string& name) {
  return StringConverter::WideToUTF8(StringConverter::UTF8ToWide(directory) + L"/" +
                                     StringConverter::UTF8ToWide(name));
}

// The shortest form of a character, of any length that there is.
std::string CharacterOf(std::mt19937& random) {
  const std::uint32_t bits = random() % 32;
  const auto value = static_cast<std::uint32_t>(random()) & ((std::uint32_t{1} << bits) - 1);
  const std::string character = StringConverter::WideToUTF8(std::wstring(1, static_cast<wchar_t>(value)));
  return character.find_first_of("\r\n") == std::string::npos ? character : "x";
}

// Joined in wide characters or as bytes, a path of UTF-8 is the same.
TEST(LsListingTest, PathsOfUtf8AsInWideCharacters) {
  std::mt19937 random(1);
  const auto text_of = [&](std::size_t most) {
    std::string text;
    for (auto left = random() % most; left > 0; --left) text += CharacterOf(random);
    return text;
  };
  for (int i = 0; i < 50'000; ++i) {
    const std::string directory = "/" + text_of(8);
    const std::string name = "n" + text_of(12);
    std::string unescaped = name;
    replace(unescaped, "\\ ", " ");
    ASSERT_EQ(Decoded(directory + ":\r\n" + kLine + name).front().file,
              JoinedInWideCharacters(directory, unescaped))
        << ::testing::PrintToString(name);
  }
}

TEST(LsListingTest, OtherBytesComeOutAsTheyWentIn) {
  const std::string alphabet = "a\\ \x80\xbf\xc0\xc2\xdf\xe0\xe6\xb7\xbb\xf0\x9f\x98\xfc\xfd\xfe\xff"s + '\0';
  std::mt19937 random(1);
  for (int i = 0; i < 50'000; ++i) {
    std::string name = "n";
    for (auto left = random() % 12; left > 0; --left) name += alphabet[random() % alphabet.size()];
    std::string unescaped = name;
    replace(unescaped, "\\ ", " ");
    ASSERT_EQ(Decoded("/\xc0\x80\xff:\r\n" + kLine + name).front().file, "/\xc0\x80\xff/" + unescaped)
        << ::testing::PrintToString(name);
  }
  EXPECT_EQ(Decoded("/d:\r\n" + kLine + "\xc1\xa1\xe0\x81\xa1").front().file, "/d/\xc1\xa1\xe0\x81\xa1")
      << "longer forms than need be";
}

}  // namespace
}  // namespace darokleim::test
