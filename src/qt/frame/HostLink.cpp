#include "qt/frame/HostLink.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include "hostbus/ClipboardFile.h"
#include "hostbus/HostBus.h"
#include "platform/Services.h"

namespace zelvanor {

namespace {

void WatchConversations(int Descriptor) {
  auto* const Requests = new QSocketNotifier(Descriptor, QSocketNotifier::Read, QCoreApplication::instance());
  QObject::connect(Requests, &QSocketNotifier::activated, [Requests] {
    if (hostbus::ServeConversations()) return;
    Requests->setEnabled(false);
    Requests->deleteLater();
  });
}

}  // namespace

void UseHostLink() {
  hostbus::UseHostBus(WatchConversations);
  if (!hostbus::IsClipboardFileNamed()) return;
  Platform.GetClipboard = hostbus::ReadClipboardFile;
  Platform.SetClipboard = hostbus::WriteClipboardFile;
}

}  // namespace zelvanor
