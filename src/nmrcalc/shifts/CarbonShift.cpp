// Carbon-13 shifts. Aliphatic: -2.3 ppm plus alpha, beta and gamma increments of every atom within three bonds, with
// the steric corrections of branched carbons; olefinic, aromatic and acetylenic: increments on the parent system;
// carbonyl carbons by their kind. Sources stand in the data file. Range: uncharged organic molecules.

#include <algorithm>
#include <set>

#include "nmrcalc/shifts/Shielding.h"
#include "nmrcalc/shifts/Substituents.h"

namespace nmrcalc {

namespace {

ShiftEstimate Known(double Shift, std::string Origin) { return {Shift, true, std::move(Origin)}; }

// Groups that the increments count as one unit; chains go on through all others.
bool ChainGoesThrough(const std::string& Class) {
  static const std::set<std::string> Through = {"C", "OH", "OR", "N", "NCO", "N+", "S", "SO", "SO2", "COR", "P", "Si"};
  return Through.contains(Class);
}

// Beta and gamma increments of what lies beyond the neighbours. An atom counts once, at its nearest place, but
// gamma atoms count for every way that leads to them, as the increments were made.
double ChainIncrements(const TableFile& Tables, const Molecule& System, std::size_t Carbon, std::string& Origin) {
  std::set<std::size_t> Nearer{Carbon};
  std::vector<std::size_t> Alpha;
  for (const Neighbour& Bond : System.Atoms[Carbon].Neighbours) {
    Nearer.insert(Bond.Atom);
    if (ChainGoesThrough(SubstituentClass(System, Bond.Atom, Carbon))) Alpha.push_back(Bond.Atom);
  }
  double Sum = 0.0;
  std::vector<std::pair<std::size_t, std::string>> Beta;
  std::set<std::size_t> Counted;
  for (const std::size_t Center : Alpha) {
    for (const Neighbour& Bond : System.Atoms[Center].Neighbours) {
      if (Bond.Order != BondOrder::Single || Nearer.contains(Bond.Atom)) continue;
      const std::string Class = SubstituentClass(System, Bond.Atom, Center);
      if (Class == "H" || !Counted.insert(Bond.Atom).second) continue;
      Sum += SubstituentRow(Tables, "C.sp3", Class)[1];
      Origin += ", beta " + Class;
      Beta.emplace_back(Bond.Atom, Class);
    }
  }
  Nearer.insert(Counted.begin(), Counted.end());
  std::set<std::size_t> GammaCounted;
  for (const auto& [Center, BetaClass] : Beta) {
    if (!ChainGoesThrough(BetaClass) && BetaClass != "OCOR") continue;
    for (const Neighbour& Bond : System.Atoms[Center].Neighbours) {
      if (Bond.Order != BondOrder::Single || Nearer.contains(Bond.Atom)) continue;
      const std::string Class = SubstituentClass(System, Bond.Atom, Center);
      if (Class == "H" || !GammaCounted.insert(Bond.Atom).second) continue;
      Sum += SubstituentRow(Tables, "C.sp3", Class)[2];
      Origin += ", gamma " + Class;
    }
  }
  return Sum;
}

// Crowding: the observed carbon's branching (row) against that of each sp3 carbon beside it (column).
double StericCorrection(const TableFile& Tables, const Molecule& System, std::size_t Carbon) {
  const auto Branching = [&System](std::size_t Atom) {
    const int Heavy = static_cast<int>(System.Atoms[Atom].Neighbours.size()) - CountNeighbours(System, Atom, 1);
    return std::clamp(Heavy, 1, 4);
  };
  const std::string Row = std::to_string(Branching(Carbon));
  double Sum = 0.0;
  for (const Neighbour& Bond : System.Atoms[Carbon].Neighbours) {
    if (SubstituentClass(System, Bond.Atom, Carbon) != "C") continue;
    Sum += TableValue(Tables, "C.sp3.steric", Row, static_cast<std::size_t>(Branching(Bond.Atom) - 1));
  }
  return Sum;
}

ShiftEstimate AliphaticShift(const TableFile& Tables, const Molecule& System, std::size_t Carbon) {
  std::string Origin = "sp3 C";
  std::vector<WeightedIncrement> Alpha;
  for (const Neighbour& Bond : System.Atoms[Carbon].Neighbours) {
    const std::string Class = SubstituentClass(System, Bond.Atom, Carbon);
    if (Class == "H") continue;
    const std::vector<double>& Row = SubstituentRow(Tables, "C.sp3", Class);
    Alpha.push_back({Row[0], Row[3], Row[4]});
    Origin += ", alpha " + Class;
  }
  double Shift = SubstituentRow(Tables, "C.sp3", "base")[0] + SumIncrements(std::move(Alpha));
  Shift += ChainIncrements(Tables, System, Carbon, Origin);
  Shift += StericCorrection(Tables, System, Carbon);
  const int RingSize = System.Atoms[Carbon].SmallestRing;
  if (const std::vector<double>* Ring = FindRow(Tables, "C.sp3.ring", std::to_string(RingSize))) {
    Shift += (*Ring)[0];
    Origin += ", ring of " + std::to_string(RingSize);
  }
  return Known(Shift, Origin);
}

// Number of atoms, hydrogen aside, on an alkyl substituent beyond its first carbon.
int CountBeyond(const Molecule& System, std::size_t Group, std::size_t From) {
  int Count = 0;
  for (const Neighbour& Bond : System.Atoms[Group].Neighbours) {
    if (Bond.Atom != From && System.Atoms[Bond.Atom].AtomicNumber != 1) ++Count;
  }
  return Count;
}

ShiftEstimate OlefinicShift(const TableFile& Tables, const Molecule& System, std::size_t Carbon, std::size_t Partner) {
  double Shift = SubstituentRow(Tables, "C.olefin", "base")[0];
  std::string Origin = "C of C=C";
  for (const bool Own : {true, false}) {
    const std::size_t Center = Own ? Carbon : Partner;
    const std::size_t Other = Own ? Partner : Carbon;
    for (const Neighbour& Bond : System.Atoms[Center].Neighbours) {
      if (Bond.Atom == Other) continue;
      const std::string Class = SubstituentClass(System, Bond.Atom, Center);
      if (Class == "H") continue;
      const std::vector<double>& Row = SubstituentRow(Tables, "C.olefin", Class);
      Shift += Row[Own ? 0 : 1];
      Origin += (Own ? ", alpha " : ", alpha' ") + Class;
      if (Class == "C") Shift += CountBeyond(System, Bond.Atom, Center) * Row[Own ? 2 : 3];
    }
  }
  return Known(Shift, Origin);
}

ShiftEstimate AromaticShift(const TableFile& Tables, const std::vector<RingPosition>& Ring) {
  constexpr const char* Places[] = {", ipso ", ", ortho ", ", meta ", ", para "};
  const RingPosition* Lender = FindLender(Ring);
  double Shift = SubstituentRow(Tables, "C.ring6", "base")[0];
  std::string Origin = "C of aromatic ring of " + std::to_string(Ring.size());
  if (Lender != nullptr) {
    Shift = SubstituentRow(Tables, "C.ring5", Lender->Class)[Lender->Distance == 1 ? 0 : 1];
    Origin += ", " + Lender->Class;
  }
  for (const RingPosition& Item : Ring) {
    if (Item.Class == "H" || (Lender != nullptr && Item.Atom == Lender->Atom)) continue;
    Shift += SubstituentRow(Tables, "C.ring6", Item.Class)[static_cast<std::size_t>(Item.Distance)];
    Origin += Places[Item.Distance] + Item.Class;
  }
  return Known(Shift, Origin);
}

ShiftEstimate CarbonylShift(const TableFile& Tables, const Molecule& System, std::size_t Carbon) {
  int Oxygens = 0;
  int Nitrogens = 0;
  int Hydrogens = 0;
  int Conjugated = 0;
  int Beyond = 0;
  bool Acid = false;
  bool Halide = false;
  bool Anhydride = false;
  for (const Neighbour& Bond : System.Atoms[Carbon].Neighbours) {
    const std::string Class = SubstituentClass(System, Bond.Atom, Carbon);
    Oxygens += Class.starts_with("O") ? 1 : 0;
    Acid = Acid || Class == "OH";
    Anhydride = Anhydride || Class == "OCOR";
    Nitrogens += Class.starts_with("N") ? 1 : 0;
    Hydrogens += Class == "H" ? 1 : 0;
    Halide = Halide || Class == "F" || Class == "Cl" || Class == "Br" || Class == "I";
    Conjugated += Class == "Ar" || Class == "C=C" ? 1 : 0;
    if (Class == "C") Beyond += CountBeyond(System, Bond.Atom, Carbon);
  }
  std::string Kind = "ketone";
  if (Hydrogens > 0) Kind = "aldehyde";
  if (Nitrogens == 1) Kind = "amide";
  if (Oxygens == 1) Kind = Acid ? "acid" : (Anhydride ? "anhydride" : "ester");
  if (Oxygens == 1 && Nitrogens == 1) Kind = "carbamate";
  if (Nitrogens >= 2) Kind = "urea";
  if (Oxygens >= 2) Kind = "carbonate";
  if (Halide) Kind = "halide";
  const std::vector<double>& Row = SubstituentRow(Tables, "C.carbonyl", Kind);
  double Shift = Row[0] + Row[1] * std::min(Conjugated, 2) + Row[2] * Beyond;
  if (Hydrogens > 0 && Oxygens + Nitrogens == 1) Shift += TableValue(Tables, "C.carbonyl", "formyl");
  return Known(Shift, "C=O, " + Kind);
}

ShiftEstimate AcetylenicShift(const TableFile& Tables, const Molecule& System, std::size_t Carbon,
                              std::size_t Partner) {
  double Shift = SubstituentRow(Tables, "C.alkyne", "base")[0];
  std::string Origin = "C of a triple bond";
  for (const bool Own : {true, false}) {
    const std::size_t Center = Own ? Carbon : Partner;
    for (const Neighbour& Bond : System.Atoms[Center].Neighbours) {
      if (Bond.Atom == Carbon || Bond.Atom == Partner) continue;
      const std::string Class = SubstituentClass(System, Bond.Atom, Center);
      if (Class == "H") continue;
      Shift += SubstituentRow(Tables, "C.alkyne", Class)[Own ? 0 : 1];
      Origin += (Own ? ", alpha " : ", alpha' ") + Class;
    }
  }
  return Known(Shift, Origin);
}

// Carbons with two double bonds or a triple bond to another element, and C=N, C=S.
ShiftEstimate OtherShift(const TableFile& Tables, const Molecule& System, std::size_t Carbon) {
  std::vector<std::string> Partners;
  bool OnAryl = false;
  for (const Neighbour& Bond : System.Atoms[Carbon].Neighbours) {
    OnAryl = OnAryl || System.Atoms[Bond.Atom].Aromatic;
    if (Bond.Order == BondOrder::Double) Partners.push_back("=" + SymbolOf(System.Atoms[Bond.Atom].AtomicNumber));
    if (Bond.Order == BondOrder::Triple) Partners.push_back("#" + SymbolOf(System.Atoms[Bond.Atom].AtomicNumber));
  }
  std::sort(Partners.begin(), Partners.end());
  std::string Kind;
  for (const std::string& Partner : Partners) Kind += Partner;
  if (Kind == "#N" && OnAryl) Kind = "#N.aryl";
  return Known(SubstituentRow(Tables, "C.other", Kind)[0], "C with " + Kind);
}

}  // namespace

ShiftEstimate EstimateCarbonShift(const TableFile& Tables, const Molecule& System, std::size_t Center) {
  const Atom& Item = System.Atoms[Center];
  if (Item.Aromatic) {
    const auto Ring = WalkAromaticRing(System, Center);
    if (!Ring.empty()) return AromaticShift(Tables, Ring);
    return Known(SubstituentRow(Tables, "C.ring6", "base")[0], "aromatic C");
  }
  if (Item.State == Hybrid::Sp3) return AliphaticShift(Tables, System, Center);
  if (Item.State == Hybrid::Sp2) {
    if (IsCarbonyl(System, Center)) return CarbonylShift(Tables, System, Center);
    const std::size_t Partner = DoubleBondPartner(System, Center, 6);
    if (Partner != NoAtom) return OlefinicShift(Tables, System, Center, Partner);
    return OtherShift(Tables, System, Center);
  }
  for (const Neighbour& Bond : Item.Neighbours) {
    if (Bond.Order == BondOrder::Triple && System.Atoms[Bond.Atom].AtomicNumber == 6) {
      return AcetylenicShift(Tables, System, Center, Bond.Atom);
    }
  }
  return OtherShift(Tables, System, Center);
}

}  // namespace nmrcalc
