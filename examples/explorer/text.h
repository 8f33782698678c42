// What the phone says, as it is shown.
#ifndef EXPLORER_TEXT_H
#define EXPLORER_TEXT_H

#include <QString>
#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>

namespace explorer {

// Names on a phone are bytes in no promised encoding. What is not UTF-8, and every character that would not be seen or would
// reorder its neighbours, is shown as an escape: \n, \xFF, \u{202E}. Only for the eye: calls get the bytes.
//
// Labels guess whether a text is HTML, which a name may look like: give them Qt::PlainText.
QString Shown(std::string_view bytes);

// The bytes of a name that the user typed.
std::string Typed(const QString& name);

QString ShownSize(std::uint64_t bytes);
QString ShownDuration(std::chrono::seconds duration);

// `folder` and `name` as one path of the phone.
std::string Joined(const std::string& folder, const std::string& name);
// The last part of a path; the folder that it is in.
std::string NameOf(const std::string& path);
std::string FolderOf(const std::string& path);

}  // namespace explorer

#endif  // EXPLORER_TEXT_H
