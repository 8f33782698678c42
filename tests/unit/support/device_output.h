// What real devices printed, kept byte for byte under tests/data/device-output (its INDEX.tsv says which
// device and command).
#ifndef DAROKLEIM_TESTS_UNIT_SUPPORT_DEVICE_OUTPUT_H
#define DAROKLEIM_TESTS_UNIT_SUPPORT_DEVICE_OUTPUT_H

#include <set>
#include <string>

namespace darokleim::test {

// The sample of this name, e.g. "adb-devices/recovery.txt". A missing one fails the test.
std::string DeviceOutput(const std::string& name);

// The value of one property in a list of properties, e.g. of "ro.product.model" in "getprop/miui8.txt". A missing
// one fails the test.
std::string DeviceProperty(const std::string& name, const std::string& property);

// The names of all samples in one folder, so that a test can check that it covers each.
std::set<std::string> DeviceOutputsIn(const std::string& folder);

}  // namespace darokleim::test

#endif  // DAROKLEIM_TESTS_UNIT_SUPPORT_DEVICE_OUTPUT_H
