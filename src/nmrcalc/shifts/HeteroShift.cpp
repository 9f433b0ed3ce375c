// Nitrogen-15, oxygen-17, fluorine-19 and phosphorus-31: the usual region of the atom's kind. Right to some tens of
// ppm for N, O, F and to ten or twenty for P; enough to tell kinds apart.

#include <algorithm>

#include "nmrcalc/shifts/Shielding.h"
#include "nmrcalc/shifts/Substituents.h"

namespace nmrcalc {

namespace {

struct Surroundings {
  int Hydrogens = 0;
  int Heavy = 0;  // neighbours that are not hydrogen
  int Aryl = 0;
  int Carbonyl = 0;
  int Unsaturated = 0;  // sp2 carbons that are neither aromatic nor carbonyl
};

Surroundings LookAround(const Molecule& System, std::size_t Center) {
  Surroundings Result;
  for (const Neighbour& Bond : System.Atoms[Center].Neighbours) {
    const Atom& Other = System.Atoms[Bond.Atom];
    if (Other.AtomicNumber == 1) {
      ++Result.Hydrogens;
      continue;
    }
    ++Result.Heavy;
    if (Other.AtomicNumber != 6) continue;
    if (Other.Aromatic) {
      ++Result.Aryl;
    } else if (IsCarbonyl(System, Bond.Atom)) {
      ++Result.Carbonyl;
    } else if (Other.State == Hybrid::Sp2) {
      ++Result.Unsaturated;
    }
  }
  return Result;
}

std::string NitrogenKind(const Molecule& System, std::size_t Center) {
  const Atom& Item = System.Atoms[Center];
  const Surroundings Near = LookAround(System, Center);
  int TerminalOxygens = 0;
  for (const Neighbour& Bond : Item.Neighbours) {
    const Atom& Other = System.Atoms[Bond.Atom];
    if (Other.AtomicNumber == 8 && Other.Neighbours.size() == 1) ++TerminalOxygens;
    if (Bond.Order == BondOrder::Triple)
      return Other.AtomicNumber == 6 && Item.Neighbours.size() == 1 ? "nitrile" : "sp";
  }
  if (TerminalOxygens >= 2) return CountNeighbours(System, Center, 8) >= 3 ? "nitrate" : "nitro";
  if (Item.Neighbours.size() >= 4) return "ammonium";
  if (Item.Aromatic) return Item.Neighbours.size() > 2 ? "pyrrole" : "pyridine";
  if (Item.State == Hybrid::Sp) return "sp";
  if (Item.State == Hybrid::Sp2) {
    if (TerminalOxygens == 1) return "nitroso";
    if (DoubleBondPartner(System, Center, 7) != NoAtom) return "azo";
    return CountNeighbours(System, Center, 8) > 0 ? "oxime" : "imine";
  }
  if (Near.Carbonyl > 0) return "amide";
  if (CountNeighbours(System, Center, 16) > 0) return "sulfonamide";
  if (CountNeighbours(System, Center, 7) > 0) return "hydrazine";
  if (Near.Aryl > 0) return "aryl";
  if (Near.Unsaturated > 0) return "enamine";
  if (Near.Heavy == 0) return "ammonia";
  return Near.Heavy == 1 ? "primary" : (Near.Heavy == 2 ? "secondary" : "tertiary");
}

// An oxygen that ends on one atom by a double bond (or bears a charge there).
std::string TerminalOxygenKind(const Molecule& System, std::size_t Carrier, std::size_t Center) {
  const Atom& Item = System.Atoms[Carrier];
  switch (Item.AtomicNumber) {
    case 6: {
      if (Item.State == Hybrid::Sp) return "CO2";
      const std::string Class = SubstituentClass(System, Carrier, Center);
      int Oxygens = CountNeighbours(System, Carrier, 8);
      int Nitrogens = CountNeighbours(System, Carrier, 7);
      if (Oxygens >= 3) return "carbonate";
      if (Oxygens == 2) {
        for (const Neighbour& Bond : Item.Neighbours) {
          if (SubstituentClass(System, Bond.Atom, Carrier) == "OH") return "acid";
        }
        return "ester.carbonyl";
      }
      if (Nitrogens > 0) return "amide";
      if (Class == "COX") return "halide";
      return CountNeighbours(System, Carrier, 1) > 0 ? "aldehyde" : "ketone";
    }
    case 7:
      return CountNeighbours(System, Carrier, 8) >= 2 ? "nitro" : "nitroso";
    case 15:
      return "phosphoryl";
    case 16:
      return CountNeighbours(System, Carrier, 8) >= 2 ? "sulfonyl" : "sulfoxide";
    default:
      return "*";
  }
}

std::string OxygenKind(const Molecule& System, std::size_t Center) {
  const Atom& Item = System.Atoms[Center];
  const Surroundings Near = LookAround(System, Center);
  if (Item.Aromatic) return "furan";
  if (Near.Heavy == 0) return "water";
  std::size_t Carrier = NoAtom;  // the carbon of the largest consequence; the kind does not depend on the order
  for (const Neighbour& Bond : Item.Neighbours) {
    if (System.Atoms[Bond.Atom].AtomicNumber == 1) continue;
    if (Bond.Order != BondOrder::Single || Item.Neighbours.size() == 1) {
      return TerminalOxygenKind(System, Bond.Atom, Center);
    }
    Carrier = Bond.Atom;
  }
  if (CountNeighbours(System, Center, 8) > 0) return "peroxide";
  if (Near.Carbonyl > 0) return Near.Hydrogens > 0 ? "acid" : "ester";
  if (CountNeighbours(System, Center, 15) > 0) return "phosphate";
  if (Near.Aryl > 0) return Near.Hydrogens > 0 ? "phenol" : "aryl.ether";
  if (Near.Hydrogens > 0) {
    const Surroundings Beyond = LookAround(System, Carrier);
    return Beyond.Heavy >= 4 ? "tertiary"
                             : (Beyond.Heavy == 3 ? "secondary" : (Beyond.Heavy == 2 ? "primary" : "methanol"));
  }
  if (Item.SmallestRing == 3) return "epoxide";
  int Carbons = 0;  // beyond the two carbons of an ether
  for (const Neighbour& Bond : Item.Neighbours) Carbons += LookAround(System, Bond.Atom).Heavy - 1;
  return Carbons == 0 ? "ether0" : (Carbons == 1 ? "ether1" : "ether2");
}

std::string FluorineKind(const Molecule& System, std::size_t Center) {
  const Atom& Item = System.Atoms[Center];
  if (Item.Neighbours.size() != 1) return "ion";
  const std::size_t Carrier = Item.Neighbours[0].Atom;
  const Atom& Carbon = System.Atoms[Carrier];
  if (Carbon.AtomicNumber != 6) return SymbolOf(Carbon.AtomicNumber);
  if (Carbon.Aromatic) return "aryl";
  if (IsCarbonyl(System, Carrier)) return "acyl";
  if (Carbon.State == Hybrid::Sp2) return CountNeighbours(System, Carrier, 9) >= 2 ? "vinyl.CF2" : "vinyl";
  const int Fluorines = CountNeighbours(System, Carrier, 9);
  const int Hydrogens = CountNeighbours(System, Carrier, 1);
  const int Heavy = CountNeighbours(System, Carrier, 17) + CountNeighbours(System, Carrier, 35);
  if (Heavy > 0) return Heavy + Fluorines >= 4 ? "CFX3" : "CFX";
  if (Fluorines >= 4) return "CF4";
  if (Fluorines == 3) return Hydrogens > 0 ? "CHF3" : "CF3";
  if (Fluorines == 2) return Hydrogens == 2 ? "CH2F2" : (Hydrogens == 1 ? "CHF2" : "CF2");
  return Hydrogens == 3 ? "CH3F" : (Hydrogens == 2 ? "CH2F" : (Hydrogens == 1 ? "CHF" : "CF"));
}

std::string PhosphorusKind(const Molecule& System, std::size_t Center) {
  const Atom& Item = System.Atoms[Center];
  const Surroundings Near = LookAround(System, Center);
  const bool Oxide = DoubleBondPartner(System, Center, 8) != NoAtom;
  const int Oxygens = CountNeighbours(System, Center, 8);
  const int Carbons = CountNeighbours(System, Center, 6);
  const int Halogens =
      CountNeighbours(System, Center, 17) + CountNeighbours(System, Center, 35) + CountNeighbours(System, Center, 9);
  if (DoubleBondPartner(System, Center, 16) != NoAtom) return "thio";
  if (Oxide) {
    if (Halogens > 0) return "POX";
    if (Carbons >= 3) return "oxide";
    if (Carbons == 2) return "phosphinate";
    if (Carbons == 1) return "phosphonate";
    return Near.Hydrogens > 0 ? "H-phosphonate" : "phosphate";
  }
  if (Item.Neighbours.size() >= 5) return "P5";
  if (Item.Neighbours.size() == 4) return Oxygens >= 4 ? "phosphate" : "phosphonium";
  if (Halogens > 0) return "PX3";
  if (Oxygens > 0) return Oxygens == 3 ? "phosphite" : "phosphonite";
  if (Carbons == 0) return "PH3";
  if (Carbons == 1) return "PH2R";
  if (Carbons == 2) return "PHR2";
  if (Near.Aryl > 0) return "PAr3";
  int Beyond = 0;  // carbons one bond further: ethyl and larger groups against methyl
  for (const Neighbour& Bond : Item.Neighbours) Beyond += LookAround(System, Bond.Atom).Heavy > 1 ? 1 : 0;
  return Beyond > 0 ? "PR3" : "PMe3";
}

}  // namespace

ShiftEstimate EstimateHeteroShift(const TableFile& Tables, const Molecule& System, std::size_t Center) {
  const int Z = System.Atoms[Center].AtomicNumber;
  std::string Kind;
  if (Z == 7) Kind = NitrogenKind(System, Center);
  if (Z == 8) Kind = OxygenKind(System, Center);
  if (Z == 9) Kind = FluorineKind(System, Center);
  if (Z == 15) Kind = PhosphorusKind(System, Center);
  const std::string Element = SymbolOf(Z);
  return {SubstituentRow(Tables, Element.c_str(), Kind)[0], true, Element + ", " + Kind};
}

}  // namespace nmrcalc
