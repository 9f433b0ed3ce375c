// Proton shifts. Aliphatic: base value of CH3, CH2 or CH plus alpha and beta increments; olefinic and aromatic:
// geminal/cis/trans and ortho/meta/para increments; the rest from short tables. Sources stand in the data file.
// Range: uncharged organic molecules in a solvent that does not bind them; exchangeable protons scatter by ppm.

#include <algorithm>

#include "nmrcalc/shifts/Shielding.h"
#include "nmrcalc/shifts/Substituents.h"

namespace nmrcalc {

namespace {

ShiftEstimate Known(double Shift, std::string Origin) { return {Shift, true, std::move(Origin)}; }

ShiftEstimate AliphaticShift(const TableFile& Tables, const Molecule& System, std::size_t Carbon) {
  const Atom& Parent = System.Atoms[Carbon];
  const int NumHydrogens = std::clamp(CountNeighbours(System, Carbon, 1), 1, 4);
  const std::string Base = NumHydrogens == 1 ? "CH" : "CH" + std::to_string(NumHydrogens);
  const auto Column = static_cast<std::size_t>(3 - std::min(NumHydrogens, 3));
  double Shift = TableValue(Tables, "H.sp3.base", Base);
  std::string Origin = "H on sp3 carbon, " + Base;
  std::vector<WeightedIncrement> Increments;
  for (const Neighbour& Bond : Parent.Neighbours) {
    const std::string Class = SubstituentClass(System, Bond.Atom, Carbon);
    if (Class == "H") continue;
    const std::vector<double>& Row = SubstituentRow(Tables, "H.sp3.alpha", Class);
    Increments.push_back({Row[Column], Row[3], Row[4]});
    Origin += ", " + Class;
    if (Class != "C") continue;
    for (const Neighbour& Next : System.Atoms[Bond.Atom].Neighbours) {
      const std::string BetaClass = SubstituentClass(System, Next.Atom, Bond.Atom);
      if (Next.Atom == Carbon || BetaClass == "H") continue;
      Shift += SubstituentRow(Tables, "H.sp3.beta", BetaClass)[0];
      Origin += ", beta " + BetaClass;
    }
  }
  Shift += SumIncrements(std::move(Increments));
  if (const std::vector<double>* Ring = FindRow(Tables, "H.sp3.ring", std::to_string(Parent.SmallestRing))) {
    Shift += (*Ring)[0];
    Origin += ", ring of " + std::to_string(Parent.SmallestRing);
  }
  return Known(Shift, Origin);
}

// The class of a substituent on a double bond: alkyl groups are told apart by what they bear and by rings.
std::string OlefinClass(const Molecule& System, std::size_t Group, std::size_t From) {
  std::string Class = SubstituentClass(System, Group, From);
  if (Class != "C") return Class;
  if (SmallestRingOfBond(System, Group, From) != 0) return "Cring";
  for (const Neighbour& Bond : System.Atoms[Group].Neighbours) {
    const int Z = System.Atoms[Bond.Atom].AtomicNumber;
    if (Z != 1 && Z != 6) return "CX";
  }
  return Class;
}

ShiftEstimate OlefinicShift(const TableFile& Tables, const Molecule& System, std::size_t Proton, std::size_t Carbon,
                            std::size_t Partner) {
  double Shift = TableValue(Tables, "H.olefin", "base");
  std::string Origin = "H on C=C";
  for (const Neighbour& Bond : System.Atoms[Carbon].Neighbours) {
    if (Bond.Atom == Proton || Bond.Atom == Partner) continue;
    const std::string Class = OlefinClass(System, Bond.Atom, Carbon);
    if (Class == "H") continue;
    Shift += SubstituentRow(Tables, "H.olefin", Class)[0];
    Origin += ", gem " + Class;
  }
  for (const Neighbour& Bond : System.Atoms[Partner].Neighbours) {
    if (Bond.Atom == Carbon) continue;
    const std::string Class = OlefinClass(System, Bond.Atom, Partner);
    if (Class == "H") continue;
    const bool Cis = IsCis(System, Proton, Carbon, Partner, Bond.Atom);
    Shift += SubstituentRow(Tables, "H.olefin", Class)[Cis ? 1 : 2];
    Origin += (Cis ? ", cis " : ", trans ") + Class;
  }
  return Known(Shift, Origin);
}

ShiftEstimate AromaticShift(const TableFile& Tables, const std::vector<RingPosition>& Ring) {
  constexpr const char* Places[] = {"", ", ortho ", ", meta ", ", para "};
  const RingPosition* Lender = FindLender(Ring);
  double Shift = TableValue(Tables, "H.ring6", "base");
  std::string Origin = "H on aromatic ring of " + std::to_string(Ring.size());
  if (Lender != nullptr) {
    Shift = SubstituentRow(Tables, "H.ring5", Lender->Class)[Lender->Distance == 1 ? 0 : 1];
    Origin += ", " + Lender->Class;
  }
  for (const RingPosition& Item : Ring) {
    if (Item.Distance == 0 || Item.Class == "H" || (Lender != nullptr && Item.Atom == Lender->Atom)) continue;
    Shift += SubstituentRow(Tables, "H.ring6", Item.Class)[static_cast<std::size_t>(Item.Distance - 1)];
    Origin += Places[Item.Distance] + Item.Class;
  }
  return Known(Shift, Origin);
}

ShiftEstimate CarbonProtonShift(const TableFile& Tables, const Molecule& System, std::size_t Proton,
                                std::size_t Carbon) {
  const Atom& Parent = System.Atoms[Carbon];
  if (Parent.Aromatic) {
    const auto Ring = WalkAromaticRing(System, Carbon);
    if (!Ring.empty()) return AromaticShift(Tables, Ring);
    return Known(TableValue(Tables, "H.ring6", "base"), "H on aromatic carbon");
  }
  if (Parent.State == Hybrid::Sp3) return AliphaticShift(Tables, System, Carbon);
  std::string Beside = "H";  // what else the carbon carries
  for (const Neighbour& Bond : Parent.Neighbours) {
    if (Bond.Atom != Proton && Bond.Order == BondOrder::Single && System.Atoms[Bond.Atom].AtomicNumber != 1) {
      Beside = SubstituentClass(System, Bond.Atom, Carbon);
    }
  }
  if (IsCarbonyl(System, Carbon)) return Known(SubstituentRow(Tables, "H.formyl", Beside)[0], "H on C=O, " + Beside);
  const std::size_t Partner = DoubleBondPartner(System, Carbon, 6);
  if (Partner != NoAtom) return OlefinicShift(Tables, System, Proton, Carbon, Partner);
  if (Parent.State == Hybrid::Sp) {
    for (const Neighbour& Bond : Parent.Neighbours) {
      if (Bond.Order != BondOrder::Triple) continue;
      std::string Far = "H";
      for (const Neighbour& Next : System.Atoms[Bond.Atom].Neighbours) {
        if (Next.Atom != Carbon) Far = SubstituentClass(System, Next.Atom, Bond.Atom);
      }
      return Known(SubstituentRow(Tables, "H.sp", Far)[0], "H on sp carbon, " + Far);
    }
  }
  return Known(TableValue(Tables, "H.other", "C=N"), "H on C=N");
}

std::string OxygenProtonKind(const Molecule& System, std::size_t Oxygen) {
  if (CountNeighbours(System, Oxygen, 1) >= 2) return "O.water";
  for (const Neighbour& Bond : System.Atoms[Oxygen].Neighbours) {
    const Atom& Carrier = System.Atoms[Bond.Atom];
    if (Carrier.AtomicNumber == 1) continue;
    if (IsCarbonyl(System, Bond.Atom)) return "O.acid";
    if (Carrier.Aromatic || Carrier.State == Hybrid::Sp2) return "O.phenol";
    if (Carrier.AtomicNumber == 15 || Carrier.AtomicNumber == 16) return "O.acid";
    if (Carrier.AtomicNumber == 7) return "O.oxime";
  }
  return "O.alcohol";
}

std::string NitrogenProtonKind(const Molecule& System, std::size_t Nitrogen) {
  const Atom& Parent = System.Atoms[Nitrogen];
  if (Parent.Neighbours.size() >= 4) return "N.ammonium";
  if (Parent.Aromatic) return "N.ring";
  if (Parent.State != Hybrid::Sp3) return "N.imine";
  std::string Kind = "N.amine";
  for (const Neighbour& Bond : Parent.Neighbours) {
    if (IsCarbonyl(System, Bond.Atom)) return "N.amide";
    if (System.Atoms[Bond.Atom].Aromatic) Kind = "N.aryl";
  }
  return Kind;
}

// What carries the hydrogen; of two neighbours (a bridge) the heavier one. NoAtom when there is none.
std::size_t CarrierOf(const Molecule& System, std::size_t Proton) {
  std::size_t Carrier = NoAtom;
  for (const Neighbour& Bond : System.Atoms[Proton].Neighbours) {
    if (Carrier == NoAtom || System.Atoms[Bond.Atom].AtomicNumber > System.Atoms[Carrier].AtomicNumber) {
      Carrier = Bond.Atom;
    }
  }
  return Carrier;
}

}  // namespace

std::string ProtonKind(const Molecule& System, std::size_t Proton) {
  const std::size_t Carrier = CarrierOf(System, Proton);
  if (Carrier == NoAtom) return "bare";
  const auto& List = System.Atoms[Carrier].Neighbours;
  switch (System.Atoms[Carrier].AtomicNumber) {
    case 7:
      return NitrogenProtonKind(System, Carrier);
    case 8:
      return OxygenProtonKind(System, Carrier);
    case 16:
      return std::any_of(List.begin(), List.end(),
                         [&System](const Neighbour& Bond) { return System.Atoms[Bond.Atom].Aromatic; })
                 ? "S.aryl"
                 : "S.alkyl";
    default:
      return SymbolOf(System.Atoms[Carrier].AtomicNumber);
  }
}

ShiftEstimate EstimateProtonShift(const TableFile& Tables, const Molecule& System, std::size_t Center) {
  const std::string Kind = ProtonKind(System, Center);
  if (Kind == "C") return CarbonProtonShift(Tables, System, Center, CarrierOf(System, Center));
  return Known(SubstituentRow(Tables, "H.other", Kind)[0], "H on " + Kind);
}

}  // namespace nmrcalc
