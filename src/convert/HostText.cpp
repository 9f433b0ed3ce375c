#include <cmath>

#include "basic/Elements.h"
#include "basic/NumberText.h"
#include "basic/TextTools.h"
#include "convert/Records.h"
#include "convert/Structure.h"
#include "files/MoleculeTree.h"

namespace zelvanor::convert {

namespace {

constexpr int MostNeighbours = 12;
constexpr const char* OrderTexts[] = {"s", "s", "d", "t", "a"};

struct Neighbour {
  int Atom;
  int Order;
};

// One word: what the host text keeps of a name.
Text NameWord(const Text& Name) {
  Text Word;
  for (const char C : Name) {
    if (static_cast<unsigned char>(C) > 0x20 && Word.size() < 5) Word += C;
  }
  return Word.empty() ? "-" : Word;
}

Text AtomLine(const StructureAtom& Atom, int Number, const std::vector<Neighbour>& Neighbours,
              const std::vector<int>& NumberOf) {
  Text Line = "atom " + std::to_string(Number) + " " + NameWord(Atom.Name) + " " + ElementSymbol(Atom.Element) +
              " ** - " + FormatNumber(Atom.Partial, "0.0###");
  for (const Double Coordinate : Atom.Place) Line += " " + FormatNumber(Coordinate, "0.0000#");
  Line += " " + std::to_string(Neighbours.size());
  for (const Neighbour& Next : Neighbours) {
    Line += " " + std::to_string(NumberOf[static_cast<std::size_t>(Next.Atom)]) + " " + OrderTexts[Next.Order];
  }
  return Line;
}

void PutNote(Text& Target, TextView Kind, TextView Value) {
  if (!Value.empty()) Target.append("; ").append(Kind).append(": ").append(PlainTitle(Value)).push_back('\n');
}

}  // namespace

Text HostTextOf(const Structure& Whole, TextView Source) {
  std::vector<std::vector<Neighbour>> Neighbours(Whole.Atoms.size());
  for (const StructureBond& Bond : Whole.Bonds) {
    Neighbours[static_cast<std::size_t>(Bond.First)].push_back({Bond.Second, Bond.Order});
    Neighbours[static_cast<std::size_t>(Bond.Second)].push_back({Bond.First, Bond.Order});
  }
  const auto Parts = FindParts(Whole);
  std::vector<int> NumberOf(Whole.Atoms.size());  // in its part, from 1
  Text Charges;
  Text Hydrogens;
  Text Isotopes;
  int Written = 0;
  for (const auto& Part : Parts) {
    for (std::size_t K = 0; K < Part.size(); ++K) {
      const auto Atom = static_cast<std::size_t>(Part[K]);
      NumberOf[Atom] = static_cast<int>(K) + 1;
      const Text Place = std::to_string(++Written) + " ";
      const StructureAtom& This = Whole.Atoms[Atom];
      if (This.Charge != 0) PutNote(Charges, "AtomCharge", Place + std::to_string(This.Charge));
      if (This.Hydrogens != 0) PutNote(Hydrogens, "AtomHydrogens", Place + std::to_string(This.Hydrogens));
      if (This.Isotope != 0) PutNote(Isotopes, "Isotope", Place + std::to_string(This.Isotope));
      if (Neighbours[Atom].size() > MostNeighbours) {
        throw Failure("atom " + std::to_string(Atom + 1) + " has more than 12 bonds");
      }
    }
  }
  Text Host = "; Converted by zelvanor-convert\n";
  PutNote(Host, "Source", Source);
  PutNote(Host, "Name", Whole.Title);
  PutNote(Host, "Formula", FormulaOf(Whole));
  PutNote(Host, "TotalCharge", std::to_string(Whole.Charge));
  Host += Charges + Hydrogens + Isotopes;
  for (const Text& Note : Whole.Notes) PutNote(Host, "Field", Note);
  Host += "sys 0\n\n";
  for (std::size_t P = 0; P < Parts.size(); ++P) {
    const Text Number = std::to_string(P + 1);
    Host += "mol " + Number + "\n";
    for (const int Index : Parts[P]) {
      const auto Atom = static_cast<std::size_t>(Index);
      Host += AtomLine(Whole.Atoms[Atom], NumberOf[Atom], Neighbours[Atom], NumberOf) + "\n";
    }
    Host += "endmol " + Number + "\n";
  }
  return Host;
}

}  // namespace zelvanor::convert
