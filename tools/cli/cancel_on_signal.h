#ifndef DAROKLEIM_TOOLS_CLI_CANCEL_ON_SIGNAL_H
#define DAROKLEIM_TOOLS_CLI_CANCEL_ON_SIGNAL_H

namespace darokleim::cli {

// From now on Ctrl-C, a terminate signal and the end of the terminal set the cancel flag; the second one ends the
// process. A signal that the tool was started to ignore, as by nohup, stays ignored.
void CancelOnSignals();

// The flag for the library's calls.
const bool* CancelFlag();

bool IsCancelled();

}  // namespace darokleim::cli

#endif  // DAROKLEIM_TOOLS_CLI_CANCEL_ON_SIGNAL_H
