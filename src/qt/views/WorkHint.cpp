#include "qt/views/WorkHint.h"

#include <QGraphicsOpacityEffect>

#include "qt/TextConversion.h"
#include "qt/controls/ControlWidgets.h"
#include "shell/MainForm.h"
#include "workspace/Helpers.h"
#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

const WorkspaceState& W = Workspace;

Text Counted(int Number, const char* One, const char* Many) {
  return Join(Long{Number}, " ", Number == 1 ? One : Many);
}

Text CountNMRAtoms() { return Counted(W.NumNMRAtoms, "NMR atom", "NMR atoms"); }

// A view that has a widget speaks for itself.
bool ViewHasWidget() {
  if (W.ViewMode == SpectrumViewMode) return true;
  return WidgetOf(W.ViewMode == MoleculeView ? static_cast<Control&>(Main.MolRender1) : Main.ShieldTable) != nullptr;
}

Text DescribeView() {
  switch (W.ViewMode) {
    case ShieldingView:
      return "Shielding constants of " + CountNMRAtoms();
    case CouplingView:
      return "Coupling constants between " + CountNMRAtoms();
    default:
      break;
  }
  if (!IsSet(W.MoleculeLoaded)) return {};
  const Text Counts = Counted(W.NumAtoms, "atom", "atoms") + ", " + CountNMRAtoms();
  return W.NumNMRAtoms > 0 ? Counts + "\n\nCompute > Both: I Then II" : Counts;
}

Text DescribeWork() {
  const bool Anything =
      IsSet(W.MoleculeLoaded) || IsSet(W.ShieldingAvailable) || IsSet(W.CouplingAvailable) || IsSet(W.SpectraAvailable);
  if (!Anything)
    return "Open a molecule or document (Ctrl+O), paste a SMILES (Ctrl+V), or get the system from Morvantis (Ctrl+G).";
  if (W.ViewMode == MoleculeView && !IsSet(W.MoleculeLoaded)) {
    return "The document holds results without a molecule.\n\nView > Shielding Constants, Coupling Constants or "
           "Spectrum";
  }
  if (ViewHasWidget()) return {};
  return (W.DocumentTitle.empty() ? Text("(untitled)") : W.DocumentTitle) + "\n" + DescribeView();
}

}  // namespace

QLabel* MakeWorkHint(QWidget* Parent) {
  auto* Hint = new QLabel(Parent);
  Hint->setTextFormat(Qt::PlainText);
  Hint->setAlignment(Qt::AlignCenter);
  Hint->setWordWrap(true);
  Hint->setMargin(24);
  // Quiet in every theme: the text colour itself, let through in part.
  auto* Quiet = new QGraphicsOpacityEffect(Hint);
  Quiet->setOpacity(0.7);
  Hint->setGraphicsEffect(Quiet);
  ShowWorkHint(Hint);
  return Hint;
}

void ShowWorkHint(QLabel* Hint) {
  const QString Words = ToQt(DescribeWork());
  if (Hint->text() != Words) Hint->setText(Words);
}

}  // namespace zelvanor
