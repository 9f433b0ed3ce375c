#include "qt/help/HelpWindow.h"

#include <QFile>
#include <QLineEdit>
#include <QListWidget>
#include <QPointer>
#include <QShortcut>
#include <QSplitter>
#include <QStyle>
#include <QTabWidget>
#include <QToolBar>
#include <QTreeWidget>
#include <QTreeWidgetItemIterator>
#include <QVBoxLayout>

#include "platform/TextFiles.h"
#include "qt/Dispatch.h"
#include "qt/TextConversion.h"
#include "qt/controls/ControlWidgets.h"
#include "qt/controls/ItemViews.h"
#include "qt/frame/Remembered.h"
#include "qt/help/FindBar.h"
#include "qt/help/HelpPage.h"
#include "qt/help/HelpSearch.h"
#include "shell/HelpTopics.h"
#include "shell/MainForm.h"
#include "workspace/Helpers.h"

namespace zelvanor {

namespace {

constexpr QSize FirstSize{1000, 720};
constexpr int FirstContentsWidth = 270;
constexpr int LargestZoom = 12;
constexpr int SmallestZoom = -4;
constexpr int PageRole = Qt::UserRole;

class HelpWindow : public QWidget {
 public:
  HelpWindow();
  ~HelpWindow() override { KeepPlace(); }

  void TakeManual(const std::vector<HelpEntry>& Manual, const QString& Place);
  void OpenPage(const QString& Page);
  // To the front, with the keys for the page.
  void Present();

 protected:
  void closeEvent(QCloseEvent* Close) override;

 private:
  QWidget* MakeContents();
  QWidget* MakeSearch();
  QToolBar* MakeTools();
  QAction* AddTool(QToolBar* Tools, const QString& Name, QStyle::StandardPixmap Icon, const QKeySequence& Key);
  void AddKeys();
  void Search(const QString& Typed);
  void OpenHit(const QListWidgetItem* Hit);
  void FollowPage(const QUrl& Page);
  void Zoom(int Steps);
  void KeepPlace();
  void Leave();

