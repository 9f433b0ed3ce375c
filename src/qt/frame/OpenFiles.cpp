#include "qt/frame/OpenFiles.h"

#include <QApplication>
#include <QFileInfo>
#include <QUrl>

#include "platform/Form.h"
#include "qt/Dispatch.h"
#include "qt/controls/Boxes.h"
#include "shell/MainForm.h"

namespace zelvanor {

void OpenDocument(const Text& Path) {
  if (Path.empty()) return;
  QueueFile(Path);
  DispatchEvent(Main.mnuFileOpen, Main.mnuFileOpen.Click);
  // The user may have cancelled before the dialog's turn came.
  QueueFile({});
}

bool MayOpenDocuments() {
  return MayAct(Main.mnuFileOpen) && IsSet(Main.mnuFile.Enabled) && IsSet(Main.mnuFileOpen.Enabled) &&
         ModalForms().empty() && QApplication::activeModalWidget() == nullptr;
}

QString FirstLocalFile(const QMimeData& Dragged) {
  for (const QUrl& Place : Dragged.urls()) {
    QString Path = Place.toLocalFile();
    if (!Path.isEmpty() && QFileInfo(Path).isFile()) return Path;
  }
  return {};
}

}  // namespace zelvanor
