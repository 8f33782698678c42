#include "text.h"

#include <QLocale>
#include <QStringDecoder>
#include <algorithm>

namespace explorer {

namespace {

// How many bytes a character of UTF-8 has that begins with this byte; 1 for bytes that begin none.
std::size_t LengthOfCharacter(unsigned char first) {
  if (first >= 0xF0) return 4;
  if (first >= 0xE0) return 3;
  return first >= 0xC0 ? 2 : 1;
}

bool IsSeen(char32_t character) {
  constexpr char32_t kJoiners[] = {0x200C, 0x200D};  // which emoji and some scripts are written with
  switch (QChar::category(character)) {
    case QChar::Other_Control:
    case QChar::Other_NotAssigned:
    case QChar::Separator_Line:
    case QChar::Separator_Paragraph:
      return false;
    case QChar::Other_Format:
      return character == kJoiners[0] || character == kJoiners[1];
    default:
      return true;
  }
}

QString Escaped(char32_t character) {
  if (character == '\n') return "\\n";
  if (character == '\t') return "\\t";
  return QString("\\u{%1}").arg(static_cast<uint>(character), 4, 16, QChar('0'));
}

}  // namespace

QString Shown(std::string_view bytes) {
  QString shown;
  for (std::size_t at = 0; at < bytes.size();) {
    const auto first = static_cast<unsigned char>(bytes[at]);
    const std::size_t length = std::min(LengthOfCharacter(first), bytes.size() - at);
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString character = decoder(QByteArrayView(bytes.data() + at, static_cast<qsizetype>(length)));
    if (decoder.hasError()) {
      shown += QString("\\x%1").arg(first, 2, 16, QChar('0')).toUpper().replace("\\X", "\\x");
      ++at;
      continue;
    }
    const char32_t code = character.toUcs4().value(0);
    shown += IsSeen(code) ? character : Escaped(code);
    at += length;
  }
  return shown;
}

std::string Typed(const QString& name) {
  return name.toUtf8().toStdString();
}

QString ShownSize(std::uint64_t bytes) {
  return QLocale().formattedDataSize(static_cast<qint64>(bytes), 1, QLocale::DataSizeTraditionalFormat);
}

QString ShownDuration(std::chrono::seconds duration) {
  const auto seconds = duration.count();
  if (seconds < 60) return QString("%1 s").arg(seconds);
  if (seconds < 3600) return QString("%1 min %2 s").arg(seconds / 60).arg(seconds % 60);
  return QString("%1 h %2 min").arg(seconds / 3600).arg(seconds % 3600 / 60);
}

std::string Joined(const std::string& folder, const std::string& name) {
  return folder.back() == '/' ? folder + name : folder + '/' + name;
}

std::string NameOf(const std::string& path) {
  return path.substr(path.rfind('/') + 1);
}

std::string FolderOf(const std::string& path) {
  return path.substr(0, std::max<std::size_t>(path.rfind('/'), 1));
}

}  // namespace explorer
