#include <algorithm>
#include <cmath>
#include <numbers>
#include <set>

#include "nmrcalc/couplings/Coupling.h"
#include "nmrcalc/shifts/Substituents.h"

namespace nmrcalc {

namespace {

std::string KindOf(const Molecule& System, std::size_t Center) {
  const Atom& Item = System.Atoms[Center];
  switch (Item.AtomicNumber) {
    case 6:
      if (Item.Aromatic) return "CA";
      if (Item.State == Hybrid::Sp3) return "C3";
      if (Item.State == Hybrid::Sp) return "C1";
      return IsCarbonyl(System, Center) ? "CO" : "C2";
    case 7:
      if (!Item.Aromatic) return "N";
      return Item.Neighbours.size() > 2 ? "NP" : "NA";
    case 15:
      return Item.State != Hybrid::Sp3 || Item.Neighbours.size() > 3 ? "PV" : "P";
    default:
      return SymbolOf(Item.AtomicNumber);
  }
}

struct PathToken {
  std::string Kind;
  char Bond = 0;  // to the next token; 0 at the end
};

std::vector<PathToken> SplitPath(const std::string& Text) {
  std::vector<PathToken> Tokens(1);
  for (const char C : Text) {
    if (C == '-' || C == '=' || C == '#') {
      Tokens.back().Bond = C;
      Tokens.emplace_back();
    } else {
      Tokens.back().Kind += C;
    }
  }
  return Tokens;
}

std::vector<PathToken> ReversePath(const std::vector<PathToken>& Tokens) {
  std::vector<PathToken> Result(Tokens.size());
  for (std::size_t K = 0; K < Tokens.size(); ++K) {
    Result[K].Kind = Tokens[Tokens.size() - 1 - K].Kind;
    Result[K].Bond = K + 1 < Tokens.size() ? Tokens[Tokens.size() - 2 - K].Bond : '\0';
  }
  return Result;
}

bool TokensMatch(const std::vector<PathToken>& Path, const std::vector<PathToken>& Key) {
  if (Path.size() != Key.size()) return false;
  for (std::size_t K = 0; K < Path.size(); ++K) {
    const bool KindFits = Key[K].Kind == "*" || Key[K].Kind == Path[K].Kind ||
                          (Key[K].Kind == "C*" && Path[K].Kind.size() == 2 && Path[K].Kind[0] == 'C' &&
                           std::string("123AO").find(Path[K].Kind[1]) != std::string::npos);
    if (!KindFits || Key[K].Bond != Path[K].Bond) return false;
  }
  return true;
}

}  // namespace

std::string DescribePath(const Molecule& System, const std::vector<std::size_t>& Path) {
  std::string Text = KindOf(System, Path[0]);
  for (std::size_t K = 1; K < Path.size(); ++K) {
    const Neighbour* Bond = FindBond(System, Path[K - 1], Path[K]);
    const bool InAromatic = System.Atoms[Path[K - 1]].Aromatic && System.Atoms[Path[K]].Aromatic;
    char Mark = '-';
    if (Bond != nullptr && !InAromatic && Bond->Order == BondOrder::Double) Mark = '=';
    if (Bond != nullptr && Bond->Order == BondOrder::Triple) Mark = '#';
    Text += Mark + KindOf(System, Path[K]);
  }
  return Text;
}

bool PathMatches(const std::string& Path, const std::string& Key, int& Stars) {
  const std::vector<PathToken> Tokens = SplitPath(Path);
  const std::vector<PathToken> Wanted = SplitPath(Key);
  Stars = 0;
  for (const PathToken& Token : Wanted) Stars += Token.Kind == "*" ? 2 : (Token.Kind == "C*" ? 1 : 0);
  return TokensMatch(Tokens, Wanted) || TokensMatch(ReversePath(Tokens), Wanted);
}

double HaasnootCoupling(const Molecule& System, const std::array<std::size_t, 4>& Path,
                        const std::vector<double>& Parameters) {
  constexpr double Degree = std::numbers::pi / 180.0;
  const double Torsion = TorsionAngle(System, Path);
  double J = Parameters[0] * std::pow(std::cos(Torsion), 2) + Parameters[1] * std::cos(Torsion) + Parameters[2];
  for (const std::size_t Side : {1, 2}) {
    const std::size_t Center = Path[Side];
    for (const Neighbour& Bond : System.Atoms[Center].Neighbours) {
      const int Z = System.Atoms[Bond.Atom].AtomicNumber;
      if (Z == 1 || Bond.Atom == Path[3 - Side]) continue;
      const double Excess = Electronegativity(Z) - Electronegativity(1);
      std::array<std::size_t, 4> Turned = Path;
      Turned[Side == 1 ? 0 : 3] = Bond.Atom;
      // The coupling falls most where the substituent stands opposite the proton on the other carbon.
      const double Offset = std::remainder(TorsionAngle(System, Turned) - Torsion, 2.0 * std::numbers::pi);
      const double Sense = Offset > 0.0 ? -1.0 : 1.0;
      const double Angle = Sense * Torsion + Parameters[5] * Degree * std::fabs(Excess);
      J += Excess * (Parameters[3] + Parameters[4] * std::pow(std::cos(Angle), 2));
    }
  }
  return J;
}

}  // namespace nmrcalc
