#include <QAbstractButton>
#include <QAbstractTableModel>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QTableView>
#include <QTimer>
#include <algorithm>

#include "platform/Form.h"
#include "platform/Grid.h"
#include "qt/Dispatch.h"
#include "qt/TextConversion.h"
#include "qt/controls/ControlWidgets.h"
#include "qt/frame/Remembered.h"
#include "qt/views/SurfaceMarks.h"
#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

// Widths of columns are meant for a face whose digits are this wide.
constexpr double DigitTwips = 82;
constexpr int KeepMilliseconds = 300;

// The cells where they are, in the control. Header rows and columns of the grid are the headers of the view.
class GridModel : public QAbstractTableModel {
 public:
  GridModel(const GridControl& Grid, QObject* Parent) : QAbstractTableModel(Parent), Grid(Grid) {}

  int rowCount(const QModelIndex& Above = {}) const override {
    return Above.isValid() ? 0 : std::max(RowsOf(Grid) - Grid.FixedRows, 0);
  }
  int columnCount(const QModelIndex& Above = {}) const override {
    return Above.isValid() ? 0 : std::max(ColsOf(Grid) - Grid.FixedCols, 0);
  }

  QVariant data(const QModelIndex& Place, int Role) const override {
    switch (Role) {
      case Qt::DisplayRole:
        return Words(Place.row() + Grid.FixedRows, Place.column() + Grid.FixedCols);
      case Qt::TextAlignmentRole:
        return int(Qt::AlignRight | Qt::AlignVCenter);
      default:
        return {};
    }
  }

  QVariant headerData(int Section, Qt::Orientation Along, int Role) const override {
    if (Role == Qt::TextAlignmentRole) {
      return int(Along == Qt::Horizontal ? Qt::AlignHCenter | Qt::AlignVCenter : Qt::AlignLeft | Qt::AlignVCenter);
    }
    if (Role != Qt::DisplayRole) return {};
    QString Title;
    if (Along == Qt::Vertical) {
      for (int Col = 0; Col < Grid.FixedCols; ++Col) Title += Words(Section + Grid.FixedRows, Col);
      return Title;
    }
    for (int Row = 0; Row < Grid.FixedRows; ++Row) {
      Title += (Row > 0 ? "\n" : "") + Words(Row, Section + Grid.FixedCols);
    }
    return Title;
  }

  QString CornerTitle() const { return Words(0, 0); }

  void TakeNewSize() {
    beginResetModel();
    endResetModel();
  }
  void TakeNewTexts() {
    if (rowCount() == 0 || columnCount() == 0) return;
    Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, columnCount() - 1));
    Q_EMIT headerDataChanged(Qt::Horizontal, 0, columnCount() - 1);
    Q_EMIT headerDataChanged(Qt::Vertical, 0, rowCount() - 1);
  }

 private:
  // The view may ask for a cell of a size that the program has left behind already.
  QString Words(int Row, int Col) const {
    if (Row >= RowsOf(Grid) || Col >= ColsOf(Grid)) return {};
    return ToQt(CellText(Grid, Row, Col));
  }

  const GridControl& Grid;
};

