#include "channel/direct/run.h"

#include "adb/address.h"
#include "channel/direct/call.h"
#include "channel/direct/form.h"

namespace darokleim::channel::direct {
namespace {

Attempt RunForm(const Call& call) {
  switch (call.form.form) {
    case Form::kDevices:
      return RunDevices(call);
    case Form::kShell:
      return RunShell(call);
    case Form::kLogcat:
      return RunLogcat(call);
    case Form::kList:
      return RunList(call);
    case Form::kPull:
      return RunPull(call);
    case Form::kPush:
      return RunPush(call);
    case Form::kForward:
      return RunForward(call);
    case Form::kReverse:
      return RunReverse(call);
    case Form::kReconnect:
      return RunReconnect(call);
    case Form::kReboot:
      return RunReboot(call);
  }
  return kGiveWay;  // there is no other form
}

}  // namespace

std::optional<Ending> Run(const Command& command, const adb::Limits& limits, OutputSink* output) {
  const std::optional<FormCall> form = MatchForm(command);
  if (!form) return kGiveWay;
  const adb::Result<adb::ServerAddress> server = adb::ServerAddress::FromEnvironment();
  if (!server.ok()) return kGiveWay;
  return RunForm({*form, *server, limits, output});
}

}  // namespace darokleim::channel::direct
