#include "nmrcalc/spins/ClusterPlan.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <numeric>

#include "nmrcalc/spins/LinearAlgebra.h"

namespace nmrcalc {

namespace {

constexpr double CoreStrength = 0.1;            // of a coupling from which two sites are one core
constexpr double UnitStrength = 0.3;            // of a coupling from which sites outside are solved together
constexpr std::size_t LargestFieldCount = 128;  // states of the surroundings in which a cluster is diagonalised
constexpr std::size_t LeastFieldCount = 4;      // where some act in first order alone
constexpr double SameField = 1e-6;              // Hz
constexpr double OperationsPerCube = 5.0;       // of the eigenvectors
constexpr double OperationsPerMoment = 2.0;     // for each product of moments

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

void MultiplyStates(std::vector<FieldState>& Product, const std::vector<FieldState>& Factor) {
  std::vector<FieldState> Result;
  for (const FieldState& A : Product) {
    for (const FieldState& B : Factor) {
      FieldState State{.Weight = A.Weight * B.Weight, .Field = A.Field, .Mz = A.Mz};
      for (std::size_t I = 0; I < State.Mz.size(); ++I) State.Mz[I] += B.Mz[I];
      for (std::size_t I = 0; I < State.Field.size(); ++I) State.Field[I] += B.Field[I];
      AddState(Result, std::move(State));
    }
  }
  Product = std::move(Result);
}

double SmallestMixing(int Level) { return 0.02 * std::pow(0.6, Level); }

// Repeats the fields until each state of a weak unit finds a place among them.
void RepeatFields(std::vector<FieldState>& Fields) {
  const std::vector<FieldState> Once = Fields;
  while (Fields.size() < LeastFieldCount) Fields.insert(Fields.end(), Once.begin(), Once.end());
  for (FieldState& State : Fields) State.Weight *= double(Once.size()) / double(Fields.size());
}

// Puts a state of each weak unit into the fields, each state as often as its weight says. Without that two states of
// the cluster that differ in far members alone may come so near to each other that they mix as they never do in nature.
void AddWeakStates(ClusterPlan& Plan) {
  constexpr std::array<std::size_t, 8> Steps{5, 11, 3, 13, 7, 9, 15, 1};  // so that the units go different ways
  const std::size_t NumFields = Plan.Fields.size();
  for (std::size_t Unit = 0; Unit < Plan.Weak.size(); ++Unit) {
    const std::vector<FieldState>& States = Plan.Weak[Unit];
    for (std::size_t K = 0; K < NumFields; ++K) {
      const std::size_t Turn = (K * Steps[Unit % Steps.size()] + Unit) % NumFields;
      const double Place = (double(Turn) + 0.5) / double(NumFields);
      std::size_t Base = 0;
      for (double Sum = States[0].Weight; Sum < Place && Base + 1 < States.size(); Sum += States[Base].Weight) ++Base;
      FieldState& Field = Plan.Fields[K];
      Field.Base.push_back(Base);
      for (std::size_t I = 0; I < Field.Field.size(); ++I) Field.Field[I] += States[Base].Field[I];
      for (std::size_t I = 0; I < Field.Mz.size(); ++I) Field.Mz[I] += States[Base].Mz[I];
    }
  }
}

// Fills what stands outside the members.
void AddSurroundings(const SpectrumInput& Input, const SpinPart& Part, const Neighbourhood& Near, const Growth& Members,
                     int Level, ClusterPlan& Plan) {
  const std::vector<std::size_t>& Outside = Plan.Outside;
  for (const std::size_t Site : Part.Sites) {
    const auto IsCoupled = [&](std::size_t Member) { return Input.J(Site, Member) != 0.0; };
    if (std::find(Members.Sites.begin(), Members.Sites.end(), Site) != Members.Sites.end()) continue;
    if (std::any_of(Members.Sites.begin(), Members.Sites.end(), IsCoupled)) Plan.Outside.push_back(Site);
  }
  Plan.IsWhole = Outside.empty();
  struct Ranked {
    double Mixing;
    std::vector<FieldState> States;
  };
  std::vector<Ranked> Units;
  for (const OutsideUnit& Unit : FindOutsideUnits(Input, Outside)) {
    auto States = Unit.size() == 1 ? StatesOfSite(Input, Members.Sites, Outside, Unit[0])
                                   : StatesOfSpins(Input, Members.Sites, Outside, Unit);
    const double Mixing = MixingByFields(Input, Near, Members, States);
    Units.push_back({Mixing, std::move(States)});
  }
  std::stable_sort(Units.begin(), Units.end(), [](const Ranked& A, const Ranked& B) { return A.Mixing > B.Mixing; });
  Plan.Fields = {
      {.Weight = 1.0, .Field = std::vector<double>(Members.Sites.size()), .Mz = std::vector<double>(Outside.size())}};
  for (Ranked& Unit : Units) {
    if (Unit.Mixing > SmallestMixing(Level) && Plan.Fields.size() * Unit.States.size() <= LargestFieldCount) {
      MultiplyStates(Plan.Fields, Unit.States);
    } else {
      Plan.Weak.push_back(std::move(Unit.States));
    }
  }
  if (!Plan.Weak.empty()) RepeatFields(Plan.Fields);
  AddWeakStates(Plan);
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
  struct Shared {
    std::map<std::size_t, double> Influences{};  // of each member the largest on any of the cores
    std::vector<std::size_t> Cores{};
    std::size_t Refused = NoSite;
  };
  std::map<std::vector<std::size_t>, Shared> Clusters;  // by the members
  for (const auto& Core : Cores) {
    const Growth Members = GrowCluster(Input, Near, Core, LargestCost);
    std::vector<std::size_t> Key = Members.Sites;
    std::sort(Key.begin(), Key.end());
    Shared& Cluster = Clusters[Key];
    if (Cluster.Cores.empty()) Cluster.Refused = Members.Refused;
    Cluster.Cores.insert(Cluster.Cores.end(), Core.begin(), Core.end());
    for (std::size_t I = 0; I < Members.Sites.size(); ++I) {
      double& Influence = Cluster.Influences[Members.Sites[I]];
      Influence = std::max(Influence, Members.Influence[I]);
    }
  }
  std::vector<ClusterPlan> Plans;
  for (const auto& [Key, Cluster] : Clusters) {
    ClusterPlan Plan{.Sites = Key, .Refused = Cluster.Refused};
    Growth Members{.Sites = Key};
    std::vector<int> Degeneracies;
    for (std::size_t I = 0; I < Key.size(); ++I) {
      Members.Influence.push_back(Cluster.Influences.at(Key[I]));
      Degeneracies.push_back(Input.Sites[Key[I]].Degeneracy);
      if (std::find(Cluster.Cores.begin(), Cluster.Cores.end(), Key[I]) != Cluster.Cores.end()) Plan.Cores.push_back(I);
    }
    AddSurroundings(Input, Part, Near, Members, Level, Plan);
    Plan.Operations = SimulationCost(Degeneracies) * double(Plan.Fields.size()) *
                      (OperationsPerCube + OperationsPerMoment * double(1 + Plan.Cores.size()));
    Plans.push_back(std::move(Plan));
  }
  return Plans;
}

}  // namespace nmrcalc