class GridView : public QTableView {
 public:
  GridView(GridControl& Grid, QWidget* Parent) : QTableView(Parent), Grid(Grid), Model(new GridModel(Grid, this)) {
    setModel(Model);
    setSelectionMode(ContiguousSelection);
    setEditTriggers(NoEditTriggers);
    setTabKeyNavigation(false);
    setHorizontalScrollMode(ScrollPerPixel);
    setVerticalScrollMode(ScrollPerPixel);
    setWordWrap(false);
    setTextElideMode(Qt::ElideNone);
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 8);
    horizontalHeader()->setMinimumSectionSize(16);
    horizontalHeader()->setHighlightSections(true);
    verticalHeader()->setHighlightSections(true);
    MakeCorner();
    Keep.setSingleShot(true);
    Keep.setInterval(KeepMilliseconds);
    QObject::connect(&Keep, &QTimer::timeout, this, [this] { KeepWidths(); });
    Late.setSingleShot(true);
    QObject::connect(&Late, &QTimer::timeout, this, [this] { FollowGrid(); });
    QObject::connect(horizontalHeader(), &QHeaderView::sectionResized, this,
                     [this](int Section, int, int Size) { TakeWidth(Section, Size); });
  }

  ~GridView() override {
    if (Keep.isActive()) KeepWidths();
  }

  // Many changes in a row are shown once, when the program has come to its end.
  void Follow(Property What) {
    NewSize = NewSize || What == Property::Items;
    NewWidths = NewWidths || What == Property::Items || What == Property::Range;
    NewTexts = NewTexts || What == Property::Cells;
    Late.start(0);
  }

 protected:
  void keyPressEvent(QKeyEvent* Key) override {
    if (const int Code = CharacterOf(*Key)) {
      if (MayAct(Grid)) Dispatch([&] { PressGridKey(Grid, Code); });
      return Key->accept();
    }
    // Its own copying would take one cell.
    if (Key->matches(QKeySequence::Copy)) return Key->ignore();
    QTableView::keyPressEvent(Key);
  }

  void mousePressEvent(QMouseEvent* Mouse) override {
    QTableView::mousePressEvent(Mouse);
    DispatchEvent(Grid, Grid.MouseDown);
  }

  void paintEvent(QPaintEvent* Paint) override {
    QTableView::paintEvent(Paint);
    if (Model->columnCount() > 0 && Model->rowCount() > 0) return;
    QPainter Painter(viewport());
    PaintHint(Painter, *this, viewport()->rect(),
              "The table is empty: there are no NMR atoms.\n\nSetup > Shielding & Coupling... > NMR Atoms...");
  }

  void selectionChanged(const QItemSelection& Selected, const QItemSelection& Deselected) override {
    QTableView::selectionChanged(Selected, Deselected);
    if (!Following) TakeSelection();
  }

 private:
  bool InDialog() const { return Grid.Owner->Name != MainFormName; }

  // The character of a key that is the program's; 0 for those of the view.
  int CharacterOf(const QKeyEvent& Key) const {
    if (Key.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) return 0;
    switch (Key.key()) {
      case Qt::Key_Return:
      case Qt::Key_Enter:
        return InDialog() ? 0 : '\r';
      case Qt::Key_Escape:
        return InDialog() ? 0 : 27;
      case Qt::Key_Backspace:
        return '\b';
      default:
        break;
    }
    const QString Typed = Key.text();
    return Typed.size() == 1 && Typed[0].isPrint() ? Typed[0].unicode() : 0;
  }

  void MakeCorner() {
    auto* Button = findChild<QAbstractButton*>();
    if (Button == nullptr) return;
    Corner = new QLabel(Button);
    Corner->setAttribute(Qt::WA_TransparentForMouseEvents);
    Corner->setIndent(4);
    auto* Follower = new ResizeFollower(Button, Corner);
    Button->installEventFilter(Follower);
  }

  class ResizeFollower : public QObject {
   public:
    ResizeFollower(QWidget* Watched, QWidget* Inner) : QObject(Watched), Inner(Inner) {}
    bool eventFilter(QObject* Watched, QEvent* Event) override {
      if (Event->type() == QEvent::Resize) Inner->setGeometry(static_cast<QWidget*>(Watched)->rect());
      return false;
    }

   private:
    QWidget* Inner;
  };

  double PixelsPerTwip() const { return fontMetrics().horizontalAdvance('0') / DigitTwips; }

  void TakeWidth(int Section, int Size) {
    if (Following) return;
    const int Twips = qRound(Size / PixelsPerTwip());
    Dispatch([&] { SetColWidth(Grid, Section + Grid.FixedCols, Twips); });
    TakeView();
    Dragged[Section] = Twips;
    Keep.start();
  }

  // One grid shows several tables, each with widths of its own.
  void TakeView() {
    const QString Present = QString("%1-%2").arg(ToQt(ControlName(Grid))).arg(int(Workspace.ViewMode));
    if (Present == View) return;
    if (Keep.isActive()) KeepWidths();
    View = Present;
    Dragged = RememberedWidths(View);
  }

  void KeepWidths() {
    Keep.stop();
    RememberWidths(View, Dragged);
  }

  // A table that is filled gets the program's widths; those that the user has dragged come back.
  void BringBackWidths() {
    TakeView();
    for (const auto& [Section, Twips] : Dragged) {
      if (Section < Model->columnCount()) SetColWidth(Grid, Section + Grid.FixedCols, Twips);
    }
  }

  void ShowWidths() {
    // Each resized section would lay the rest out again.
    horizontalHeader()->setUpdatesEnabled(false);
    for (int Col = Grid.FixedCols; Col < ColsOf(Grid); ++Col) {
      const int Size = qRound(Grid.ColWidths[static_cast<std::size_t>(Col)] * PixelsPerTwip());
      if (horizontalHeader()->sectionSize(Col - Grid.FixedCols) != Size) setColumnWidth(Col - Grid.FixedCols, Size);
    }
    horizontalHeader()->setUpdatesEnabled(true);
    if (!Grid.ColWidths.empty()) verticalHeader()->setFixedWidth(qRound(Grid.ColWidths.front() * PixelsPerTwip()));
  }

  QItemSelection WantedSelection() const {
    const QModelIndex First =
        Model->index(std::max(Grid.SelStartRow - Grid.FixedRows, 0), std::max(Grid.SelStartCol - Grid.FixedCols, 0));
    const QModelIndex Last = Model->index(Grid.SelEndRow - Grid.FixedRows, Grid.SelEndCol - Grid.FixedCols);
    return First.isValid() && Last.isValid() ? QItemSelection(First, Last) : QItemSelection();
  }

  void ShowSelection() {
    const QItemSelection Wanted = WantedSelection();
    const QItemSelection Present = selectionModel()->selection();
    const bool Same = Present.size() == 1 && Wanted.size() == 1 && Present.front() == Wanted.front();
    if (!Same) selectionModel()->select(Wanted, QItemSelectionModel::ClearAndSelect);
    const QModelIndex Current = Model->index(Grid.Row - Grid.FixedRows, Grid.Col - Grid.FixedCols);
    // In a range the view's own current cell is the end that moves.
    const bool Alone = Grid.SelStartRow == Grid.SelEndRow && Grid.SelStartCol == Grid.SelEndCol;
    if (Current.isValid() && (Alone || !Wanted.contains(currentIndex()))) {
      selectionModel()->setCurrentIndex(Current, QItemSelectionModel::NoUpdate);
    }
  }

  void FollowGrid() {
    Following = true;
    if (std::exchange(NewSize, false)) Model->TakeNewSize();
    if (std::exchange(NewWidths, false)) {
      BringBackWidths();
      ShowWidths();
    }
    if (std::exchange(NewTexts, false)) {
      Model->TakeNewTexts();
      if (Corner != nullptr) Corner->setText(Model->CornerTitle());
    }
    ShowSelection();
    Following = false;
  }

  // The range the user has selected, from the cell where it began.
  void TakeSelection() {
    const QItemSelection Selection = selectionModel()->selection();
    if (Selection.isEmpty() || NewSize) return;
    QRect Range;
    for (const QItemSelectionRange& Part : Selection) {
      Range |= QRect(QPoint(Part.left(), Part.top()), QPoint(Part.right(), Part.bottom()));
    }
    if (Range.size() == QSize(1, 1)) Anchor = Range.topLeft();
    const auto IsEnd = [](int Place, int First, int Last) { return Place == First || Place == Last; };
    if (!IsEnd(Anchor.x(), Range.left(), Range.right()) || !IsEnd(Anchor.y(), Range.top(), Range.bottom())) {
      Anchor = Range.topLeft();
    }
    const int FarX = Anchor.x() == Range.left() ? Range.right() : Range.left();
    const int FarY = Anchor.y() == Range.top() ? Range.bottom() : Range.top();
    if (!MayAct(Grid)) return Late.start(0);
    Dispatch([&] {
      PickRange(Grid, Anchor.y() + Grid.FixedRows, Anchor.x() + Grid.FixedCols, FarY + Grid.FixedRows,
                FarX + Grid.FixedCols);
    });
  }

  GridControl& Grid;
  GridModel* Model;
  QLabel* Corner = nullptr;  // title of the label column
  QTimer Late;
  QTimer Keep;             // writes widths when the drag has come to rest
  QString View;            // the table that Dragged belongs to
  ColumnWidths Dragged;    // by the user
  QPoint Anchor;           // column and row where the user's selection began
  bool Following = false;  // what the view tells is not from the user
  bool NewSize = true;
  bool NewWidths = true;
  bool NewTexts = true;
};

}  // namespace

QWidget* MakeGrid(Control& Target, QWidget* Parent) {
  auto& Grid = static_cast<GridControl&>(Target);
  auto* Shown = new GridView(Grid, Parent);
  if (Grid.Owner->Name != MainFormName) Shown->setMinimumSize(320, 140);
  BindWidget(Grid, Shown, [&Grid, Shown](Property What) {
    Shown->Follow(What);
    if (What == Property::Focus) Shown->setFocus();
  });
  return Shown;
}

}  // namespace zelvanor
