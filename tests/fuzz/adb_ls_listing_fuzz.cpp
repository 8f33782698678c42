// DecodeADBLSOut gives what its plain form gives.
#include <stdlib.h>

#include "src/filesystem/adb_ls_listing.h"
#include "tests/fuzz/fuzz.h"
#include "tests/fuzz/spliced_listing.h"
#include "tests/support/plain_listing.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace darokleim::sdk;
  setenv("TZ", "CET-1CEST,M3.5.0,M10.5.0/3", 1);
  const std::string text =
      Spliced("000041f9 00001000 5e0b7a11 DCIM\n000081b0 0000000a 5e7ff310 .a\n", Text(data, size));
  Require(DecodeADBLSOut("/sdcard", text.data(), static_cast<int>(text.size())) ==
          darokleim::test::PlainDecodeADBLSOut("/sdcard", text));
  return 0;
}
