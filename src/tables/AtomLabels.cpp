#include "tables/AtomLabels.h"

#include "workspace/Helpers.h"
#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

WorkspaceState& W = Workspace;

Text InBrackets(TextView Element) { return Join("(", UpperCase(TrimBlanks(Element)), ")"); }

}  // namespace

Text AtomLabel(int Atom) {
  const int Number = W.NMRAtom[Atom];
  // Number 0 names no atom; the element that stands beside the results is still known.
  if (Number == 0) return Join(Long{Atom + 1}, InBrackets(ElementSymbol(W.NMRAtomicNumber[Atom])));
  const Text Element = InBrackets(W.AtomElement[Number - 1].View());
  if (!IsSet(W.NMRAtomsValid)) return Join(Long{Atom + 1}, Element);
  return Join(W.AtomMolecule[Number - 1], "-", W.AtomInMolecule[Number - 1], Element);
}

void RepairNMRAtom(int Atom) {
  const Integer Number = W.NMRAtom[Atom];
  if (Number >= 0 && Number <= MaxInteger(W.NumAtoms, W.NumNMRAtoms)) return;
  ShowWarning(Join("Impossible index of NMR atom ", Number, "."));
  W.NMRAtom[Atom] = Integer(Atom + 1);
}

}  // namespace zelvanor
