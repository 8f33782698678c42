// Copies the photos and videos of a phone's camera to this computer: with progress, and only what is new since the last
// time. Ctrl-C stops it; what is copied by then is complete, and the next run goes on from there.
//
//   pull_photos FOLDER [SERIAL]
//
// Without SERIAL it takes the only phone that is ready.
#include <signal.h>

#include <cstdio>
#include <darokleim/client.hpp>
#include <string>

namespace {

constexpr char kCamera[] = "/sdcard/DCIM";

const dk::Cancel& cancel() {
  static const dk::Cancel token;
  return token;
}

// dk_cancel_set() is one of the few functions that a signal handler may call.
void CancelOnSignal(int) {
  cancel().set();
}

void ShowProgress(const dk_progress& progress) {
  constexpr double kMegabyte = 1e6;
  std::fprintf(stderr, "\r%llu of %llu files, %.1f of %.1f MB",
               static_cast<unsigned long long>(progress.files_done),
               static_cast<unsigned long long>(progress.files_total),
               static_cast<double>(progress.bytes_done) / kMegabyte,
               static_cast<double>(progress.bytes_total) / kMegabyte);
}

// What the user can do about it, where the program can say more than the library.
std::string Advice(const dk::Error& error) {
  switch (error.code()) {
    case DK_NO_SPACE:
      return error.on_host() ? " Free some space on this computer." : " Free some space on the phone.";
    case DK_NO_DEVICE:
      return " Attach a phone, or name one.";
    case DK_CONNECTION_LOST:
    case DK_CANCELLED:
      return " Run it again to go on.";
    default:
      return "";
  }
}

int PullPhotos(const dk::Device& phone, const std::string& folder) {
  dk_summary summary = {};
  dk::TransferOptions options;
  options.existing = DK_SKIP_SAME;  // same size and time: copied before
  options.keep_going = true;        // one unreadable file does not stop the others
  options.summary = &summary;
  options.on_progress = [](const dk_progress& progress) {
    ShowProgress(progress);
    return true;
  };
  options.on_error = [](const dk::Error& error) {
    std::fprintf(stderr, "\n%s\n", error.what());
    return true;
  };

  dk::Limits limits;
  limits.cancel = cancel();
  const auto pulled = phone.pull({{kCamera, folder}}, options, limits);
  std::fprintf(stderr, "\n");
  std::printf("%llu copied, %llu already copied, %llu failed\n",
              static_cast<unsigned long long>(summary.files_sent),
              static_cast<unsigned long long>(summary.files_skipped),
              static_cast<unsigned long long>(summary.files_failed));
  if (pulled.ok()) return 0;
  if (pulled.code() == DK_PARTLY_DONE) return 1;  // each error was shown
  throw pulled.error();
}

}  // namespace

int main(int argc, char** argv) try {
  if (argc != 2 && argc != 3) {
    std::fprintf(stderr, "usage: %s FOLDER [SERIAL]\n", argv[0]);
    return 2;
  }
  cancel();  // made before a signal can come
  signal(SIGINT, CancelOnSignal);

  const dk::Client client;
  const dk::Device phone = client.open(argc == 3 ? argv[2] : "").value();
  return PullPhotos(phone, argv[1]);
} catch (const dk::Error& error) {
  std::fprintf(stderr, "%s%s\n", error.what(), Advice(error).c_str());
  return 1;
} catch (const std::exception& error) {
  std::fprintf(stderr, "%s\n", error.what());
  return 1;
}
