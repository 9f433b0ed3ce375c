#include "qt/frame/OpenFiles.h"

#include <QApplication>
#include <QFileInfo>
#include <QUrl>

#include "measured/MeasuredCommands.h"
#include "platform/Form.h"
#include "qt/Dispatch.h"
#include "qt/TextConversion.h"
#include "qt/controls/Boxes.h"
#include "shell/MainForm.h"

namespace zelvanor {

void OpenDocument(const Text& Path) {
  if (Path.empty()) return;
  QueueFile(Path);
  MenuItem& Command = LooksMeasured(Path) ? Main.mnuFileOpenMeasured : Main.mnuFileOpen;
  DispatchEvent(Command, Command.Click);
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
    const QFileInfo Found(Path);
    if (!Path.isEmpty() && (Found.isFile() || (Found.isDir() && LooksMeasured(PathFromQt(Path))))) return Path;
  }
  return {};
}

}  // namespace zelvanor
