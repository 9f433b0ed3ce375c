#pragma once

#include <vector>

#include "molecule/ViewTransform.h"

namespace zelvanor {

// What a drag in the molecule view does.
enum MouseDrag { NoDrag = 0, DragRotate = 2, DragMagnify = 3, DragTranslate = 4, DragTurnInPlane = 5 };

struct MoleculeViewState {
  ViewVector RotationCentre{};  // in the model's coordinates; nothing changes it

  Integer MouseDragState;
  Integer MouseDragButton;  // that began the drag
  Single MouseDownX = 0;    // where the drag began, twips
  Single MouseDownY = 0;
  Single MouseViewSize = 0;  // the smaller of the control's sides, pixels
  Single LastX = 0;          // where the pointer was at the last step of the drag, twips
  Single LastY = 0;

  // The atom table as it was taken in last, to see a change: places, and elements with bonds.
  std::vector<Single> TakenPlaces;
  std::vector<int> TakenStructure;
  // The matrix of the last fit. As long as it is in force, the system is fitted again when the window changes its size.
  ViewMatrix Fitted{};
};

extern MoleculeViewState ShownMolecule;

void AddMoleculeVariables();

// Colours and render types of nmr.ini, after the settings have been read.
void InitMoleculeView();

// Shows the molecule view, with the present atom table in it.
void ShowMoleculeView();
// Places the control between toolbar and status line.
void PlaceMoleculeView();
// Magnifies and moves so that the system fills the surface; its orientation stays.
void FitMolecule();
// About z, by the keys.
void TurnMolecule(int Degrees);

// What AtomLabelMode says for every atom of the control.
void UpdateAtomLabels(RenderControl& Control);

// The colours and the monochrome choice of the preferences, in the view and on the marks of the selection.
void TakeMoleculePreferences();
// On a dark desktop a background that nobody has chosen is dark too.
void UseDesktopBackground(bool Dark);

}  // namespace zelvanor
