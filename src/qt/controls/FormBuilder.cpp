#include "qt/controls/FormBuilder.h"

#include <QBoxLayout>
#include <QCheckBox>
#include <QFontMetrics>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <algorithm>

#include "qt/TextConversion.h"
#include "qt/controls/ControlWidgets.h"
#include "qt/controls/FormDialog.h"
#include "qt/frame/Remembered.h"

namespace zelvanor {

namespace {

using Shape = Arrangement::Shape;

// Narrower dialogs cut their own title.
constexpr int LeastWidth = 260;

bool IsItem(const Arrangement& Part) { return Part.Is == Shape::Item && Part.Item != nullptr; }

// A row of nothing but controls that begins with a label; rows of this kind that follow one another share columns.
bool IsFieldRow(const Arrangement& Part) {
  return Part.Is == Shape::Row && Part.Parts.size() > 1 && std::all_of(Part.Parts.begin(), Part.Parts.end(), IsItem) &&
         Part.Parts.front().Item->Kind == ControlKind::Label;
}

// A check box whose caption goes on in the label behind it.
bool GoesOnInLabel(const Arrangement& Row) {
  return Row.Parts.size() >= 2 && IsItem(Row.Parts[0]) && IsItem(Row.Parts[1]) &&
         Row.Parts[0].Item->Kind == ControlKind::CheckBox && Row.Parts[1].Item->Kind == ControlKind::Label;
}

void AddPart(QBoxLayout* Into, const Arrangement& Part, QWidget* Dialog);

QGridLayout* MakeFieldGrid(const std::vector<Arrangement>& Parts, std::size_t First, std::size_t End, QWidget* Dialog) {
  auto* Grid = new QGridLayout;
  int NumColumns = 0;
  for (std::size_t Row = First; Row < End; ++Row) NumColumns = std::max(NumColumns, int(Parts[Row].Parts.size()));
  for (std::size_t Row = First; Row < End; ++Row) {
    const auto& Items = Parts[Row].Parts;
    for (std::size_t Column = 0; Column < Items.size(); ++Column) {
      QWidget* Shown = MakeWidget(*Items[Column].Item, Dialog);
      if (Shown == nullptr) continue;
      const bool Last = Column + 1 == Items.size();
      const int Span = Last ? NumColumns - static_cast<int>(Column) : 1;
      Grid->addWidget(Shown, static_cast<int>(Row - First), static_cast<int>(Column), 1, Span);
    }
  }
  return Grid;
}

void AddColumn(QBoxLayout* Into, const std::vector<Arrangement>& Parts, QWidget* Dialog) {
  for (std::size_t Place = 0; Place < Parts.size();) {
    std::size_t End = Place;
    while (End < Parts.size() && IsFieldRow(Parts[End])) ++End;
    if (End > Place + 1) {
      Into->addLayout(MakeFieldGrid(Parts, Place, End, Dialog));
      Place = End;
    } else {
      AddPart(Into, Parts[Place++], Dialog);
    }
  }
}

// Some styles write titles bold without counting with it.
int WidthOfTitle(const QGroupBox& Group) {
  constexpr int Margins = 24;
  QFont Bold = Group.font();
  Bold.setBold(true);
  return QFontMetrics(Bold).horizontalAdvance(Group.title()) + Margins;
}

void AddPart(QBoxLayout* Into, const Arrangement& Part, QWidget* Dialog) {
  switch (Part.Is) {
    case Shape::Item:
      if (Part.Item == nullptr) return;
      if (QWidget* Shown = MakeWidget(*Part.Item, Dialog)) Into->addWidget(Shown);
      return;
    case Shape::Row: {
      auto* Row = new QHBoxLayout;
      Into->addLayout(Row);
      if (GoesOnInLabel(Part)) Row->setSpacing(0);
      for (const Arrangement& Inner : Part.Parts) AddPart(Row, Inner, Dialog);
      return;
    }
    case Shape::Column: {
      auto* Column = new QVBoxLayout;
      Into->addLayout(Column);
      return AddColumn(Column, Part.Parts, Dialog);
    }
    case Shape::Group: {
      auto* Group = new QGroupBox(ToQt(Part.Title), Dialog);
      Group->setMinimumWidth(WidthOfTitle(*Group));
      AddColumn(new QVBoxLayout(Group), Part.Parts, Group);
      Into->addWidget(Group);
      return;
    }
    case Shape::Stretch:
      return Into->addStretch();
  }
}

Arrangement PlainLayout(const Form& Target) {
  Arrangement Column = ColumnOf({});
  Arrangement Buttons = RowOf({StretchOf()});
  for (Control* Item : Target.Controls) {
    const bool IsButton = Item->Kind == ControlKind::CommandButton;
    (IsButton ? Buttons : Column).Parts.push_back(ItemOf(*Item));
  }
  if (Buttons.Parts.size() > 1) Column.Parts.push_back(Buttons);
  return Column;
}

// What the window itself can be told about its boxes, above the buttons of the preferences.
void AddWindowPreferences(const Form& Target, QVBoxLayout* Outer) {
  if (Target.Name != "frmPreference") return;
  auto* Box = new QCheckBox("Say so in a box when no Morvantis is running");
  Box->setChecked(!RememberedHostSilence());
  QObject::connect(Box, &QCheckBox::toggled, Box, [](bool Told) { RememberHostSilence(!Told); });
  Outer->insertWidget(Outer->count() - 1, Box);
}

bool IsEmpty(const Arrangement& Layout) { return Layout.Is == Shape::Stretch; }

// Forms that hold something that can use more room may be resized.
bool CanUseRoom(const Form& Target) {
  return std::any_of(Target.Controls.begin(), Target.Controls.end(), [](const Control* Item) {
    return Item->Kind == ControlKind::ListBox || Item->Kind == ControlKind::PictureSurface ||
           Item->Kind == ControlKind::Grid || Item->Kind == ControlKind::Chart ||
           Item->Kind == ControlKind::RenderControl;
  });
}

void SetTabOrder(const Form& Target) {
  QWidget* Before = nullptr;
  for (const Control* Item : Target.Controls) {
    QWidget* Shown = WidgetOf(*Item);
    if (Shown == nullptr || Item->Kind == ControlKind::Label) continue;
    if (Before != nullptr) QWidget::setTabOrder(Before, Shown);
    Before = Shown;
  }
}

// Labels find the widgets that they lead to only now that all are there.
void TieLabels(const Form& Target) {
  for (Control* Item : Target.Controls) {
    if (Item->Kind == ControlKind::Label) ShowChange(*Item, Property::Caption);
  }
}

}  // namespace

QDialog* DialogOf(Form& Target, QWidget* Parent) {
  if (auto* Made = qobject_cast<QDialog*>(ShownOf(Target))) return Made;
  auto* Dialog = new FormDialog(Target, Parent);
  auto* Outer = new QVBoxLayout(Dialog);
  Outer->addStrut(LeastWidth);
  const Arrangement Layout = IsEmpty(Target.Layout) ? PlainLayout(Target) : Target.Layout;
  if (Layout.Is == Shape::Column) {
    AddColumn(Outer, Layout.Parts, Dialog);
  } else {
    AddPart(Outer, Layout, Dialog);
  }
  AddWindowPreferences(Target, Outer);
  SetTabOrder(Target);
  TieLabels(Target);
  Dialog->BindForm(CanUseRoom(Target));
  return Dialog;
}

}  // namespace zelvanor
