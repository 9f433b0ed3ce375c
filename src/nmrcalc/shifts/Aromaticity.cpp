#include "nmrcalc/shifts/Aromaticity.h"

#include <algorithm>
#include <set>

namespace nmrcalc {

namespace {

constexpr std::size_t None = static_cast<std::size_t>(-1);

enum class Need { No, Yes, Maybe, Hardly };

struct Drawing {
  const Molecule& System;
  std::vector<Need> Needs{};           // a double bond among the marked ones
  std::vector<std::size_t> Partner{};  // the atom at the other end of it
  std::vector<bool> Seen{};
};

bool IsMarked(const Neighbour& Bond) { return Bond.Order == BondOrder::Aromatic; }

// Whether an atom with aromatic marks takes part in a drawn double bond: what its other bonds leave of its valence.
Need NeedOf(const Atom& Item) {
  int Bonds = 0;
  bool Marked = false;
  for (const Neighbour& Bond : Item.Neighbours) {
    Marked = Marked || IsMarked(Bond);
    Bonds += IsMarked(Bond) ? 1 : static_cast<int>(Bond.Order);
  }
  if (!Marked) return Need::No;
  switch (Item.AtomicNumber) {
    case 6:
    case 14:
      return Bonds == 3 ? Need::Yes : (Bonds < 3 ? Need::Maybe : Need::No);
    case 7:
    case 15:
    case 33:
      return Bonds == 2 ? Need::Yes : (Bonds == 3 ? Need::Maybe : Need::No);
    case 8:
    case 16:
    case 34:
    case 52:
      return Bonds == 2 ? Need::Hardly : Need::No;
    default:
      return Need::No;
  }
}

// An alternating way from an atom without a partner to another one that may have one; the bonds on it change places.
bool ExtendPairs(Drawing& Work, std::size_t From, Need Wanted) {
  Work.Seen[From] = true;
  for (const Neighbour& Bond : Work.System.Atoms[From].Neighbours) {
    if (!IsMarked(Bond) || Work.Seen[Bond.Atom] || Work.Needs[Bond.Atom] == Need::No) continue;
    const std::size_t Other = Work.Partner[Bond.Atom];
    if (Other == None && Work.Needs[Bond.Atom] != Wanted) continue;
    Work.Seen[Bond.Atom] = true;
    if (Other != None && (Work.Seen[Other] || !ExtendPairs(Work, Other, Wanted))) continue;
    Work.Partner[From] = Bond.Atom;
    Work.Partner[Bond.Atom] = From;
    return true;
  }
  return false;
}

// Whether every atom that needs a double bond has one.
bool DrawDoubleBonds(Drawing& Work) {
  const std::size_t Count = Work.System.Atoms.size();
  bool Complete = true;
  for (const Need Wanted : {Need::Yes, Need::Maybe, Need::Hardly}) {
    Complete = true;
    for (std::size_t Index = 0; Index < Count; ++Index) {
      if (Work.Needs[Index] != Need::Yes || Work.Partner[Index] != None) continue;
      Work.Seen.assign(Count, false);
      if (!ExtendPairs(Work, Index, Wanted)) Complete = false;
    }
  }
  return Complete;
}

void ChangeOrder(const Molecule& System, BondPicture& Picture, std::size_t First, std::size_t Second, int Order) {
  for (const auto& [Own, Other] : {std::pair{First, Second}, std::pair{Second, First}}) {
    const auto& List = System.Atoms[Own].Neighbours;
    for (std::size_t K = 0; K < List.size(); ++K) {
      if (List[K].Atom == Other) Picture.Orders[Own][K] = Order;
    }
  }
}

int Valence(const BondPicture& Picture, std::size_t Index) {
  int Sum = 0;
  for (const int Order : Picture.Orders[Index]) Sum += Order;
  return Sum;
}

bool IsEnd(const Molecule& System, std::size_t Index) { return System.Atoms[Index].Neighbours.size() == 1; }

// One way to draw what has several: nitrogen with five bonds gets a charged oxygen or nitrogen beside it, sulfur and
// phosphorus with a charged oxygen get a double bond.
void UnifyDrawings(const Molecule& System, BondPicture& Picture) {
  for (std::size_t Index = 0; Index < System.Atoms.size(); ++Index) {
    const Atom& Item = System.Atoms[Index];
    const int Z = Item.AtomicNumber;
    for (std::size_t K = 0; K < Item.Neighbours.size(); ++K) {
      const std::size_t Other = Item.Neighbours[K].Atom;
      const int OtherZ = System.Atoms[Other].AtomicNumber;
      if (!IsEnd(System, Other) || (OtherZ != 8 && OtherZ != 7 && OtherZ != 16)) continue;
      const int Sum = Valence(Picture, Index);
      const int Order = Picture.Orders[Index][K];
      if (Z == 7 && Sum == 5 && Order >= 2) {
        ChangeOrder(System, Picture, Index, Other, Order - 1);
      } else if (OtherZ != 7 && Order == 1 &&
                 ((Z == 15 && Sum == 4) || ((Z == 16 || Z == 34) && (Sum % 2) == 1 && Sum < 6))) {
        ChangeOrder(System, Picture, Index, Other, 2);
      }
    }
  }
}

// Electrons that an atom gives to a ring: 0 to 2, or -1 where it cannot be part of an aromatic one.
int ElectronsFor(const Molecule& System, const BondPicture& Picture, std::size_t Index,
                 const std::set<std::size_t>& Members) {
  const Atom& Item = System.Atoms[Index];
  const int Z = Item.AtomicNumber;
  int Doubles = 0;
  bool Inside = false;
  bool ToHetero = false;
  for (std::size_t K = 0; K < Item.Neighbours.size(); ++K) {
    if (Picture.Orders[Index][K] < 2) continue;
    if (Picture.Orders[Index][K] > 2) return -1;
    ++Doubles;
    const std::size_t Other = Item.Neighbours[K].Atom;
    if (Members.contains(Other) || System.Atoms[Other].SmallestRing != 0) Inside = true;
    const int OtherZ = System.Atoms[Other].AtomicNumber;
    ToHetero = ToHetero || OtherZ == 8 || OtherZ == 7 || OtherZ == 16 || OtherZ == 34;
  }
  if (Doubles > 1) return -1;
  if (Doubles == 1) return Inside ? 1 : (ToHetero && Z == 6 ? 0 : -1);
  const int Sum = Valence(Picture, Index);
  const bool Lends = (Z == 7 && Sum <= 3) || ((Z == 8 || Z == 16 || Z == 34 || Z == 52) && Sum == 2);
  if (Lends) return 2;
  if (Z == 5 && Sum == 3) return 0;
  if (Z == 6 && Sum == 3) return Members.size() == 5 ? 2 : (Members.size() == 7 ? 0 : -1);
  return -1;
}

bool HasAromaticCount(const Molecule& System, const BondPicture& Picture, const std::set<std::size_t>& Members) {
  int Sum = 0;
  for (const std::size_t Index : Members) {
    const int Electrons = ElectronsFor(System, Picture, Index, Members);
    if (Electrons < 0) return false;
    Sum += Electrons;
  }
  return Sum % 4 == 2;
}

void MarkRing(const Molecule& System, const std::vector<std::size_t>& Ring, BondPicture& Picture) {
  for (std::size_t K = 0; K < Ring.size(); ++K) {
    Picture.Aromatic[Ring[K]] = true;
    const std::size_t Next = Ring[(K + 1) % Ring.size()];
    for (const auto& [Own, Other] : {std::pair{Ring[K], Next}, std::pair{Next, Ring[K]}}) {
      const auto& List = System.Atoms[Own].Neighbours;
      for (std::size_t N = 0; N < List.size(); ++N) {
        if (List[N].Atom == Other) Picture.Kinds[Own][N] = BondKind::Aromatic;
      }
    }
  }
}

// Rings of five to seven atoms with 4n + 2 electrons, alone or two that share a bond (azulene, indolizine).
void FindAromaticRings(const Molecule& System, BondPicture& Picture) {
  std::vector<std::size_t> Fitting;
  std::set<std::size_t> Open;
  for (std::size_t Number = 0; Number < System.Rings.size(); ++Number) {
    const auto& Ring = System.Rings[Number];
    if (Ring.size() < 5 || Ring.size() > 7) continue;
    const std::set<std::size_t> Members(Ring.begin(), Ring.end());
    const bool Possible = std::all_of(Ring.begin(), Ring.end(), [&](std::size_t Member) {
      return ElectronsFor(System, Picture, Member, Members) >= 0;
    });
    if (!Possible) continue;
    Fitting.push_back(Number);
    if (HasAromaticCount(System, Picture, Members)) {
      MarkRing(System, Ring, Picture);
    } else {
      Open.insert(Number);
    }
  }
  constexpr std::size_t LargestOpenCount = 200;  // pairs of rings are looked at one by one
  if (Open.size() > LargestOpenCount) return;
  for (const std::size_t First : Open) {
    for (const std::size_t Second : Fitting) {
      if (Second == First || (Second < First && Open.contains(Second))) continue;
      const auto& Left = System.Rings[First];
      const auto& Right = System.Rings[Second];
      std::set<std::size_t> Union(Left.begin(), Left.end());
      Union.insert(Right.begin(), Right.end());
      if (Union.size() + 2 != Left.size() + Right.size() || !HasAromaticCount(System, Picture, Union)) continue;
      MarkRing(System, Left, Picture);
      MarkRing(System, Right, Picture);
    }
  }
}

// Carboxylates, nitro groups and the like: terminal atoms of one element on one atom are the same, however drawn.
void PutEndsTogether(const Molecule& System, BondPicture& Picture) {
  for (std::size_t Index = 0; Index < System.Atoms.size(); ++Index) {
    const auto& List = System.Atoms[Index].Neighbours;
    for (const int Z : {8, 16}) {
      std::vector<std::size_t> Ends;
      int Doubles = 0;
      for (std::size_t K = 0; K < List.size(); ++K) {
        if (System.Atoms[List[K].Atom].AtomicNumber != Z || !IsEnd(System, List[K].Atom)) continue;
        Ends.push_back(K);
        Doubles += Picture.Orders[Index][K] == 2 ? 1 : 0;
      }
      if (Doubles == 0 || static_cast<std::size_t>(Doubles) == Ends.size()) continue;
      for (const std::size_t K : Ends) {
        Picture.Kinds[Index][K] = BondKind::Delocalised;
        Picture.Kinds[List[K].Atom][0] = BondKind::Delocalised;
      }
    }
  }
}

}  // namespace

BondPicture PictureBonds(const Molecule& System) {
  const std::size_t Count = System.Atoms.size();
  Drawing Work{.System = System,
               .Needs = std::vector<Need>(Count),
               .Partner = std::vector<std::size_t>(Count, None),
               .Seen = std::vector<bool>(Count)};
  for (std::size_t Index = 0; Index < Count; ++Index) Work.Needs[Index] = NeedOf(System.Atoms[Index]);
  const bool Fits = DrawDoubleBonds(Work);
  BondPicture Picture{.Orders = std::vector<std::vector<int>>(Count),
                      .Kinds = std::vector<std::vector<BondKind>>(Count),
                      .Aromatic = std::vector<bool>(Count)};
  for (std::size_t Index = 0; Index < Count; ++Index) {
    for (const Neighbour& Bond : System.Atoms[Index].Neighbours) {
      const int Drawn = Work.Partner[Index] == Bond.Atom ? 2 : 1;
      Picture.Orders[Index].push_back(IsMarked(Bond) ? Drawn : static_cast<int>(Bond.Order));
    }
  }
  UnifyDrawings(System, Picture);
  for (std::size_t Index = 0; Index < Count; ++Index) {
    for (const int Order : Picture.Orders[Index]) Picture.Kinds[Index].push_back(static_cast<BondKind>(Order - 1));
  }
  FindAromaticRings(System, Picture);
  if (!Fits) {
    for (std::size_t Index = 0; Index < Count; ++Index) {
      const auto& List = System.Atoms[Index].Neighbours;
      for (std::size_t K = 0; K < List.size(); ++K) {
        if (!IsMarked(List[K]) || SmallestRingOfBond(System, Index, List[K].Atom) == 0) continue;
        Picture.Kinds[Index][K] = BondKind::Aromatic;
        Picture.Aromatic[Index] = true;
      }
    }
  }
  PutEndsTogether(System, Picture);
  return Picture;
}

}  // namespace nmrcalc
