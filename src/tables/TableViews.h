#pragma once

namespace zelvanor {

// The two tables that the main window shows in one grid: shieldings (a row for each quantity, a column for each NMR
// atom) and couplings (a row and a column for each). A failure of one cell leaves what it showed and the fill goes on.
void ShowShieldingTable();
void ShowCouplingTable();

// The grid's place for the window's size; its height is at least 1.
void PlaceTable();

// Rows of the shielding table.
inline constexpr int ShieldingRow = 1;
inline constexpr int ShiftRow = 2;
inline constexpr int TauRow = 3;

// Three decimals at most, one at least: shieldings, shifts, tensors. Three always: couplings.
inline constexpr const char* ShieldingPattern = "#0.0##";
inline constexpr const char* CouplingPattern = "0.000";

}  // namespace zelvanor
