#include "Pictures.h"

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QPainter>
#include <QTimer>

#include "WindowScript.h"
#include "batch/Batch.h"
#include "qt/TextConversion.h"
#include "qt/controls/ControlWidgets.h"
#include "qt/frame/FirstSight.h"
#include "settings/SettingsState.h"
#include "shell/MainForm.h"

namespace zelvanor::tests {

namespace {

using Words = std::vector<batch::Argument>;

// Names of the pictures that the next message box and the next common dialog give.
Text NextBox;
Text NextDialog;

QString PictureFile(const Text& Name) {
  return QDir(qEnvironmentVariable("PICTURES", ".")).filePath(ToQt(Name) + qEnvironmentVariable("PICTURES_SUFFIX")) +
         ".png";
}

void SavePicture(const QPixmap& Picture, const Text& Name) {
  const QString Path = PictureFile(Name);
  if (!Picture.save(Path)) throw batch::ScriptStop{batch::CannotCarryOut, "can't write " + PathFromQt(Path)};
}

QWidget* TopOne() {
  QWidget* Modal = QApplication::activeModalWidget();
  return Modal != nullptr ? Modal : &ScriptedWindow();
}

// The menu that belongs to an item, open below or beside the one it hangs from; the outermost first.
std::vector<QMenu*> OpenMenus(const MenuItem& Item) {
  std::vector<QMenu*> Opened;
  QAction* Action = qobject_cast<QAction*>(ShownOf(Item));
  QPoint Place;
  if (Item.Parent == nullptr) {
    QMenuBar* Bar = ScriptedWindow().menuBar();
    Place = Bar->mapToGlobal(Bar->actionGeometry(Action).bottomLeft());
  } else {
    Opened = OpenMenus(*Item.Parent);
    Opened.back()->setActiveAction(Action);
    Place = Opened.back()->mapToGlobal(Opened.back()->actionGeometry(Action).topRight());
  }
  if (Action->menu() == nullptr) throw batch::ScriptStop{batch::CannotCarryOut, "no menu hangs from " + Item.Name};
  Action->menu()->popup(Place);
  Opened.push_back(Action->menu());
  return Opened;
}

QPixmap PictureWithMenus(const MenuItem& Item) {
  QWidget& Window = ScriptedWindow();
  const std::vector<QMenu*> Menus = OpenMenus(Item);
  SettleWidgets();
  QPixmap Picture = Window.grab();
  QPainter Painter(&Picture);
  for (QMenu* Menu : Menus) Painter.drawPixmap(Window.mapFromGlobal(Menu->pos()), Menu->grab());
  Painter.end();
  for (QMenu* Menu : Menus) Menu->close();
  return Picture;
}

// As a user sees the window, whose colours go with the desktop once the program has started.
void SettleForPicture() {
  static const bool Wanted = Settings.FirstSight;
  static bool Follows = false;
  if (Wanted && !std::exchange(Follows, true)) FollowDesktopColours(&ScriptedWindow());
  SettleWidgets();
}

// picture NAME [MENUITEM]: of the window on top, or of the main window with the menu of an item open.
void TakePicture(const Words& All) {
  SettleForPicture();
  if (All.size() < 3) return SavePicture(TopOne()->grab(), All[1].Value);
  SavePicture(PictureWithMenus(static_cast<const MenuItem&>(batch::NeedControl(All[2].Value))), All[1].Value);
}

// helppicture NAME: of the help window, which goes away again.
void TakeHelpPicture(const Words& All) {
  SettleWidgets();
  for (QWidget* Window : QApplication::topLevelWidgets()) {
    if (Window->windowTitle() != "Zelvanor Help" || !Window->isVisible()) continue;
    SavePicture(Window->grab(), All[1].Value);
    return Window->close(), void();
  }
  throw batch::ScriptStop{batch::CannotCarryOut, "there is no help window"};
}

}  // namespace

bool ComesUpForPicture(bool IsBox) {
  Text& Next = IsBox ? NextBox : NextDialog;
  if (Next.empty()) return false;
  // Within the dialog's own event loop, when it stands there.
  QTimer::singleShot(0, [Name = std::exchange(Next, {})] {
    QWidget* Dialog = QApplication::activeModalWidget();
    if (Dialog == nullptr) return;
    SettleWidgets();
    RunOrStop([&] { SavePicture(Dialog->grab(), Name); });
    Dialog->close();
  });
  return true;
}

void AddPictureCommands() {
  batch::AddCommand("picture", {TakePicture, 1, true});
  batch::AddCommand("helppicture", {TakeHelpPicture, 1, true});
  // boxpicture NAME: the next message box comes up for its picture; dialogpicture NAME: the next file or colour dialog.
  batch::AddCommand("boxpicture", {[](const Words& All) { NextBox = All[1].Value; }, 1, true});
  batch::AddCommand("dialogpicture", {[](const Words& All) { NextDialog = All[1].Value; }, 1, true});
}

void UseThemeForPictures() {
  if (!qEnvironmentVariableIsEmpty("PICTURES_THEME")) WantFirstSight();
  if (qEnvironmentVariable("PICTURES_THEME") != "dark") return;
  const QColor Back(45, 45, 48), Base(30, 30, 32), Words(230, 230, 230), Faint(130, 130, 130);
  QPalette Dark(Words, Back, Back.lighter(150), Back.darker(150), Back.lighter(120), Words, Qt::white, Base, Back);
  Dark.setColor(QPalette::AlternateBase, Back);
  Dark.setColor(QPalette::Highlight, QColor(38, 110, 190));
  Dark.setColor(QPalette::HighlightedText, Qt::white);
  Dark.setColor(QPalette::Link, QColor(110, 170, 240));
  Dark.setColor(QPalette::ToolTipBase, Back);
  Dark.setColor(QPalette::ToolTipText, Words);
  Dark.setColor(QPalette::PlaceholderText, Faint);
  for (const auto Role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
    Dark.setColor(QPalette::Disabled, Role, Faint);
  }
  QApplication::setPalette(Dark);
}

}  // namespace zelvanor::tests
