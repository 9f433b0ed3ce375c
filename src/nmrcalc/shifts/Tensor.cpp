#include "nmrcalc/shifts/Tensor.h"

#include <algorithm>
#include <string>
#include <vector>

#include "nmrcalc/shifts/Substituents.h"
#include "nmrcalc/spins/LinearAlgebra.h"

namespace nmrcalc {

namespace {

// Adds Size (v v' - 1/3); nothing when v has no direction.
void AddAxis(std::array<double, 9>& Components, const Vector3& Axis, double Size) {
  if (Dot(Axis, Axis) < 0.5) return;
  for (std::size_t Row = 0; Row < 3; ++Row) {
    for (std::size_t Column = 0; Column < 3; ++Column) {
      Components[3 * Row + Column] += Size * (Axis[Row] * Axis[Column] - (Row == Column ? 1.0 / 3.0 : 0.0));
    }
  }
}

Vector3 BondDirection(const Molecule& System, std::size_t From, std::size_t To) {
  return Direction(Difference(System.Atoms[To].Place, System.Atoms[From].Place));
}

// Of three neighbours the normal of their plane, of two that of both bonds, of one that of its own plane.
Vector3 PlaneNormal(const Molecule& System, std::size_t Center, bool MayStep = true) {
  const auto& Bonds = System.Atoms[Center].Neighbours;
  const auto Place = [&System](const Neighbour& Bond) { return System.Atoms[Bond.Atom].Place; };
  if (Bonds.size() >= 3) {
    return Direction(Cross(Difference(Place(Bonds[1]), Place(Bonds[0])), Difference(Place(Bonds[2]), Place(Bonds[0]))));
  }
  if (Bonds.size() == 2) {
    return Direction(Cross(BondDirection(System, Center, Bonds[0].Atom), BondDirection(System, Center, Bonds[1].Atom)));
  }
  return Bonds.size() == 1 && MayStep ? PlaneNormal(System, Bonds[0].Atom, false) : Vector3{};
}

// The axis of the multiple bond, or the direction out of an aromatic ring.
Vector3 BondAxis(const Molecule& System, std::size_t Center) {
  const Atom& Item = System.Atoms[Center];
  Vector3 Sum{};
  BondOrder Highest = BondOrder::Single;
  for (const Neighbour& Bond : Item.Neighbours) {
    const Vector3 Along = BondDirection(System, Center, Bond.Atom);
    if (Item.Aromatic) {
      if (!System.Atoms[Bond.Atom].Aromatic || SmallestRingOfBond(System, Center, Bond.Atom) == 0) continue;
      for (std::size_t K = 0; K < 3; ++K) Sum[K] -= Along[K];
    } else if (Bond.Order != BondOrder::Aromatic && Bond.Order > Highest) {
      Sum = Along;
      Highest = Bond.Order;
    }
  }
  return Direction(Sum);
}

std::string TensorKind(const Molecule& System, std::size_t Center) {
  const Atom& Item = System.Atoms[Center];
  const std::string Element = SymbolOf(Item.AtomicNumber);
  if (Item.Aromatic) return Element + ".aromatic";
  if (Item.State == Hybrid::Sp) return Element + ".sp";
  if (Item.State == Hybrid::Sp3) return "";
  if (IsCarbonyl(System, Center)) {
    const int Hetero = static_cast<int>(Item.Neighbours.size()) - CountNeighbours(System, Center, 6) -
                       CountNeighbours(System, Center, 1);
    return Hetero > 1 ? "C.acyl" : "C.ketone";
  }
  return Element + ".sp2";
}

}  // namespace

ShieldingTensor EstimateTensor(const TableFile& Tables, const Molecule& System, std::size_t Center, double Isotropic) {
  ShieldingTensor Result;
  for (const std::size_t Diagonal : {0, 4, 8}) Result.Components[Diagonal] = Isotropic;
  const std::string Kind = TensorKind(System, Center);
  const std::vector<double>* Row = Kind.empty() ? nullptr : FindRow(Tables, "tensor", Kind);
  if (Row != nullptr) {
    AddAxis(Result.Components, PlaneNormal(System, Center), (*Row)[0]);
    AddAxis(Result.Components, BondAxis(System, Center), (*Row)[1]);
  } else {
    const std::string Element = SymbolOf(System.Atoms[Center].AtomicNumber);
    for (const Neighbour& Bond : System.Atoms[Center].Neighbours) {
      const std::string Key = Element + "-" + SymbolOf(System.Atoms[Bond.Atom].AtomicNumber);
      const std::vector<double>* BondRow = FindRow(Tables, "tensor.bond", Key);
      if (BondRow != nullptr) AddAxis(Result.Components, BondDirection(System, Center, Bond.Atom), (*BondRow)[0]);
    }
  }
  std::vector<double> Matrix(Result.Components.begin(), Result.Components.end());
  std::vector<double> Eigenvalues;
  DiagonalizeSymmetric(Matrix, 3, Eigenvalues);
  std::copy(Eigenvalues.begin(), Eigenvalues.end(), Result.Eigenvalues.begin());
  Result.Isotropic = (Result.Components[0] + Result.Components[4] + Result.Components[8]) / 3.0;
  Result.Anisotropy = Eigenvalues[2] - 0.5 * (Eigenvalues[0] + Eigenvalues[1]);
  return Result;
}

}  // namespace nmrcalc
