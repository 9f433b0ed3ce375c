#include "molecule/ElementLook.h"

#include <algorithm>

#include "settings/ColorSets.h"
#include "settings/ProfileAccess.h"
#include "workspace/ElementData.h"
#include "workspace/Helpers.h"

namespace zelvanor {

namespace {

constexpr std::size_t NumKnownElements = 104;

// By element number, the lone pair first: the customary colours of molecular models.
constexpr std::array<Colour, NumKnownElements> KnownColors = {{
    Rgb(255, 105, 180),  // Lp
    Rgb(255, 255, 255),  // H
    Rgb(217, 255, 255),  // He
    Rgb(204, 128, 255),  // Li
    Rgb(194, 255, 0),    // Be
    Rgb(255, 181, 181),  // B
    Rgb(144, 144, 144),  // C
    Rgb(48, 80, 248),    // N
    Rgb(255, 13, 13),    // O
    Rgb(144, 224, 80),   // F
    Rgb(179, 227, 245),  // Ne
    Rgb(171, 92, 242),   // Na
    Rgb(138, 230, 0),    // Mg
    Rgb(191, 166, 166),  // Al
    Rgb(240, 200, 160),  // Si
    Rgb(255, 128, 0),    // P
    Rgb(255, 230, 48),   // S
    Rgb(31, 220, 31),    // Cl
    Rgb(128, 209, 227),  // Ar
    Rgb(143, 64, 212),   // K
    Rgb(61, 200, 0),     // Ca
    Rgb(215, 215, 215),  // Sc
    Rgb(191, 194, 199),  // Ti
    Rgb(166, 166, 171),  // V
    Rgb(138, 153, 199),  // Cr
    Rgb(156, 122, 199),  // Mn
    Rgb(224, 102, 51),   // Fe
    Rgb(240, 144, 160),  // Co
    Rgb(80, 208, 80),    // Ni
    Rgb(200, 128, 51),   // Cu
    Rgb(125, 128, 176),  // Zn
    Rgb(194, 143, 143),  // Ga
    Rgb(102, 143, 143),  // Ge
    Rgb(189, 128, 227),  // As
    Rgb(255, 161, 0),    // Se
    Rgb(166, 41, 41),    // Br
    Rgb(92, 184, 209),   // Kr
    Rgb(112, 46, 176),   // Rb
    Rgb(0, 220, 0),      // Sr
    Rgb(148, 255, 255),  // Y
    Rgb(148, 224, 224),  // Zr
    Rgb(115, 194, 201),  // Nb
    Rgb(84, 181, 181),   // Mo
    Rgb(59, 158, 158),   // Tc
    Rgb(36, 143, 143),   // Ru
    Rgb(10, 125, 140),   // Rh
    Rgb(0, 105, 133),    // Pd
    Rgb(192, 192, 192),  // Ag
    Rgb(255, 217, 143),  // Cd
    Rgb(166, 117, 115),  // In
    Rgb(102, 128, 128),  // Sn
    Rgb(158, 99, 181),   // Sb
    Rgb(212, 122, 0),    // Te
    Rgb(148, 0, 148),    // I
    Rgb(66, 158, 176),   // Xe
    Rgb(87, 23, 143),    // Cs
    Rgb(0, 201, 0),      // Ba
    Rgb(112, 212, 200),  // La
    Rgb(112, 212, 200),  // Ce
    Rgb(112, 212, 200),  // Pr
    Rgb(112, 212, 200),  // Nd
    Rgb(112, 212, 200),  // Pm
    Rgb(112, 212, 200),  // Sm
    Rgb(112, 212, 200),  // Eu
    Rgb(112, 212, 200),  // Gd
    Rgb(112, 212, 200),  // Tb
    Rgb(112, 212, 200),  // Dy
    Rgb(112, 212, 200),  // Ho
    Rgb(112, 212, 200),  // Er
    Rgb(112, 212, 200),  // Tm
    Rgb(112, 212, 200),  // Yb
    Rgb(112, 212, 200),  // Lu
    Rgb(77, 194, 255),   // Hf
    Rgb(77, 166, 255),   // Ta
    Rgb(33, 148, 214),   // W
    Rgb(38, 125, 171),   // Re
    Rgb(38, 102, 150),   // Os
    Rgb(23, 84, 135),    // Ir
    Rgb(208, 208, 224),  // Pt
    Rgb(255, 209, 35),   // Au
    Rgb(184, 184, 208),  // Hg
    Rgb(166, 84, 77),    // Tl
    Rgb(87, 89, 97),     // Pb
    Rgb(158, 79, 181),   // Bi
    Rgb(171, 92, 0),     // Po
    Rgb(117, 79, 69),    // At
    Rgb(66, 130, 150),   // Rn
    Rgb(66, 0, 102),     // Fr
    Rgb(0, 125, 0),      // Ra
    Rgb(0, 160, 240),    // Ac
    Rgb(0, 160, 240),    // Th
    Rgb(0, 160, 240),    // Pa
    Rgb(0, 160, 240),    // U
    Rgb(0, 160, 240),    // Np
    Rgb(0, 160, 240),    // Pu
    Rgb(0, 160, 240),    // Am
    Rgb(0, 160, 240),    // Cm
    Rgb(0, 160, 240),    // Bk
    Rgb(0, 160, 240),    // Cf
    Rgb(0, 160, 240),    // Es
    Rgb(0, 160, 240),    // Fm
    Rgb(0, 160, 240),    // Md
    Rgb(0, 160, 240),    // No
    Rgb(0, 160, 240),    // Lr
}};
constexpr Colour UnknownColor = Rgb(200, 120, 180);

// What the tables hold when their section of nmr.ini is missing.
constexpr Colour MissingColor = Rgb(128, 128, 128);

Colour KnownColorOf(std::size_t Element) { return Element < NumKnownElements ? KnownColors[Element] : UnknownColor; }

bool SectionHoldsElements(const Text& Section) {
  if (!ReadIniText(Section, "Default", "").empty()) return true;
  for (int Element = 0; Element < static_cast<int>(NumKnownElements); ++Element) {
    if (!ReadIniText(Section, ElementSymbol(Element), "").empty()) return true;
  }
  return false;
}

template <class Table, class Value>
bool HoldsOnly(const Table& Values, Value Wanted) {
  return std::all_of(Values.begin(), Values.end(), [Wanted](Value Entry) { return Entry == Wanted; });
}

}  // namespace

ElementLooks FindElementLooks() {
  const bool OwnColors =
      HoldsOnly(Settings.AtomColors, MissingColor) && !SectionHoldsElements(GetColorSetName(Settings.CurrentColorSet));
  const bool OwnRadii = HoldsOnly(Settings.AtomRadii, FallbackRadius) &&
                        !SectionHoldsElements(GetRadiusSetName(Settings.CurrentRadiusSet));
  // The balls of balls and sticks leave room for the sticks between them.
  const Single Share = OwnRadii || Settings.CurrentRadiusSet == 0 ? BallShare : 1.0F;
  ElementLooks Looks{};
  for (std::size_t Element = 0; Element < Looks.size(); ++Element) {
    Looks[Element].Color = OwnColors ? KnownColorOf(Element) : Settings.AtomColors[Element];
    Looks[Element].Radius =
        Share * (OwnRadii ? CovalentRadius(static_cast<int>(Element)) : Settings.AtomRadii[Element]);
  }
  return Looks;
}

}  // namespace zelvanor
