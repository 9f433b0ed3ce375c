#include "report/MolBlock.h"

#include <algorithm>

#include "basic/NumberText.h"
#include "basic/Numbers.h"
#include "workspace/Helpers.h"
#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

WorkspaceState& W = Workspace;

constexpr Long MostInTable = 999;

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

Text ChargeLines() {
  Text Lines;
  for (const auto& [Atom, Charge] : FormalCharges()) {
    Lines += Join("M  CHG  1 ", Column(Atom), " ", Column(Charge), "\n");
  }
  return Lines;
}

}  // namespace

std::vector<AtomCharge> FormalCharges() {
  std::vector<AtomCharge> Found;
  for (Long Line = 0; Line < W.HostTextLineCount; ++Line) {
    const TextView Stored = W.HostTextLine[Line].Trimmed();
    constexpr TextView Key = "; AtomCharge: ";
    if (!Stored.starts_with(Key)) continue;
    const TextView Value = Stored.substr(Key.size());
    const Long Atom = PrefixIndex(Value);
    const Double Charge = PrefixNumber(Value.substr(std::min(Value.find(' '), Value.size())));
    if (Atom >= 1 && Atom <= W.NumAtoms && Charge >= -15 && Charge <= 15) {
      Found.push_back({Atom, static_cast<int>(Charge)});
    }
  }
  return Found;
}

Text RecordTitle() {
  constexpr std::size_t Longest = 80;
  Text Line;
  for (const char C : W.DocumentTitle.substr(0, Longest)) Line += static_cast<unsigned char>(C) < ' ' ? ' ' : C;
  return Line.starts_with("$$$$") || Line.starts_with(">") ? " " + Line : Line;
}

Text BuildMolBlock() {
  if (W.NumAtoms > MostInTable) throw Failure("An SD file of this kind holds at most 999 atoms");
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
  if (Count > MostInTable) throw Failure("An SD file of this kind holds at most 999 bonds");
  return Join(RecordTitle(), "\n  Zelvanor          3D\n\n", Column(W.NumAtoms), Column(Count),
              "  0  0  0  0  0  0  0  0999 V2000\n", Atoms, Bonds, ChargeLines(), "M  END\n");
}

}  // namespace zelvanor
