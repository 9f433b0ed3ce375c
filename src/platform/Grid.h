#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "platform/Controls.h"

namespace zelvanor {

// The texts of a grid's cells, five bytes a cell: the largest table has five million of them. A cell is empty, holds a
// text of its own, or a number whose text is formed when it is asked for; all numbers of a grid share one pattern.
struct GridCells {
  enum Kind : std::uint8_t { Empty, Words, Number };

  int Rows = 0;
  int Cols = 0;
  std::vector<std::uint8_t> Kinds;      // by rows
  std::vector<std::uint32_t> Contents;  // beside Kinds: a place in Texts, or the bits of a Single
  std::vector<Text> Texts;
  std::vector<std::uint32_t> FreeTexts;  // places in Texts that no cell uses
  Text Pattern = "0.000";
};

// A table of text cells. The first rows and columns are headers. There is one current cell, and beside it a selected
// range, which moves of the current cell by the program leave as it is.
struct GridControl : Control {
  GridControl(Form* Owner, Text Name);

  int FixedRows = 1;
  int FixedCols = 1;
  int Row = 1;  // the current cell
  int Col = 1;
  int SelStartRow = 1;
  int SelEndRow = 1;
  int SelStartCol = 1;
  int SelEndCol = 1;
  std::vector<int> ColWidths;  // twips
  GridCells Cells;
  Long Revision = 0;  // goes up with every change of a cell, so that a front end knows what it shows is old

  // They fire in the course of the change, whoever makes it. A move of the current cell fires both.
  Event RowColChange;  // the current cell has moved
  Event SelChange;
  std::function<void(int& KeyAscii)> KeyPress;  // character keys; the grid itself takes the cursor keys
  Event MouseDown;
};

inline int RowsOf(const GridControl& Grid) { return Grid.Cells.Rows; }
inline int ColsOf(const GridControl& Grid) { return Grid.Cells.Cols; }

// Cells that stay keep what they hold, new ones are empty. A current cell or selection outside moves to the nearest
// cell.
void SetGridSize(GridControl& Grid, int Rows, int Cols);
void SetFixedCells(GridControl& Grid, int FixedRows, int FixedCols);
void SetColWidth(GridControl& Grid, int Col, int Twips);

// Each throws "Subscript out of range" for a cell that is not there.
Text CellText(const GridControl& Grid, int Row, int Col);
void SetCellText(GridControl& Grid, int Row, int Col, TextView Value);
// A row's numbers from Col on, shown by the pattern; the cells of the grid that hold numbers already take it over.
void SetCellNumbers(GridControl& Grid, int Row, int Col, std::span<const Single> Values, TextView Pattern);

// Moves of the program. The current cell may lie in a header then.
void SetCurrentCell(GridControl& Grid, int Row, int Col);
void SetGridSelection(GridControl& Grid, int StartRow, int EndRow, int StartCol, int EndCol);

// A move of the user: a range from the cell where it begins, which becomes the current one, to its other end; one cell
// alone is a range. A range may reach into the headers, the current cell does not.
void PickRange(GridControl& Grid, int FromRow, int FromCol, int ToRow, int ToCol);
void PressGridKey(GridControl& Grid, int KeyAscii);

}  // namespace zelvanor
