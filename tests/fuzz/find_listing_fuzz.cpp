// DecodeFindOut gives what its plain form gives.
#include "src/filesystem/find_listing.h"
#include "tests/fuzz/fuzz.h"
#include "tests/support/plain_listing.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace darokleim::sdk;
  const std::string text = Text(data, size);
  std::list<FileInfo> files, plain;
  Require(DecodeFindOut(text.data(), static_cast<int>(text.size()), &files) ==
          darokleim::test::PlainDecodeFindOut(text, &plain));
  Require(files == plain);
  return 0;
}
