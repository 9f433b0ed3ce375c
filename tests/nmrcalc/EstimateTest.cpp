#include <algorithm>
#include <cmath>
#include <fstream>
#include <iterator>
#include <numeric>

#include "Helpers.h"
#include "Smiles.h"
#include "basic/Failure.h"
#include "nmrcalc/couplings/Coupling.h"
#include "nmrcalc/input/InputText.h"
#include "nmrcalc/input/ParamInput.h"
#include "nmrcalc/shifts/Shielding.h"
#include "nmrcalc/shifts/Tensor.h"

namespace nmrcalc::testing {
namespace {

const TableFile& ShiftTables() {
  static const TableFile Tables = ReadTables(NMRCALC_DATA "/nmr_shft.abp", RequiredShiftTables());
  return Tables;
}

const TableFile& CouplingTables() {
  static const TableFile Tables = ReadTables(NMRCALC_DATA "/nmr_cupl.abp", RequiredCouplingTables());
  return Tables;
}

const ShiftModel& Model() {
  static const ShiftModel Read = ReadShiftModel(NMRCALC_DATA "/nmr_shft.net");
  return Read;
}

std::vector<ShiftEstimate> ShiftsOf(const Molecule& System) { return EstimateShifts(ShiftTables(), Model(), System); }

// Without places: the line notation has none that mean anything.
Molecule Drawn(const std::string& Smiles) {
  Molecule System = MoleculeFromSmiles(Smiles);
  for (Atom& Item : System.Atoms) Item.Place = {};
  return System;
}

struct ErrorSum {
  double Sum = 0.0;
  int Count = 0;
  void Add(double Error) {
    Sum += std::fabs(Error);
    ++Count;
  }
  double Mean() const { return Sum / Count; }
};

// Textbook shifts; most of these molecules are among those that the model was made from, so this holds the way from the
// bonds to the numbers, not the accuracy on others.
TEST(Shifts, ThirtyMolecules) {
  ErrorSum Protons;
  ErrorSum Carbons;
  for (const std::string& Text : ReadTextFile(NMRCALC_TESTS "/molecules.txt").Lines) {
    if (Text.empty() || Text[0] == '#') continue;
    std::vector<std::string> Fields(1);
    for (const char C : Text) {
      if (C == '|') {
        Fields.emplace_back();
      } else {
        Fields.back() += C;
      }
    }
    ASSERT_EQ(Fields.size(), 4u) << Text;
    const Molecule System = Drawn(std::string(SplitTokens(Fields[1]).at(0)));
    const auto Predicted = ShiftsOf(System);
    const auto Wanted = SplitTokens(Fields[2]);
    for (std::size_t Center = 0; Center < Wanted.size(); ++Center) {
      const std::string Carbon(Wanted[Center].substr(0, Wanted[Center].find('/')));
      const std::string Proton(Wanted[Center].substr(Wanted[Center].find('/') + 1));
      if (Carbon != "-") Carbons.Add(Predicted[Center].Shift - std::stod(Carbon));
      if (Proton == "-") continue;
      const auto& Bonds = System.Atoms[Center].Neighbours;
      const auto Hydrogen =
          std::ranges::find_if(Bonds, [&](const Neighbour& Bond) { return System.Atoms[Bond.Atom].AtomicNumber == 1; });
      Protons.Add(Predicted[Hydrogen->Atom].Shift - std::stod(Proton));
    }
  }
  EXPECT_GT(Carbons.Count, 70);
  EXPECT_LT(Carbons.Mean(), 1.6);
  EXPECT_LT(Protons.Mean(), 0.12);
}

// Nitrogen, oxygen, fluorine and phosphorus in the right region (Berger, Braun, Kalinowski, NMR Spectroscopy of the
// Non-Metallic Elements, 1997), and some protons and carbons of other kinds.
TEST(Shifts, Regions) {
  struct Row {
    const char* Smiles;
    std::size_t Atom;
    double Shift;
    double Tolerance;
  };
  const std::vector<Row> Rows = {
      {"CN", 1, -377, 30},        {"NC=O", 0, -268, 20},       {"CC#N", 2, -137, 15},     {"c1ccncc1", 3, -63, 15},
      {"CN(=O)=O", 1, 0, 15},     {"c1cccn1[H]", 4, -235, 20}, {"O", 0, 0, 20},           {"CC(=O)C", 2, 569, 20},
      {"CC(=O)OC", 2, 361, 20},   {"CC(=O)OC", 3, 139, 20},    {"CF", 1, -272, 20},       {"CCF", 2, -213, 25},
      {"FC(F)(F)CO", 0, -77, 20}, {"c1ccccc1F", 6, -113, 15},  {"CP(C)C", 1, -62, 20},    {"COP(=O)(OC)OC", 2, 2, 15},
      {"CP(=O)(C)C", 1, 36, 20},  {"COP(OC)OC", 2, 140, 15},   {"FC(F)(F)CO", 1, 124, 12}};
  for (const Row& Item : Rows) {
    EXPECT_NEAR(ShiftsOf(Drawn(Item.Smiles))[Item.Atom].Shift, Item.Shift, Item.Tolerance) << Item.Smiles;
  }
}

// The path of the first coupling in a molecule that has this description.
double CouplingOf(const Molecule& System, const std::string& Path) {
  std::vector<std::size_t> All(System.Atoms.size());
  std::iota(All.begin(), All.end(), std::size_t{0});
  CouplingModel Model{.Tables = CouplingTables(), .System = System};
  std::vector<std::vector<std::size_t>> Paths;
  for (const std::size_t Start : All) Paths.push_back({Start});
  for (std::size_t Next = 0; Next < Paths.size(); ++Next) {
    const std::vector<std::size_t> Way = Paths[Next];
    int Stars = 0;
    if (Way.size() > 1 && PathMatches(DescribePath(System, Way), Path, Stars)) return EstimateAlongPath(Model, Way);
    for (const Neighbour& Bond : System.Atoms[Way.back()].Neighbours) {
      if (Way.size() == 6 || std::find(Way.begin(), Way.end(), Bond.Atom) != Way.end()) continue;
      Paths.push_back(Way);
      Paths.back().push_back(Bond.Atom);
    }
  }
  ADD_FAILURE() << "no path " << Path;
  return 0.0;
}

// Published couplings (Pretsch; Silverstein; Kalinowski; Dolbier; Berger), Hz.
TEST(Couplings, AreNearTheUsualOnes) {
  struct Row {
    const char* Smiles;
    const char* Path;
    double J;
    double Tolerance;
  };
  const std::vector<Row> Rows = {{"CC", "C3-H", 125, 3},
                                 {"ClC(Cl)Cl", "C3-H", 209, 12},
                                 {"C=C", "C2-H", 156, 3},
                                 {"c1ccccc1", "CA-H", 159, 3},
                                 {"CC=O", "CO-H", 172, 4},
                                 {"C#C", "C1-H", 249, 3},
                                 {"C1CC1", "C3-H", 161, 3},
                                 {"CF", "C3-F", -162, 15},
                                 {"CP(C)C", "C3-P", -14, 5},
                                 {"CO", "H-C3-H", -10.8, 1},
                                 {"CC#N", "H-C3-H", -16.9, 1.5},
                                 {"C1CC1", "H-C3-H", -4.3, 1},
                                 {"ClC=C", "H-C2-H", -1.4, 1},
                                 {"CCF", "H-C3-F", 47, 4},
                                 {"CCCl", "H-C3-C3-H", 7.2, 0.4},
                                 {"CCO", "H-C3-C3-H", 7.0, 0.3},
                                 {"CC(C)O", "H-C3-C3-H", 6.2, 0.7},
                                 {"CC=O", "H-C3-CO-H", 2.9, 0.6},
                                 {"CC=C", "H-C3-C2-H", 6.4, 0.5},
                                 {"c1ccccc1", "H-CA-CA-H", 7.5, 0.3},
                                 {"c1ccccc1", "H-CA-CA-CA-H", 1.4, 0.3},
                                 {"c1ccccc1", "H-CA-CA-CA-CA-H", 0.6, 0.2},
                                 {"c1ccoc1", "H-CA-O-CA-H", 1.5, 0.5},
                                 {"CCF", "H-C3-C3-F", 25, 3},
                                 {"FC(F)(F)C", "H-C3-C3-F", 13, 3},
                                 {"Fc1ccccc1", "H-CA-CA-F", 9, 1},
                                 {"COP(=O)(OC)OC", "H-C3-O-PV", 11, 1},
                                 {"CC#C", "H-C3-C1#C1-H", -2.9, 0.5}};
  for (const Row& Item : Rows) {
    EXPECT_NEAR(CouplingOf(MoleculeFromSmiles(Item.Smiles), Item.Path), Item.J, Item.Tolerance)
        << Item.Smiles << " " << Item.Path;
  }
}

// A four-atom chain H-A-B-H with the torsion angle in degrees; substituents by the caller.
Molecule Chain(BondOrder Order, double Degrees) {
  Molecule System;
  const double Angle = Degrees * std::acos(-1.0) / 180.0;
  System.Atoms = {{.AtomicNumber = 1, .Place = {-0.5, 1.0, 0.0}},
                  {.AtomicNumber = 6, .Place = {0.0, 0.0, 0.0}},
                  {.AtomicNumber = 6, .Place = {1.3, 0.0, 0.0}},
                  {.AtomicNumber = 1, .Place = {1.8, std::cos(Angle), std::sin(Angle)}}};
  AddBond(System, 0, 1, BondOrder::Single);
  AddBond(System, 1, 2, Order);
  AddBond(System, 2, 3, BondOrder::Single);
  PerceiveStructure(System);
  return System;
}

TEST(Couplings, CisAndTransFollowTheGeometry) {
  EXPECT_NEAR(CouplingOf(Chain(BondOrder::Double, 0.0), "H-C2=C2-H"), 11.6, 0.1);
  EXPECT_NEAR(CouplingOf(Chain(BondOrder::Double, 180.0), "H-C2=C2-H"), 19.1, 0.1);
  // Over a bond that turns, the torsion drawn does not matter.
  EXPECT_EQ(CouplingOf(Chain(BondOrder::Single, 60.0), "H-C3-C3-H"),
            CouplingOf(Chain(BondOrder::Single, 175.0), "H-C3-C3-H"));
}

// Karplus curve without substituents 13.7 cos^2 - 0.73 cos, and the fall of a gauche coupling where an electronegative
// substituent stands opposite the other proton (2.5 Hz against 5 in cyclohexane rings).
TEST(Couplings, KarplusWithSubstituents) {
  const std::vector<double> Parameters = {13.7, -0.73, 0.0, 0.56, -2.47, 16.9};
  for (const double Degrees : {0.0, 60.0, -60.0, 90.0, 180.0}) {
    const double Cosine = std::cos(Degrees * std::acos(-1.0) / 180.0);
    EXPECT_NEAR(HaasnootCoupling(Chain(BondOrder::Single, Degrees), {0, 1, 2, 3}, Parameters),
                13.7 * Cosine * Cosine - 0.73 * Cosine, 1e-9);
  }
  const auto WithOxygen = [&](double Degrees) {  // on the first carbon, at 120 degrees from its proton
    Molecule System = Chain(BondOrder::Single, Degrees);
    System.Atoms.push_back({.AtomicNumber = 8, .Place = {-0.5, -0.5, -std::sqrt(0.75)}});
    AddBond(System, 1, 4, BondOrder::Single);
    return HaasnootCoupling(System, {0, 1, 2, 3}, Parameters);
  };
  EXPECT_LT(std::min(WithOxygen(60.0), WithOxygen(-60.0)), 2.8);
  EXPECT_GT(std::max(WithOxygen(60.0), WithOxygen(-60.0)), 3.2);
  EXPECT_LT(WithOxygen(60.0), WithOxygen(-60.0));  // at 60 degrees the oxygen is opposite the other proton
}

std::vector<double> AllCouplings(const Molecule& System) {
  std::vector<std::size_t> All(System.Atoms.size());
  std::iota(All.begin(), All.end(), std::size_t{0});
  CouplingModel Couplings{.Tables = CouplingTables(), .System = System};
  return EstimateCouplings(Couplings, All);
}

TEST(Couplings, ExchangingProtonsHaveNone) {
  for (const char* Smiles : {"CO", "CN", "Oc1ccccc1", "CC(=O)O"}) {
    const Molecule System = MoleculeFromSmiles(Smiles);
    const auto J = AllCouplings(System);
    const std::size_t NumAtoms = System.Atoms.size();
    int Exchanging = 0;
    for (std::size_t Index = 0; Index < NumAtoms; ++Index) {
      if (!Exchanges(CouplingTables(), System, Index)) continue;
      ++Exchanging;
      for (std::size_t Other = 0; Other < NumAtoms; ++Other) EXPECT_EQ(J[Index * NumAtoms + Other], 0.0) << Smiles;
    }
    EXPECT_GT(Exchanging, 0) << Smiles;
  }
}

// Menthol: places from a force field, bonds, J in Hz of pairs of hydrogens. 1H in CDCl3 at 500 MHz, from the public
// test data of the npm package nmredata-data-test (MIT licence).
Molecule Menthol() {
  const TextFile File = ReadTextFile(NMRCALC_TESTS "/menthol.txt");
  Molecule System;
  for (std::size_t Line = 0; Line < File.Lines.size(); ++Line) {
    const auto Tokens = SplitTokens(File.Lines[Line]);
    if (Tokens.size() == 5 && Tokens[0] == "atom") {
      Atom Item{.AtomicNumber = AtomicNumberOf(Tokens[1])};
      for (std::size_t Axis = 0; Axis < 3; ++Axis) Item.Place[Axis] = NumberAt(File, Line, Tokens[2 + Axis], "place");
      System.Atoms.push_back(Item);
    } else if (Tokens.size() == 3 && Tokens[0] == "bond") {
      AddBond(System, std::stoul(std::string(Tokens[1])), std::stoul(std::string(Tokens[2])), BondOrder::Single);
    }
  }
  PerceiveStructure(System);
  return System;
}

TEST(Couplings, Menthol) {
  const TextFile File = ReadTextFile(NMRCALC_TESTS "/menthol.txt");
  const Molecule System = Menthol();
  const auto J = AllCouplings(System);
  ErrorSum Errors;
  for (const std::string& Text : File.Lines) {
    const auto Tokens = SplitTokens(Text);
    if (Tokens.size() != 4 || Tokens[0] != "J") continue;
    const std::size_t Place =
        std::stoul(std::string(Tokens[1])) * System.Atoms.size() + std::stoul(std::string(Tokens[2]));
    Errors.Add(J[Place] - std::stod(std::string(Tokens[3])));
  }
  EXPECT_EQ(Errors.Count, 22);
  EXPECT_LT(Errors.Mean(), 0.7);
}

// The same molecule with its atoms in another order, turned, and in the mirror.
TEST(Symmetry, OrderPlaceAndHandChangeNothing) {
  const Molecule System = Menthol();
  const std::size_t NumAtoms = System.Atoms.size();
  const auto Place = [NumAtoms](std::size_t Atom) { return (NumAtoms - 1 - Atom + 5) % NumAtoms; };
  Molecule Turned;
  Turned.Atoms.resize(NumAtoms);
  for (std::size_t Index = 0; Index < NumAtoms; ++Index) {
    const Vector3& Old = System.Atoms[Index].Place;
    Turned.Atoms[Place(Index)].AtomicNumber = System.Atoms[Index].AtomicNumber;
    Turned.Atoms[Place(Index)].Place = {0.6 * Old[0] + 0.8 * Old[1], 0.8 * Old[0] - 0.6 * Old[1], Old[2]};
  }
  for (std::size_t Index = NumAtoms; Index-- > 0;) {
    for (const Neighbour& Bond : System.Atoms[Index].Neighbours)
      AddBond(Turned, Place(Index), Place(Bond.Atom), Bond.Order);
  }
  PerceiveStructure(Turned);
  const auto Left = ShiftsOf(System);
  const auto Right = ShiftsOf(Turned);
  const auto LeftJ = AllCouplings(System);
  const auto RightJ = AllCouplings(Turned);
  for (std::size_t Index = 0; Index < NumAtoms; ++Index) {
    EXPECT_NEAR(Left[Index].Shift, Right[Place(Index)].Shift, 1e-4) << Index;
    EXPECT_NEAR(Left[Index].Error, Right[Place(Index)].Error, 1e-4) << Index;
    for (std::size_t Other = 0; Other < NumAtoms; ++Other) {
      EXPECT_NEAR(LeftJ[Index * NumAtoms + Other], RightJ[Place(Index) * NumAtoms + Place(Other)], 1e-6);
    }
  }
  // The ring holds the two hydrogens of a CH2 apart; those of a methyl group turn.
  const auto& Methylene = System.Atoms[0].Neighbours;
  std::vector<double> Pair;
  for (const Neighbour& Bond : Methylene) {
    if (System.Atoms[Bond.Atom].AtomicNumber == 1) Pair.push_back(Left[Bond.Atom].Shift);
  }
  ASSERT_EQ(Pair.size(), 2u);
  EXPECT_GT(std::fabs(Pair[0] - Pair[1]), 0.2);
}

// Aromatic marks and drawn double bonds are one molecule; its halves are equal; what nobody measured says so.
TEST(Shifts, EqualAndUnknownSurroundings) {
  for (const auto& [Marked, Kekule] : {std::pair{"c1ccccc1C", "C1=CC=CC=C1C"},
                                       {"c1ccncc1C", "C1=CC=NC=C1C"},
                                       {"c1cccn1[H]", "C1=CC=CN1[H]"},
                                       {"c1ccc2ccccc2c1", "C1=CC=C2C=CC=CC2=C1"}}) {
    const auto Left = ShiftsOf(Drawn(Marked));
    const auto Right = ShiftsOf(Drawn(Kekule));
    ASSERT_EQ(Left.size(), Right.size());
    for (std::size_t Index = 0; Index < Left.size(); ++Index) EXPECT_NEAR(Left[Index].Shift, Right[Index].Shift, 1e-4);
  }
  const auto Toluene = ShiftsOf(Drawn("c1ccccc1C"));
  EXPECT_EQ(Toluene[0].Shift, Toluene[4].Shift);  // beside the methyl carbon
  EXPECT_EQ(Toluene[1].Shift, Toluene[3].Shift);
  const auto Strange = ShiftsOf(Drawn("BrC(I)(P)F"));
  EXPECT_FALSE(Strange[1].Seen);
  EXPECT_GT(Strange[1].Error, 2.0 * Toluene[1].Error);
  EXPECT_FALSE(Strange[0].Known);
  const auto Alcohol = ShiftsOf(Drawn("CCO"));
  EXPECT_GT(Alcohol.back().Error, 3.0 * Alcohol[3].Error);  // the hydrogen on oxygen
}

// A cut or changed model file is told, never used.
TEST(Shifts, DamagedModelIsRefused) {
  std::ifstream Stream(NMRCALC_DATA "/nmr_shft.net", std::ios::binary);
  const std::string Whole{std::istreambuf_iterator<char>(Stream), {}};
  const TemporaryDirectory Directory;
  const std::string Longer = Whole + "x";
  std::string Other = Whole;
  Other[0] = 'X';
  for (const std::string& Bytes :
       {std::string(), Whole.substr(0, 100), Whole.substr(0, Whole.size() - 1), Longer, Other}) {
    Directory.Write("model", Bytes);
    EXPECT_THROW(ReadShiftModel(Directory.Path + "/model"), zelvanor::Failure) << Bytes.size();
  }
  EXPECT_THROW(ReadShiftModel("/no/such/file"), zelvanor::Failure);
}

// Benzene in its plane, as single and double bonds and as aromatic ones.
TEST(Tensors, AreSymmetricSortedAndOfTheRightSize) {
  for (const bool Kekule : {false, true}) {
    Molecule Benzene;
    for (std::size_t K = 0; K < 6; ++K) {
      const double Angle = double(K) * std::acos(-1.0) / 3.0;
      Benzene.Atoms.push_back({.AtomicNumber = 6, .Place = {1.4 * std::cos(Angle), 1.4 * std::sin(Angle), 0.0}});
    }
    for (std::size_t K = 0; K < 6; ++K) {
      const BondOrder Order = K % 2 == 0 ? BondOrder::Double : BondOrder::Single;
      AddBond(Benzene, K, (K + 1) % 6, Kekule ? Order : BondOrder::Aromatic);
    }
    PerceiveStructure(Benzene);
    const ShieldingTensor Tensor = EstimateTensor(ShiftTables(), Benzene, 1, 58.0);
    for (std::size_t Row = 0; Row < 3; ++Row) {
      for (std::size_t Column = 0; Column < 3; ++Column) {
        EXPECT_EQ(Tensor.Components[3 * Row + Column], Tensor.Components[3 * Column + Row]);
      }
    }
    EXPECT_NEAR(Tensor.Isotropic, 58.0, 1e-9);
    EXPECT_NEAR((Tensor.Eigenvalues[0] + Tensor.Eigenvalues[1] + Tensor.Eigenvalues[2]) / 3.0, 58.0, 1e-9);
    EXPECT_TRUE(std::is_sorted(Tensor.Eigenvalues.begin(), Tensor.Eigenvalues.end()));
    EXPECT_NEAR(Tensor.Anisotropy, 180.0, 10.0);  // along the normal, which is z here
    EXPECT_NEAR(Tensor.Components[8], Tensor.Eigenvalues[2], 1e-9);
  }
  // Methane has none; an atom without coordinates or bonds neither.
  Molecule Lone;
  Lone.Atoms.push_back({.AtomicNumber = 6});
  PerceiveStructure(Lone);
  EXPECT_EQ(EstimateTensor(ShiftTables(), Lone, 0, 180.0).Anisotropy, 0.0);
}

}  // namespace
}  // namespace nmrcalc::testing
