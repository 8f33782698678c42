// Shows the devices that are attached, then each change, until Ctrl-C is pressed.
//
//   watch_devices [ADB]
//
// With ADB, the path of an adb program, it starts an adb server when none runs.
#include <darokleim/client.h>
#include <signal.h>
#include <stdio.h>

static const char* Advice(dk_state state) {
  switch (state) {
    case DK_STATE_UNAUTHORIZED:
      return "  Unlock the phone and allow USB debugging on its screen.";
    case DK_STATE_OFFLINE:
      return "  Unplug it and plug it in again.";
    case DK_STATE_NO_PERMISSIONS:
      return "  Install the udev rules for Android devices.";
    default:
      return "";
  }
}

// Runs on the watch's own thread. The device is the library's and only valid until this function returns.
static void PrintChange(void* user, dk_change change, const dk_device_info* device) {
  (void)user;
  switch (change) {
    case DK_SERVER_FOUND:
      puts("= adb server found");
      break;
    case DK_SERVER_LOST:
      puts("= adb server lost; waiting for it");
      break;
    case DK_DEVICE_ADDED:
    case DK_DEVICE_CHANGED:
      printf("%c %s  %s  %s%s\n", change == DK_DEVICE_ADDED ? '+' : '*', device->serial, device->state_text,
             device->model, Advice(device->state));
      break;
    case DK_DEVICE_REMOVED:
      printf("- %s\n", device->serial);
      break;
  }
  fflush(stdout);
}

static void WaitForCtrlC(const sigset_t* signals) {
  int received = 0;
  sigwait(signals, &received);
}

int main(int argc, char** argv) {
  // Blocked before the watch starts its thread, which inherits that.
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGINT);
  sigaddset(&signals, SIGTERM);
  sigprocmask(SIG_BLOCK, &signals, NULL);

  dk_context_options options = DK_CONTEXT_OPTIONS_INIT;
  options.adb_path = argc > 1 ? argv[1] : NULL;
  dk_error* error = NULL;
  dk_call call = DK_CALL_INIT;
  call.error = &error;

  dk_context* context = NULL;
  dk_watch* watch = NULL;
  dk_code code = dk_context_new(&options, &context, &call);
  if (code == DK_OK) code = dk_watch_start(context, PrintChange, NULL, &watch, &call);
  if (code == DK_OK) {
    WaitForCtrlC(&signals);
  } else {
    fprintf(stderr, "%s\n", dk_error_message(error));
  }

  dk_error_free(error);
  dk_watch_stop(watch);  // PrintChange() does not run any more once this returns
  dk_context_free(context);
  return code == DK_OK ? 0 : 1;
}
