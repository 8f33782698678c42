// Reads what adb, the package manager or the device's shell said and names it with a result code.
#ifndef DAROKLEIM_SRC_CORE_CLASSIFIER_H
#define DAROKLEIM_SRC_CORE_CLASSIFIER_H

#include <string>
#include <string_view>

// The result code of the first known message in text, or ret (the channel's value) when there is none.
// line_failure_only: a bare "Failure" counts only in a line that also names one certain package; the dumps
// of other packages hold the word for reasons of their own.
int CheckOutbufErrorWithRet(const std::string& text, int ret, bool line_failure_only);

// Whether the package manager reported success.
bool IsOutbufSuccess(const std::string& text);

namespace darokleim::sdk {

// CheckOutbufErrorWithRet without the copy: output can be a gigabyte.
int Classify(std::string_view text, int ret, bool line_failure_only = false);

bool ReportsSuccess(std::string_view text);

}  // namespace darokleim::sdk

#endif  // DAROKLEIM_SRC_CORE_CLASSIFIER_H
