#include "molecule/MoleculeView.h"

#include <algorithm>
#include <cmath>

#include "basic/Numbers.h"
#include "molecule/AtomSelection.h"
#include "molecule/TakeSystem.h"
#include "platform/RenderScene.h"
#include "platform/Variables.h"
#include "settings/ColorSets.h"
#include "settings/Settings.h"
#include "shell/Frame.h"
#include "workspace/Helpers.h"
#include "workspace/Workspace.h"

namespace zelvanor {

MoleculeViewState ShownMolecule;

namespace {

WorkspaceState& W = Workspace;
MoleculeViewState& V = ShownMolecule;

// A fitted system leaves this margin; a small one is not blown up beyond this many pixels to an angstrom.
constexpr Double FitMargin = 24;
constexpr Double LargestFitScale = 90;

Text LabelOf(int Atom) {
  enum { NoLabel, SymbolLabel, NameLabel, NumberLabel, TypeLabel, ChargeLabel };
  constexpr Single LeastCharge = 0.001F;
  switch (Main.AtomLabelMode) {
    case SymbolLabel:
      return Text(TrimBlanks(W.AtomElement[Atom].View()));
    case NameLabel: {
      const TextView Name = TrimBlanks(W.AtomName[Atom].View());
      return Text(Name == "-" ? TextView() : Name);
    }
    case NumberLabel:
      return GeneralForm(W.AtomInMolecule[Atom]);
    case TypeLabel:
      return Text(TrimBlanks(W.AtomType[Atom].View()));
    case ChargeLabel:
      return LeastCharge <= std::fabs(W.AtomCharge[Atom]) ? FormatNumber(W.AtomCharge[Atom], "0.000") : "0";
    default:
      return {};
  }
}

// How far the turned system reaches from its origin to the sides and up or down, in angstrom, balls included.
struct Extent {
  Double Wide = 0;
  Double High = 0;
};

Extent FindExtent(const RenderControl& Control, const ViewMatrix& M, Double Scale) {
  Extent Result;
  for (const RenderAtom& Atom : Control.Atoms) {
    const auto Along = [&](std::size_t C) {
      return std::fabs(Atom.X * M[0][C] + Atom.Y * M[1][C] + Atom.Z * M[2][C]) / Scale + Atom.Radius;
    };
    Result.Wide = std::max(Result.Wide, Along(0));
    Result.High = std::max(Result.High, Along(1));
  }
  return Result;
}

// Turning keeps the fit, moving and magnifying do not.
bool IsStillFitted() {
  constexpr Double Near = 1e-6;
  ViewMatrix M{};
  GetViewTransform(Main.MolRender1, M);
  const auto ScaleOf = [](const ViewMatrix& Of) { return std::hypot(Of[0][0], Of[0][1], Of[0][2]); };
  return M[3] == V.Fitted[3] && std::fabs(ScaleOf(M) - ScaleOf(V.Fitted)) <= Near * ScaleOf(V.Fitted);
}

}  // namespace

void AddMoleculeVariables() {
  AddArray("RotationCentre", V.RotationCentre, [] { return 3; });
  AddVariable("MouseDragState", V.MouseDragState);
  AddVariable("MouseDragButton", V.MouseDragButton);
  AddVariable("MouseDownX", V.MouseDownX);
  AddVariable("MouseDownY", V.MouseDownY);
  AddVariable("MouseViewSize", V.MouseViewSize);
}

void InitMoleculeView() {
  RenderControl& Control = Main.MolRender1;
  SetAtomRenderType(Control, Settings.AtomRenderType);
  SetBondRenderType(Control, Settings.BondRenderType);
  SetBackColor(Control, Settings.BackColor);
  Control.LabelColor = Settings.LabelColor;
  Control.BondColor = Settings.BondColor;
  Control.MarkColor = Settings.SelectionColor;
  GetViewTransform(Control, V.Fitted);
  PlaceMoleculeView();
}

void ShowMoleculeView() {
  SetEnabled(Main.mnuReplace, False);
  PlaceMoleculeView();
  SetVisible(Main.MolRender1, True);
  TakeSystem();
  UpdateAtomLabels(Main.MolRender1);
}

void PlaceMoleculeView() {
  const Form& Window = Main.frmNMR;
  const int Free = Window.Height - Main.StatusBar.Height - Main.ToolbarHeight;
  const bool Refit = IsStillFitted();
  if (const int Pane = PaneWidth(); Pane > 0) {
    const PictureSurface& Beside = Main.Spectrum1;
    SetPlace(Main.MolRender1, Window.Width - Pane, Beside.Top, Pane, Beside.Height);
  } else {
    SetPlace(Main.MolRender1, 0, Main.ToolbarHeight, Window.Width, std::max(Free, 1));
  }
  if (Refit) FitMolecule();
}

void FitMolecule() {
  RenderControl& Control = Main.MolRender1;
  ViewMatrix M{};
  GetViewTransform(Control, M);
  const Double Scale = ViewScale(Control);
  if (!Control.Atoms.empty() && std::isfinite(Scale) && Scale > 0) {
    const Extent Reach = FindExtent(Control, M, Scale);
    const auto ScaleFor = [](int Twips, Double Angstrom) {
      const Double Pixels = static_cast<Double>(Twips) / TwipsPerPixelX;
      return std::max(Pixels / 2 - FitMargin, Pixels / 4) / Angstrom;
    };
    const Double Fit =
        std::min({ScaleFor(Control.Width, Reach.Wide), ScaleFor(Control.Height, Reach.High), LargestFitScale});
    if (std::isfinite(Fit) && Fit > 0) {
      MagnifyView(Fit / Scale, M);
      M[3] = {};
      SetViewTransform(Control, M);
    }
  }
  GetViewTransform(Control, V.Fitted);
}

void TurnMolecule(int Degrees) {
  IgnoreFailure([Degrees] { RotateAboutCentre(Main.MolRender1, 0, 0, DegreesToRadians(Degrees), V.RotationCentre); });
}

void UpdateAtomLabels(RenderControl& Control) {
  const int Count = GetAtomCount(Control);
  for (int Atom = 0; Atom < Count; ++Atom) {
    SetThisAtom(Control, Atom);
    SetAtomText(Control, LabelOf(Atom));
  }
  RepaintRender(Control);
}

void UseDesktopBackground(bool Dark) {
  RenderControl& Control = Main.MolRender1;
  if (Control.Monochrome) return;
  SetBackColor(Control, Dark && !IsMoleculeBackgroundOwn() ? Black : MoleculeBackground());
}

void TakeMoleculePreferences() {
  RenderControl& Control = Main.MolRender1;
  Control.Monochrome = Settings.MolMonochrome != 0;
  Control.LabelColor = Settings.PrefLabelColor;
  Settings.SelectionColor = Settings.MolSelectColor;
  Control.MarkColor = Settings.SelectionColor;
  SetBackColor(Control, Control.Monochrome ? White : Settings.PrefBackColor);
  MarkSelection(Control);
}

}  // namespace zelvanor
