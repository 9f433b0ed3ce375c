#include "qt/controls/Boxes.h"

#include <QCheckBox>
#include <QColorDialog>
#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFileDialog>
#include <QFileInfo>
#include <QGuiApplication>
#include <QMessageBox>
#include <QThread>
#include <QWindow>
#include <algorithm>
#include <utility>

#include "qt/Dispatch.h"
#include "qt/TextConversion.h"
#include "qt/controls/Pointer.h"
#include "qt/frame/MainWindow.h"
#include "qt/frame/OneWindow.h"
#include "qt/frame/RecentFiles.h"
#include "qt/frame/Remembered.h"
#include "qt/help/HelpWindow.h"
#include "shell/HelpTopics.h"
#include "workspace/Helpers.h"
#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

using Button = QMessageBox::StandardButton;

struct ButtonsRow {
  BoxButtons Buttons;
  QMessageBox::StandardButtons Shown;
  Button Default;
  Button Escape;
};

constexpr ButtonsRow ButtonsRows[] = {
    {BoxButtons::Ok, QMessageBox::Ok, QMessageBox::Ok, QMessageBox::Ok},
    {BoxButtons::OkCancel, QMessageBox::Ok | QMessageBox::Cancel, QMessageBox::Ok, QMessageBox::Cancel},
    {BoxButtons::YesNo, QMessageBox::Yes | QMessageBox::No, QMessageBox::Yes, QMessageBox::No},
    {BoxButtons::YesNoCancel, QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel, QMessageBox::Yes,
     QMessageBox::Cancel},
    {BoxButtons::RetryCancel, QMessageBox::Retry | QMessageBox::Cancel, QMessageBox::Retry, QMessageBox::Cancel},
};

const ButtonsRow& RowOf(BoxButtons Buttons) {
  for (const ButtonsRow& Row : ButtonsRows) {
    if (Row.Buttons == Buttons) return Row;
  }
  return ButtonsRows[0];
}

QMessageBox::Icon IconOf(BoxKind Kind) {
  switch (Kind) {
    case BoxKind::Warning:
      return QMessageBox::Warning;
    case BoxKind::Error:
      return QMessageBox::Critical;
    case BoxKind::Question:
      return QMessageBox::Question;
    default:
      return QMessageBox::NoIcon;
  }
}

BoxAnswer AnswerOf(int Pressed, const ButtonsRow& Row) {
  switch (Pressed) {
    case QMessageBox::Ok:
      return BoxAnswer::Ok;
    case QMessageBox::Yes:
      return BoxAnswer::Yes;
    case QMessageBox::No:
      return BoxAnswer::No;
    case QMessageBox::Retry:
      return BoxAnswer::Retry;
    case QMessageBox::Cancel:
      return BoxAnswer::Cancel;
    default:
      return AnswerOf(Row.Escape, Row);
  }
}

Text& QueuedFile() {
  static Text Path;
  return Path;
}

// Where a dialog begins: in the folder of the document, else where the last file was.
QString FirstFolder() {
  const Text& Document = !Workspace.DocumentPath.empty()   ? Workspace.DocumentPath
                         : !Workspace.HostTextPath.empty() ? Workspace.HostTextPath
                                                           : Workspace.ZMatrixPath;
  const QFileInfo Place(PathToQt(Document));
  if (Place.isAbsolute() && Place.absoluteDir().exists()) return Place.absolutePath();
  const QString Kept = RememberedFolder();
  return Kept.isEmpty() ? QDir::currentPath() : Kept;
}

// A suggested name may be a pattern or hold a folder.
void SuggestFile(QFileDialog& Shown, const Text& FileName) {
  const QString Name = PathToQt(FileName);
  if (Name.isEmpty() || Name.contains('*')) return;
  if (const QFileInfo Place(Name); Place.isAbsolute()) Shown.setDirectory(Place.absolutePath());
  Shown.selectFile(QFileInfo(Name).fileName());
}

// A line of a file that a message quotes may be of any length.
QString Shortened(const QString& Message) {
  constexpr qsizetype Longest = 2000;
  return Message.size() <= Longest ? Message : Message.left(Longest) + QString::fromUtf8(" \u2026");
}

constexpr const char* OtherRuns = "Zelvanor is already running.";
constexpr const char* HowToOpenThere =
    "\r\rIts window comes to the front. Open the file there by File > Open..., or drop it on that window.";
constexpr const char* NoHost = "No running Morvantis.";

// Who works without the host need not be told at each start.
bool MayBeSilent(const MessageBox& Box) { return Box.Message.ends_with(NoHost); }

