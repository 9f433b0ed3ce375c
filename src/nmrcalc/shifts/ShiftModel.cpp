#include "nmrcalc/shifts/ShiftModel.h"

#include <algorithm>
#include <cmath>

#include "nmrcalc/shifts/Equivalence.h"
#include "nmrcalc/spins/LinearAlgebra.h"

namespace nmrcalc {

namespace {

// Scales of the outputs, the same as in training/: shift = Mean + Spread * output, ppm; error scale = Base * exp
// (output).
struct OutputScale {
  double Mean;
  double Spread;
  double Base;
};
constexpr std::array<OutputScale, NumHeavyNuclei> HeavyScales = {{{100.0, 40.0, 2.0},
                                                                  {20.0, 40.0, 8.0},
                                                                  {-100.0, 40.0, 4.0},
                                                                  {0.0, 25.0, 3.0},
                                                                  {-200.0, 100.0, 10.0},
                                                                  {200.0, 150.0, 15.0},
                                                                  {-10.0, 30.0, 5.0},
                                                                  {-2500.0, 1000.0, 50.0}}};
constexpr OutputScale HydrogenScale = {4.0, 3.0, 0.2};
constexpr double LeastLogScale = -5.0;
constexpr double LargestLogScale = 4.0;

// Rows of numbers, one for each node or hydrogen.
struct Rows {
  std::size_t Count = 0;
  std::size_t Width = 0;
  std::vector<float> Values{};
  float* Row(std::size_t Index) { return Values.data() + Index * Width; }
  const float* Row(std::size_t Index) const { return Values.data() + Index * Width; }
};

Rows MakeRows(std::size_t Count, std::size_t Width) { return {Count, Width, std::vector<float>(Count * Width)}; }

float Silu(float Value) { return Value / (1.0F + std::exp(-Value)); }

Rows ApplyLayer(const DenseLayer& Layer, const Rows& Inputs) {
  Rows Outputs = MakeRows(Inputs.Count, Layer.Weights.Rows);
  if (Inputs.Count == 0) return Outputs;
  MultiplyTransposed(Layer.Weights.Values.data(), Inputs.Values.data(), Outputs.Values.data(), Layer.Weights.Rows,
                     Inputs.Count, Inputs.Width);
  for (std::size_t Index = 0; Index < Outputs.Count; ++Index) {
    for (std::size_t K = 0; K < Outputs.Width; ++K) Outputs.Row(Index)[K] += Layer.Bias.Values[K];
  }
  return Outputs;
}

Rows ApplySilu(Rows Inputs) {
  for (float& Value : Inputs.Values) Value = Silu(Value);
  return Inputs;
}

Rows Normalise(const Rows& Inputs) {
  Rows Outputs = Inputs;
  constexpr float Smallest = 1e-5F;
  for (std::size_t Index = 0; Index < Outputs.Count; ++Index) {
    float* Row = Outputs.Row(Index);
    const auto Width = static_cast<float>(Outputs.Width);
    float Mean = 0;
    for (std::size_t K = 0; K < Outputs.Width; ++K) Mean += Row[K] / Width;
    float Variance = 0;
    for (std::size_t K = 0; K < Outputs.Width; ++K) Variance += (Row[K] - Mean) * (Row[K] - Mean) / Width;
    const float Factor = 1.0F / std::sqrt(Variance + Smallest);
    for (std::size_t K = 0; K < Outputs.Width; ++K) Row[K] = (Row[K] - Mean) * Factor;
  }
  return Outputs;
}

// The columns of several rows side by side.
Rows JoinColumns(const std::vector<const Rows*>& Parts) {
  std::size_t Width = 0;
  for (const Rows* Part : Parts) Width += Part->Width;
  Rows Joined = MakeRows(Parts[0]->Count, Width);
  std::size_t First = 0;
  for (const Rows* Part : Parts) {
    for (std::size_t Index = 0; Index < Joined.Count; ++Index) {
      std::copy_n(Part->Row(Index), Part->Width, Joined.Row(Index) + First);
    }
    First += Part->Width;
  }
  return Joined;
}

// Where a distance stands among the rows of a table: between Row and the next one.
struct DistancePlace {
  bool Counts = false;
  std::size_t Row = 0;
  float Share = 0;
};

DistancePlace PlaceOf(float Distance) {
  if (Distance == NoDistance) return {};
  if (Distance == UnknownDistance) return {true, NumDistanceRows - 1, 0.0F};
  const double Largest = static_cast<double>(NumDistanceRows) - 2.001;
  const double Place = std::clamp((Distance - FirstDistance) / DistanceStep, 0.0, Largest);
  const auto Row = static_cast<std::size_t>(Place);
  return {true, Row, static_cast<float>(Place - static_cast<double>(Row))};
}

// The messages along edges: first columns of the two ends in Ends, target rows by the edges' To.
Rows SumMessages(const EdgeWeights& Weights, const std::vector<ShiftEdge>& Edges, std::size_t Count, const Rows& To,
                 std::size_t ToColumn, const Rows& From, std::size_t FromColumn,
                 std::size_t (*GroupOf)(std::size_t Class)) {
  const std::size_t Width = Weights.Additive.Columns;
  Rows Sums = MakeRows(Count, Width);
  std::vector<float> ByDistance(Width);
  for (const ShiftEdge& Edge : Edges) {
    const float* A = To.Row(Edge.To) + ToColumn;
    const float* B = From.Row(Edge.From) + FromColumn;
    const float* G = Weights.Additive.Values.data() + Edge.Class * Width;
    const float* W = Weights.Factor.Values.data() + Edge.Class * Width;
    float* Target = Sums.Row(Edge.To);
    std::fill(ByDistance.begin(), ByDistance.end(), 0.0);
    const DistancePlace Place = Weights.ByDistance.Rows == 0 ? DistancePlace{} : PlaceOf(Edge.Distance);
    if (Place.Counts) {
      const float* Near =
          Weights.ByDistance.Values.data() + (GroupOf(Edge.Class) * NumDistanceRows + Place.Row) * Width;
      const float* Far = Place.Share > 0 ? Near + Width : Near;
      for (std::size_t K = 0; K < Width; ++K) ByDistance[K] = (1.0F - Place.Share) * Near[K] + Place.Share * Far[K];
    }
    for (std::size_t K = 0; K < Width; ++K) {
      Target[K] += Edge.Weight * W[K] * Silu(A[K] + B[K] + G[K] + ByDistance[K]);
    }
  }
  return Sums;
}

// What the network knows of every node behind its layers.
Rows DescribeNodes(const ShiftNetwork& Network, const ShiftGraph& Graph) {
  const std::size_t Count = Graph.HeavyAtoms.size();
  Rows State = MakeRows(Count, Network.Embedding.Columns);
  for (std::size_t Node = 0; Node < Count; ++Node) {
    for (const std::uint16_t Row : Graph.Features[Node]) {
      const float* Source = Network.Embedding.Values.data() + Row * State.Width;
      for (std::size_t K = 0; K < State.Width; ++K) State.Row(Node)[K] += Source[K];
    }
  }
  for (const MessageLayer& Layer : Network.Layers) {
    const Rows Level = Normalise(State);
    const Rows Ends = ApplyLayer(Layer.Ends, Level);
    const std::size_t BondWidth = Layer.Bonds.Additive.Columns;
    const std::size_t PairWidth = Layer.Pairs.Additive.Columns;
    const Rows Bonds = SumMessages(Layer.Bonds, Graph.Bonds, Count, Ends, 0, Ends, BondWidth, &PairGroup);
    const Rows Pairs =
        SumMessages(Layer.Pairs, Graph.Pairs, Count, Ends, 2 * BondWidth, Ends, 2 * BondWidth + PairWidth, &PairGroup);
    const Rows Change =
        ApplyLayer(Layer.Outer, ApplySilu(ApplyLayer(Layer.Inner, JoinColumns({&Level, &Bonds, &Pairs}))));
    for (std::size_t K = 0; K < State.Values.size(); ++K) State.Values[K] += Change.Values[K];
  }
  return Normalise(State);
}

// Rows of the hydrogens' heavy neighbours, the mean where there are several.
Rows MeanOfParents(const Rows& Nodes, const ShiftGraph& Graph) {
  Rows Means = MakeRows(Graph.Hydrogens.size(), Nodes.Width);
  for (std::size_t Hydrogen = 0; Hydrogen < Means.Count; ++Hydrogen) {
    const auto& Parents = Graph.Parents[Hydrogen];
    for (const std::uint32_t Node : Parents) {
      for (std::size_t K = 0; K < Nodes.Width; ++K) {
        Means.Row(Hydrogen)[K] += Nodes.Row(Node)[K] / static_cast<float>(Parents.size());
      }
    }
  }
  return Means;
}

// What the network knows of every hydrogen before its last layer.
Rows DescribeHydrogens(const ShiftNetwork& Network, const ShiftGraph& Graph, const Rows& Nodes) {
  const std::size_t Count = Graph.Hydrogens.size();
  const std::size_t EdgeWidth = Network.HydrogenEdges.Additive.Columns;
  const std::size_t ContactWidth = Network.Contacts.Additive.Columns;
  const Rows Ends = ApplyLayer(Network.HydrogenEnds, Nodes);
  const Rows Own = MeanOfParents(Ends, Graph);
  const Rows Edges =
      SumMessages(Network.HydrogenEdges, Graph.HydrogenEdges, Count, Own, 0, Ends, EdgeWidth, &HydrogenGroup);
  const Rows Contacts = SumMessages(Network.Contacts, Graph.Contacts, Count, Own, 2 * EdgeWidth, Own,
                                    2 * EdgeWidth + ContactWidth, &ContactGroup);
  const Rows Parents = MeanOfParents(Nodes, Graph);
  const Rows Inner = ApplySilu(ApplyLayer(Network.HydrogenInner, JoinColumns({&Parents, &Edges, &Contacts})));
  return ApplySilu(ApplyLayer(Network.HydrogenMiddle, Inner));
}

void AverageGroups(const std::vector<std::uint32_t>& Groups, std::vector<ShiftEstimate>& Items) {
  std::vector<ShiftEstimate> Sums(Items.size());
  std::vector<double> Counts(Items.size());
  for (std::size_t Index = 0; Index < Items.size(); ++Index) {
    Sums[Groups[Index]].Shift += Items[Index].Shift;
    Sums[Groups[Index]].Error += Items[Index].Error;
    Counts[Groups[Index]] += 1.0;
  }
  for (std::size_t Index = 0; Index < Items.size(); ++Index) {
    Items[Index].Shift = Sums[Groups[Index]].Shift / Counts[Groups[Index]];
    Items[Index].Error = Sums[Groups[Index]].Error / Counts[Groups[Index]];
  }
}

// A row for each group.
Rows MeanOfGroups(const std::vector<std::uint32_t>& Groups, const Rows& Items) {
  std::vector<float> Counts(Items.Count);
  for (const std::uint32_t Group : Groups) Counts[Group] += 1.0F;
  Rows Means = MakeRows(Items.Count, Items.Width);
  for (std::size_t Index = 0; Index < Items.Count; ++Index) {
    float* Target = Means.Row(Groups[Index]);
    for (std::size_t K = 0; K < Items.Width; ++K) Target[K] += Items.Row(Index)[K] / Counts[Groups[Index]];
  }
  return Means;
}

// Moves measured shifts towards computed ones, as far as the networks' knowledge of each hydrogen says.
void AddComputed(const ShiftModel& Model, const std::vector<Rows>& Known, const std::vector<std::uint32_t>& Groups,
                 const std::vector<ShiftEstimate>& Differences, std::vector<ShiftEstimate>& Hydrogens) {
  std::vector<const Rows*> Parts(Known.size());
  std::transform(Known.begin(), Known.end(), Parts.begin(), [](const Rows& Part) { return &Part; });
  const Rows Means = MeanOfGroups(Groups, JoinColumns(Parts));
  const Rows Shares = ApplyLayer(Model.ShareOuter, ApplySilu(ApplyLayer(Model.ShareInner, Means)));
  for (std::size_t Hydrogen = 0; Hydrogen < Hydrogens.size(); ++Hydrogen) {
    const double Share = 1.0 / (1.0 + std::exp(-static_cast<double>(Shares.Row(Groups[Hydrogen])[0])));
    Hydrogens[Hydrogen].Shift +=
        std::clamp(Share * Differences[Hydrogen].Shift, -Model.LargestComputed, Model.LargestComputed);
  }
}

double LogScale(float Output) { return std::exp(std::clamp<double>(Output, LeastLogScale, LargestLogScale)); }

// Adds what a network tells of the heavy atoms, Share of its error, and of its shift by one over the error, since a
// network that tells a wide one counts for less.
void AddNodes(const Rows& Outputs, const std::vector<std::size_t>& Nucleus, double Share,
              std::vector<ShiftEstimate>& Nodes, std::vector<double>& Weights) {
  for (std::size_t Node = 0; Node < Nodes.size(); ++Node) {
    if (!Nodes[Node].Known) continue;
    const std::size_t K = Nucleus[Node];
    const float* Output = Outputs.Row(Node);
    const double Scale = LogScale(Output[NumHeavyNuclei + K]);
    Weights[Node] += 1.0 / Scale;
    Nodes[Node].Shift += (HeavyScales[K].Mean + HeavyScales[K].Spread * Output[K]) / Scale;
    Nodes[Node].Error += Share * HeavyScales[K].Base * Scale;
  }
}

// Spread tells the range of the nucleus: no bar goes beyond it, and without examples none is narrow.
double ErrorBar(const ErrorCalibration& Calibration, double Scale, bool Seen, double Spread) {
  const double Bar = std::max(Calibration.Factor * std::pow(Scale, Calibration.Power), Calibration.Least);
  constexpr double Widest = 2.5;
  constexpr double LeastUnseen = 0.1;
  return std::min(Seen ? Bar : std::max(Bar * Calibration.Unseen, LeastUnseen * Spread), Widest * Spread);
}

// Hydrogens on nitrogen, oxygen, sulfur: where they are seen depends on solvent, concentration and temperature.
bool MayExchange(const Atom& Parent) {
  return Parent.AtomicNumber == 7 || Parent.AtomicNumber == 8 || Parent.AtomicNumber == 16;
}

// A radical, ion or carbene, which the bonds do not tell apart; isocyanides and carbon monoxide are none.
bool HasOpenValence(const Molecule& System, std::size_t Index) {
  const Atom& Item = System.Atoms[Index];
  if (Item.AtomicNumber != 6 || Item.Neighbours.size() >= 4) return false;
  int Bonds = 0;
  for (const Neighbour& Next : Item.Neighbours) {
    if (Next.Order == BondOrder::Aromatic || Next.Order == BondOrder::Triple) return false;
    Bonds += Next.Order == BondOrder::Double ? 2 : 1;
  }
  return Bonds < 4;
}

// Whether the training tells something of a node: of itself, and of the elements that it is bound to. For carbon beside
// carbon its own surroundings are enough.
void FindSeen(const ShiftModel& Model, const Molecule& System, const ShiftGraph& Graph,
              std::vector<ShiftEstimate>& Nodes) {
  std::vector<bool> Own;
  const std::vector<std::uint32_t> Hashes = HashAllSurroundings(Graph);
  for (std::size_t Node = 0; Node < Nodes.size(); ++Node) {
    Own.push_back(std::binary_search(Model.KnownSurroundings.begin(), Model.KnownSurroundings.end(), Hashes[Node]) &&
                  !HasOpenValence(System, Graph.HeavyAtoms[Node]));
    Nodes[Node].Seen = Own.back();
  }
  for (const ShiftEdge& Edge : Graph.Bonds) {
    const std::size_t Beside = Graph.HeavyAtoms[Edge.From];
    if (System.Atoms[Beside].AtomicNumber != 6 || HasOpenValence(System, Beside)) {
      Nodes[Edge.To].Seen = Nodes[Edge.To].Seen && Own[Edge.From];
    }
  }
}

// Turns the scales that the networks told into error bars.
void TellErrors(const ShiftModel& Model, const Molecule& System, const ShiftGraph& Graph, ShiftPrediction& Result) {
  constexpr double OpenShare = 0.5;  // of the range, where the valence is open
  for (std::size_t Node = 0; Node < Result.Nodes.size(); ++Node) {
    ShiftEstimate& Item = Result.Nodes[Node];
    if (!Item.Known) continue;
    const std::size_t Atom = Graph.HeavyAtoms[Node];
    const auto Nucleus = static_cast<std::size_t>(
        std::find(HeavyNuclei.begin(), HeavyNuclei.end(), System.Atoms[Atom].AtomicNumber) - HeavyNuclei.begin());
    const double Spread = HeavyScales[Nucleus].Spread;
    Item.Error = ErrorBar(Model.Errors[Nucleus], Item.Error, Item.Seen, Spread);
    if (HasOpenValence(System, Atom)) Item.Error = std::max(Item.Error, OpenShare * Spread);
  }
  for (std::size_t Hydrogen = 0; Hydrogen < Result.Hydrogens.size(); ++Hydrogen) {
    ShiftEstimate& Item = Result.Hydrogens[Hydrogen];
    bool Exchanges = false;
    bool IsOpen = false;
    for (const std::uint32_t Node : Graph.Parents[Hydrogen]) {
      Item.Seen = Item.Seen && Result.Nodes[Node].Seen;
      Exchanges = Exchanges || MayExchange(System.Atoms[Graph.HeavyAtoms[Node]]);
      IsOpen = IsOpen || HasOpenValence(System, Graph.HeavyAtoms[Node]);
    }
    const ErrorCalibration& Calibration = Model.Errors[NumHeavyNuclei + (Exchanges ? 1 : 0)];
    Item.Error = ErrorBar(Calibration, Item.Error, Item.Seen, HydrogenScale.Spread);
    if (IsOpen) Item.Error = std::max(Item.Error, OpenShare * HydrogenScale.Spread);
  }
}

}  // namespace

std::vector<std::uint32_t> HashAllSurroundings(const ShiftGraph& Graph) {
  constexpr std::size_t TypeSlot = 3;  // element, hybridisation and hydrogens in one
  const auto Spread = [](std::uint64_t Value) {
    Value = (Value ^ (Value >> 31)) * 0x9E3779B97F4A7C15ULL;
    return Value ^ (Value >> 29);
  };
  std::vector<std::uint64_t> Sums(Graph.HeavyAtoms.size());
  for (const ShiftEdge& Edge : Graph.Bonds) {
    const std::uint64_t Order = Edge.Class / (NumBondClasses / 5);
    Sums[Edge.To] += Spread(Graph.Features[Edge.From][TypeSlot] * 8 + Order + 1);
  }
  std::vector<std::uint32_t> Hashes;
  for (std::size_t Node = 0; Node < Sums.size(); ++Node) {
    const auto& Rows = Graph.Features[Node];
    Hashes.push_back(static_cast<std::uint32_t>(Spread(Sums[Node] + Rows[TypeSlot] * 4096ULL + Rows[0]) >> 16));
  }
  return Hashes;
}

ShiftPrediction PredictShifts(const ShiftModel& Model, const Molecule& System) {
  const ShiftGraph Graph = MakeShiftGraph(System);
  const std::size_t NumNodes = Graph.HeavyAtoms.size();
  ShiftPrediction Result{.Nodes = std::vector<ShiftEstimate>(NumNodes),
                         .Hydrogens = std::vector<ShiftEstimate>(Graph.Hydrogens.size())};
  const double Share = 1.0 / static_cast<double>(Model.Networks.size());
  std::vector<std::size_t> Nucleus(NumNodes);
  for (std::size_t Node = 0; Node < NumNodes; ++Node) {
    const int Z = System.Atoms[Graph.HeavyAtoms[Node]].AtomicNumber;
    Nucleus[Node] =
        static_cast<std::size_t>(std::find(HeavyNuclei.begin(), HeavyNuclei.end(), Z) - HeavyNuclei.begin());
    Result.Nodes[Node].Known = Nucleus[Node] < NumHeavyNuclei;
  }
  FindSeen(Model, System, Graph, Result.Nodes);
  std::vector<ShiftEstimate> Differences(Graph.Hydrogens.size());  // computed less measured shifts
  std::vector<Rows> Known;                                         // what each network knows of the hydrogens
  std::vector<double> Weights(NumNodes);                           // of all networks
  for (const ShiftNetwork& Network : Model.Networks) {
    const Rows Nodes = DescribeNodes(Network, Graph);
    AddNodes(ApplyLayer(Network.HeavyOuter, ApplySilu(ApplyLayer(Network.HeavyInner, Nodes))), Nucleus, Share,
             Result.Nodes, Weights);
    Known.push_back(DescribeHydrogens(Network, Graph, Nodes));
    const Rows Hydrogens = ApplyLayer(Network.HydrogenOuter, Known.back());
    for (std::size_t Hydrogen = 0; Hydrogen < Hydrogens.Count; ++Hydrogen) {
      const float* Output = Hydrogens.Row(Hydrogen);
      ShiftEstimate& Item = Result.Hydrogens[Hydrogen];
      Item.Known = !Graph.Parents[Hydrogen].empty();
      Item.Shift += Share * (HydrogenScale.Mean + HydrogenScale.Spread * Output[0]);
      // Computed values of hydrogens on other atoms than carbon are those of the gas phase.
      const bool OnCarbon = Item.Known && System.Atoms[Graph.HeavyAtoms[Graph.Parents[Hydrogen][0]]].AtomicNumber == 6;
      if (OnCarbon) Differences[Hydrogen].Shift += Share * Output[1];
      Item.Error += Share * HydrogenScale.Base * LogScale(Output[2]);
    }
  }
  for (std::size_t Node = 0; Node < NumNodes; ++Node) Result.Nodes[Node].Shift /= std::max(Weights[Node], 1e-300);
  const Equivalence Groups = FindEquivalence(System, Graph);
  AverageGroups(Groups.NodeGroup, Result.Nodes);
  AverageGroups(Groups.HydrogenGroup, Result.Hydrogens);
  AverageGroups(Groups.HydrogenGroup, Differences);
  AddComputed(Model, Known, Groups.HydrogenGroup, Differences, Result.Hydrogens);
  TellErrors(Model, System, Graph, Result);
  return Result;
}

}  // namespace nmrcalc
