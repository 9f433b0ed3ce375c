#include <QAbstractListModel>
#include <QComboBox>
#include <QItemSelectionModel>
#include <QListView>
#include <QPainter>
#include <QSignalBlocker>
#include <QTimer>
#include <memory>

#include "qt/Dispatch.h"
#include "qt/TextConversion.h"
#include "qt/controls/ControlWidgets.h"
#include "qt/controls/ItemViews.h"
#include "qt/views/SurfaceMarks.h"

namespace zelvanor {

namespace {

// The items where they are, in the control: lists have thousands of them.
class ItemModel : public QAbstractListModel {
 public:
  ItemModel(const ListBox& List, QObject* Parent) : QAbstractListModel(Parent), List(List) {}

  int rowCount(const QModelIndex& Above = {}) const override {
    return Above.isValid() ? 0 : static_cast<int>(List.Items.size());
  }
  QVariant data(const QModelIndex& Place, int Role) const override {
    if (Role != Qt::DisplayRole || Place.row() >= rowCount()) return {};
    return ToQt(List.Items[static_cast<std::size_t>(Place.row())]);
  }
  void TakeNewItems() {
    beginResetModel();
    endResetModel();
  }

 private:
  const ListBox& List;
};

class ItemView : public AtWork<QListView> {
 public:
  ItemView(const ListBox& List, QWidget* Parent) : AtWork(Parent), List(List) {}

 protected:
  void paintEvent(QPaintEvent* Paint) override {
    QListView::paintEvent(Paint);
    if (!List.Items.empty() || List.EmptyHint.empty()) return;
    QPainter Painter(viewport());
    PaintHint(Painter, *this, viewport()->rect(), ToQt(List.EmptyHint));
  }

 private:
  const ListBox& List;
};

struct ListParts {
  ListBox* List = nullptr;
  QListView* View = nullptr;
  ItemModel* Model = nullptr;
  QTimer* Late = nullptr;  // one showing for many changed rows
  bool Following = false;  // what the view tells is not from the user, or the view is ahead of the control
};

QItemSelection SelectedRows(const ListParts& Parts) {
  QItemSelection Rows;
  const auto& Selected = Parts.List->Selected;
  for (std::size_t Row = 0; Row < Selected.size();) {
    if (!Selected[Row]) {
      ++Row;
      continue;
    }
    std::size_t End = Row;
    while (End < Selected.size() && Selected[End]) ++End;
    Rows.select(Parts.Model->index(static_cast<int>(Row)), Parts.Model->index(static_cast<int>(End) - 1));
    Row = End;
  }
  return Rows;
}

void ShowSelection(ListParts& Parts) {
  Parts.Following = true;
  QItemSelectionModel* Selection = Parts.View->selectionModel();
  const QModelIndex Current = Parts.Model->index(Parts.List->ListIndex);
  if (Parts.List->Multiple) {
    Selection->select(SelectedRows(Parts), QItemSelectionModel::ClearAndSelect);
  } else if (Current.isValid()) {
    Selection->setCurrentIndex(Current, QItemSelectionModel::ClearAndSelect);
    Parts.View->scrollTo(Current);
  } else {
    Selection->clear();
  }
  Parts.Following = false;
}

// The whole selection of the user goes over before the one Click.
void TakeMultipleSelection(ListParts& Parts) {
  ListBox& List = *Parts.List;
  Parts.Following = true;
  std::vector<bool> Selected(List.Items.size(), false);
  for (const QModelIndex& Place : Parts.View->selectionModel()->selectedIndexes()) {
    Selected[static_cast<std::size_t>(Place.row())] = true;
  }
  Dispatch([&] {
    for (std::size_t Row = 0; Row < Selected.size(); ++Row) {
      if (List.Selected[Row] != Selected[Row]) SetSelected(List, static_cast<int>(Row), Selected[Row]);
    }
  });
  Parts.Following = false;
  List.ListIndex = Parts.View->currentIndex().row();
  DispatchEvent(List, List.Click);
}

void TakeSelection(ListParts& Parts) {
  ListBox& List = *Parts.List;
  if (Parts.Following) return;
  if (!MayAct(List)) return ShowSelection(Parts);
  if (List.Multiple) return TakeMultipleSelection(Parts);
  const QModelIndexList Rows = Parts.View->selectionModel()->selectedIndexes();
  Dispatch([&] { SetListIndex(List, Rows.isEmpty() ? -1 : Rows.front().row()); });
  ShowSelection(Parts);
}

void ShowList(ListParts& Parts, Property What) {
  if (What == Property::Items) {
    Parts.Following = true;
    Parts.Model->TakeNewItems();
    Parts.Following = false;
  }
  if (What != Property::Items && What != Property::Value) return;
  if (Parts.Following) return;
  if (Parts.List->Multiple) {
    Parts.Late->start();
  } else {
    ShowSelection(Parts);
  }
}

}  // namespace

QWidget* MakeListBox(Control& Target, QWidget* Parent) {
  auto& List = static_cast<ListBox&>(Target);
  auto* View = new ItemView(List, Parent);
  const auto Parts = std::make_shared<ListParts>(ListParts{&List, View, new ItemModel(List, View), new QTimer(View)});
  View->setUniformItemSizes(true);
  View->setEditTriggers(QAbstractItemView::NoEditTriggers);
  View->setSelectionMode(List.Multiple ? QAbstractItemView::ExtendedSelection : QAbstractItemView::SingleSelection);
  View->setModel(Parts->Model);
  View->setMinimumWidth(140);
  Parts->Late->setSingleShot(true);
  QObject::connect(Parts->Late, &QTimer::timeout, View, [Parts] { ShowSelection(*Parts); });
  QObject::connect(View->selectionModel(), &QItemSelectionModel::selectionChanged, View,
                   [Parts] { TakeSelection(*Parts); });
  QObject::connect(View, &QListView::doubleClicked, View, [&List] { DispatchEvent(List, List.DoubleClick); });
  BindWidget(List, View, [Parts](Property What) { ShowList(*Parts, What); });
  return View;
}

QWidget* MakeComboBox(Control& Target, QWidget* Parent) {
  auto& Combo = static_cast<ComboBox&>(Target);
  auto* Shown = new QComboBox(Parent);
  const auto ShowCombo = [&Combo, Shown](bool NewItems) {
    const QSignalBlocker Quiet(Shown);
    if (NewItems) {
      Shown->clear();
      for (const Text& Item : Combo.Items) Shown->addItem(ToQt(Item));
    }
    Shown->setCurrentIndex(Combo.ListIndex);
  };
  QObject::connect(Shown, &QComboBox::currentIndexChanged, Shown, [&Combo, ShowCombo](int Index) {
    if (MayAct(Combo)) Dispatch([&] { SetListIndex(Combo, Index); });
    ShowCombo(false);
  });
  BindWidget(Combo, Shown, [ShowCombo](Property What) {
    if (What == Property::Items || What == Property::Value) ShowCombo(What == Property::Items);
  });
  return Shown;
}

}  // namespace zelvanor
