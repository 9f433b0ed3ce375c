#include <array>
#include <cmath>

#include "basic/NumberText.h"
#include "basic/Numbers.h"
#include "batch/Batch.h"
#include "platform/Chart.h"
#include "platform/Grid.h"
#include "platform/Picture.h"
#include "platform/Render.h"

namespace zelvanor::batch {

namespace {

// A property with its arguments: "List(3)" is List, 3.
struct PropertyName {
  Text Name;
  std::array<int, 2> Places{-1, -1};
};

PropertyName SplitProperty(TextView Whole) {
  PropertyName Result;
  const std::size_t Open = Whole.find('(');
  Result.Name = Whole.substr(0, Open);
  if (Open == TextView::npos) return Result;
  TextView Rest = Whole.substr(Open + 1);
  for (int& Place : Result.Places) {
    Place = ToLong(PrefixNumber(Rest));
    const std::size_t Comma = Rest.find(',');
    if (Comma == TextView::npos) break;
    Rest.remove_prefix(Comma + 1);
  }
  return Result;
}

ScriptValue NumberValue(Flag Value) { return {{GeneralForm(Value)}, false, false}; }
ScriptValue NumberValue(int Value) { return {{GeneralForm(Long{Value})}, false, false}; }
ScriptValue TextValue(const Text& Value) { return {{Value}, true, false}; }

template <class List>
decltype(auto) ElementOf(List& Elements, int Place) {
  if (Place < 0 || Place >= static_cast<int>(Elements.size())) throw Failure(failures::Subscript);
  return Elements[static_cast<std::size_t>(Place)];
}

using Answer = std::optional<ScriptValue>;

Answer ReadCommon(const Control& Of, const PropertyName& Name) {
  if (Name.Name == "Enabled") return NumberValue(Of.Enabled);
  if (Name.Name == "Visible") return NumberValue(Of.Visible);
  if (Name.Name == "Caption" || Name.Name == "Title") return TextValue(Of.Caption);
  if (Name.Name == "Left") return NumberValue(Of.Left);
  if (Name.Name == "Top") return NumberValue(Of.Top);
  if (Name.Name == "Width") return NumberValue(Of.Width);
  if (Name.Name == "Height") return NumberValue(Of.Height);
  return {};
}

Answer ReadScrollBar(const ScrollBar& Of, const PropertyName& Name) {
  if (Name.Name == "Value") return NumberValue(Of.Value);
  if (Name.Name == "Min") return NumberValue(Of.Min);
  if (Name.Name == "Max") return NumberValue(Of.Max);
  if (Name.Name == "SmallChange") return NumberValue(Of.SmallChange);
  if (Name.Name == "LargeChange") return NumberValue(Of.LargeChange);
  return {};
}

template <class List>
Answer ReadList(const List& Of, const PropertyName& Name) {
  if (Name.Name == "ListCount") return NumberValue(static_cast<int>(Of.Items.size()));
  if (Name.Name == "ListIndex") return NumberValue(Of.ListIndex);
  if (Name.Name == "List") return TextValue(ElementOf(Of.Items, Name.Places[0]));
  if (Name.Name == "Text" && Of.ListIndex >= 0) return TextValue(ElementOf(Of.Items, Of.ListIndex));
  if constexpr (requires { Of.Selected; }) {
    if (Name.Name == "Selected") return NumberValue(ToFlag(ElementOf(Of.Selected, Name.Places[0])));
  }
  return {};
}

Answer ReadPicture(const PictureSurface& Of, const PropertyName& Name) {
  if (Name.Name == "BackColor") return NumberValue(Of.BackColor);
  if (Name.Name == "LineCount") return NumberValue(static_cast<int>(Of.Lines.size()));
  if (Name.Name == "TextCount") return NumberValue(static_cast<int>(Of.Texts.size()));
  if (Name.Name == "Line") {
    const PictureLine& Line = ElementOf(Of.Lines, Name.Places[0]);
    ScriptValue Value{{}, false, true};
    for (const int Number : {Line.X1, Line.Y1, Line.X2, Line.Y2, int(Line.Pen)}) {
      Value.Elements.push_back(GeneralForm(Long{Number}));
    }
    return Value;
  }
  if (Name.Name == "TextItem") {
    const PictureText& Item = ElementOf(Of.Texts, Name.Places[0]);
    return ScriptValue{
        {GeneralForm(Long{Item.X}), GeneralForm(Long{Item.Y}), Escaped(Item.Value), GeneralForm(Long{Item.Pen})},
        false,
        true};
  }
  return {};
}

Answer ReadGrid(const GridControl& Of, const PropertyName& Name) {
  if (Name.Name == "Rows") return NumberValue(RowsOf(Of));
  if (Name.Name == "Cols") return NumberValue(ColsOf(Of));
  if (Name.Name == "FixedRows") return NumberValue(Of.FixedRows);
  if (Name.Name == "FixedCols") return NumberValue(Of.FixedCols);
  if (Name.Name == "Row") return NumberValue(Of.Row);
  if (Name.Name == "Col") return NumberValue(Of.Col);
  if (Name.Name == "SelStartRow") return NumberValue(Of.SelStartRow);
  if (Name.Name == "SelEndRow") return NumberValue(Of.SelEndRow);
  if (Name.Name == "SelStartCol") return NumberValue(Of.SelStartCol);
  if (Name.Name == "SelEndCol") return NumberValue(Of.SelEndCol);
  if (Name.Name == "Cell") return TextValue(CellText(Of, Name.Places[0], Name.Places[1]));
  if (Name.Name == "Text") return TextValue(CellText(Of, Of.Row, Of.Col));
  if (Name.Name == "ColWidth") return NumberValue(ElementOf(Of.ColWidths, Name.Places[0]));
  return {};
}

// A value that was written as a text still compares as the number it may be.
ScriptValue WrittenValue(const ChartValue& Value) { return {{Value.Words}, Value.IsText, false, true}; }

Answer ReadChart(const ChartControl& Of, const PropertyName& Name) {
  if (Name.Name == "Data") return WrittenValue(ElementOf(Of.Points, Name.Places[0]));
  if (Name.Name == "Member") {
    const auto Entry = Of.Members.find(Name.Places[0]);
    return Entry == Of.Members.end() ? TextValue("") : WrittenValue(Entry->second);
  }
  return {};
}

Answer ReadRender(const RenderControl& Of, const PropertyName& Name) {
  if (Name.Name == "ViewTransform")
    return ScriptValue{{GeneralForm(GetViewTransform(Of, Name.Places[0]))}, false, false};
  if (Name.Name == "AtomCount") return NumberValue(int(GetAtomCount(Of)));
  if (Name.Name == "AtomColor") return NumberValue(int(ElementOf(Of.Atoms, Name.Places[0]).Color));
  if (Name.Name == "AtomText") return TextValue(ElementOf(Of.Atoms, Name.Places[0]).Label);
  if (Name.Name == "AtomRenderType") return NumberValue(Of.AtomRenderType);
  if (Name.Name == "BondRenderType") return NumberValue(Of.BondRenderType);
  if (Name.Name == "BackColor") return NumberValue(int(Of.BackColor));
  return {};
}

Answer ReadOwn(const Control& Of, const PropertyName& Name) {
  switch (Of.Kind) {
    case ControlKind::MenuItem:
      if (Name.Name == "Checked") return NumberValue(static_cast<const MenuItem&>(Of).Checked);
      return {};
    case ControlKind::ToolButton:
      if (Name.Name == "Pressed") return NumberValue(static_cast<const ToolButton&>(Of).Pressed);
      return {};
    case ControlKind::CheckBox:
      if (Name.Name == "Value") return NumberValue(static_cast<const CheckBox&>(Of).Value);
      return {};
    case ControlKind::OptionButton:
      if (Name.Name == "Value") return NumberValue(static_cast<const OptionButton&>(Of).Value);
      return {};
    case ControlKind::TextField:
      if (Name.Name == "Text") return TextValue(static_cast<const TextField&>(Of).Value);
      return {};
    case ControlKind::StatusLine:
      if (Name.Name == "Text" || Name.Name == "Caption") return TextValue(static_cast<const StatusLine&>(Of).Value);
      return {};
    case ControlKind::ListBox:
      return ReadList(static_cast<const ListBox&>(Of), Name);
    case ControlKind::ComboBox:
      return ReadList(static_cast<const ComboBox&>(Of), Name);
    case ControlKind::ScrollBar:
      return ReadScrollBar(static_cast<const ScrollBar&>(Of), Name);
    case ControlKind::PictureSurface:
      return ReadPicture(static_cast<const PictureSurface&>(Of), Name);
    case ControlKind::Grid:
      return ReadGrid(static_cast<const GridControl&>(Of), Name);
    case ControlKind::Chart:
      return ReadChart(static_cast<const ChartControl&>(Of), Name);
    case ControlKind::RenderControl:
      return ReadRender(static_cast<const RenderControl&>(Of), Name);
    default:
      return {};
  }
}

}  // namespace

Control& NeedControl(const Text& Name) {
  Control* Found = FindControl(Name);
  if (Found == nullptr) throw ScriptStop{CannotCarryOut, "there is no control " + Name};
  return *Found;
}

ScriptValue ReadProperty(const Text& Name) {
  // The last dot in front of any bracket of the property's own arguments.
  const std::size_t Dot = Name.rfind('.');
  if (Dot == Text::npos) throw ScriptStop{CannotCarryOut, "no property is named: " + Name};
  const Control& Of = NeedControl(Name.substr(0, Dot));
  const PropertyName Wanted = SplitProperty(TextView(Name).substr(Dot + 1));
  if (Answer Own = ReadOwn(Of, Wanted)) return *Own;
  if (Answer Common = ReadCommon(Of, Wanted)) return *Common;
  throw ScriptStop{CannotCarryOut, "there is no property " + Name};
}

}  // namespace zelvanor::batch
