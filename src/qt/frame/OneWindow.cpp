#include "qt/frame/OneWindow.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <QSocketNotifier>
#include <array>
#include <cstddef>
#include <cstring>
#include <string>

namespace zelvanor {

namespace {

// A name without a file: it goes with the process that holds it.
sockaddr_un FindAddress(socklen_t& Length) {
  const std::string Name = "zelvanor-window-" + std::to_string(getuid());
  sockaddr_un Address{};
  Address.sun_family = AF_UNIX;
  std::memcpy(Address.sun_path + 1, Name.data(), Name.size());
  Length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + Name.size());
  return Address;
}

int OpenSocket() { return socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0); }

void ComeToFront(QWidget* Window) {
  Window->setWindowState(Window->windowState() & ~Qt::WindowMinimized);
  Window->raise();
  Window->activateWindow();
}

}  // namespace

void AnswerCalls(QWidget* Window) {
  socklen_t Length = 0;
  const sockaddr_un Address = FindAddress(Length);
  const int Socket = OpenSocket();
  if (Socket < 0) return;
  if (bind(Socket, reinterpret_cast<const sockaddr*>(&Address), Length) != 0) return static_cast<void>(close(Socket));
  const auto* Calls = new QSocketNotifier(Socket, QSocketNotifier::Read, Window);
  QObject::connect(Calls, &QSocketNotifier::activated, Window, [Window, Socket] {
    std::array<char, 256> Token{};  // with which the desktop lets a window come to the front
    if (recv(Socket, Token.data(), Token.size() - 1, 0) < 0) return;
    if (Token[0] != '\0') qputenv("XDG_ACTIVATION_TOKEN", Token.data());
    ComeToFront(Window);
  });
}

void CallRunningWindow() {
  socklen_t Length = 0;
  const sockaddr_un Address = FindAddress(Length);
  const int Socket = OpenSocket();
  if (Socket < 0) return;
  const QByteArray Token = qgetenv("XDG_ACTIVATION_TOKEN");
  sendto(Socket, Token.constData(), static_cast<std::size_t>(Token.size()), 0,
         reinterpret_cast<const sockaddr*>(&Address), Length);
  close(Socket);
}

}  // namespace zelvanor
