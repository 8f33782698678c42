#include "channel/direct/error_text.h"

#include <locale.h>
#include <string.h>

#include <cerrno>

namespace darokleim::channel::direct {

#if defined(__APPLE__)
// macOS has no strerror_l; its texts are English in every language.
std::string ErrorText(int error) {
  char text[256] = "";
  strerror_r(error, text, sizeof(text));
  return text;
}
#else
std::string ErrorText(int error) {
  static const locale_t c_locale = newlocale(LC_ALL_MASK, "C", nullptr);
  return strerror_l(error, c_locale);
}
#endif

int ErrorOfPhone(uint32_t error) {
  constexpr struct {
    uint32_t phone;
    int host;
  } kKnown[] = {
      {1, EPERM},   {2, ENOENT},  {4, EINTR},         {5, EIO},      {12, ENOMEM},
      {13, EACCES}, {14, EFAULT}, {17, EEXIST},       {20, ENOTDIR}, {21, EISDIR},
      {22, EINVAL}, {23, ENFILE}, {24, EMFILE},       {26, ETXTBSY}, {27, EFBIG},
      {28, ENOSPC}, {30, EROFS},  {36, ENAMETOOLONG}, {40, ELOOP},   {75, EOVERFLOW},
  };
  for (const auto& known : kKnown) {
    if (known.phone == error) return known.host;
  }
  return EIO;
}

}  // namespace darokleim::channel::direct
