// Nitrogen-15 and oxygen-17: the usual region of the atom's kind. Too few measured values are at hand to learn from;
// this is right to some tens of ppm, enough to tell kinds apart.

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

}  // namespace

ShiftEstimate EstimateByRegion(const TableFile& Tables, const Molecule& System, std::size_t Center) {
  const bool Nitrogen = System.Atoms[Center].AtomicNumber == 7;
  const std::string Kind = Nitrogen ? NitrogenKind(System, Center) : OxygenKind(System, Center);
  const std::vector<double>& Row = SubstituentRow(Tables, Nitrogen ? "N" : "O", Kind);
  return {.Shift = Row[0], .Error = Row[1], .Known = true, .Origin = "region of " + Kind};
}

}  // namespace nmrcalc
