// A host whose file system ignores the case of names and keeps it, as those of macOS do by default. Linux alone: the calls that
// look names up in an open folder are replaced for the whole program.
#ifndef DAROKLEIM_TESTS_CLIENT_CASE_BLIND_HOST_H
#define DAROKLEIM_TESTS_CLIENT_CASE_BLIND_HOST_H

namespace darokleim::client_test {

// While one lives, the host is so.
class CaseBlindHost {
 public:
  CaseBlindHost();
  ~CaseBlindHost();
  CaseBlindHost(const CaseBlindHost&) = delete;
  CaseBlindHost& operator=(const CaseBlindHost&) = delete;
};

}  // namespace darokleim::client_test

#endif  // DAROKLEIM_TESTS_CLIENT_CASE_BLIND_HOST_H
