#include "molecule/ElementLook.h"

#include <algorithm>

#include "settings/ColorSets.h"
#include "settings/ProfileAccess.h"
#include "workspace/Helpers.h"

namespace zelvanor {

namespace {

constexpr std::size_t NumKnownElements = 104;

struct KnownLook {
  Colour Color;
  Single Radius;  // covalent
};

// By element number, the lone pair first. Colours: the customary ones of molecular models. Radii: B. Cordero et al.,
// Dalton Trans. 2008, 2832, up to curium (low spin where there are two); 1.5 behind it.
constexpr std::array<KnownLook, NumKnownElements> KnownLooks = {{
    {Rgb(255, 105, 180), 0.25F},  // Lp
    {Rgb(255, 255, 255), 0.31F},  // H
    {Rgb(217, 255, 255), 0.28F},  // He
    {Rgb(204, 128, 255), 1.28F},  // Li
    {Rgb(194, 255, 0), 0.96F},    // Be
    {Rgb(255, 181, 181), 0.84F},  // B
    {Rgb(144, 144, 144), 0.76F},  // C
    {Rgb(48, 80, 248), 0.71F},    // N
    {Rgb(255, 13, 13), 0.66F},    // O
    {Rgb(144, 224, 80), 0.57F},   // F
    {Rgb(179, 227, 245), 0.58F},  // Ne
    {Rgb(171, 92, 242), 1.66F},   // Na
    {Rgb(138, 230, 0), 1.41F},    // Mg
    {Rgb(191, 166, 166), 1.21F},  // Al
    {Rgb(240, 200, 160), 1.11F},  // Si
    {Rgb(255, 128, 0), 1.07F},    // P
    {Rgb(255, 230, 48), 1.05F},   // S
    {Rgb(31, 220, 31), 1.02F},    // Cl
    {Rgb(128, 209, 227), 1.06F},  // Ar
    {Rgb(143, 64, 212), 2.03F},   // K
    {Rgb(61, 200, 0), 1.76F},     // Ca
    {Rgb(215, 215, 215), 1.70F},  // Sc
    {Rgb(191, 194, 199), 1.60F},  // Ti
    {Rgb(166, 166, 171), 1.53F},  // V
    {Rgb(138, 153, 199), 1.39F},  // Cr
    {Rgb(156, 122, 199), 1.39F},  // Mn
    {Rgb(224, 102, 51), 1.32F},   // Fe
    {Rgb(240, 144, 160), 1.26F},  // Co
    {Rgb(80, 208, 80), 1.24F},    // Ni
    {Rgb(200, 128, 51), 1.32F},   // Cu
    {Rgb(125, 128, 176), 1.22F},  // Zn
    {Rgb(194, 143, 143), 1.22F},  // Ga
    {Rgb(102, 143, 143), 1.20F},  // Ge
    {Rgb(189, 128, 227), 1.19F},  // As
    {Rgb(255, 161, 0), 1.20F},    // Se
    {Rgb(166, 41, 41), 1.20F},    // Br
    {Rgb(92, 184, 209), 1.16F},   // Kr
    {Rgb(112, 46, 176), 2.20F},   // Rb
    {Rgb(0, 220, 0), 1.95F},      // Sr
    {Rgb(148, 255, 255), 1.90F},  // Y
    {Rgb(148, 224, 224), 1.75F},  // Zr
    {Rgb(115, 194, 201), 1.64F},  // Nb
    {Rgb(84, 181, 181), 1.54F},   // Mo
    {Rgb(59, 158, 158), 1.47F},   // Tc
    {Rgb(36, 143, 143), 1.46F},   // Ru
    {Rgb(10, 125, 140), 1.42F},   // Rh
    {Rgb(0, 105, 133), 1.39F},    // Pd
    {Rgb(192, 192, 192), 1.45F},  // Ag
    {Rgb(255, 217, 143), 1.44F},  // Cd
    {Rgb(166, 117, 115), 1.42F},  // In
    {Rgb(102, 128, 128), 1.39F},  // Sn
    {Rgb(158, 99, 181), 1.39F},   // Sb
    {Rgb(212, 122, 0), 1.38F},    // Te
    {Rgb(148, 0, 148), 1.39F},    // I
    {Rgb(66, 158, 176), 1.40F},   // Xe
    {Rgb(87, 23, 143), 2.44F},    // Cs
    {Rgb(0, 201, 0), 2.15F},      // Ba
    {Rgb(112, 212, 200), 2.07F},  // La
    {Rgb(112, 212, 200), 2.04F},  // Ce
    {Rgb(112, 212, 200), 2.03F},  // Pr
    {Rgb(112, 212, 200), 2.01F},  // Nd
    {Rgb(112, 212, 200), 1.99F},  // Pm
    {Rgb(112, 212, 200), 1.98F},  // Sm
    {Rgb(112, 212, 200), 1.98F},  // Eu
    {Rgb(112, 212, 200), 1.96F},  // Gd
    {Rgb(112, 212, 200), 1.94F},  // Tb
    {Rgb(112, 212, 200), 1.92F},  // Dy
    {Rgb(112, 212, 200), 1.92F},  // Ho
    {Rgb(112, 212, 200), 1.89F},  // Er
    {Rgb(112, 212, 200), 1.90F},  // Tm
    {Rgb(112, 212, 200), 1.87F},  // Yb
    {Rgb(112, 212, 200), 1.87F},  // Lu
    {Rgb(77, 194, 255), 1.75F},   // Hf
    {Rgb(77, 166, 255), 1.70F},   // Ta
    {Rgb(33, 148, 214), 1.62F},   // W
    {Rgb(38, 125, 171), 1.51F},   // Re
    {Rgb(38, 102, 150), 1.44F},   // Os
    {Rgb(23, 84, 135), 1.41F},    // Ir
    {Rgb(208, 208, 224), 1.36F},  // Pt
    {Rgb(255, 209, 35), 1.36F},   // Au
    {Rgb(184, 184, 208), 1.32F},  // Hg
    {Rgb(166, 84, 77), 1.45F},    // Tl
    {Rgb(87, 89, 97), 1.46F},     // Pb
    {Rgb(158, 79, 181), 1.48F},   // Bi
    {Rgb(171, 92, 0), 1.40F},     // Po
    {Rgb(117, 79, 69), 1.50F},    // At
    {Rgb(66, 130, 150), 1.50F},   // Rn
    {Rgb(66, 0, 102), 2.60F},     // Fr
    {Rgb(0, 125, 0), 2.21F},      // Ra
    {Rgb(0, 160, 240), 2.15F},    // Ac
    {Rgb(0, 160, 240), 2.06F},    // Th
    {Rgb(0, 160, 240), 2.00F},    // Pa
    {Rgb(0, 160, 240), 1.96F},    // U
    {Rgb(0, 160, 240), 1.90F},    // Np
    {Rgb(0, 160, 240), 1.87F},    // Pu
    {Rgb(0, 160, 240), 1.80F},    // Am
    {Rgb(0, 160, 240), 1.69F},    // Cm
    {Rgb(0, 160, 240), 1.50F},    // Bk
    {Rgb(0, 160, 240), 1.50F},    // Cf
    {Rgb(0, 160, 240), 1.50F},    // Es
    {Rgb(0, 160, 240), 1.50F},    // Fm
    {Rgb(0, 160, 240), 1.50F},    // Md
    {Rgb(0, 160, 240), 1.50F},    // No
    {Rgb(0, 160, 240), 1.50F},    // Lr
}};
constexpr KnownLook UnknownLook{Rgb(200, 120, 180), 1.5F};

// What the tables hold when their section of nmr.ini is missing.
constexpr Colour MissingColor = Rgb(128, 128, 128);

const KnownLook& KnownLookOf(std::size_t Element) {
  return Element < NumKnownElements ? KnownLooks[Element] : UnknownLook;
}

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
    Looks[Element].Color = OwnColors ? KnownLookOf(Element).Color : Settings.AtomColors[Element];
    Looks[Element].Radius = Share * (OwnRadii ? KnownLookOf(Element).Radius : Settings.AtomRadii[Element]);
  }
  return Looks;
}

}  // namespace zelvanor
