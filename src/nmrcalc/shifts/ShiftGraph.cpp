#include "nmrcalc/shifts/ShiftGraph.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <set>

#include "nmrcalc/shifts/Aromaticity.h"
#include "nmrcalc/shifts/Geometry.h"

namespace nmrcalc {

namespace {

constexpr std::uint32_t NoNode = static_cast<std::uint32_t>(-1);
constexpr int LargestPath = 4;        // bonds
constexpr double SpaceLimit = 5.2;    // Angstrom, between heavy atoms, and from hydrogen to heavy atom
constexpr double SpaceFade = 1.0;     // over this distance below the limit their weight falls to 0
constexpr double ContactLimit = 4.2;  // between hydrogens

// Rows of the embedding table that each slot has.
constexpr std::array<std::uint16_t, NumNodeSlots> SlotSizes = {105, 19, 8, 260, 117, 6, 8, 9, 7, 5, 32, 4, 4, 91};

constexpr std::size_t NumElementClasses = 13;

std::size_t ElementClass(int Z) {
  constexpr std::array<int, NumElementClasses - 1> Known = {6, 7, 8, 9, 15, 16, 17, 35, 53, 14, 5, 34};
  return static_cast<std::size_t>(std::find(Known.begin(), Known.end(), Z) - Known.begin());
}

// Group 1 to 18 (0: lanthanides, actinides) and period 1 to 7 of the periodic table.
std::pair<int, int> GroupAndPeriod(int Z) {
  constexpr std::array<int, 7> Noble = {2, 10, 18, 36, 54, 86, 118};
  int Period = 1;
  int Before = 0;
  while (Period < 7 && Z > Noble[static_cast<std::size_t>(Period - 1)])
    Before = Noble[static_cast<std::size_t>(Period++ - 1)];
  const int Place = Z - Before;
  const int Length = Noble[static_cast<std::size_t>(Period - 1)] - Before;
  if (Place == 1 && Z == 1) return {1, 1};
  if (Place <= 2) return {Z == 2 ? 18 : Place, Period};
  if (Length == 8) return {Place + 10, Period};
  if (Length == 18) return {Place, Period};
  return {Place <= 16 ? 0 : Place - 14, Period};
}

struct Builder {
  const Molecule& System;
  BondPicture Picture{};
  StereoPicture Stereo{};
  ShiftGraph Graph{};
  std::vector<std::uint32_t> NodeOf{};  // atom -> node
  std::vector<int> NumHydrogens{};      // of each atom
  std::vector<bool> Pi{};               // atoms of double, triple, aromatic bonds, and those with a lone pair beside
};

bool IsHydrogen(const Builder& Work, std::size_t Index) { return Work.NodeOf[Index] == NoNode; }

void NumberAtoms(Builder& Work) {
  const auto& Atoms = Work.System.Atoms;
  Work.NodeOf.assign(Atoms.size(), NoNode);
  Work.NumHydrogens.assign(Atoms.size(), 0);
  for (std::size_t Index = 0; Index < Atoms.size(); ++Index) {
    if (Atoms[Index].AtomicNumber <= 1) continue;  // lone pairs stand in some files as atoms
    Work.NodeOf[Index] = static_cast<std::uint32_t>(Work.Graph.HeavyAtoms.size());
    Work.Graph.HeavyAtoms.push_back(Index);
  }
  for (std::size_t Index = 0; Index < Atoms.size(); ++Index) {
    if (Atoms[Index].AtomicNumber != 1) continue;
    Work.Graph.Hydrogens.push_back(Index);
    auto& Parents = Work.Graph.Parents.emplace_back();
    for (const Neighbour& Bond : Atoms[Index].Neighbours) {
      ++Work.NumHydrogens[Bond.Atom];
      if (!IsHydrogen(Work, Bond.Atom)) Parents.push_back(Work.NodeOf[Bond.Atom]);
    }
  }
}

BondKind KindOf(const Builder& Work, std::size_t First, std::size_t Second) {
  const auto& List = Work.System.Atoms[First].Neighbours;
  for (std::size_t K = 0; K < List.size(); ++K) {
    if (List[K].Atom == Second) return Work.Picture.Kinds[First][K];
  }
  return BondKind::Single;
}

int OrderClass(BondKind Kind) {  // of four
  return Kind == BondKind::Delocalised ? static_cast<int>(BondKind::Aromatic) : static_cast<int>(Kind);
}

void FindPi(Builder& Work) {
  const auto& Atoms = Work.System.Atoms;
  Work.Pi.assign(Atoms.size(), false);
  for (std::size_t Index = 0; Index < Atoms.size(); ++Index) {
    for (const BondKind Kind : Work.Picture.Kinds[Index]) {
      if (Kind != BondKind::Single) Work.Pi[Index] = true;
    }
  }
  const std::vector<bool> Unsaturated = Work.Pi;
  for (std::size_t Index = 0; Index < Atoms.size(); ++Index) {
    const int Z = Atoms[Index].AtomicNumber;
    const std::size_t Degree = Atoms[Index].Neighbours.size();
    const bool Lends = (Z == 7 && Degree <= 3) || ((Z == 8 || Z == 16) && Degree <= 2);
    if (!Lends || Unsaturated[Index]) continue;
    for (const Neighbour& Bond : Atoms[Index].Neighbours) {
      if (Unsaturated[Bond.Atom]) Work.Pi[Index] = true;
    }
  }
}

int RingClass(int Size) { return Size == 0 ? 0 : (Size >= 7 ? 5 : Size - 2); }  // of six

std::array<std::uint16_t, NumNodeSlots> NodeFeatures(const Builder& Work, std::size_t Index) {
  const Atom& Item = Work.System.Atoms[Index];
  const auto& Kinds = Work.Picture.Kinds[Index];
  int Valence = 0;
  int Doubles = 0;
  bool Triple = false;
  bool Delocalised = false;
  for (std::size_t K = 0; K < Kinds.size(); ++K) {
    Valence += Work.Picture.Orders[Index][K];
    Doubles += Kinds[K] == BondKind::Double ? 1 : 0;
    Triple = Triple || Kinds[K] == BondKind::Triple;
    Delocalised = Delocalised || Kinds[K] == BondKind::Delocalised;
  }
  // What is drawn in several ways must not show.
  if (Delocalised && Item.Neighbours.size() == 1) Valence = 0;
  if (Work.Picture.Aromatic[Index]) Valence = static_cast<int>(Item.Neighbours.size());
  const int Hydrogens = std::min(Work.NumHydrogens[Index], 4);
  const int Heavy = std::min(static_cast<int>(Item.Neighbours.size()) - Work.NumHydrogens[Index], 7);
  int State = std::min(Doubles, 3);
  if (Triple) State = 4;
  if (Delocalised) State = Doubles > 0 ? 5 : 6;
  if (Work.Picture.Aromatic[Index]) State = 7;
  const int Broad = State == 7 ? 3 : (Triple || Doubles > 1 ? 2 : (State > 0 ? 1 : 0));
  int Sizes = 0;
  bool AromaticFive = false;
  bool AromaticSix = false;
  for (const std::size_t Number : Item.InRings) {
    const auto& Ring = Work.System.Rings[Number];
    Sizes |= 1 << std::clamp(static_cast<int>(Ring.size()) - 3, 0, 4);
    const bool Whole =
        std::all_of(Ring.begin(), Ring.end(), [&](std::size_t Member) { return Work.Picture.Aromatic[Member]; });
    AromaticFive = AromaticFive || (Whole && Ring.size() == 5);
    AromaticSix = AromaticSix || (Whole && Ring.size() == 6);
  }
  const auto [Group, Period] = GroupAndPeriod(Item.AtomicNumber);
  const int Element = static_cast<int>(ElementClass(Item.AtomicNumber));
  const int Degree = std::min(static_cast<int>(Item.Neighbours.size()), 6);
  const std::array<int, NumNodeSlots> Values = {Item.AtomicNumber,
                                                Group,
                                                Period,
                                                (Element * 4 + Broad) * 5 + Hydrogens,
                                                Element * 9 + std::min(Valence, 8),
                                                std::min(Work.NumHydrogens[Index], 5),
                                                Heavy,
                                                State,
                                                Item.SmallestRing == 0 ? 0 : std::min(Item.SmallestRing, 8) - 2,
                                                std::min(static_cast<int>(Item.InRings.size()), 4),
                                                Sizes,
                                                (Work.Pi[Index] ? 1 : 0) + (State == 0 ? 2 : 0),
                                                (AromaticFive ? 1 : 0) + (AromaticSix ? 2 : 0),
                                                Element * 7 + Degree};
  std::array<std::uint16_t, NumNodeSlots> Rows{};
  std::uint16_t First = 0;
  for (std::size_t Slot = 0; Slot < NumNodeSlots; ++Slot) {
    Rows[Slot] = static_cast<std::uint16_t>(First + Values[Slot]);
    First = static_cast<std::uint16_t>(First + SlotSizes[Slot]);
  }
  return Rows;
}

int BondClass(const Builder& Work, std::size_t First, std::size_t Second) {
  const int Ring = RingClass(SmallestRingOfBond(Work.System, First, Second));
  const int Conjugated = Work.Pi[First] && Work.Pi[Second] ? 1 : 0;
  return (static_cast<int>(KindOf(Work, First, Second)) * 6 + Ring) * 2 + Conjugated;
}

// The smallest ring that holds all of the atoms; 0 when there is none.
int RingOf(const Builder& Work, const std::vector<std::size_t>& Way) {
  std::size_t Smallest = 0;
  for (const std::size_t Number : Work.System.Atoms[Way.front()].InRings) {
    const auto& Ring = Work.System.Rings[Number];
    const bool Holds = std::all_of(Way.begin(), Way.end(), [&](std::size_t Member) {
      return std::find(Ring.begin(), Ring.end(), Member) != Ring.end();
    });
    if (Holds && (Smallest == 0 || Ring.size() < Smallest)) Smallest = Ring.size();
  }
  return static_cast<int>(Smallest);
}

// Cis 1, trans 2, unknown or meaningless 0: the ends of a way about a double bond, or on the two faces of a ring.
int StereoOf(const Builder& Work, const std::vector<std::size_t>& Way) {
  if (!Work.Stereo.Known) return 0;
  if (Way.size() == 4 && KindOf(Work, Way[1], Way[2]) == BondKind::Double) {
    return SideOfDoubleBond(Work.System, Way[0], Way[1], Way[2], Way[3]);
  }
  return SideOfRing(Work.Stereo, Way[1], Way.front(), Way[Way.size() - 2], Way.back());
}

// Classes of edges between heavy atoms beyond one bond, by the number of bonds; those of two begin at 0.
constexpr int FirstOfThree = 80;
constexpr int FirstOfFour = 272;
constexpr int FirstOfFive = 296;
constexpr int SpaceClass = 299;

// Class of a way of two to five bonds between heavy atoms.
int WayClass(const Builder& Work, const std::vector<std::size_t>& Way) {
  const int Ring = RingOf(Work, Way);
  const std::size_t Length = Way.size() - 1;
  if (Length == 2) {
    const int First = OrderClass(KindOf(Work, Way[1], Way[0]));
    const int Second = OrderClass(KindOf(Work, Way[1], Way[2]));
    return (First * 4 + Second) * 5 + std::max(RingClass(Ring) - 1, 0);
  }
  const int Stereo = StereoOf(Work, Way);
  if (Length == 3) {
    const int Middle = OrderClass(KindOf(Work, Way[1], Way[2]));
    const int Size = Ring == 0 ? 0 : (Ring <= 5 ? 1 : (Ring == 6 ? 2 : 3));
    const int Ends = (Work.Pi[Way[0]] && Work.Pi[Way[1]] ? 1 : 0) + (Work.Pi[Way[2]] && Work.Pi[Way[3]] ? 2 : 0);
    return FirstOfThree + ((Middle * 4 + Size) * 4 + Ends) * 3 + Stereo;
  }
  int Flat = 0;
  for (std::size_t K = 1; K + 1 < Way.size(); ++K) Flat += Work.Pi[Way[K]] ? 1 : 0;
  if (Length == 4) {
    return FirstOfFour + (Flat * 2 + (Ring != 0 ? 1 : 0)) * 3 + Stereo;
  }
  return FirstOfFive + Stereo;
}

using Ways = std::map<std::size_t, std::vector<std::vector<std::size_t>>>;  // by the atom they lead to

// All shortest ways of up to Longest bonds over heavy atoms that begin with First (and, for a hydrogen, its parent).
Ways WaysFrom(const Builder& Work, std::size_t First, int Longest) {
  constexpr std::size_t LargestCount = 3000;  // beyond this no molecule is meant
  Ways Found;
  std::map<std::size_t, int> Nearest{{First, 0}};
  std::vector<std::vector<std::size_t>> Front{{First}};
  for (int Length = 1; Length <= Longest; ++Length) {
    std::vector<std::vector<std::size_t>> Next;
    for (const auto& Way : Front) {
      for (const Neighbour& Bond : Work.System.Atoms[Way.back()].Neighbours) {
        if (IsHydrogen(Work, Bond.Atom)) continue;
        const auto Known = Nearest.emplace(Bond.Atom, Length).first;
        if (Known->second < Length) continue;
        Next.push_back(Way);
        Next.back().push_back(Bond.Atom);
      }
    }
    if (Next.size() > LargestCount) break;
    for (const auto& Way : Next) Found[Way.back()].push_back(Way);
    Front = std::move(Next);
  }
  return Found;
}

float FadeOf(double Distance, double Limit) {
  const double Share = std::clamp((Limit - Distance) / SpaceFade, 0.0, 1.0);
  return static_cast<float>(Share * Share * (3.0 - 2.0 * Share));
}

float DistanceOf(const Builder& Work, std::size_t First, std::size_t Second) {
  if (!Work.Graph.HasGeometry) return UnknownDistance;
  const Vector3 Way = Difference(Work.System.Atoms[First].Place, Work.System.Atoms[Second].Place);
  return static_cast<float>(std::sqrt(Dot(Way, Way)));
}

// Of several shortest ways to one atom the highest class stands for all.
template <typename ClassOf>
int HighestClass(const std::vector<std::vector<std::size_t>>& List, ClassOf Class) {
  int Highest = 0;
  for (const auto& Way : List) Highest = std::max(Highest, Class(Way));
  return Highest;
}

void AddNodeEdges(Builder& Work, std::uint32_t Node, const SpaceCells& Cells) {
  const std::size_t Own = Work.Graph.HeavyAtoms[Node];
  const Ways Found = WaysFrom(Work, Own, LargestPath + 1);
  std::set<std::size_t> Done{Own};
  for (const auto& [Other, List] : Found) {
    const std::size_t Length = List.front().size() - 1;
    const std::uint32_t From = Work.NodeOf[Other];
    if (Length == 1) {
      Work.Graph.Bonds.push_back(
          {.To = Node, .From = From, .Class = static_cast<std::uint16_t>(BondClass(Work, Own, Other))});
      Done.insert(Other);
      continue;
    }
    const int Class = HighestClass(List, [&](const auto& Way) { return WayClass(Work, Way); });
    if (Length == 5 && Class == FirstOfFive) continue;
    Done.insert(Other);
    Work.Graph.Pairs.push_back({.To = Node,
                                .From = From,
                                .Class = static_cast<std::uint16_t>(Class),
                                .Distance = Length == 2 ? NoDistance : DistanceOf(Work, Own, Other)});
  }
  if (!Work.Graph.HasGeometry) return;
  for (const std::size_t Other : AtomsNear(Cells, Work.System, Own, SpaceLimit)) {
    if (IsHydrogen(Work, Other) || Done.contains(Other)) continue;
    const float Distance = DistanceOf(Work, Own, Other);
    Work.Graph.Pairs.push_back({.To = Node,
                                .From = Work.NodeOf[Other],
                                .Class = SpaceClass,
                                .Distance = Distance,
                                .Weight = FadeOf(Distance, SpaceLimit),
                                .InSpace = true});
  }
}

constexpr int FirstOfFourHydrogen = 301;
constexpr int HydrogenSpaceClass = 313;

// Class of a way that begins at a hydrogen. 0: its parent, 1 to 60: over the bonds of the parent, 61 to 300, 301 to
// 312 over three and four bonds.
int HydrogenClass(const Builder& Work, const std::vector<std::size_t>& Way) {
  const std::size_t Length = Way.size() - 1;
  if (Length == 1) return 0;
  if (Length == 2) return 1 + BondClass(Work, Way[1], Way[2]);
  const int Stereo = StereoOf(Work, Way);
  const std::vector<std::size_t> Heavy(Way.begin() + 1, Way.end());
  if (Length == 3) return 61 + WayClass(Work, Heavy) * 3 + Stereo;
  const int Inner = Work.Pi[Heavy[0]] && Work.Pi[Heavy[1]] ? (Work.Pi[Heavy[2]] ? 3 : 2) : (Work.Pi[Heavy[2]] ? 1 : 0);
  return FirstOfFourHydrogen + Inner * 3 + Stereo;
}

void AddHydrogenEdges(Builder& Work, std::uint32_t Hydrogen, const SpaceCells& Cells) {
  const std::size_t Own = Work.Graph.Hydrogens[Hydrogen];
  std::set<std::size_t> Done{Own};
  for (const auto& [Other, List] : WaysFrom(Work, Own, LargestPath)) {
    const std::size_t Length = List.front().size() - 1;
    Done.insert(Other);
    const int Class = HighestClass(List, [&](const auto& Way) { return HydrogenClass(Work, Way); });
    Work.Graph.HydrogenEdges.push_back({.To = Hydrogen,
                                        .From = Work.NodeOf[Other],
                                        .Class = static_cast<std::uint16_t>(Class),
                                        .Distance = Length < 3 ? NoDistance : DistanceOf(Work, Own, Other)});
  }
  if (!Work.Graph.HasGeometry) return;
  const auto& Parents = Work.System.Atoms[Own].Neighbours;
  for (const std::size_t Other : AtomsNear(Cells, Work.System, Own, SpaceLimit)) {
    if (Done.contains(Other)) continue;
    const float Distance = DistanceOf(Work, Own, Other);
    if (!IsHydrogen(Work, Other)) {
      Work.Graph.HydrogenEdges.push_back({.To = Hydrogen,
                                          .From = Work.NodeOf[Other],
                                          .Class = HydrogenSpaceClass,
                                          .Distance = Distance,
                                          .Weight = FadeOf(Distance, SpaceLimit),
                                          .InSpace = true});
      continue;
    }
    if (Distance >= ContactLimit || Work.System.Atoms[Other].AtomicNumber != 1 || Parents.empty()) continue;
    const auto& Others = Work.System.Atoms[Other].Neighbours;
    if (Others.empty() || Others[0].Atom == Parents[0].Atom) continue;
    const bool Vicinal = FindBond(Work.System, Parents[0].Atom, Others[0].Atom) != nullptr;
    const auto Place = std::lower_bound(Work.Graph.Hydrogens.begin(), Work.Graph.Hydrogens.end(), Other);
    Work.Graph.Contacts.push_back({.To = Hydrogen,
                                   .From = static_cast<std::uint32_t>(Place - Work.Graph.Hydrogens.begin()),
                                   .Class = static_cast<std::uint16_t>(Vicinal ? 0 : 1),
                                   .Distance = Distance,
                                   .Weight = FadeOf(Distance, ContactLimit)});
  }
}

}  // namespace

std::size_t NumFeatureRows() {
  std::size_t Sum = 0;
  for (const std::uint16_t Size : SlotSizes) Sum += Size;
  return Sum;
}

std::size_t PairGroup(std::size_t Class) {
  if (Class < FirstOfThree) return 0;
  if (Class < FirstOfFour) return (Class - FirstOfThree) / 48;  // by the kind of the middle bond
  if (Class < FirstOfFive) return 4;
  return Class < SpaceClass ? 5 : 6;
}

std::size_t HydrogenGroup(std::size_t Class) {
  return Class < FirstOfFourHydrogen ? 0 : (Class < HydrogenSpaceClass ? 1 : 2);
}

std::size_t ContactGroup(std::size_t Class) { return Class; }

ShiftGraph MakeShiftGraph(const Molecule& System) {
  Builder Work{.System = System, .Picture = PictureBonds(System)};
  Work.Graph.HasGeometry = IsGeometryUsable(System);
  if (Work.Graph.HasGeometry) Work.Stereo = FindStereo(System);
  NumberAtoms(Work);
  FindPi(Work);
  const SpaceCells Cells = Work.Graph.HasGeometry ? SortIntoCells(System, SpaceLimit) : SpaceCells{};
  for (std::uint32_t Node = 0; Node < Work.Graph.HeavyAtoms.size(); ++Node) {
    Work.Graph.Features.push_back(NodeFeatures(Work, Work.Graph.HeavyAtoms[Node]));
    AddNodeEdges(Work, Node, Cells);
  }
  for (std::uint32_t Hydrogen = 0; Hydrogen < Work.Graph.Hydrogens.size(); ++Hydrogen) {
    AddHydrogenEdges(Work, Hydrogen, Cells);
  }
  return std::move(Work.Graph);
}

}  // namespace nmrcalc
