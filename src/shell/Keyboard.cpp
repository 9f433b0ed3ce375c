#include "shell/Frame.h"
#include "workspace/Helpers.h"
#include "workspace/Workspace.h"

namespace zelvanor {

void Form_KeyDown(int& KeyCode, int Shift) {
  constexpr int Space = 32;
  constexpr int End = 35;
  constexpr int Home = 36;
  constexpr int DownArrow = 40;
  constexpr int TurnStep = 7;  // degrees
  if (Workspace.ViewMode == SpectrumViewMode && Rooms.SpectrumKey && Rooms.SpectrumKey(KeyCode, Shift)) KeyCode = 0;
  if (Workspace.ViewMode != MoleculeView || KeyCode < Space || KeyCode > DownArrow) return;
  if (KeyCode == Space) {
    ShowStatus("Scale to fit the molecule on the screen.");
    IgnoreFailure(Rooms.FitMolecule);
  }
  const bool Turns = (Shift & ShiftKey) == 0 && Rooms.TurnMolecule;
  if (KeyCode == End && Turns) Rooms.TurnMolecule(TurnStep);
  if (KeyCode == Home && Turns) Rooms.TurnMolecule(-TurnStep);
  KeyCode = 0;
}

}  // namespace zelvanor
