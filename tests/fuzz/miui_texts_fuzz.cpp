// The pieces of a MIUI version.
#include "darokleim.h"
#include "src/device/miui_texts.h"
#include "tests/fuzz/fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace darokleim::sdk;
  const std::string text = Text(data, size);
  IsDatedName(AfterFirstV(text));

  const std::size_t shown = ShownLength(text);
  Require(shown <= text.size());
  if (shown < text.size()) Require(text[shown - 2] == '.');

  const auto version = VersionInBuildNumber(text);
  Require(version.has_value() == (text.find('.') != std::string::npos));
  if (version) {
    std::string plain = text;
    plain.erase(plain.rfind('.'));
    plain.erase(0, plain.find('V') + 1);
    Require(*version == plain);
  }

  std::string dated = "12.";
  const bool appended = AppendMiuiVersionByTimeCode(text, dated);
  Require(appended == (dated.size() >= sizeof "12.0.1.2" - 1));
  return 0;
}
