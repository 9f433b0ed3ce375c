#include "qt/frame/OpenFiles.h"

#include <QApplication>
#include <QFileInfo>
#include <QUrl>

#include "history/History.h"
#include "measured/MeasuredCommands.h"
#include "onestep/Paste.h"
#include "platform/Form.h"
#include "qt/Dispatch.h"
#include "qt/TextConversion.h"
#include "qt/controls/Boxes.h"
#include "shell/Frame.h"

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

bool CanTake(const QMimeData& Dragged) {
  return MayOpenDocuments() && (!FirstLocalFile(Dragged).isEmpty() || (!Dragged.hasUrls() && Dragged.hasText()));
}

void TakeDropped(const QString& File, const QString& Words) {
  if (!MayOpenDocuments()) return;
  if (!File.isEmpty()) return OpenDocument(PathFromQt(File));
  const Text Given = FromQt(Words);
  DispatchEvent(Main.mnuPaste, [&] {
    Fire(Rooms.EndTableEdit);
    RunRecorded("pasting a molecule", [&] { PasteText(Given); });
  });
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
