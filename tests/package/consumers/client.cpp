#include <darokleim/client.hpp>
#include <string>

int main() {
  dk_context_options options = DK_CONTEXT_OPTIONS_INIT;
  options.server = "tcp:127.0.0.1:1";  // nothing listens there
  const dk::Client client(options);
  const auto devices = client.devices();
  if (devices.ok() || devices.code() != DK_NO_SERVER) return 1;
  try {
    client.server_version().value();
    return 2;
  } catch (const dk::Error& error) {
    return error.code() == DK_NO_SERVER && !error.message().empty() ? 0 : 3;
  }
}
