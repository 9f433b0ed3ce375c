#include "qt/frame/RecentFiles.h"

#include <QAction>
#include <QDir>
#include <QFileInfo>
#include <QMenu>
#include <utility>

#include "qt/TextConversion.h"
#include "qt/controls/ControlWidgets.h"
#include "qt/frame/OpenFiles.h"
#include "qt/frame/Remembered.h"
#include "shell/Frame.h"
#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

constexpr const char* FilesList = "recent";
constexpr const char* ViewsList = "views";
constexpr qsizetype MostFiles = 9;
constexpr qsizetype MostViews = 100;

void PutFirst(const char* List, const QString& Entry, const QString& Replaced, qsizetype Most) {
  QStringList Entries = RememberedList(List);
  Entries.removeIf([&](const QString& Each) { return Each.endsWith(Replaced); });
  Entries.prepend(Entry);
  RememberList(List, Entries.mid(0, Most));
}

// "&1 ethanol.NMR - /home/..."
QString CaptionOf(qsizetype Place, const QFileInfo& File) {
  QString Name = File.fileName();
  return QString("&%1  %2  (%3)")
      .arg(Place + 1)
      .arg(Name.replace('&', "&&"), QDir::toNativeSeparators(File.absolutePath()).replace('&', "&&"));
}

void FillMenu(QMenu* Menu) {
  Menu->clear();
  qsizetype Place = 0;
  for (const QString& Path : RememberedList(FilesList)) {
    if (!QFileInfo::exists(Path)) continue;
    const QAction* Entry = Menu->addAction(CaptionOf(Place++, QFileInfo(Path)));
    QObject::connect(Entry, &QAction::triggered, Menu, [Path] {
      if (MayOpenDocuments()) OpenDocument(PathFromQt(Path));
    });
  }
  if (Place == 0) Menu->addAction("No files yet")->setEnabled(false);
}

QString PresentDocument() { return PathToQt(Workspace.DocumentPath); }

}  // namespace

void RememberRecent(const QString& Path) {
  const QString Whole = QFileInfo(Path).absoluteFilePath();
  PutFirst(FilesList, Whole, Whole, MostFiles);
}

void AddRecentMenu(QMenuBar* Bar) {
  const auto* File = qobject_cast<QAction*>(ShownOf(Main.mnuFile));
  if (File == nullptr || File->menu() == nullptr) return;
  auto* Recent = new QMenu("Open Re&cent", Bar);
  QObject::connect(Recent, &QMenu::aboutToShow, Recent, [Recent] { FillMenu(Recent); });
  File->menu()->addMenu(Recent);
}

void NoteView() {
  static std::pair<QString, int> Noted;
  if (IsSet(Main.IsBusy)) return;
  std::pair<QString, int> Present{PresentDocument(), Workspace.ViewMode};
  if (Present == Noted) return;
  Noted = Present;
  if (Present.first.isEmpty()) return;
  PutFirst(ViewsList, QString("%1 %2").arg(Present.second).arg(Present.first), " " + Present.first, MostViews);
}

void RestoreView() {
  const QString Path = PresentDocument();
  if (Path.isEmpty()) return;
  for (const QString& Entry : RememberedList(ViewsList)) {
    if (Entry.mid(Entry.indexOf(' ') + 1) != Path) continue;
    const int View = Entry.left(Entry.indexOf(' ')).toInt();
    if (View == Workspace.ViewMode) return;
    if (View == ShieldingView && IsSet(Main.mnuViewShielding.Enabled)) return mnuViewShielding_Click();
    if (View == CouplingView && IsSet(Main.mnuViewCoupling.Enabled)) return mnuViewCoupling_Click();
    if (View == SpectrumViewMode && IsSet(Main.mnuViewSpectra.Enabled)) return EnterSpectrumView();
    return;
  }
}

}  // namespace zelvanor
