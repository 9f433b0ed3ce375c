#include "nmrcalc/shifts/Substituents.h"

#include <algorithm>
#include <array>
#include <utility>

#include "basic/Failure.h"

namespace nmrcalc {

namespace {

// What stands in for a class that a table does not list.
constexpr std::array<std::pair<const char*, const char*>, 18> Relatives = {{{"OAr", "OR"},
                                                                            {"OCOR", "OR"},
                                                                            {"OR", "OH"},
                                                                            {"NCO", "N"},
                                                                            {"N=", "N"},
                                                                            {"N+", "N"},
                                                                            {"COX", "COR"},
                                                                            {"CON", "COOR"},
                                                                            {"COOR", "COOH"},
                                                                            {"COOH", "COR"},
                                                                            {"CHO", "COR"},
                                                                            {"C=N", "C=C"},
                                                                            {"SO2", "SO"},
                                                                            {"SO", "S"},
                                                                            {"Cring", "C"},
                                                                            {"CX", "C"},
                                                                            {"OP", "OR"},
                                                                            {"ringNH", "ringN"}}};

// Pauling scale: A. L. Allred, J. Inorg. Nucl. Chem. 17 (1961) 215.
constexpr std::array<std::pair<int, double>, 14> Electronegativities = {{{1, 2.20},
                                                                         {5, 2.04},
                                                                         {6, 2.55},
                                                                         {7, 3.04},
                                                                         {8, 3.44},
                                                                         {9, 3.98},
                                                                         {14, 1.90},
                                                                         {15, 2.19},
                                                                         {16, 2.58},
                                                                         {17, 3.16},
                                                                         {34, 2.55},
                                                                         {35, 2.96},
                                                                         {50, 1.96},
                                                                         {53, 2.66}}};

bool HasDoubleBondTo(const Molecule& System, std::size_t Center, int AtomicNumber) {
  const auto& List = System.Atoms[Center].Neighbours;
  return std::any_of(List.begin(), List.end(), [&](const Neighbour& Bond) {
    return Bond.Order == BondOrder::Double && System.Atoms[Bond.Atom].AtomicNumber == AtomicNumber;
  });
}

std::string OxygenClass(const Molecule& System, std::size_t Group, std::size_t From) {
  const Neighbour* Bond = FindBond(System, Group, From);
  if (Bond != nullptr && Bond->Order == BondOrder::Double) return "=O";
  std::string Class = "OH";  // also an anion
  for (const Neighbour& Other : System.Atoms[Group].Neighbours) {
    if (Other.Atom == From || System.Atoms[Other.Atom].AtomicNumber == 1) continue;
    Class = "OR";
    if (System.Atoms[Other.Atom].Aromatic) Class = "OAr";
    if (System.Atoms[Other.Atom].AtomicNumber == 15) Class = "OP";
    if (IsCarbonyl(System, Other.Atom)) Class = "OCOR";
  }
  return Class;
}

std::string NitrogenClass(const Molecule& System, std::size_t Group, std::size_t From) {
  const Atom& Item = System.Atoms[Group];
  int TerminalOxygens = 0;
  bool Acyl = false;
  for (const Neighbour& Other : Item.Neighbours) {
    if (Other.Atom == From) continue;
    if (System.Atoms[Other.Atom].AtomicNumber == 8 && System.Atoms[Other.Atom].Neighbours.size() == 1) {
      ++TerminalOxygens;
    }
    Acyl = Acyl || IsCarbonyl(System, Other.Atom);
  }
  if (TerminalOxygens >= 2) return "NO2";
  if (Item.Neighbours.size() >= 4) return "N+";
  if (Acyl) return "NCO";
  return Item.State == Hybrid::Sp3 || Item.Aromatic ? "N" : "N=";
}

std::string AcylClass(const Molecule& System, std::size_t Group, std::size_t From) {
  std::string Class = "CHO";
  for (const Neighbour& Other : System.Atoms[Group].Neighbours) {
    if (Other.Atom == From || Other.Order == BondOrder::Double) continue;
    switch (System.Atoms[Other.Atom].AtomicNumber) {
      case 1:
        break;
      case 8:
        return OxygenClass(System, Other.Atom, Group) == "OH" ? "COOH" : "COOR";
      case 7:
        return "CON";
      case 9:
      case 17:
      case 35:
      case 53:
        return "COX";
      default:
        Class = "COR";
    }
  }
  return Class;
}

std::string CarbonClass(const Molecule& System, std::size_t Group, std::size_t From) {
  const Atom& Item = System.Atoms[Group];
  if (Item.Aromatic) return "Ar";
  if (Item.State == Hybrid::Sp) {
    for (const Neighbour& Other : Item.Neighbours) {
      if (Other.Order == BondOrder::Triple) return System.Atoms[Other.Atom].AtomicNumber == 7 ? "CN" : "C#C";
    }
    return "C=C";
  }
  if (Item.State == Hybrid::Sp3) return "C";
  if (IsCarbonyl(System, Group)) return AcylClass(System, Group, From);
  return HasDoubleBondTo(System, Group, 7) ? "C=N" : "C=C";
}

std::string SulfurClass(const Molecule& System, std::size_t Group) {
  const int Oxygens = CountNeighbours(System, Group, 8);
  return Oxygens >= 2 ? "SO2" : (Oxygens == 1 ? "SO" : "S");
}

}  // namespace

bool IsCarbonyl(const Molecule& System, std::size_t Center) {
  return System.Atoms[Center].AtomicNumber == 6 && HasDoubleBondTo(System, Center, 8);
}

std::string SubstituentClass(const Molecule& System, std::size_t Group, std::size_t From) {
  switch (System.Atoms[Group].AtomicNumber) {
    case 1:
      return "H";
    case 6:
      return CarbonClass(System, Group, From);
    case 7:
      return NitrogenClass(System, Group, From);
    case 8:
      return OxygenClass(System, Group, From);
    case 9:
      return "F";
    case 14:
      return "Si";
    case 15:
      return "P";
    case 16:
      return SulfurClass(System, Group);
    case 17:
      return "Cl";
    case 35:
      return "Br";
    case 53:
      return "I";
    default:
      return "*";
  }
}

const std::vector<double>& SubstituentRow(const TableFile& File, const char* TableName, const std::string& Class) {
  std::string Name = Class;
  for (;;) {
    if (const std::vector<double>* Row = FindRow(File, TableName, Name)) return *Row;
    const auto* Next =
        std::find_if(Relatives.begin(), Relatives.end(), [&Name](const auto& Pair) { return Name == Pair.first; });
    if (Next == Relatives.end()) break;
    Name = Next->second;
  }
  if (const std::vector<double>* Row = FindRow(File, TableName, "*")) return *Row;
  throw zelvanor::Failure(File.Path + ": the table " + TableName + " has neither a row " + Class + " nor a row *");
}

std::size_t DoubleBondPartner(const Molecule& System, std::size_t Center, int AtomicNumber) {
  for (const Neighbour& Bond : System.Atoms[Center].Neighbours) {
    if (Bond.Order == BondOrder::Double && System.Atoms[Bond.Atom].AtomicNumber == AtomicNumber) return Bond.Atom;
  }
  return NoAtom;
}

double Electronegativity(int AtomicNumber) {
  for (const auto& [Number, Value] : Electronegativities) {
    if (Number == AtomicNumber) return Value;
  }
  return 2.20;
}

}  // namespace nmrcalc
