#include "files/StructureDrawing.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>

#include "basic/NumberText.h"
#include "basic/Numbers.h"
#include "basic/TextTools.h"

namespace zelvanor {

namespace {

// Words of an atom line.
constexpr std::size_t SymbolWord = 3;
constexpr std::size_t XWord = 7;
constexpr std::size_t YWord = 8;
constexpr std::size_t CountWord = 10;

// Pixels.
constexpr Double LargestScale = 42;  // for a bond
constexpr Double Margin = 26;

struct Numbered {
  std::map<std::size_t, int> Charge, Hydrogens, Isotope;  // by atom, from 1
};

void TakeNote(const std::vector<Text>& Words, Numbered& Notes, Drawing& Made) {
  if (Words.size() > 2 && Words[1] == "Formula:") {
    Made.Formula = Words[2] + (Words.size() > 3 ? " " + Words[3] : Text());  // the charge stands behind a blank
  }
  if (Words.size() < 4) return;
  const auto Atom = static_cast<std::size_t>(PrefixIndex(Words[2]));
  const int Number = ToLong(PrefixNumber(Words[3]));
  if (Words[1] == "AtomCharge:") Notes.Charge[Atom] = Number;
  if (Words[1] == "AtomHydrogens:") Notes.Hydrogens[Atom] = Number;
  if (Words[1] == "Isotope:") Notes.Isotope[Atom] = Number;
}

int LinesOf(const Text& Order) { return Order == "t" ? 3 : (Order == "d" ? 2 : 1); }

// Atoms are numbered within their molecule, which begins behind First.
void TakeAtom(const std::vector<Text>& Words, std::size_t First, Sketch& Made) {
  if (Words.size() <= CountWord) return;
  const std::size_t Own = Made.Atoms.size();
  Made.Atoms.push_back(
      {.X = PrefixNumber(Words[XWord]), .Y = -PrefixNumber(Words[YWord]), .Symbol = Words[SymbolWord]});
  for (std::size_t Word = CountWord + 1; Word + 1 < Words.size(); Word += 2) {
    const std::size_t Other = First + static_cast<std::size_t>(PrefixIndex(Words[Word])) - 1;
    if (Other < Own) Made.Bonds.push_back({.First = Other, .Second = Own, .Order = LinesOf(Words[Word + 1])});
  }
}

// Pixels to a length of a bond, and the pixel of a sketch's origin.
struct Fitting {
  Double Scale = 0;
  Double OriginX = 0;
  Double OriginY = 0;
};

Fitting FitInto(const PictureSurface& Surface, const Sketch& Shown) {
  const auto [Left, Right] = std::minmax_element(Shown.Atoms.begin(), Shown.Atoms.end(),
                                                 [](const auto& A, const auto& B) { return A.X < B.X; });
  const auto [Top, Bottom] = std::minmax_element(Shown.Atoms.begin(), Shown.Atoms.end(),
                                                 [](const auto& A, const auto& B) { return A.Y < B.Y; });
  const Double Width = static_cast<Double>(Surface.Width) / TwipsPerPixelX;
  const Double Height = static_cast<Double>(Surface.Height) / TwipsPerPixelY;
  const auto Fit = [](Double Room, Double Extent) {
    return Extent > 0 ? std::max(Room - 2 * Margin, 1.0) / Extent : LargestScale;
  };
  const Double Scale = std::min({LargestScale, Fit(Width, Right->X - Left->X), Fit(Height, Bottom->Y - Top->Y)});
  return {Scale, (Width - Scale * (Left->X + Right->X)) / 2, (Height - Scale * (Top->Y + Bottom->Y)) / 2};
}

int PixelX(const Fitting& Into, Double X) { return static_cast<int>(std::lround(Into.OriginX + X * Into.Scale)); }
int PixelY(const Fitting& Into, Double Y) { return static_cast<int>(std::lround(Into.OriginY + Y * Into.Scale)); }

constexpr std::array<const char*, 10> Raised = {"\u2070", "\u00b9", "\u00b2", "\u00b3", "\u2074",
                                                "\u2075", "\u2076", "\u2077", "\u2078", "\u2079"};
constexpr std::array<const char*, 10> Lowered = {"\u2080", "\u2081", "\u2082", "\u2083", "\u2084",
                                                 "\u2085", "\u2086", "\u2087", "\u2088", "\u2089"};

// A number in such digits; 0 and Silent, which chemists do not write, are nothing.
Text NumberIn(const std::array<const char*, 10>& Digits, int Value, int Silent) {
  Text Words;
  if (Value == 0 || Value == Silent) return Words;
  for (const char Digit : GeneralForm(Long{Value})) Words += Digits[static_cast<std::size_t>(Digit - '0')];
  return Words;
}

int LetterPixels(TextView Words) {
  const auto Letters = std::count_if(Words.begin(), Words.end(), [](char C) { return (C & 0xC0) != 0x80; });
  return static_cast<int>(Letters) * DigitPixels;
}

void DrawLabel(DrawingContext& Context, const Fitting& Into, const SketchAtom& Atom) {
  const Text Own = NumberIn(Raised, Atom.Isotope, 0) + Atom.Symbol;
  const Text Hydrogens = (Atom.Hydrogens > 0 ? "H" : "") + NumberIn(Lowered, Atom.Hydrogens, 1);
  const Text Sign = Atom.Charge == 0 ? "" : Atom.Charge > 0 ? "\u207a" : "\u207b";
  const Text Words =
      (Atom.HydrogensFirst ? Hydrogens + Own : Own + Hydrogens) + NumberIn(Raised, std::abs(Atom.Charge), 1) + Sign;
  const int Left = PixelX(Into, Atom.X) - LetterPixels(Own) / 2 - (Atom.HydrogensFirst ? LetterPixels(Hydrogens) : 0);
  const int Top = PixelY(Into, Atom.Y) - SurfaceFontPixels / 2 - 1;
  PrintAt(Context, TwipsFromPixels(Left), TwipsFromPixels(Top), Words, Context.Pen);
}

}  // namespace

Drawing ReadDrawing(TextView HostText) {
  Drawing Made;
  Numbered Notes;
  std::vector<SketchAtom>& Atoms = Made.Structure.Atoms;
  std::size_t First = 0;
  while (!HostText.empty()) {
    const std::size_t End = std::min(HostText.find('\n'), HostText.size());
    const std::vector<Text> Words = SplitAtBlanks(Text(HostText.substr(0, End)));
    HostText.remove_prefix(std::min(End + 1, HostText.size()));
    if (Words.empty()) continue;
    if (Words[0] == ";") TakeNote(Words, Notes, Made);
    if (Words[0] == "mol") First = Atoms.size();
    if (Words[0] == "atom") TakeAtom(Words, First, Made.Structure);
  }
  for (std::size_t K = 0; K < Atoms.size(); ++K) {
    Atoms[K].Charge = Notes.Charge[K + 1];
    Atoms[K].Hydrogens = Notes.Hydrogens[K + 1];
    Atoms[K].Isotope = Notes.Isotope[K + 1];
  }
  ScaleToBonds(Made.Structure);
  ShortenSymbols(Made.Structure);
  return Made;
}

void DrawStructure(PictureSurface& Surface, const Sketch& Shown) {
  ClearPicture(Surface);
  if (Shown.Atoms.empty()) return;
  const Fitting Into = FitInto(Surface, Shown);
  std::vector<DrawnStroke> Strokes;
  for (const SketchBond& Bond : Shown.Bonds) AddBondStrokes(Shown, Bond, Strokes);
  DrawingContext Context = GetDC(Surface);
  for (const DrawnStroke& Each : Strokes) {
    MoveTo(Context, PixelX(Into, Each.X1), PixelY(Into, Each.Y1));
    LineTo(Context, PixelX(Into, Each.X2), PixelY(Into, Each.Y2));
  }
  for (const SketchAtom& Atom : Shown.Atoms) {
    if (!Atom.Symbol.empty()) DrawLabel(Context, Into, Atom);
  }
  ReleaseDC(Context);
}

}  // namespace zelvanor
