// DecodeLSOut gives what its plain form gives.
#include <cstdio>

#include "src/filesystem/ls_listing.h"
#include "tests/fuzz/fuzz.h"
#include "tests/fuzz/spliced_listing.h"
#include "tests/support/plain_listing.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace darokleim::sdk;
  // Lines that cannot be read are printed.
  static std::FILE* const silent = std::freopen("/dev/null", "w", stdout);
  Require(silent != nullptr);
  const std::string text = Spliced(
      "/sdcard:\r\n-rw-rw---- 1 root sdcard_rw 1234 2020-01-02 03:04 my\\ file.txt\r\ntotal 4\r\n"
      "-rw-rw---- root sdcard_rw 5678 2020-01-02 03:04 b\r\n",
      Text(data, size));
  std::list<FileInfo> files, plain;
  std::string trace;
  Require(DecodeLSOut(text.data(), static_cast<int>(text.size()), &files) ==
          darokleim::test::PlainDecodeLSOut(text, &plain, &trace));
  Require(files == plain);
  return 0;
}
