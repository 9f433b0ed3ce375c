#include "qt/TextConversion.h"

#include <QFile>
#include <QStringDecoder>

namespace zelvanor {

QString ToQt(TextView Value) {
  const QByteArrayView Bytes(Value.data(), static_cast<qsizetype>(Value.size()));
  // Stateless: a sequence that is cut at the end is an error as well.
  QStringDecoder Decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
  const QString Decoded = Decoder(Bytes);
  return Decoder.hasError() ? QString::fromLatin1(Bytes) : Decoded;
}

Text FromQt(const QString& Value) { return Value.toStdString(); }

QString ToQtLines(TextView Value) {
  QString Lines = ToQt(Value);
  Lines.replace("\r\n", "\n");
  Lines.replace('\r', '\n');
  return Lines;
}

QString PathToQt(const Text& Path) { return QFile::decodeName(QByteArray::fromStdString(Path)); }
Text PathFromQt(const QString& Path) { return QFile::encodeName(Path).toStdString(); }

QString PlainCaption(TextView Caption) {
  Text Plain;
  for (std::size_t Place = 0; Place < Caption.size(); ++Place) {
    if (Caption[Place] == '&' && ++Place == Caption.size()) break;
    Plain += Caption[Place];
  }
  return ToQtLines(Plain);
}

QColor ToQt(Colour Value) { return {Value & 255, (Value >> 8) & 255, (Value >> 16) & 255}; }
Colour FromQt(const QColor& Value) { return Rgb(Value.red(), Value.green(), Value.blue()); }

}  // namespace zelvanor
