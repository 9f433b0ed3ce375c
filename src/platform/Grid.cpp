#include "platform/Grid.h"

#include <algorithm>
#include <bit>
#include <utility>

#include "basic/Array.h"
#include "basic/NumberText.h"
#include "platform/Services.h"

namespace zelvanor {

namespace {

constexpr int DefaultColWidth = 960;  // twips

void Tell(GridControl& Grid, Property What) {
  if (Platform.ControlChanged) Platform.ControlChanged(Grid, What);
}

void TellCells(GridControl& Grid) {
  Grid.Revision = Grid.Revision == INT32_MAX ? 0 : Grid.Revision + 1;
  Tell(Grid, Property::Cells);
}

std::size_t PlaceOf(const GridCells& Cells, int Row, int Col) {
  if (Row < 0 || Row >= Cells.Rows || Col < 0 || Col >= Cells.Cols) throw Failure(failures::Subscript);
  return static_cast<std::size_t>(Row) * static_cast<std::size_t>(Cells.Cols) + static_cast<std::size_t>(Col);
}

void ResizeCells(GridCells& Cells, int Rows, int Cols) {
  const std::size_t Size = static_cast<std::size_t>(Rows) * static_cast<std::size_t>(Cols);
  GridCells New;
  New.Rows = Rows;
  New.Cols = Cols;
  New.Pattern = Cells.Pattern;
  New.Kinds = detail::MakeElements<std::uint8_t>(Size);
  New.Contents = detail::MakeElements<std::uint32_t>(Size);
  for (int Row = 0; Row < std::min(Rows, Cells.Rows); ++Row) {
    std::size_t From = PlaceOf(Cells, Row, 0);
    std::size_t To = PlaceOf(New, Row, 0);
    for (int Col = 0; Col < std::min(Cols, Cells.Cols); ++Col, ++From, ++To) {
      New.Kinds[To] = Cells.Kinds[From];
      New.Contents[To] = Cells.Contents[From];
      if (Cells.Kinds[From] != GridCells::Words) continue;
      New.Texts.push_back(std::move(Cells.Texts[Cells.Contents[From]]));
      New.Contents[To] = static_cast<std::uint32_t>(New.Texts.size() - 1);
    }
  }
  Cells = std::move(New);
}

void ClearCell(GridCells& Cells, std::size_t Place) {
  if (Cells.Kinds[Place] == GridCells::Words) {
    Cells.Texts[Cells.Contents[Place]].clear();
    Cells.FreeTexts.push_back(Cells.Contents[Place]);
  }
  Cells.Kinds[Place] = GridCells::Empty;
}

void StoreText(GridCells& Cells, std::size_t Place, TextView Value) {
  if (Value.empty()) return ClearCell(Cells, Place);
  if (Cells.Kinds[Place] != GridCells::Words) {
    if (Cells.FreeTexts.empty()) {
      Cells.FreeTexts.push_back(static_cast<std::uint32_t>(Cells.Texts.size()));
      Cells.Texts.emplace_back();
    }
    Cells.Contents[Place] = Cells.FreeTexts.back();
    Cells.FreeTexts.pop_back();
    Cells.Kinds[Place] = GridCells::Words;
  }
  Cells.Texts[Cells.Contents[Place]] = Value;
}

// Index among 0..Count - 1; a count of 0 gives 0.
int Within(int Index, int Count) { return std::clamp(Index, 0, std::max(Count - 1, 0)); }

// The nearest cell that is no header, where there is one.
int OutsideHeader(int Index, int Fixed, int Count) { return Within(std::max(Index, Fixed), Count); }

void NeedCell(const GridControl& Grid, int Row, int Col) { PlaceOf(Grid.Cells, Row, Col); }

}  // namespace

GridControl::GridControl(Form* Owner, Text Name) : Control(ControlKind::Grid, Owner, std::move(Name)) {
  ResizeCells(Cells, 2, 2);
  ColWidths.assign(2, DefaultColWidth);
}

void SetGridSize(GridControl& Grid, int Rows, int Cols) {
  if (Rows < 0 || Cols < 0) throw Failure(failures::Subscript);
  if (Rows == Grid.Cells.Rows && Cols == Grid.Cells.Cols) return;
  ResizeCells(Grid.Cells, Rows, Cols);
  Grid.ColWidths.resize(static_cast<std::size_t>(Cols), DefaultColWidth);
  Tell(Grid, Property::Items);
  TellCells(Grid);
  const int Row = Within(Grid.Row, Rows);
  const int Col = Within(Grid.Col, Cols);
  SetGridSelection(Grid, Within(Grid.SelStartRow, Rows), Within(Grid.SelEndRow, Rows), Within(Grid.SelStartCol, Cols),
                   Within(Grid.SelEndCol, Cols));
  if (Rows > 0 && Cols > 0) SetCurrentCell(Grid, Row, Col);
}

void SetFixedCells(GridControl& Grid, int FixedRows, int FixedCols) {
  if (Grid.FixedRows == FixedRows && Grid.FixedCols == FixedCols) return;
  Grid.FixedRows = FixedRows;
  Grid.FixedCols = FixedCols;
  Tell(Grid, Property::Items);
}

void SetColWidth(GridControl& Grid, int Col, int Twips) {
  if (Col < 0 || Col >= ColsOf(Grid)) throw Failure(failures::Subscript);
  int& Stored = Grid.ColWidths[static_cast<std::size_t>(Col)];
  if (std::exchange(Stored, Twips) != Twips) Tell(Grid, Property::Range);
}

Text CellText(const GridControl& Grid, int Row, int Col) {
  const GridCells& Cells = Grid.Cells;
  const std::size_t Place = PlaceOf(Cells, Row, Col);
  switch (Cells.Kinds[Place]) {
    case GridCells::Words:
      return Cells.Texts[Cells.Contents[Place]];
    case GridCells::Number:
      return FormatNumber(std::bit_cast<Single>(Cells.Contents[Place]), Cells.Pattern);
    default:
      return {};
  }
}

void SetCellText(GridControl& Grid, int Row, int Col, TextView Value) {
  StoreText(Grid.Cells, PlaceOf(Grid.Cells, Row, Col), Value);
  TellCells(Grid);
}

void SetCellNumbers(GridControl& Grid, int Row, int Col, std::span<const Single> Values, TextView Pattern) {
  if (Values.empty()) return;
  GridCells& Cells = Grid.Cells;
  std::size_t Place = PlaceOf(Cells, Row, Col);
  NeedCell(Grid, Row, Col + static_cast<int>(Values.size()) - 1);
  Cells.Pattern = Pattern;
  for (const Single Value : Values) {
    ClearCell(Cells, Place);
    Cells.Kinds[Place] = GridCells::Number;
    Cells.Contents[Place] = std::bit_cast<std::uint32_t>(Value);
    ++Place;
  }
  TellCells(Grid);
}

void SetCurrentCell(GridControl& Grid, int Row, int Col) {
  NeedCell(Grid, Row, Col);
  if (Grid.Row == Row && Grid.Col == Col) return;
  Grid.Row = Row;
  Grid.Col = Col;
  Tell(Grid, Property::Value);
  Fire(Grid.RowColChange);
  Fire(Grid.SelChange);
}

void SetGridSelection(GridControl& Grid, int StartRow, int EndRow, int StartCol, int EndCol) {
  if (Grid.SelStartRow == StartRow && Grid.SelEndRow == EndRow && Grid.SelStartCol == StartCol &&
      Grid.SelEndCol == EndCol) {
    return;
  }
  Grid.SelStartRow = StartRow;
  Grid.SelEndRow = EndRow;
  Grid.SelStartCol = StartCol;
  Grid.SelEndCol = EndCol;
  Tell(Grid, Property::Value);
  Fire(Grid.SelChange);
}

void PickRange(GridControl& Grid, int FromRow, int FromCol, int ToRow, int ToCol) {
  NeedCell(Grid, FromRow, FromCol);
  NeedCell(Grid, ToRow, ToCol);
  const auto [StartRow, EndRow] = std::minmax(FromRow, ToRow);
  const auto [StartCol, EndCol] = std::minmax(FromCol, ToCol);
  SetGridSelection(Grid, StartRow, EndRow, StartCol, EndCol);
  SetCurrentCell(Grid, OutsideHeader(FromRow, Grid.FixedRows, RowsOf(Grid)),
                 OutsideHeader(FromCol, Grid.FixedCols, ColsOf(Grid)));
}

void PressGridKey(GridControl& Grid, int KeyAscii) {
  if (Grid.KeyPress) Grid.KeyPress(KeyAscii);
}

}  // namespace zelvanor
