// Result codes for what adb, the package manager or the device's shell printed.
#ifndef DAROKLEIM_SRC_CORE_CLASSIFIER_H
#define DAROKLEIM_SRC_CORE_CLASSIFIER_H

#include <string>
#include <string_view>

// The result code of the first known message in text, or ret (the channel's status) when there is none.
// line_failure_only: a bare "Failure" counts only in a line that also names one certain package; the dumps
// of other packages hold the word for other reasons. Part of the interface of the library's archive; nothing here
// calls it.
int CheckOutbufErrorWithRet(const std::string& text, int ret, bool line_failure_only);

// Whether the package manager reported success. Part of the interface of the library's archive; nothing here calls it.
bool IsOutbufSuccess(const std::string& text);

namespace darokleim::sdk {

// CheckOutbufErrorWithRet without the copy: output can be a gigabyte.
int Classify(std::string_view text, int ret, bool line_failure_only = false);

bool ReportsSuccess(std::string_view text);

}  // namespace darokleim::sdk

#endif  // DAROKLEIM_SRC_CORE_CLASSIFIER_H