// A box stands in the middle of its window only once the desktop has given the window its place, which X11 tells a
// little after the window has come up.
void WaitForPlace(const QWidget* Window) {
  constexpr int Longest = 1000;  // milliseconds
  constexpr int Settled = 100;
  constexpr int Rest = 10;
  static bool Placed = QGuiApplication::platformName() != "xcb";
  if (Placed || Window == nullptr || Window->windowHandle() == nullptr) return;
  QElapsedTimer Waited;
  QElapsedTimer Unmoved;
  Waited.start();
  Unmoved.start();
  QPoint Place = Window->pos();
  while (Waited.elapsed() < Longest && (!Window->windowHandle()->isExposed() || Unmoved.elapsed() < Settled)) {
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents, Rest);
    QThread::msleep(Rest);
    if (std::exchange(Place, Window->pos()) != Window->pos() || !Window->windowHandle()->isExposed()) Unmoved.restart();
  }
  Placed = true;
}

// Warnings of a command that shows them together.
struct HeldWarnings {
  bool Holds = false;
  std::vector<MessageBox> Boxes;
};

HeldWarnings Held;

MessageBox JoinBoxes(const std::vector<MessageBox>& Boxes, QString& Details) {
  constexpr std::size_t MostShown = 8;
  const Text Head = "WARNING: ";
  MessageBox All = Boxes.front();
  if (Boxes.size() == 1) return All;
  const auto Plain = [&Head](const Text& Said) { return Said.starts_with(Head) ? Said.substr(Head.size()) : Said; };
  All.Message = Join(Head, "There are ", static_cast<Long>(Boxes.size()), " problems:\r");
  for (std::size_t Place = 0; Place < std::min(Boxes.size(), MostShown); ++Place) {
    All.Message += "\r" + Plain(Boxes[Place].Message);
  }
  if (Boxes.size() <= MostShown) return All;
  All.Message += Join("\r\rand ", static_cast<Long>(Boxes.size() - MostShown), " more.");
  for (const MessageBox& Box : Boxes) Details += Shortened(ToQtLines(Plain(Box.Message))) + "\n";
  return All;
}

void AddForms(QMessageBox& Shown, const MessageBox& Box) {
  Shown.setTextFormat(Qt::PlainText);
  Shown.setTextInteractionFlags(Qt::TextSelectableByMouse);
  Shown.setDefaultButton(RowOf(Box.Buttons).Default);
  Shown.setEscapeButton(RowOf(Box.Buttons).Escape);
  Shown.setWindowModality(Qt::WindowModal);  // the manual stays open to use
  AddHelpKey(&Shown, MessagesHelp);
}

BoxAnswer RunBox(const MessageBox& Box, const QString& Details) {
  const ButtonsRow& Row = RowOf(Box.Buttons);
  const bool Refused = Box.Message.ends_with(OtherRuns);
  const QString Words = Shortened(ToQtLines(Refused ? Box.Message + HowToOpenThere : Box.Message));
  QMessageBox Shown(IconOf(Box.Kind), ToQt(Box.Title), Words, Row.Shown, TopWindow());
  AddForms(Shown, Box);
  if (!Details.isEmpty()) Shown.setDetailedText(Details);
  if (AfterDispatch) AfterDispatch();  // what stands behind the box is up to date
  if (MayBeSilent(Box)) Shown.setCheckBox(new QCheckBox("Do not show this again", &Shown));
  WaitForPlace(Shown.parentWidget());
  const PlainPointer Pointer;
  const int Pressed = Shown.exec();
  if (Shown.checkBox() != nullptr && Shown.checkBox()->isChecked()) RememberHostSilence(true);
  if (Refused) CallRunningWindow();
  PassEnd();
  return AnswerOf(Pressed, Row);
}

void ShowHeldWarnings() {
  if (Held.Boxes.empty()) return;
  QString Details;
  const MessageBox All = JoinBoxes(std::exchange(Held.Boxes, {}), Details);
  RunBox(All, Details);
}

}  // namespace

BoxAnswer ShowMessageBox(const MessageBox& Box) {
  const ButtonsRow& Row = RowOf(Box.Buttons);
  if (Held.Holds && Box.Kind == BoxKind::Warning && Box.Buttons == BoxButtons::Ok) {
    Held.Boxes.push_back(Box);
    return BoxAnswer::Ok;
  }
  ShowHeldWarnings();
  if (MayBeSilent(Box) && RememberedHostSilence()) {
    ShowStatus(NoHost);
    return AnswerOf(Row.Escape, Row);
  }
  return RunBox(Box, {});
}

