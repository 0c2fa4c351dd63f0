#include "app/desktop/qt_text.h"

#include <QStringDecoder>

namespace quarvel {

QString ToQString(std::string_view text) {
  const QByteArrayView bytes(text.data(), static_cast<qsizetype>(text.size()));
  QStringDecoder decoder(QStringDecoder::Utf8);
  QString decoded = decoder.decode(bytes);
  return decoder.hasError() ? QString::fromLatin1(bytes) : decoded;
}

QString ToQString(const std::filesystem::path& path) {
#ifdef _WIN32
  return QString::fromStdWString(path.wstring());
#else
  return ToQString(std::string_view(path.native()));
#endif
}

std::string ToText(const QString& text) { return text.toLocal8Bit().toStdString(); }

} // namespace quarvel
