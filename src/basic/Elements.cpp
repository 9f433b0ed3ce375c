#include "basic/Elements.h"

#include <algorithm>
#include <array>

#include "basic/TextTools.h"

namespace zelvanor {

namespace {

constexpr std::array<TextView, 104> Symbols = {
    "Lp", "H",  "He", "Li", "Be", "B",  "C",  "N",  "O",  "F",  "Ne", "Na", "Mg", "Al", "Si", "P",  "S",  "Cl",
    "Ar", "K",  "Ca", "Sc", "Ti", "V",  "Cr", "Mn", "Fe", "Co", "Ni", "Cu", "Zn", "Ga", "Ge", "As", "Se", "Br",
    "Kr", "Rb", "Sr", "Y",  "Zr", "Nb", "Mo", "Tc", "Ru", "Rh", "Pd", "Ag", "Cd", "In", "Sn", "Sb", "Te", "I",
    "Xe", "Cs", "Ba", "La", "Ce", "Pr", "Nd", "Pm", "Sm", "Eu", "Gd", "Tb", "Dy", "Ho", "Er", "Tm", "Yb", "Lu",
    "Hf", "Ta", "W",  "Re", "Os", "Ir", "Pt", "Au", "Hg", "Tl", "Pb", "Bi", "Po", "At", "Rn", "Fr", "Ra", "Ac",
    "Th", "Pa", "U",  "Np", "Pu", "Am", "Cm", "Bk", "Cf", "Es", "Fm", "Md", "No", "Lr"};

}  // namespace

Text ElementSymbol(int Number) {
  return Number >= 0 && Number < static_cast<int>(Symbols.size()) ? Text(Symbols[static_cast<std::size_t>(Number)])
                                                                  : "??";
}

Integer ElementNumber(TextView Symbol) {
  const auto Entry =
      std::find_if(Symbols.begin(), Symbols.end(), [&](TextView Name) { return EqualsIgnoringCase(Name, Symbol); });
  if (Entry != Symbols.end()) return {static_cast<int>(Entry - Symbols.begin())};
  return Symbol == "??" ? Integer(static_cast<int>(Symbols.size())) : Integer(-1);
}

}  // namespace zelvanor
