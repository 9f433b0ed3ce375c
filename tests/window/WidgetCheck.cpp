#include <QAbstractButton>
#include <QAction>
#include <QComboBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QMenu>
#include <QScrollBar>
#include <QTableView>
#include <QToolButton>
#include <algorithm>

#include "WindowScript.h"
#include "basic/NumberText.h"
#include "batch/Batch.h"
#include "platform/Grid.h"
#include "qt/TextConversion.h"
#include "qt/controls/ControlWidgets.h"
#include "shell/MainForm.h"

namespace zelvanor::tests {

namespace {

Text Words(const QString& Value) { return batch::Escaped(FromQt(Value)); }
Text Words(int Value) { return GeneralForm(Long{Value}); }
Text Words(bool Value) { return Value ? "yes" : "no"; }

template <class T>
void Compare(const Control& Of, const char* Property, const T& Shows, const T& Holds) {
  if (Shows == Holds) return;
  batch::PrintOut("WIDGET DIFFERS line " + Words(batch::State.LineNumber) + ": " + ControlName(Of) + " " + Property +
                  " shows " + Words(Shows) + ", holds " + Words(Holds));
}

void CompareButton(const Control& Of, const QAbstractButton& Shown, bool IsOn) {
  Compare(Of, "Caption", Shown.text(), ToQtLines(Of.Caption));
  Compare(Of, "Value", Shown.isChecked(), IsOn);
}

template <class List>
void CompareItems(const List& Of, const QAbstractItemModel& Model) {
  const int NumItems = static_cast<int>(Of.Items.size());
  Compare(Of, "ListCount", Model.rowCount(), NumItems);
  for (int Row = 0; Row < std::min(NumItems, Model.rowCount()); ++Row) {
    Compare(Of, "List", Model.index(Row, 0).data().toString(), ToQt(Of.Items[static_cast<std::size_t>(Row)]));
  }
}

void CompareList(const ListBox& Of, const QListView& Shown) {
  CompareItems(Of, *Shown.model());
  const QItemSelectionModel& Selection = *Shown.selectionModel();
  for (int Row = 0; Row < static_cast<int>(Of.Items.size()); ++Row) {
    const bool Holds = Of.Multiple ? Of.Selected[static_cast<std::size_t>(Row)] : Row == Of.ListIndex;
    Compare(Of, "Selected", Selection.isSelected(Shown.model()->index(Row, 0)), Holds);
  }
}

void CompareScrollBar(const ScrollBar& Of, const QScrollBar& Shown) {
  const auto [Low, High] = std::minmax(Of.Min, Of.Max);
  Compare(Of, "least value", Shown.minimum(), Low);
  Compare(Of, "greatest value", Shown.maximum(), High);
  // A bar that falls from Min to Max has its Min on the left all the same.
  Compare(Of, "Value", Of.Min > Of.Max ? Low + High - Shown.value() : Shown.value(), Of.Value);
  Compare(Of, "SmallChange", Shown.singleStep(), std::max(Of.SmallChange, 1));
  Compare(Of, "LargeChange", Shown.pageStep(), std::max(Of.LargeChange, 1));
}

void CompareGridCells(const GridControl& Of, const QTableView& Shown) {
  const QAbstractItemModel& Model = *Shown.model();
  for (int Row = 0; Row < Model.rowCount(); ++Row) {
    Text Header;
    for (int Col = 0; Col < Of.FixedCols; ++Col) Header += CellText(Of, Row + Of.FixedRows, Col);
    Compare(Of, "row header", Model.headerData(Row, Qt::Vertical).toString(), ToQt(Header));
    for (int Col = 0; Col < Model.columnCount(); ++Col) {
      Compare(Of, "Cell", Model.index(Row, Col).data().toString(),
              ToQt(CellText(Of, Row + Of.FixedRows, Col + Of.FixedCols)));
    }
  }
  for (int Col = 0; Of.FixedRows == 1 && Col < Model.columnCount(); ++Col) {
    Compare(Of, "column header", Model.headerData(Col, Qt::Horizontal).toString(),
            ToQt(CellText(Of, 0, Col + Of.FixedCols)));
  }
}

// The range without the headers, of which the view knows nothing.
QRect BodyRange(const GridControl& Of) {
  const QPoint First(std::max(Of.SelStartCol - Of.FixedCols, 0), std::max(Of.SelStartRow - Of.FixedRows, 0));
  return {First, QPoint(Of.SelEndCol - Of.FixedCols, Of.SelEndRow - Of.FixedRows)};
}

void CompareGrid(const GridControl& Of, const QTableView& Shown) {
  const QAbstractItemModel& Model = *Shown.model();
  Compare(Of, "Rows", Model.rowCount(), std::max(RowsOf(Of) - Of.FixedRows, 0));
  Compare(Of, "Cols", Model.columnCount(), std::max(ColsOf(Of) - Of.FixedCols, 0));
  if (Model.rowCount() != RowsOf(Of) - Of.FixedRows || Model.columnCount() != ColsOf(Of) - Of.FixedCols) return;
  CompareGridCells(Of, Shown);
  const QRect Range = BodyRange(Of);
  const QItemSelection Selection = Shown.selectionModel()->selection();
  Compare(Of, "number of selected ranges", static_cast<int>(Selection.size()), Range.isValid() ? 1 : 0);
  if (Selection.size() == 1 && Range.isValid()) {
    Compare(Of, "SelStartRow", Selection.front().top(), Range.top());
    Compare(Of, "SelEndRow", Selection.front().bottom(), Range.bottom());
    Compare(Of, "SelStartCol", Selection.front().left(), Range.left());
    Compare(Of, "SelEndCol", Selection.front().right(), Range.right());
  }
  if (Range.size() == QSize(1, 1) && Of.Row >= Of.FixedRows && Of.Col >= Of.FixedCols) {
    Compare(Of, "Row", Shown.currentIndex().row(), Of.Row - Of.FixedRows);
    Compare(Of, "Col", Shown.currentIndex().column(), Of.Col - Of.FixedCols);
  }
}

void CompareMenuItem(const MenuItem& Of, const QAction& Shown) {
  Compare(Of, "Visible", Shown.isVisible(), IsSet(Of.Visible));
  // A hidden action counts as disabled, whatever it was told.
  if (IsSet(Of.Visible)) Compare(Of, "Enabled", Shown.isEnabled(), IsSet(Of.Enabled));
  Compare(Of, "Checked", Shown.isChecked(), IsSet(Of.Checked));
  if (!Of.Separator) Compare(Of, "Caption", Shown.text(), ToQt(Of.Caption));
}

void CompareOwn(const Control& Of, const QWidget& Shown) {
  switch (Of.Kind) {
    case ControlKind::CommandButton:
      return CompareButton(Of, static_cast<const QAbstractButton&>(Shown), false);
    case ControlKind::CheckBox:
      return CompareButton(Of, static_cast<const QAbstractButton&>(Shown), static_cast<const CheckBox&>(Of).Value != 0);
    case ControlKind::OptionButton:
      return CompareButton(Of, static_cast<const QAbstractButton&>(Shown),
                           IsSet(static_cast<const OptionButton&>(Of).Value));
    case ControlKind::ToolButton:
      return Compare(Of, "Pressed", static_cast<const QToolButton&>(Shown).isChecked(),
                     IsSet(static_cast<const ToolButton&>(Of).Pressed));
    case ControlKind::TextField:
      return Compare(Of, "Text", static_cast<const QLineEdit&>(Shown).text(),
                     ToQt(static_cast<const TextField&>(Of).Value));
    case ControlKind::Label: {
      const auto& Line = static_cast<const QLabel&>(Shown);
      return Compare(Of, "Caption", Line.text(),
                     Line.buddy() == nullptr ? PlainCaption(Of.Caption) : ToQtLines(Of.Caption));
    }
    case ControlKind::StatusLine:
      return Compare(Of, "Text", static_cast<const QLabel&>(Shown).text(),
                     ToQt(static_cast<const StatusLine&>(Of).Value));
    case ControlKind::ListBox:
      return CompareList(static_cast<const ListBox&>(Of), static_cast<const QListView&>(Shown));
    case ControlKind::ComboBox: {
      const auto& List = static_cast<const ComboBox&>(Of);
      const auto& Combo = static_cast<const QComboBox&>(Shown);
      CompareItems(List, *Combo.model());
      return Compare(Of, "ListIndex", Combo.currentIndex(), List.ListIndex);
    }
    case ControlKind::ScrollBar:
      return CompareScrollBar(static_cast<const ScrollBar&>(Of), static_cast<const QScrollBar&>(Shown));
    case ControlKind::Grid:
      return CompareGrid(static_cast<const GridControl&>(Of), static_cast<const QTableView&>(Shown));
    default:
      return;
  }
}

void ComparePlace(const Control& Of, const QWidget& Shown) {
  if (Of.Owner != &Main.frmNMR || Of.Kind == ControlKind::ToolButton || Of.Width <= 0) return;
  Compare(Of, "Left", Shown.x(), PixelsFromTwips(Of.Left));
  Compare(Of, "Top", Shown.y(), PixelsFromTwips(Of.Top));
  Compare(Of, "Width", Shown.width(), PixelsFromTwips(Of.Width));
  Compare(Of, "Height", Shown.height(), PixelsFromTwips(Of.Height));
}

// A surface that keeps its picture has to draw it anew after each change: told of one, it shows the same.
void CompareDrawing(Control& Of, QWidget& Shown) {
  const QImage Kept = Shown.grab().toImage();
  ShowChange(Of, Property::Picture);
  Compare(Of, "fresh picture", Shown.grab().toImage() == Kept, true);
}

void CheckControl(Control& Of) {
  QObject* Shown = ShownOf(Of);
  Compare(Of, "widget", Shown != nullptr, true);
  if (Shown == nullptr) return;
  if (Of.Kind == ControlKind::MenuItem) {
    return CompareMenuItem(static_cast<const MenuItem&>(Of), *static_cast<const QAction*>(Shown));
  }
  auto& Widget = *static_cast<QWidget*>(Shown);
  Compare(Of, "Enabled", Widget.isEnabled(), IsSet(Of.Enabled));
  Compare(Of, "Visible", Widget.isVisible(), IsSet(Of.Visible));
  if (!IsSet(Of.Visible)) return;
  ComparePlace(Of, Widget);
  CompareOwn(Of, Widget);
  const bool IsDrawn =
      Of.Kind == ControlKind::PictureSurface || Of.Kind == ControlKind::RenderControl || Of.Kind == ControlKind::Chart;
  if (IsDrawn) CompareDrawing(Of, Widget);
}

void CheckForm(const Form& Of) {
  const QWidget* Window = WidgetOf(Of);
  Compare(Of, "Visible", Window != nullptr && Window->isVisible(), IsSet(Of.Visible));
  if (Window == nullptr || !IsSet(Of.Visible)) return;
  Compare(Of, "Title", Window->windowTitle(), ToQt(Of.Caption));
  for (Control* Item : Of.Controls) CheckControl(*Item);
}

}  // namespace

void CheckWidgets() {
  CheckForm(Main.frmNMR);
  for (const Form* Window : ModalForms()) CheckForm(*Window);
}

}  // namespace zelvanor::tests