  std::vector<HelpEntry> Entries;
  std::vector<HelpText> Texts;  // read at the first search
  QString Folder;
  int ZoomSteps = 0;
  QSplitter* Halves = new QSplitter(this);
  QTabWidget* Finders = new QTabWidget(this);
  QTreeWidget* Contents = new AtWork<QTreeWidget>(this);
  QLineEdit* SearchField = new QLineEdit(this);
  QListWidget* Hits = new AtWork<QListWidget>(this);
  HelpPage* Page = new HelpPage(this);
  FindBar* Find = new FindBar(*Page, this);
};

HelpWindow::HelpWindow() {
  setObjectName("HelpWindow");
  setWindowTitle("Zelvanor Help");
  Finders->addTab(MakeContents(), "&Contents");
  Finders->addTab(MakeSearch(), "&Search");
  auto* Right = new QWidget(this);
  auto* RightColumn = new QVBoxLayout(Right);
  RightColumn->setContentsMargins(0, 0, 0, 0);
  RightColumn->addWidget(Page);
  RightColumn->addWidget(Find);
  Halves->addWidget(Finders);
  Halves->addWidget(Right);
  Halves->setStretchFactor(1, 1);
  Halves->setSizes({FirstContentsWidth, FirstSize.width() - FirstContentsWidth});
  auto* Column = new QVBoxLayout(this);
  Column->setContentsMargins(0, 0, 0, 0);
  Column->addWidget(MakeTools());
  Column->addWidget(Halves);
  AddKeys();
  connect(Page, &QTextBrowser::sourceChanged, this, &HelpWindow::FollowPage);
  resize(FirstSize);
  const HelpPlace Place = RememberedHelpPlace();
  restoreGeometry(Place.Geometry);
  Halves->restoreState(Place.Halves);
  Zoom(Place.ZoomSteps);
}

QWidget* HelpWindow::MakeContents() {
  Contents->setHeaderHidden(true);
  Contents->setAccessibleName("Contents");
  const auto Open = [this](const QTreeWidgetItem* Item) {
    if (Item == nullptr || Item->data(0, PageRole).toString().isEmpty()) return;
    Page->MarkWords({});
    OpenPage(Item->data(0, PageRole).toString());
  };
  connect(Contents, &QTreeWidget::currentItemChanged, this, Open);
  return Contents;
}

QWidget* HelpWindow::MakeSearch() {
  auto* Panel = new QWidget(this);
  auto* Column = new QVBoxLayout(Panel);
  SearchField->setPlaceholderText("Words on a page");
  SearchField->setAccessibleName("Search all pages");
  SearchField->setClearButtonEnabled(true);
  Hits->setAccessibleName("Pages found");
  Hits->setWordWrap(true);
  Hits->setAlternatingRowColors(true);
  Column->addWidget(SearchField);
  Column->addWidget(Hits);
  connect(SearchField, &QLineEdit::textChanged, this, &HelpWindow::Search);
  connect(SearchField, &QLineEdit::returnPressed, this, [this] {
    if (Hits->count() == 0) return;
    Hits->setCurrentRow(0);
    Hits->setFocus();
  });
  connect(Hits, &QListWidget::currentItemChanged, this, &HelpWindow::OpenHit);
  return Panel;
}

QAction* HelpWindow::AddTool(QToolBar* Tools, const QString& Name, QStyle::StandardPixmap Icon,
                             const QKeySequence& Key) {
  QAction* Tool = Tools->addAction(style()->standardIcon(Icon), Name);
  Tool->setShortcut(Key);
  Tool->setToolTip(Name + " (" + Key.toString(QKeySequence::NativeText) + ")");
  return Tool;
}

QToolBar* HelpWindow::MakeTools() {
  auto* Tools = new QToolBar(this);
  Tools->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
  QAction* Back = AddTool(Tools, "Back", QStyle::SP_ArrowBack, QKeySequence("Alt+Left"));
  QAction* Forward = AddTool(Tools, "Forward", QStyle::SP_ArrowForward, QKeySequence("Alt+Right"));
  QAction* Home = AddTool(Tools, "Home", QStyle::SP_DirHomeIcon, QKeySequence("Alt+Home"));
  Back->setEnabled(false);
  Forward->setEnabled(false);
  connect(Back, &QAction::triggered, Page, &QTextBrowser::backward);
  connect(Forward, &QAction::triggered, Page, &QTextBrowser::forward);
  connect(Page, &QTextBrowser::backwardAvailable, Back, &QAction::setEnabled);
  connect(Page, &QTextBrowser::forwardAvailable, Forward, &QAction::setEnabled);
  connect(Home, &QAction::triggered, this, [this] {
    if (const HelpEntry* Entry = FindHelpEntry(Entries, ContentsHelp)) OpenPage(ToQt(Entry->Page));
  });
  // A tool bar takes no focus by itself, and so its buttons would be out of the keyboard's reach.
  for (QAction* Tool : Tools->actions()) Tools->widgetForAction(Tool)->setFocusPolicy(Qt::TabFocus);
  return Tools;
}

void HelpWindow::AddKeys() {
  const auto Add = [this](const QKeySequence& Key, auto Work) {
    connect(new QShortcut(Key, this), &QShortcut::activated, this, Work);
  };
  Add(QKeySequence("Escape"), [this] { Leave(); });
  Add(QKeySequence("Ctrl+W"), [this] { close(); });
  Add(QKeySequence("Ctrl+F"), [this] { Find->Open(); });
  Add(QKeySequence("F3"), [this] { Find->FindNext(false); });
  Add(QKeySequence("Shift+F3"), [this] { Find->FindNext(true); });
  Add(QKeySequence("Ctrl+Shift+F"), [this] {
    Finders->setCurrentIndex(1);
    SearchField->setFocus();
    SearchField->selectAll();
  });
  Add(QKeySequence("Ctrl++"), [this] { Zoom(1); });
  Add(QKeySequence("Ctrl+="), [this] { Zoom(1); });
  Add(QKeySequence("Ctrl+-"), [this] { Zoom(-1); });
  Add(QKeySequence("Ctrl+0"), [this] { Zoom(-ZoomSteps); });
}

void HelpWindow::TakeManual(const std::vector<HelpEntry>& Manual, const QString& Place) {
  Entries = Manual;
  Folder = Place;
  Texts.clear();
  const QSignalBlocker Quiet(Contents);
  Contents->clear();
  std::vector<QTreeWidgetItem*> Above;  // the last item of each level
  for (const HelpEntry& Entry : Entries) {
    Above.resize(static_cast<std::size_t>(Entry.Level) - 1);
    auto* Item = Above.empty() ? new QTreeWidgetItem(Contents) : new QTreeWidgetItem(Above.back());
    Item->setText(0, ToQt(Entry.Title));
    Item->setData(0, PageRole, PathToQt(Entry.Page));
    Above.push_back(Item);
  }
  Contents->expandAll();
}

void HelpWindow::OpenPage(const QString& Name) { Page->setSource(QUrl::fromLocalFile(Folder + "/" + Name)); }

void HelpWindow::Present() {
  show();
  raise();
  activateWindow();
  Page->setFocus();
}

void HelpWindow::FollowPage(const QUrl& Shown) {
  const QSignalBlocker Quiet(Contents);
  for (QTreeWidgetItemIterator Item(Contents); *Item != nullptr; ++Item) {
    if ((*Item)->data(0, PageRole).toString() == Shown.fileName()) Contents->setCurrentItem(*Item);
  }
}

void HelpWindow::Search(const QString& Typed) {
  if (Texts.empty()) Texts = LoadHelpTexts(Entries, Folder);
  const QSignalBlocker Quiet(Hits);
  Hits->clear();
  for (const HelpHit& Hit : SearchHelp(Texts, SearchWords(Typed))) {
    auto* Item = new QListWidgetItem(Hit.Title + "\n" + Hit.Line, Hits);
    Item->setData(PageRole, Hit.Page);
  }
}

void HelpWindow::OpenHit(const QListWidgetItem* Hit) {
  if (Hit == nullptr) return;
  OpenPage(Hit->data(PageRole).toString());
  Page->MarkWords(SearchWords(SearchField->text()));
}

void HelpWindow::Zoom(int Steps) {
  const int Wanted = qBound(SmallestZoom, ZoomSteps + Steps, LargestZoom);
  Page->zoomIn(Wanted - ZoomSteps);
  ZoomSteps = Wanted;
}

// Escape: out of the bar first, then out of the window.
void HelpWindow::Leave() {
  if (Find->isVisible()) {
    Find->hide();
    Page->setFocus();
  } else {
    close();
  }
}

void HelpWindow::KeepPlace() { RememberHelpPlace({saveGeometry(), Halves->saveState(), ZoomSteps}); }

void HelpWindow::closeEvent(QCloseEvent* Close) {
  KeepPlace();
  QWidget::closeEvent(Close);
}

// The one window. It has no parent: the dialogs of the main window would keep it from being used. It goes with the main
// window all the same.
HelpWindow* Window() {
  static QPointer<HelpWindow> Made;
  if (Made.isNull()) {
    Made = new HelpWindow;
    if (QWidget* Frame = WidgetOf(Main.frmNMR)) {
      QObject::connect(Frame, &QObject::destroyed, Made.data(), [] { delete Made.data(); });
    }
  }
  return Made;
}

int PageNumber(HelpCommand Command, int Context) {
  switch (Command) {
    case HelpCommand::Contents:
      return ContentsHelp;
    case HelpCommand::HelpOnHelp:
      return UsingHelp;
    default:
      return Context;
  }
}

}  // namespace

void ShowHelpWindow(const Text& File, HelpCommand Command, int Context) {
  if (!IsSet(FileExists(File))) return ShowStatus("There is no help file " + File + ".");
  try {
    const std::vector<HelpEntry> Entries = ReadHelpContents(File);
    HelpWindow* Help = Window();
    Help->TakeManual(Entries, PathToQt(HelpFolder(File)));
    const HelpEntry* Entry = FindHelpEntry(Entries, PageNumber(Command, Context));
    if (Entry == nullptr) Entry = FindHelpEntry(Entries, ContentsHelp);
    if (Entry == nullptr) return ShowStatus("The help file " + File + " names no page.");
    Help->OpenPage(PathToQt(Entry->Page));
    Help->Present();
  } catch (const Failure& Problem) {
    ShowStatus("The help file " + File + " can't be used: " + Problem.What + ".");
  }
}

void AddHelpKey(QWidget* Window, const Form& Target) {
  auto* Key = new QShortcut(Qt::Key_F1, Window);
  QObject::connect(Key, &QShortcut::activated, Window, [&Target] { Dispatch([&Target] { ShowContextHelp(Target); }); });
}

void AddHelpKey(QWidget* Window, int Context) {
  auto* Key = new QShortcut(Qt::Key_F1, Window);
  QObject::connect(Key, &QShortcut::activated, Window,
                   [Context] { ShowHelpWindow(Main.HelpFile, HelpCommand::Context, Context); });
}

}  // namespace zelvanor