void ShowWarningsTogether(const std::function<void()>& Command) {
  if (Held.Holds) return Command();
  Held.Holds = true;
  try {
    Command();
  } catch (...) {
    Held = {};
    throw;
  }
  Held.Holds = false;
  ShowHeldWarnings();
}

QStringList NameFilters(const Text& Filter) {
  const QStringList Pieces = ToQt(Filter).split('|');
  QStringList Filters;
  for (qsizetype Place = 0; Place + 1 < Pieces.size(); Place += 2) {
    QString Name = Pieces[Place].trimmed();
    if (const qsizetype Bracket = Name.lastIndexOf('('); Bracket > 0) Name = Name.left(Bracket).trimmed();
    QStringList Patterns;
    for (const QString& Piece : Pieces[Place + 1].split(';')) {
      const QString Pattern = Piece.trimmed();
      if (Pattern.isEmpty()) continue;
      if (Pattern == "*.*") {
        Patterns << "*";
      } else {
        Patterns << Pattern.toLower() << Pattern.toUpper();
      }
    }
    Patterns.removeDuplicates();
    Filters << Name + " (" + Patterns.join(' ') + ")";
  }
  return Filters;
}

// The kind of file that an Open dialog begins with: the wanted one, but where the folder has none of it the first of
// which there are some, so that the list is not empty.
QString FirstKind(const QString& Wanted, const QStringList& Filters, const QString& Folder) {
  const auto HasFiles = [&Folder](const QString& Filter) {
    const QString Patterns = Filter.section('(', -1).section(')', 0, 0);
    return !QDir(Folder).entryList(Patterns.split(' '), QDir::Files).isEmpty();
  };
  if (HasFiles(Wanted)) return Wanted;
  const auto Found = std::find_if(Filters.begin(), Filters.end(), HasFiles);
  return Found == Filters.end() ? Wanted : *Found;
}

std::optional<Text> AskForFile(const FileDialog& Dialog) {
  // A file to open is no answer to the question where unsaved work goes to, which may come before.
  if (!Dialog.Save && !QueuedFile().empty()) {
    RememberFolderOf(PathToQt(QueuedFile()));
    RememberRecent(PathToQt(QueuedFile()));
    return std::exchange(QueuedFile(), {});
  }
  QFileDialog Shown(TopWindow(), ToQt(Dialog.Title), FirstFolder());
  Shown.setAcceptMode(Dialog.Save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
  Shown.setFileMode(Dialog.Save ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
  // The program asks itself before it replaces a file.
  Shown.setOption(QFileDialog::DontConfirmOverwrite);
  const QStringList Filters = NameFilters(Dialog.Filter);
  if (!Filters.isEmpty()) {
    Shown.setNameFilters(Filters);
    const QString Kept = Dialog.Save ? QString() : RememberedFileKind(Shown.windowTitle());
    const QString Wanted = Filters.contains(Kept) ? Kept : Filters.value(Dialog.FilterIndex - 1, Filters.front());
    Shown.selectNameFilter(Dialog.Save ? Wanted : FirstKind(Wanted, Filters, Shown.directory().path()));
  }
  Shown.setDefaultSuffix(ToQt(Dialog.DefaultExtension));
  // A file of just this name needs none.
  QObject::connect(&Shown, &QFileDialog::currentChanged, &Shown, [&](const QString& Path) {
    const bool Bare = QFileInfo(Path).isFile() && !QFileInfo(Path).fileName().contains('.');
    Shown.setDefaultSuffix(Bare ? QString() : ToQt(Dialog.DefaultExtension));
  });
  SuggestFile(Shown, Dialog.FileName);
  const PlainPointer Pointer;
  const bool Chosen = Shown.exec() == QDialog::Accepted && !Shown.selectedFiles().isEmpty();
  PassEnd();
  if (!Chosen) return std::nullopt;
  const QString Path = QDir::toNativeSeparators(Shown.selectedFiles().front());
  RememberFolderOf(Path);
  if (!Dialog.Save) RememberFileKind(Shown.windowTitle(), Shown.selectedNameFilter());
  if (!Dialog.Save || Dialog.DefaultExtension == "NMR") RememberRecent(Path);
  return PathFromQt(Path);
}

std::optional<Colour> AskForColour(Colour Current) {
  const PlainPointer Pointer;
  const QColor Chosen = QColorDialog::getColor(ToQt(Current), TopWindow());
  PassEnd();
  if (!Chosen.isValid()) return std::nullopt;
  return FromQt(Chosen);
}

void QueueFile(const Text& Path) { QueuedFile() = Path; }

}  // namespace zelvanor
