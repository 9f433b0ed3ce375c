#pragma once

#include <cctype>
#include <map>
#include <string>
#include <vector>

#include "nmrcalc/input/Molecule.h"

namespace nmrcalc::testing {

// A small reader of line notation, so that tests can name molecules: organic atoms, bonds = and #, branches, rings 1 to
// 9, lower case for aromatic atoms, [H]; hydrogens are added. Atoms stand in a plane in the order written, hydrogens
// behind them, so geometry means nothing.
inline Molecule MoleculeFromSmiles(const std::string& Text) {
  Molecule System;
  std::vector<std::size_t> Branches;
  std::map<char, std::size_t> Open;
  std::size_t Last = static_cast<std::size_t>(-1);
  BondOrder Next = BondOrder::Single;
  std::vector<bool> Lower;
  const auto Join = [&](std::size_t First, std::size_t Second) {
    AddBond(System, First, Second, Lower[First] && Lower[Second] ? BondOrder::Aromatic : Next);
    Next = BondOrder::Single;
  };
  for (std::size_t K = 0; K < Text.size(); ++K) {
    const char C = Text[K];
    if (C == '(') {
      Branches.push_back(Last);
    } else if (C == ')') {
      Last = Branches.back();
      Branches.pop_back();
    } else if (C == '=' || C == '#') {
      Next = C == '=' ? BondOrder::Double : BondOrder::Triple;
    } else if (std::isdigit(static_cast<unsigned char>(C))) {
      if (Open.contains(C)) {
        Join(Open[C], Last);
        Open.erase(C);
      } else {
        Open[C] = Last;
      }
    } else if (C != '[' && C != ']') {
      std::string Symbol(1, static_cast<char>(std::toupper(static_cast<unsigned char>(C))));
      if (K + 1 < Text.size() && (Text.substr(K, 2) == "Cl" || Text.substr(K, 2) == "Br")) Symbol += Text[++K];
      Atom Item{.AtomicNumber = AtomicNumberOf(Symbol), .Molecule = 1};
      Item.Place = {1.3 * double(System.Atoms.size()), double(System.Atoms.size() % 2), 0.0};
      System.Atoms.push_back(Item);
      Lower.push_back(std::islower(static_cast<unsigned char>(C)) != 0);
      if (Last != static_cast<std::size_t>(-1)) Join(Last, System.Atoms.size() - 1);
      Last = System.Atoms.size() - 1;
    }
  }
  const std::map<int, int> Valence = {{6, 4}, {7, 3}, {8, 2}, {9, 1}, {15, 3}, {16, 2}, {17, 1}, {35, 1}, {53, 1}};
  const std::size_t NumHeavy = System.Atoms.size();
  for (std::size_t Center = 0; Center < NumHeavy; ++Center) {
    int Free = Valence.contains(System.Atoms[Center].AtomicNumber) ? Valence.at(System.Atoms[Center].AtomicNumber) : 0;
    for (const Neighbour& Bond : System.Atoms[Center].Neighbours) {
      Free -= Bond.Order == BondOrder::Aromatic ? 1 : static_cast<int>(Bond.Order);
    }
    if (Lower[Center]) --Free;
    for (; Free > 0; --Free) {
      System.Atoms.push_back({.AtomicNumber = 1, .Molecule = 1, .Place = {1.3 * double(Center), 1.0 + Free, 0.5}});
      AddBond(System, Center, System.Atoms.size() - 1, BondOrder::Single);
    }
  }
  for (std::size_t K = 0; K < System.Atoms.size(); ++K) System.Atoms[K].InMolecule = static_cast<int>(K) + 1;
  PerceiveStructure(System);
  return System;
}

}  // namespace nmrcalc::testing
