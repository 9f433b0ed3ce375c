#include "nmrcalc/spins/ClusterPlan.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <iterator>
#include <map>
#include <numeric>

#include "nmrcalc/spins/LinearAlgebra.h"
#include "nmrcalc/spins/Workers.h"

namespace nmrcalc {

namespace {

constexpr double CoreStrength = 0.1;         // of a coupling from which two sites are one core
constexpr double UnitStrength = 0.3;         // of a coupling from which sites outside are solved together
constexpr std::size_t MostFieldBits = 4;     // 2^4 states of the surroundings in which a cluster is diagonalised
constexpr double SameField = 1e-6;           // Hz
constexpr double OperationsPerCube = 5.0;    // of the eigenvectors
constexpr double OperationsPerMoment = 2.0;  // for each product of moments

// How strongly two sites are coupled: from 0, first order, to 1, equal shifts.
double Strength(const SpectrumInput& Input, std::size_t A, std::size_t B) {
  const double J = std::fabs(Input.J(A, B));
  if (J == 0.0) return 0.0;
  return J / (0.3 * std::fabs(Input.Sites[A].Frequency - Input.Sites[B].Frequency) + J);
}

// A few strongly coupled spins outside the cluster, or a single site.
using OutsideUnit = std::vector<std::size_t>;

std::vector<OutsideUnit> FindOutsideUnits(const SpectrumInput& Input, const std::vector<std::size_t>& Outside) {
  constexpr std::size_t LargestUnit = 3;
  struct Edge {
    double Strength;
    std::size_t A;
    std::size_t B;
  };
  std::vector<Edge> Edges;
  std::vector<std::size_t> UnitOf(Outside.size());
  std::iota(UnitOf.begin(), UnitOf.end(), std::size_t{0});
  for (std::size_t A = 0; A < Outside.size(); ++A) {
    for (std::size_t B = 0; B < A; ++B) {
      if (Input.Sites[Outside[A]].Degeneracy > 1 || Input.Sites[Outside[B]].Degeneracy > 1) continue;
      const double Value = Strength(Input, Outside[A], Outside[B]);
      if (Value > UnitStrength) Edges.push_back({Value, A, B});
    }
  }
  std::stable_sort(Edges.begin(), Edges.end(), [](const Edge& A, const Edge& B) { return A.Strength > B.Strength; });
  for (const Edge& Item : Edges) {
    const std::size_t Kept = UnitOf[Item.A];
    const std::size_t Joined = UnitOf[Item.B];
    const auto Size = std::count(UnitOf.begin(), UnitOf.end(), Kept) + std::count(UnitOf.begin(), UnitOf.end(), Joined);
    if (Kept == Joined || static_cast<std::size_t>(Size) > LargestUnit) continue;
    std::replace(UnitOf.begin(), UnitOf.end(), Joined, Kept);
  }
  std::map<std::size_t, OutsideUnit> Units;
  for (std::size_t K = 0; K < Outside.size(); ++K) Units[UnitOf[K]].push_back(Outside[K]);
  std::vector<OutsideUnit> Result;
  Result.reserve(Units.size());
  for (auto& [Key, Unit] : Units) Result.push_back(std::move(Unit));
  return Result;
}

void AddState(std::vector<FieldState>& States, FieldState State) {
  const auto IsSame = [](double A, double B) { return std::fabs(A - B) < SameField; };
  const auto IsEqual = [&](const FieldState& Other) {
    return std::equal(Other.Field.begin(), Other.Field.end(), State.Field.begin(), IsSame) &&
           std::equal(Other.Mz.begin(), Other.Mz.end(), State.Mz.begin(), IsSame);
  };
  const auto Place = std::find_if(States.begin(), States.end(), IsEqual);
  if (Place != States.end()) {
    Place->Weight += State.Weight;
  } else {
    States.push_back(std::move(State));
  }
}

// The states of n equivalent spins 1/2 by their total Mz.
std::vector<FieldState> StatesOfSite(const SpectrumInput& Input, const std::vector<std::size_t>& Members,
                                     const std::vector<std::size_t>& Outside, std::size_t Site) {
  const int Degeneracy = Input.Sites[Site].Degeneracy;
  std::vector<FieldState> States;
  double Weight = std::ldexp(1.0, -Degeneracy);
  for (int Up = 0; Up <= Degeneracy; ++Up) {
    FieldState State{.Weight = Weight};
    for (const std::size_t Member : Members) State.Field.push_back((Up - 0.5 * Degeneracy) * Input.J(Site, Member));
    for (const std::size_t Other : Outside) State.Mz.push_back(Other == Site ? Up - 0.5 * Degeneracy : 0.0);
    AddState(States, std::move(State));
    Weight = Weight * (Degeneracy - Up) / (Up + 1);
  }
  return States;
}

// The eigenstates of a few spins 1/2, with the mean <Iz> of each spin as its static field.
std::vector<FieldState> StatesOfSpins(const SpectrumInput& Input, const std::vector<std::size_t>& Members,
                                      const std::vector<std::size_t>& Outside, const OutsideUnit& Unit) {
  constexpr double Apart = 1e6;  // Hz, added to every spin so that states of different total Mz do not mix
  const std::size_t NumStates = std::size_t{1} << Unit.size();
  const auto Mz = [](std::size_t State, std::size_t Spin) { return (State >> Spin & 1) != 0 ? 0.5 : -0.5; };
  std::vector<double> Matrix(NumStates * NumStates);
  for (std::size_t State = 0; State < NumStates; ++State) {
    double& Diagonal = Matrix[State * NumStates + State];
    for (std::size_t A = 0; A < Unit.size(); ++A) {
      Diagonal += Mz(State, A) * (Apart + Input.Sites[Unit[A]].Frequency - Input.Sites[Unit[0]].Frequency);
      for (std::size_t B = 0; B < A; ++B) {
        const double J = Input.J(Unit[A], Unit[B]);
        Diagonal += J * Mz(State, A) * Mz(State, B);
        const std::size_t Flipped = State ^ (std::size_t{1} << A) ^ (std::size_t{1} << B);
        if (Mz(State, A) != Mz(State, B)) Matrix[State * NumStates + Flipped] += 0.5 * J;
      }
    }
  }
  std::vector<double> Energies;
  DiagonalizeSymmetric(Matrix, NumStates, Energies);
  std::vector<FieldState> States;
  for (std::size_t Own = 0; Own < NumStates; ++Own) {
    FieldState State{.Weight = 1.0 / double(NumStates),
                     .Field = std::vector<double>(Members.size()),
                     .Mz = std::vector<double>(Outside.size())};
    for (std::size_t Spin = 0; Spin < Unit.size(); ++Spin) {
      double Mean = 0.0;
      for (std::size_t K = 0; K < NumStates; ++K) {
        Mean += Mz(K, Spin) * Matrix[Own * NumStates + K] * Matrix[Own * NumStates + K];
      }
      for (std::size_t I = 0; I < Members.size(); ++I) State.Field[I] += Mean * Input.J(Unit[Spin], Members[I]);
      for (std::size_t I = 0; I < Outside.size(); ++I) State.Mz[I] += Outside[I] == Unit[Spin] ? Mean : 0.0;
    }
    AddState(States, std::move(State));
  }
  return States;
}

// How much the states of a unit change the mixing of the members beyond first order: the largest product of a pair's
// influence, its mixing, and the difference of the fields on the two in terms of their distance.
double MixingByFields(const SpectrumInput& Input, const Neighbourhood& Near, const Growth& Members,
                      const std::vector<FieldState>& States) {
  double Largest = 0.0;
  for (std::size_t A = 0; A < Members.Sites.size(); ++A) {
    for (const MixedSite& Next : Near[Members.Sites[A]]) {
      const auto Place = std::lower_bound(Members.Sites.begin(), Members.Sites.end(), Next.Site);
      if (Place == Members.Sites.end() || *Place != Next.Site) continue;
      const auto B = static_cast<std::size_t>(Place - Members.Sites.begin());
      double Spread = 0.0;
      for (const FieldState& State : States) Spread = std::max(Spread, std::fabs(State.Field[A] - State.Field[B]));
      const double Distance = Input.Sites[Members.Sites[A]].Frequency - Input.Sites[Members.Sites[B]].Frequency;
      Largest = std::max(Largest, std::sqrt(Members.Influence[A] * Members.Influence[B]) * std::fabs(Next.J) * Spread /
                                      (Distance * Distance + Next.J * Next.J + 1.0));
    }
  }
  return Largest;
}

// What stands outside and changes as one.
struct Surrounding {
  double Mixing = 0.0;      // see MixingByFields
  std::size_t NumBits = 0;  // of a number, that choose its state: one for a spin 1/2, n for n of them
  std::vector<FieldState> States{};
};

// In the order in which bits take them: each bit of the number alone, then sums of several, those of an odd count
// first. So any two, and of the odd ones any three, take all their values equally often.
std::vector<std::size_t> MakeMasks(std::size_t NumBits) {
  std::vector<std::size_t> Masks;
  for (std::size_t Bit = 0; Bit < NumBits; ++Bit) Masks.push_back(std::size_t{1} << Bit);
  const std::size_t Last = std::size_t{1} << NumBits;
  for (const int Rest : {1, 0}) {
    for (int Count = static_cast<int>(NumBits); Count > 1; --Count) {
      for (std::size_t Mask = 1; Count % 2 == Rest && Mask < Last; ++Mask) {
        if (std::popcount(Mask) == Count) Masks.push_back(Mask);
      }
    }
  }
  return Masks;
}

// The next masks for a unit, none of which is a sum of others of the unit, so that each of its states comes as often as
// its weight says. Goes around where masks run out.
std::vector<std::size_t> TakeMasks(const std::vector<std::size_t>& Masks, std::size_t Count, std::size_t& Next) {
  std::vector<std::size_t> Taken;
  std::vector<std::size_t> Sums{0};
  while (Taken.size() < Count) {
    const std::size_t Mask = Masks[Next++ % Masks.size()];
    if (std::find(Sums.begin(), Sums.end(), Mask) != Sums.end()) continue;
    Taken.push_back(Mask);
    for (std::size_t K = 0, Known = Sums.size(); K < Known; ++K) Sums.push_back(Sums[K] ^ Mask);
  }
  return Taken;
}

// What acts on the members, the strongest first.
std::vector<Surrounding> FindSurroundings(const SpectrumInput& Input, const Neighbourhood& Near, const Growth& Members,
                                          const std::vector<std::size_t>& Outside) {
  std::vector<Surrounding> Units;
  for (const OutsideUnit& Unit : FindOutsideUnits(Input, Outside)) {
    Surrounding Own{.States = Unit.size() == 1 ? StatesOfSite(Input, Members.Sites, Outside, Unit[0])
                                               : StatesOfSpins(Input, Members.Sites, Outside, Unit)};
    Own.Mixing = MixingByFields(Input, Near, Members, Own.States);
    for (const std::size_t Site : Unit) Own.NumBits += static_cast<std::size_t>(Input.Sites[Site].Degeneracy);
    Own.NumBits = std::min(Own.NumBits, MostFieldBits);
    Units.push_back(std::move(Own));
  }
  std::stable_sort(Units.begin(), Units.end(),
                   [](const Surrounding& A, const Surrounding& B) { return A.Mixing > B.Mixing; });
  return Units;
}

// The state of a unit that stands at Turn of 2^NumBits, where each takes the room of its weight.
const FieldState& StateAt(const Surrounding& Unit, std::size_t Turn) {
  const double Place = std::ldexp(double(Turn) + 0.5, -static_cast<int>(Unit.NumBits));
  std::size_t Own = 0;
  for (double Sum = Unit.States[0].Weight; Sum < Place && Own + 1 < Unit.States.size();) {
    Sum += Unit.States[++Own].Weight;
  }
  return Unit.States[Own];
}

// The states of all that stands outside, or a sample of them: the bits of a number choose the states of the strongest
// units, sums of these bits those of the others. To move the lines in first order instead, by what a unit does to <Iz>
// of each state, fails where far states of the cluster are nearly equal and mix as they never do in nature.
void AddFields(const std::vector<Surrounding>& Units, ClusterPlan& Plan) {
  std::size_t NumBits = 0;
  for (const Surrounding& Unit : Units) NumBits = std::min(MostFieldBits, NumBits + Unit.NumBits);
  const std::vector<std::size_t> Masks = MakeMasks(NumBits);
  std::vector<std::vector<std::size_t>> MasksOfUnit;
  MasksOfUnit.reserve(Units.size());
  std::size_t Next = 0;
  for (const Surrounding& Unit : Units) MasksOfUnit.push_back(TakeMasks(Masks, Unit.NumBits, Next));
  const std::size_t NumFields = std::size_t{1} << NumBits;
  for (std::size_t Number = 0; Number < NumFields; ++Number) {
    FieldState Field{.Weight = 1.0 / double(NumFields),
                     .Field = std::vector<double>(Plan.Sites.size()),
                     .Mz = std::vector<double>(Plan.Outside.size())};
    for (std::size_t Unit = 0; Unit < Units.size(); ++Unit) {
      std::size_t Turn = 0;
      for (const std::size_t Mask : MasksOfUnit[Unit]) {
        Turn = 2 * Turn + static_cast<std::size_t>(std::popcount(Number & Mask) & 1);
      }
      const FieldState& State = StateAt(Units[Unit], Turn);
      for (std::size_t I = 0; I < Field.Field.size(); ++I) Field.Field[I] += State.Field[I];
      for (std::size_t I = 0; I < Field.Mz.size(); ++I) Field.Mz[I] += State.Mz[I];
    }
    AddState(Plan.Fields, std::move(Field));
  }
}

// The sites of the part that are coupled to members.
std::vector<std::size_t> FindOutside(const SpectrumInput& Input, const SpinPart& Part,
                                     const std::vector<std::size_t>& Members) {
  std::vector<std::size_t> Outside;
  for (const std::size_t Site : Part.Sites) {
    const auto IsCoupled = [&](std::size_t Member) { return Input.J(Site, Member) != 0.0; };
    if (std::find(Members.begin(), Members.end(), Site) != Members.end()) continue;
    if (std::any_of(Members.begin(), Members.end(), IsCoupled)) Outside.push_back(Site);
  }
  return Outside;
}

// The members of a cluster by rising site, each with its group; groups are numbered as they come, that of the core 0.
using MembersByGroup = std::vector<std::pair<std::size_t, std::size_t>>;

MembersByGroup SortMembers(const Growth& Members) {
  MembersByGroup Result;
  for (std::size_t K = 0; K < Members.Sites.size(); ++K) Result.emplace_back(Members.Sites[K], Members.Groups[K]);
  std::sort(Result.begin(), Result.end());
  std::map<std::size_t, std::size_t> Numbers{{0, 0}};
  for (auto& [Site, Group] : Result) Group = Numbers.try_emplace(Group, Numbers.size()).first->second;
  return Result;
}

// What the cores whose clusters are equal have in common.
struct SharedCluster {
  std::map<std::size_t, double> Influences{};  // of each member the largest on any of the cores
  std::vector<std::size_t> Cores{};            // sites
  std::size_t Refused = NoSite;                // by the first of the cores
};

void ShareCluster(const std::vector<std::size_t>& Core, const Growth& Members, SharedCluster& Cluster) {
  if (Cluster.Cores.empty()) Cluster.Refused = Members.Refused;
  Cluster.Cores.insert(Cluster.Cores.end(), Core.begin(), Core.end());
  for (std::size_t I = 0; I < Members.Sites.size(); ++I) {
    double& Influence = Cluster.Influences[Members.Sites[I]];
    Influence = std::max(Influence, Members.Influence[I]);
  }
}

ClusterPlan PlanCluster(const SpectrumInput& Input, const SpinPart& Part, const Neighbourhood& Near,
                        const MembersByGroup& Sorted, const SharedCluster& Cluster) {
  ClusterPlan Plan{.Refused = Cluster.Refused};
  Growth Members;
  std::vector<int> Degeneracies;
  for (const auto& [Site, Group] : Sorted) {
    const auto& Own = Cluster.Cores;
    if (std::find(Own.begin(), Own.end(), Site) != Own.end()) Plan.Cores.push_back(Plan.Sites.size());
    Plan.Sites.push_back(Site);
    Plan.Groups.push_back(Group);
    Members.Influence.push_back(Cluster.Influences.at(Site));
    Degeneracies.push_back(Input.Sites[Site].Degeneracy);
  }
  Members.Sites = Plan.Sites;
  Plan.Outside = FindOutside(Input, Part, Plan.Sites);
  const auto IsCoreGroup = [](std::size_t Group) { return Group == 0; };
  Plan.IsWhole = Plan.Outside.empty() && std::all_of(Plan.Groups.begin(), Plan.Groups.end(), IsCoreGroup);
  AddFields(FindSurroundings(Input, Near, Members, Plan.Outside), Plan);
  Plan.Operations = GroupedCost(Degeneracies, Plan.Groups) * double(Plan.Fields.size()) *
                    (OperationsPerCube + OperationsPerMoment * double(1 + Plan.Cores.size()));
  return Plan;
}

}  // namespace

std::vector<std::vector<std::size_t>> FindCores(const SpectrumInput& Input, const SpinPart& Part) {
  struct Edge {
    double Strength;
    std::size_t A;
    std::size_t B;
  };
  std::vector<Edge> Edges;
  for (std::size_t A = 0; A < Part.Sites.size(); ++A) {
    for (std::size_t B = 0; B < A; ++B) {
      const SpinSite& First = Input.Sites[Part.Sites[A]];
      const SpinSite& Second = Input.Sites[Part.Sites[B]];
      if (First.Degeneracy > 1 || Second.Degeneracy > 1 || !First.Observed || !Second.Observed) continue;
      const double Value = Strength(Input, Part.Sites[A], Part.Sites[B]);
      if (Value > CoreStrength) Edges.push_back({Value * std::fabs(Input.J(Part.Sites[A], Part.Sites[B])), B, A});
    }
  }
  std::stable_sort(Edges.begin(), Edges.end(), [](const Edge& A, const Edge& B) { return A.Strength > B.Strength; });
  std::vector<std::vector<std::size_t>> Cores;
  std::vector<bool> Taken(Part.Sites.size());
  for (const Edge& Item : Edges) {
    if (Taken[Item.A] || Taken[Item.B]) continue;
    Taken[Item.A] = Taken[Item.B] = true;
    Cores.push_back({Part.Sites[Item.A], Part.Sites[Item.B]});
  }
  for (std::size_t K = 0; K < Part.Sites.size(); ++K) {
    if (!Taken[K] && Input.Sites[Part.Sites[K]].Observed) Cores.push_back({Part.Sites[K]});
  }
  return Cores;
}

std::vector<ClusterPlan> PlanClusters(const SpectrumInput& Input, const SpinPart& Part, const Neighbourhood& Near,
                                      const std::vector<std::vector<std::size_t>>& Cores, int Level) {
  const double LargestCost = SimulationCost(std::vector<int>(static_cast<std::size_t>(Level), 1));
  std::vector<Growth> Grown(Cores.size());
  ForEachItem(Cores.size(), [&](std::size_t K) { Grown[K] = GrowCluster(Input, Near, Cores[K], LargestCost); });
  std::map<MembersByGroup, SharedCluster> Clusters;
  for (std::size_t K = 0; K < Cores.size(); ++K) ShareCluster(Cores[K], Grown[K], Clusters[SortMembers(Grown[K])]);
  std::vector<ClusterPlan> Plans(Clusters.size());
  ForEachItem(Plans.size(), [&](std::size_t K) {
    const auto& [Members, Cluster] = *std::next(Clusters.begin(), static_cast<std::ptrdiff_t>(K));
    Plans[K] = PlanCluster(Input, Part, Near, Members, Cluster);
  });
  return Plans;
}

}  // namespace nmrcalc
