#include "nmrcalc/couplings/Coupling.h"

#include <algorithm>
#include <cmath>

#include "nmrcalc/couplings/Surroundings.h"
#include "nmrcalc/shifts/Geometry.h"
#include "nmrcalc/shifts/Substituents.h"

namespace nmrcalc {

namespace {

constexpr std::size_t LongestPath = 6;        // atoms
constexpr std::size_t LargestPathCount = 64;  // equally short paths between two nuclei that are looked at

// The best row for a path; null when none fits. Columns as the table has them.
const std::vector<double>* FindPathRow(CouplingModel& Model, const std::string& TableName, const std::string& Path) {
  const auto [Place, New] = Model.Found.try_emplace(TableName + " " + Path, nullptr);
  if (!New) return Place->second;
  const auto Table = Model.Tables.Tables.find(TableName);
  int Fewest = 1000;
  if (Table != Model.Tables.Tables.end()) {
    for (const auto& [Key, Row] : Table->second.Rows) {
      int Stars = 0;
      if (!PathMatches(Path, Key, Stars) || Stars >= Fewest) continue;
      Fewest = Stars;
      Place->second = &Row;
    }
  }
  return Place->second;
}

// Sum over the neighbours of Center, path and hydrogen aside, of electronegativity above hydrogen.
double ExcessElectronegativity(const Molecule& System, std::size_t Center, const std::vector<std::size_t>& Path) {
  double Sum = 0.0;
  for (const Neighbour& Bond : System.Atoms[Center].Neighbours) {
    if (std::find(Path.begin(), Path.end(), Bond.Atom) != Path.end()) continue;
    const int Z = System.Atoms[Bond.Atom].AtomicNumber;
    if (Z != 1) Sum += Electronegativity(Z) - Electronegativity(1);
  }
  return Sum;
}

double SubstituentSum(const CouplingModel& Model, const char* TableName, std::size_t Center,
                      const std::vector<std::size_t>& Path, std::size_t Column) {
  double Sum = 0.0;
  for (const Neighbour& Bond : Model.System.Atoms[Center].Neighbours) {
    if (std::find(Path.begin(), Path.end(), Bond.Atom) != Path.end()) continue;
    const std::string Class = SubstituentClass(Model.System, Bond.Atom, Center);
    if (Class != "H") Sum += SubstituentRow(Model.Tables, TableName, Class)[Column];
  }
  return Sum;
}

double RingValue(const CouplingModel& Model, const char* TableName, int RingSize, std::size_t Column = 0) {
  const std::vector<double>* Row = FindRow(Model.Tables, TableName, std::to_string(RingSize));
  return Row == nullptr ? 0.0 : (*Row)[Column];
}

double OneBond(CouplingModel& Model, const std::vector<std::size_t>& Path, const std::string& Text) {
  const std::vector<double>* Row = FindPathRow(Model, "J1", Text);
  double J = Row == nullptr ? 0.0 : (*Row)[0];
  const bool HydrogenFirst = Model.System.Atoms[Path[0]].AtomicNumber == 1;
  const std::size_t Carbon = HydrogenFirst ? Path[1] : Path[0];
  const std::size_t Other = HydrogenFirst ? Path[0] : Path[1];
  const Atom& Center = Model.System.Atoms[Carbon];
  if (Center.AtomicNumber == 6 && Model.System.Atoms[Other].AtomicNumber == 1 && Center.State != Hybrid::Sp) {
    J += SubstituentSum(Model, "J1.CH", Carbon, Path, Center.State == Hybrid::Sp3 ? 0 : 1);
    J += RingValue(Model, "J1.CH.ring", Center.SmallestRing);
  }
  return J;
}

double TwoBonds(CouplingModel& Model, const std::vector<std::size_t>& Path, const std::string& Text) {
  const std::vector<double>* Row = FindPathRow(Model, "J2", Text);
  double J = Row == nullptr ? 0.0 : (*Row)[0];
  if (Text == "H-C3-H") {
    J += SubstituentSum(Model, "J2.HCH", Path[1], Path, 0);
    J += RingValue(Model, "J2.HCH.ring", Model.System.Atoms[Path[1]].SmallestRing);
  }
  if (Text == "H-C2-H") {
    const std::size_t Partner = DoubleBondPartner(Model.System, Path[1], 6);
    if (Partner != NoAtom) J += SubstituentSum(Model, "J2.HCH", Partner, {Path[1]}, 1);
  }
  return J;
}

// Over a double bond: cis and trans, each falling with the substituents' electronegativity.
double OverDoubleBond(CouplingModel& Model, const std::vector<std::size_t>& Path, const std::string& Text) {
  const std::vector<double>* Row = FindPathRow(Model, "J3.double", Text);
  if (Row == nullptr) return 0.0;
  const bool Cis = IsCis(Model.System, Path[0], Path[1], Path[2], Path[3]);
  const int RingSize = SmallestRingOfBond(Model.System, Path[1], Path[2]);
  if (Cis && Text == "H-C2=C2-H" && FindRow(Model.Tables, "J3.double.ring", std::to_string(RingSize)) != nullptr) {
    return RingValue(Model, "J3.double.ring", RingSize);
  }
  const double Excess =
      ExcessElectronegativity(Model.System, Path[1], Path) + ExcessElectronegativity(Model.System, Path[2], Path);
  const double J = (*Row)[Cis ? 0 : 1] + (*Row)[Cis ? 2 : 3] * Excess;
  return (*Row)[Cis ? 0 : 1] > 0.0 ? std::max(J, 0.0) : J;
}

// Ortho protons of heteroaromatic rings.
double OrthoCorrected(CouplingModel& Model, const std::vector<std::size_t>& Path, double Ortho) {
  const auto Ring = WalkAromaticRing(Model.System, Path[1]);
  if (const RingPosition* Lender = FindLender(Ring)) {
    const bool FirstBeside = Lender->Distance == 1;
    const bool SecondBeside = FindBond(Model.System, Path[2], Lender->Atom) != nullptr;
    const auto& Row = SubstituentRow(Model.Tables, "J3.ring5", Lender->Class);
    return FirstBeside || SecondBeside ? Row[0] : Row[1];
  }
  const int Nitrogens = CountNeighbours(Model.System, Path[1], 7) + CountNeighbours(Model.System, Path[2], 7);
  return Ortho + (Nitrogens > 0 ? TableValue(Model.Tables, "J3.ring5", "besideN") : 0.0);
}

// Whether a bond outside rings keeps the conformation drawn: both carbons bear one hydrogen, and one of them is held by
// a ring (the isopropyl group of menthol).
bool KeepsConformation(const Molecule& System, std::size_t Left, std::size_t Right) {
  const auto IsBranched = [&System](std::size_t Center) {
    return System.Atoms[Center].Neighbours.size() == 4 && CountNeighbours(System, Center, 1) == 1;
  };
  const bool Held = System.Atoms[Left].SmallestRing != 0 || System.Atoms[Right].SmallestRing != 0;
  return Held && IsBranched(Left) && IsBranched(Right) && IsGeometryUsable(System);
}

// Four bonds of a saturated ring system in the shape of a W.
double OverSaturatedW(CouplingModel& Model, const std::vector<std::size_t>& Path) {
  if (SmallestRingOfBond(Model.System, Path[1], Path[2]) == 0) return 0.0;
  if (SmallestRingOfBond(Model.System, Path[2], Path[3]) == 0) return 0.0;
  const double First = std::cos(TorsionAngle(Model.System, {Path[0], Path[1], Path[2], Path[3]}));
  const double Second = std::cos(TorsionAngle(Model.System, {Path[1], Path[2], Path[3], Path[4]}));
  if (First > 0.0 || Second > 0.0) return 0.0;
  return TableValue(Model.Tables, "J4.w", "ring") * First * First * Second * Second;
}

int CountBranches(const Molecule& System, const std::vector<std::size_t>& Path) {
  return CountNeighbours(System, Path[1], 6) + CountNeighbours(System, Path[2], 6) - 2;
}

double ThreeBonds(CouplingModel& Model, const std::vector<std::size_t>& Path, const std::string& Text) {
  const std::array<std::size_t, 4> Four = {Path[0], Path[1], Path[2], Path[3]};
  const Neighbour* Middle = FindBond(Model.System, Path[1], Path[2]);
  const bool InRing = SmallestRingOfBond(Model.System, Path[1], Path[2]) != 0;
  const bool InAromatic = Model.System.Atoms[Path[1]].Aromatic && Model.System.Atoms[Path[2]].Aromatic;
  if (Middle->Order == BondOrder::Double && !InAromatic) return OverDoubleBond(Model, Path, Text);
  if (Text == "H-C3-C3-H" && (InRing || KeepsConformation(Model.System, Path[1], Path[2]))) {
    return HaasnootCoupling(Model.System, Four, SubstituentRow(Model.Tables, "J3.karplus", "H-C3-C3-H"));
  }
  if (InRing && (Text == "H-C3-C2-H" || Text == "H-C2-C3-H")) {
    // E. W. Garbisch, J. Am. Chem. Soc. 86 (1964) 5561: P1 cos^2 + P3 sin^2, P2 in place of P1 beyond 90 degrees.
    const auto& Row = SubstituentRow(Model.Tables, "J3.karplus", "H-C3-C2-H");
    const double Cosine = std::cos(TorsionAngle(Model.System, Four));
    return (Cosine > 0.0 ? Row[0] : Row[1]) * Cosine * Cosine + Row[2] * (1.0 - Cosine * Cosine);
  }
  const std::vector<double>* Row = InRing ? FindPathRow(Model, "J3.ring", Text) : nullptr;
  if (Row == nullptr) Row = FindPathRow(Model, "J3", Text);
  if (Row == nullptr) return 0.0;
  if (InAromatic && Text == "H-CA-CA-H") return OrthoCorrected(Model, Path, (*Row)[0]);
  const double Excess =
      ExcessElectronegativity(Model.System, Path[1], Path) + ExcessElectronegativity(Model.System, Path[2], Path);
  const double Branches =
      Text == "H-C3-C3-H" ? TableValue(Model.Tables, "J3.branch", "C") * CountBranches(Model.System, Path) : 0.0;
  return (*Row)[0] + (*Row)[1] * Excess + Branches;
}

// All shortest paths from Start to atoms within reach, by their last atom.
std::map<std::size_t, std::vector<std::vector<std::size_t>>> FindPaths(const Molecule& System, std::size_t Start) {
  std::map<std::size_t, std::vector<std::vector<std::size_t>>> Paths;
  std::map<std::size_t, std::vector<std::vector<std::size_t>>> Front{{Start, {{Start}}}};
  std::map<std::size_t, bool> Seen{{Start, true}};
  for (std::size_t Length = 2; Length <= LongestPath && !Front.empty(); ++Length) {
    std::map<std::size_t, std::vector<std::vector<std::size_t>>> Next;
    for (const auto& [Last, Ways] : Front) {
      for (const Neighbour& Bond : System.Atoms[Last].Neighbours) {
        if (Seen.contains(Bond.Atom)) continue;
        auto& Targets = Next[Bond.Atom];
        for (const auto& Way : Ways) {
          if (Targets.size() >= LargestPathCount) break;
          Targets.push_back(Way);
          Targets.back().push_back(Bond.Atom);
        }
      }
    }
    for (const auto& [Last, Ways] : Next) {
      Seen[Last] = true;
      Paths[Last] = Ways;
    }
    Front = std::move(Next);
  }
  return Paths;
}

}  // namespace

const std::vector<RequiredTable>& RequiredCouplingTables() {
  static const std::vector<RequiredTable> Required = {
      {"exchange", 1},       {"J1", 1},       {"J1.CH", 2},      {"J1.CH.ring", 1}, {"J2", 1},      {"J2.HCH", 2},
      {"J2.HCH.ring", 1},    {"J3", 2},       {"J3.branch", 1},  {"J4.w", 1},       {"J3.ring", 2}, {"J3.double", 4},
      {"J3.double.ring", 1}, {"J3.ring5", 2}, {"J3.karplus", 6}, {"J4", 1},         {"J5", 1}};
  return Required;
}

bool Exchanges(const TableFile& Tables, const Molecule& System, std::size_t Center) {
  if (System.Atoms[Center].AtomicNumber != 1) return false;
  const std::vector<double>* Row = FindRow(Tables, "exchange", ProtonKind(System, Center));
  return Row != nullptr && (*Row)[0] != 0.0;
}

double EstimateAlongPath(CouplingModel& Model, const std::vector<std::size_t>& Path) {
  const std::string Text = DescribePath(Model.System, Path);
  switch (Path.size()) {
    case 2:
      return OneBond(Model, Path, Text);
    case 3:
      return TwoBonds(Model, Path, Text);
    case 4:
      return ThreeBonds(Model, Path, Text);
    default: {
      if (Text == "H-C3-C3-C3-H") return OverSaturatedW(Model, Path);
      const std::vector<double>* Row = FindPathRow(Model, Path.size() == 5 ? "J4" : "J5", Text);
      return Row == nullptr ? 0.0 : (*Row)[0];
    }
  }
}

std::vector<double> EstimateCouplings(CouplingModel& Model, const std::vector<std::size_t>& Selection) {
  const std::size_t NumAtoms = Selection.size();
  std::vector<double> Couplings(NumAtoms * NumAtoms);
  for (std::size_t First = 0; First < NumAtoms; ++First) {
    const auto Paths = FindPaths(Model.System, Selection[First]);
    const bool FirstExchanges = Exchanges(Model.Tables, Model.System, Selection[First]);
    for (std::size_t Second = First + 1; Second < NumAtoms; ++Second) {
      const auto Found = Paths.find(Selection[Second]);
      if (Found == Paths.end()) continue;
      if (FirstExchanges || Exchanges(Model.Tables, Model.System, Selection[Second])) continue;
      // The sum in rising order, so that the numbering of the atoms does not reach the last digit.
      std::vector<double> Values;
      Values.reserve(Found->second.size());
      for (const auto& Path : Found->second) Values.push_back(EstimateAlongPath(Model, Path));
      std::sort(Values.begin(), Values.end());
      double Sum = 0.0;
      for (const double Value : Values) Sum += Value;
      const double J = Sum / double(Values.size());
      Couplings[First * NumAtoms + Second] = J;
      Couplings[Second * NumAtoms + First] = J;
    }
  }
  return Couplings;
}

}  // namespace nmrcalc
