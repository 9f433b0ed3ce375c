// What the shift model is told of molecules, for its training: the very routines that the backend uses, so that both
// cannot differ. Reads molecules from standard input, writes binary records to standard output, or with the path of a
// shift model as argument the model's predictions: a line with the ID, then for each atom a line with shift, error bar
// and whether the training had such surroundings.
//
//   molecule: ID NUM_ATOMS NUM_BONDS, then for each atom Z X Y Z, then for each bond FIRST SECOND ORDER
//             (atoms from 0; order 1, 2, 3, 4 for aromatic; all places 0 when there is no geometry)
//   record:   8 int64: id, has geometry, nodes, hydrogens, bond edges, pair edges, hydrogen edges, contact edges; then
//             int32 arrays: atom of each node, group of each node, atom of each hydrogen,
//             group, parent (-1 for none); features and surroundings of each node; and for each kind of edges To, From,
//             Class (int32), Distance, Weight (float)

#include <cstdint>
#include <cstdio>
#include <optional>
#include <vector>

#include "nmrcalc/shifts/Equivalence.h"
#include "nmrcalc/shifts/ShiftGraph.h"
#include "nmrcalc/shifts/ShiftModel.h"
#include "nmrcalc/spins/LinearAlgebra.h"

namespace {

void Put(const std::vector<std::int32_t>& Values) {
  std::fwrite(Values.data(), sizeof(std::int32_t), Values.size(), stdout);
}

void PutEdges(const std::vector<nmrcalc::ShiftEdge>& Edges) {
  std::vector<std::int32_t> To;
  std::vector<std::int32_t> From;
  std::vector<std::int32_t> Class;
  std::vector<float> Numbers;
  for (const auto& Edge : Edges) {
    To.push_back(static_cast<std::int32_t>(Edge.To));
    From.push_back(static_cast<std::int32_t>(Edge.From));
    Class.push_back(Edge.Class);
    Numbers.push_back(Edge.Distance);
  }
  for (const auto& Edge : Edges) Numbers.push_back(Edge.Weight);
  Put(To);
  Put(From);
  Put(Class);
  std::fwrite(Numbers.data(), sizeof(float), Numbers.size(), stdout);
}

void PutRecord(long long Id, const nmrcalc::Molecule& System) {
  const nmrcalc::ShiftGraph Graph = nmrcalc::MakeShiftGraph(System);
  const nmrcalc::Equivalence Groups = nmrcalc::FindEquivalence(System, Graph);
  const std::int64_t Head[8] = {Id,
                                Graph.HasGeometry ? 1 : 0,
                                static_cast<std::int64_t>(Graph.HeavyAtoms.size()),
                                static_cast<std::int64_t>(Graph.Hydrogens.size()),
                                static_cast<std::int64_t>(Graph.Bonds.size()),
                                static_cast<std::int64_t>(Graph.Pairs.size()),
                                static_cast<std::int64_t>(Graph.HydrogenEdges.size()),
                                static_cast<std::int64_t>(Graph.Contacts.size())};
  std::fwrite(Head, sizeof Head, 1, stdout);
  Put({Graph.HeavyAtoms.begin(), Graph.HeavyAtoms.end()});
  Put({Groups.NodeGroup.begin(), Groups.NodeGroup.end()});
  Put({Graph.Hydrogens.begin(), Graph.Hydrogens.end()});
  Put({Groups.HydrogenGroup.begin(), Groups.HydrogenGroup.end()});
  std::vector<std::int32_t> Parents;
  for (const auto& List : Graph.Parents) Parents.push_back(List.empty() ? -1 : static_cast<std::int32_t>(List.front()));
  Put(Parents);
  for (const auto& Rows : Graph.Features) Put({Rows.begin(), Rows.end()});
  std::vector<std::int32_t> Surroundings;
  for (const std::uint32_t Hash : nmrcalc::HashAllSurroundings(Graph)) {
    Surroundings.push_back(static_cast<std::int32_t>(Hash));
  }
  Put(Surroundings);
  PutEdges(Graph.Bonds);
  PutEdges(Graph.Pairs);
  PutEdges(Graph.HydrogenEdges);
  PutEdges(Graph.Contacts);
}

void PrintShifts(long long Id, const nmrcalc::Molecule& System, const nmrcalc::ShiftModel& Model) {
  const nmrcalc::ShiftPrediction Result = nmrcalc::PredictShifts(Model, System);
  std::printf("%lld\n", Id);
  std::size_t Node = 0;
  std::size_t Hydrogen = 0;
  for (const nmrcalc::Atom& Item : System.Atoms) {
    nmrcalc::ShiftEstimate Shift;
    if (Item.AtomicNumber == 1) Shift = Result.Hydrogens[Hydrogen++];
    if (Item.AtomicNumber > 1) Shift = Result.Nodes[Node++];
    std::printf("%.5f %.4f %d\n", Shift.Shift, Shift.Error, Shift.Seen ? 1 : 0);
  }
}

}  // namespace

int main(int NumArguments, char** Arguments) {
  nmrcalc::UseOneLibraryThread();
  std::optional<nmrcalc::ShiftModel> Model;
  if (NumArguments > 1) Model = nmrcalc::ReadShiftModel(Arguments[1]);
  long long Id = 0;
  std::size_t NumAtoms = 0;
  std::size_t NumBonds = 0;
  while (std::scanf("%lld %zu %zu", &Id, &NumAtoms, &NumBonds) == 3) {
    nmrcalc::Molecule System;
    for (std::size_t K = 0; K < NumAtoms; ++K) {
      nmrcalc::Atom Item{.Molecule = 1, .InMolecule = static_cast<int>(K) + 1};
      if (std::scanf("%d %lf %lf %lf", &Item.AtomicNumber, &Item.Place[0], &Item.Place[1], &Item.Place[2]) != 4)
        return 1;
      System.Atoms.push_back(Item);
    }
    for (std::size_t K = 0; K < NumBonds; ++K) {
      std::size_t First = 0;
      std::size_t Second = 0;
      int Order = 0;
      if (std::scanf("%zu %zu %d", &First, &Second, &Order) != 3 || First >= NumAtoms || Second >= NumAtoms) return 1;
      nmrcalc::AddBond(System, First, Second, static_cast<nmrcalc::BondOrder>(Order));
    }
    nmrcalc::PerceiveStructure(System);
    if (Model) {
      PrintShifts(Id, System, *Model);
    } else {
      PutRecord(Id, System);
    }
  }
  return 0;
}
