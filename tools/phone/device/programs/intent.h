// What `am` and `cmd package` are asked to start or to look for.
#ifndef DAROKLEIM_TOOLS_PHONE_DEVICE_PROGRAMS_INTENT_H
#define DAROKLEIM_TOOLS_PHONE_DEVICE_PROGRAMS_INTENT_H

#include <string>

#include "tools/phone/device/programs/programs.h"

namespace darokleim::phone {

struct Intent {
  std::string action;
  std::string data;
  std::string category;
  std::string package;
  std::string component;
  bool wait = false;
  bool extras = false;
};

// From the words after a subcommand. A component named with -n must have a class: HasBadComponent().
Intent ParseIntent(const Words& words);
bool HasBadComponent(const Intent& intent);

// As a phone prints it: "Intent { cmp=com.example.notes/.MainActivity }".
std::string Describe(const Intent& intent);

// The parts of PACKAGE/CLASS, the class in full.
std::string PackageOf(const std::string& component);
std::string ClassOf(const std::string& component);
// The short form: the class begins with a dot when it is in the package.
std::string ShortComponent(const std::string& component);

// The component that starts; empty when none fits. An intent that only names a package has none: the activities of a
// launcher are not in the category that implicit intents need.
std::string ResolveToStart(const Intent& intent);
// The component that a query finds, which looks at every category.
std::string ResolveForQuery(const Intent& intent);

}  // namespace darokleim::phone

#endif  // DAROKLEIM_TOOLS_PHONE_DEVICE_PROGRAMS_INTENT_H
