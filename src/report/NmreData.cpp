#include <algorithm>
#include <cmath>

#include "basic/NumberText.h"
#include "basic/Numbers.h"
#include "measured/Multiplets.h"
#include "report/Report.h"
#include "spectrum/PeakLists.h"
#include "workspace/Helpers.h"
#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

WorkspaceState& W = Workspace;

constexpr Double LeastCoupling = 0.05;  // Hz

Text Padded(const Text& Value, std::size_t Width) {
  return Value.size() < Width ? Text(Width - Value.size(), ' ') + Value : Value;
}
Text Column(Long Value) { return Padded(GeneralForm(Value), 3); }
Text Place(Double Value) { return Padded(FormatNumber(Value, "0.0000"), 10); }

int BondCode(TextView Type) {
  if (Type == "d") return 2;
  if (Type == "t") return 3;
  return Type == "a" ? 4 : 1;
}

// The blocks of the V2000 table; each bond once.
Text BuildTable() {
  Text Atoms;
  Text Bonds;
  Long Count = 0;
  for (int Atom = 0; Atom < W.NumAtoms; ++Atom) {
    Text Symbol = ElementSymbol(W.AtomicNumber[Atom]);
    Symbol.resize(3, ' ');
    const bool Deuterium = W.AtomicNumber[Atom] == 1 && IsLabelled(Atom + 1);
    Atoms += Join(Place(W.AtomX[Atom]), Place(W.AtomY[Atom]), Place(W.AtomZ[Atom]), " ", Symbol,
                  Deuterium ? " 1" : " 0", "  0  0  0  0  0  0  0  0  0  0  0\n");
    for (int K = 0; K < W.AtomCoordination[Atom]; ++K) {
      const int Other = W.AtomNeighbour(Atom, K);
      if (Other < Atom) continue;
      ++Count;
      const Text Type(TrimBlanks(W.AtomBondType(Atom, K).View()));
      Bonds += Join(Column(Atom + 1), Column(Other + 1), Column(BondCode(Type)), "  0\n");
    }
  }
  if (Count > 999) throw Failure("An SD file of this kind holds at most 999 bonds");
  return Join(Column(W.NumAtoms), Column(Count), "  0  0  0  0  0  0  0  0999 V2000\n", Atoms, Bonds);
}

// The formal charges that the converter has noted in the host text.
Text ChargeLines() {
  Text Lines;
  for (Long Line = 0; Line < W.HostTextLineCount; ++Line) {
    const TextView Stored = W.HostTextLine[Line].Trimmed();
    constexpr TextView Key = "; AtomCharge: ";
    if (!Stored.starts_with(Key)) continue;
    const TextView Value = Stored.substr(Key.size());
    const std::size_t Blank = std::min(Value.find(' '), Value.size());
    const Text Atom = Padded(Text(Value.substr(0, Blank)), 3);
    Lines += Join("M  CHG  1 ", Atom, " ", Padded(Text(TrimBlanks(Value.substr(Blank))), 3), "\n");
  }
  return Lines;
}

Text Label(int Entry) { return Join("s", Long{Entry + 1}); }

Text Tag(const char* Name, const Text& Value) { return Join(">  <NMREDATA_", Name, ">\n", Value, "\n"); }

Text Assignment() {
  Text Lines;
  for (int Entry = 0; Entry < W.NumNMRAtoms; ++Entry) {
    Lines += Join(Label(Entry), ", ", FormatNumber(W.ChemicalShift[Entry], "0.0###"), ", ", W.NMRAtom[Entry], "\\\n");
  }
  return Lines;
}

Text Couplings() {
  Text Lines;
  for (int First = 0; IsSet(W.CouplingAvailable) && First < W.NumNMRAtoms; ++First) {
    for (int Second = First + 1; Second < W.NumNMRAtoms; ++Second) {
      const Double Hz = W.Coupling(First, Second);
      if (std::fabs(Hz) < LeastCoupling) continue;
      Lines += Join(Label(First), ", ", Label(Second), ", ", FormatNumber(Hz, "0.0###"), "\\\n");
    }
  }
  return Lines;
}

// The signals of the observed nucleus.
Text Signals() {
  Text Lines = Join("Larmor=", W.NMRFrequency, "\\\nSpectrum_Location=none\\\n");
  for (const Multiplet& Each : FindMultiplets()) {
    Text Labels;
    for (const int Entry : Each.Atoms) Labels += Join(Labels.empty() ? "" : "&", Label(Entry));
    Lines += Join(FormatNumber(Each.Ppm, "0.0###"), ", L=", Labels, ", S=", Each.Kind,
                  ", N=", static_cast<Long>(Each.Atoms.size()), "\\\n");
  }
  return Lines;
}

}  // namespace

Text BuildNmreData() {
  if (!IsSet(W.MoleculeLoaded) || !IsSet(W.ShieldingAvailable)) throw Failure("There are no shifts to report");
  if (W.NumAtoms > 999) throw Failure("An SD file of this kind holds at most 999 atoms");
  ComputeChemicalShifts();
  Text File = Join(W.DocumentTitle, "\n  Zelvanor          3D\n\n", BuildTable());
  File += Join(ChargeLines(), "M  END\n", Tag("VERSION", "1.1\\\n"), Tag("LEVEL", "0\\\n"),
               Tag("ASSIGNMENT", Assignment()));
  if (const Text Pairs = Couplings(); !Pairs.empty()) File += Tag("J", Pairs);
  return Join(File, Tag(Join("1D_", ObservedNucleus()).c_str(), Signals()), "$$$$\n");
}

}  // namespace zelvanor
