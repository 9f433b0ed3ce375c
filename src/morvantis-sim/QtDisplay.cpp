#include <QClipboard>
#include <QGuiApplication>
#include <QSocketNotifier>
#include <QStringDecoder>
#include <QTimer>

#include "morvantis-sim/Display.h"

namespace zelvanor::morvantis_sim {

namespace {

// Old host text may be in a single-byte character set.
QString Decode(const Text& Value) {
  QStringDecoder Decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
  const QByteArrayView Bytes(Value.data(), static_cast<qsizetype>(Value.size()));
  const QString Decoded = Decoder(Bytes);
  return Decoder.hasError() ? QString::fromLatin1(Bytes) : Decoded;
}

}  // namespace

// Without a window of its own only an X server lets a program set the clipboard; a Wayland desktop has one for this.
bool HasDisplay() { return !qEnvironmentVariableIsEmpty("DISPLAY"); }

int RunOnDisplay(Simulator& Sim, int& Count, char** Words) {
  // The started program chooses for itself.
  const QByteArray Former = qgetenv("QT_QPA_PLATFORM");
  qputenv("QT_QPA_PLATFORM", "xcb");
  const QGuiApplication Application(Count, Words);
  Former.isEmpty() ? qunsetenv("QT_QPA_PLATFORM") : qputenv("QT_QPA_PLATFORM", Former);
  Sim.Host.SetClipboard = [](const Text& Value) { QGuiApplication::clipboard()->setText(Decode(Value)); };
  StartProgram(Sim);
  QSocketNotifier Requests(hostbus::ServerDescriptor(*Sim.Server), QSocketNotifier::Read);
  const auto Serve = [&Sim] {
    if (!hostbus::ServePending(*Sim.Server)) QCoreApplication::exit(1);
  };
  QObject::connect(&Requests, &QSocketNotifier::activated, Serve);
  QTimer Child;
  QObject::connect(&Child, &QTimer::timeout, [&Sim] {
    if (const std::optional<int> Status = StatusOfEnded(Sim)) QCoreApplication::exit(*Status);
  });
  constexpr int Often = 100;  // milliseconds
  Child.start(Often);
  QTimer::singleShot(0, Serve);
  return QGuiApplication::exec();
}

}  // namespace zelvanor::morvantis_sim
