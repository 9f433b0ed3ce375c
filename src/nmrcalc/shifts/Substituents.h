#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "nmrcalc/input/Molecule.h"
#include "nmrcalc/input/Tables.h"

namespace nmrcalc {

// Substituents as the increment tables name them, and the kinds of atoms as the coupling tables name them.
//
//   H  C (alkyl)  C=C  C#C  Ar  F Cl Br I  OH OR OAr OCOR OP  N NCO N= N+ NO2  CN  CHO COR COOH COOR CON COX  C=N
//   S SO SO2  P  Si  =O  and * for everything else

// The class of the group that begins with Group, seen from the atom From that carries it.
std::string SubstituentClass(const Molecule& System, std::size_t Group, std::size_t From);

// The row of a class in a table, that of its nearest relative where it has none, the row "*" at last; never null for
// a table that has a row "*". Throws Failure naming the table when there is neither.
const std::vector<double>& SubstituentRow(const TableFile& File, const char* TableName, const std::string& Class);

// The oxygen of a carbonyl group on the carbon; whether there is one.
bool IsCarbonyl(const Molecule& System, std::size_t Center);

// The partner in a double bond of the element; NoAtom when there is none.
inline constexpr std::size_t NoAtom = static_cast<std::size_t>(-1);
std::size_t DoubleBondPartner(const Molecule& System, std::size_t Center, int AtomicNumber);

// Pauling electronegativity; 2.2 (hydrogen) for an element without a value.
double Electronegativity(int AtomicNumber);

}  // namespace nmrcalc
