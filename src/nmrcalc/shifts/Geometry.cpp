#include "nmrcalc/shifts/Geometry.h"

#include <algorithm>
#include <cmath>

namespace nmrcalc {

namespace {

constexpr double ShortestBond = 0.5;  // Angstrom
constexpr double LongestBond = 4.0;
constexpr double FlatLimit = 0.08;  // triple product of unit vectors; 0.77 at a tetrahedral atom

std::array<int, 3> CellOf(const Vector3& Place, double Width) {
  std::array<int, 3> Cell{};
  constexpr double Largest = 1e8;
  for (std::size_t Axis = 0; Axis < 3; ++Axis) {
    Cell[Axis] = static_cast<int>(std::clamp(std::floor(Place[Axis] / Width), -Largest, Largest));
  }
  return Cell;
}

// Whether three atoms are so near to a line that nothing turns about it in a definite way, as in an allene.
bool IsStraight(const Molecule& System, std::size_t First, std::size_t Middle, std::size_t Last) {
  const Vector3& Origin = System.Atoms[Middle].Place;
  const Vector3 Normal = Cross(Direction(Difference(System.Atoms[First].Place, Origin)),
                               Direction(Difference(System.Atoms[Last].Place, Origin)));
  constexpr double SquaredSine = 0.1;  // 18 degrees off the line
  return Dot(Normal, Normal) < SquaredSine;
}

}  // namespace

double SpannedVolume(const Molecule& System, std::size_t Center, std::size_t First, std::size_t Second,
                     std::size_t Third) {
  const Vector3& Origin = System.Atoms[Center].Place;
  return Dot(Cross(Direction(Difference(System.Atoms[First].Place, Origin)),
                   Direction(Difference(System.Atoms[Second].Place, Origin))),
             Direction(Difference(System.Atoms[Third].Place, Origin)));
}

bool IsGeometryUsable(const Molecule& System) {
  for (std::size_t Index = 0; Index < System.Atoms.size(); ++Index) {
    const Atom& Item = System.Atoms[Index];
    for (const Neighbour& Bond : Item.Neighbours) {
      const Vector3 Way = Difference(System.Atoms[Bond.Atom].Place, Item.Place);
      const double Length = std::sqrt(Dot(Way, Way));
      if (!(Length > ShortestBond && Length < LongestBond)) return false;
    }
    if (Item.AtomicNumber != 6 || Item.Neighbours.size() != 4) continue;
    double Largest = 0.0;
    for (std::size_t Left = 0; Left < 4; ++Left) {
      const auto& List = Item.Neighbours;
      Largest = std::max(Largest, std::abs(SpannedVolume(System, Index, List[Left].Atom, List[(Left + 1) % 4].Atom,
                                                         List[(Left + 2) % 4].Atom)));
    }
    if (Largest < FlatLimit) return false;
  }
  return true;
}

StereoPicture FindStereo(const Molecule& System) {
  StereoPicture Stereo{.Known = true};
  for (std::size_t Number = 0; Number < System.Rings.size(); ++Number) {
    const auto& Ring = System.Rings[Number];
    for (std::size_t K = 0; K < Ring.size(); ++K) {
      const std::size_t Member = Ring[K];
      const std::size_t Before = Ring[(K + Ring.size() - 1) % Ring.size()];
      const std::size_t After = Ring[(K + 1) % Ring.size()];
      for (const Neighbour& Bond : System.Atoms[Member].Neighbours) {
        if (Bond.Atom == Before || Bond.Atom == After) continue;
        const double Volume = SpannedVolume(System, Member, Before, After, Bond.Atom);
        if (std::abs(Volume) < FlatLimit) continue;
        Stereo.Faces[{Member, Bond.Atom}].emplace_back(Number, Volume > 0.0 ? 1 : -1);
      }
    }
  }
  return Stereo;
}

int SideOfRing(const StereoPicture& Stereo, std::size_t FirstMember, std::size_t First, std::size_t SecondMember,
               std::size_t Second) {
  const auto Left = Stereo.Faces.find({FirstMember, First});
  const auto Right = Stereo.Faces.find({SecondMember, Second});
  if (FirstMember == SecondMember || Left == Stereo.Faces.end() || Right == Stereo.Faces.end()) return 0;
  int Side = 0;
  for (const auto& [Ring, Face] : Left->second) {
    for (const auto& [OtherRing, OtherFace] : Right->second) {
      if (Ring == OtherRing) Side = std::max(Side, Face == OtherFace ? 1 : 2);
    }
  }
  return Side;
}

int SideOfDoubleBond(const Molecule& System, std::size_t First, std::size_t Left, std::size_t Right,
                     std::size_t Second) {
  if (IsStraight(System, First, Left, Right) || IsStraight(System, Left, Right, Second)) return 0;
  const double Cosine = std::cos(TorsionAngle(System, {First, Left, Right, Second}));
  constexpr double Clear = 0.2;
  return Cosine > Clear ? 1 : (Cosine < -Clear ? 2 : 0);
}

SpaceCells SortIntoCells(const Molecule& System, double Width) {
  SpaceCells Cells{.Width = Width};
  for (std::size_t Index = 0; Index < System.Atoms.size(); ++Index) {
    Cells.Atoms[CellOf(System.Atoms[Index].Place, Width)].push_back(Index);
  }
  return Cells;
}

std::vector<std::size_t> AtomsNear(const SpaceCells& Cells, const Molecule& System, std::size_t Center, double Limit) {
  std::vector<std::size_t> Near;
  const Vector3& Origin = System.Atoms[Center].Place;
  const auto Home = CellOf(Origin, Cells.Width);
  for (int X = -1; X <= 1; ++X) {
    for (int Y = -1; Y <= 1; ++Y) {
      for (int Z = -1; Z <= 1; ++Z) {
        const auto Found = Cells.Atoms.find({Home[0] + X, Home[1] + Y, Home[2] + Z});
        if (Found == Cells.Atoms.end()) continue;
        for (const std::size_t Index : Found->second) {
          const Vector3 Way = Difference(System.Atoms[Index].Place, Origin);
          if (Index != Center && Dot(Way, Way) < Limit * Limit) Near.push_back(Index);
        }
      }
    }
  }
  std::sort(Near.begin(), Near.end());
  return Near;
}

}  // namespace nmrcalc
