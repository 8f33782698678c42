#ifndef EXPLORER_PHONE_H
#define EXPLORER_PHONE_H

#include <darokleim/client.hpp>
#include <memory>
#include <string>

namespace explorer {

// A phone to make calls on, from any thread. Each task holds the phone, and the phone holds its client, because a client must
// outlive its devices: a call that is still ending when the window is gone does so safely.
struct Phone {
  std::shared_ptr<const dk::Client> client;  // goes last
  dk::Device device;

  std::string serial() const { return device.serial(); }
};
using PhonePtr = std::shared_ptr<const Phone>;

}  // namespace explorer

#endif  // EXPLORER_PHONE_H
