#include "files/StructureDrawing.h"

#include <algorithm>
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

// All in pixels but the first, which is pixels to the angstrom.
constexpr Double LargestScale = 28;
constexpr Double Margin = 26;
constexpr Double LabelRadius = 8;  // that bonds keep from a label's middle
constexpr Double LineGap = 4;      // between the lines of a double bond
constexpr Double InnerCut = 4;     // off both ends of its line on the inner side

struct Point {
  Double X = 0;
  Double Y = 0;
};

Point operator+(Point A, Point B) { return {A.X + B.X, A.Y + B.Y}; }
Point operator-(Point A, Point B) { return {A.X - B.X, A.Y - B.Y}; }
Point operator*(Point A, Double Factor) { return {A.X * Factor, A.Y * Factor}; }
Double Cross(Point A, Point B) { return A.X * B.Y - A.Y * B.X; }

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
void TakeAtom(const std::vector<Text>& Words, std::size_t First, Drawing& Made) {
  if (Words.size() <= CountWord) return;
  const std::size_t Own = Made.Atoms.size();
  Made.Atoms.push_back({.Symbol = Words[SymbolWord], .X = PrefixNumber(Words[XWord]), .Y = PrefixNumber(Words[YWord])});
  for (std::size_t Word = CountWord + 1; Word + 1 < Words.size(); Word += 2) {
    const std::size_t Other = First + static_cast<std::size_t>(PrefixIndex(Words[Word])) - 1;
    if (Other < Own) Made.Bonds.push_back({Other, Own, LinesOf(Words[Word + 1])});
  }
}

bool HasLabel(const Drawing& Shown, std::size_t Atom) {
  const DrawnAtom& This = Shown.Atoms[Atom];
  if (This.Symbol != "C" || This.Charge != 0 || This.Isotope != 0) return true;
  return std::none_of(Shown.Bonds.begin(), Shown.Bonds.end(),
                      [&](const DrawnBond& Bond) { return Bond.First == Atom || Bond.Second == Atom; });
}

std::vector<Point> PlacesOn(const PictureSurface& Surface, const Drawing& Shown) {
  Point Low{Shown.Atoms[0].X, Shown.Atoms[0].Y};
  Point High = Low;
  for (const DrawnAtom& Atom : Shown.Atoms) {
    Low = {std::min(Low.X, Atom.X), std::min(Low.Y, Atom.Y)};
    High = {std::max(High.X, Atom.X), std::max(High.Y, Atom.Y)};
  }
  const Point Size{static_cast<Double>(Surface.Width) / TwipsPerPixelX,
                   static_cast<Double>(Surface.Height) / TwipsPerPixelY};
  const auto Fit = [](Double Room, Double Extent) {
    return Extent > 0 ? std::max(Room - 2 * Margin, 1.0) / Extent : LargestScale;
  };
  const Double Scale = std::min({LargestScale, Fit(Size.X, High.X - Low.X), Fit(Size.Y, High.Y - Low.Y)});
  const Point Middle = (Low + High) * 0.5;
  std::vector<Point> Places;
  for (const DrawnAtom& Atom : Shown.Atoms) {
    Places.push_back({Size.X / 2 + (Atom.X - Middle.X) * Scale, Size.Y / 2 - (Atom.Y - Middle.Y) * Scale});
  }
  return Places;
}

void Line(DrawingContext& Context, Point From, Point To) {
  const auto Pixel = [](Double Value) { return static_cast<int>(std::lround(Value)); };
  MoveTo(Context, Pixel(From.X), Pixel(From.Y));
  LineTo(Context, Pixel(To.X), Pixel(To.Y));
}

// On which side of a bond the rest of the molecule lies: above 0 where it is that of Across.
Double SideOf(const Drawing& Shown, const std::vector<Point>& Places, const DrawnBond& Bond, Point Along) {
  Double Side = 0;
  for (const DrawnBond& Other : Shown.Bonds) {
    for (const std::size_t End : {Bond.First, Bond.Second}) {
      if (Other.First != End && Other.Second != End) continue;
      const std::size_t Far = Other.First == End ? Other.Second : Other.First;
      if (Far == Bond.First || Far == Bond.Second) continue;
      Side += Cross(Along, Places[Far] - Places[End]);
    }
  }
  return Side;
}

void DrawBond(DrawingContext& Context, const Drawing& Shown, const std::vector<Point>& Places, const DrawnBond& Bond) {
  const Point Whole = Places[Bond.Second] - Places[Bond.First];
  const Double Length = std::hypot(Whole.X, Whole.Y);
  if (Length < 1) return;
  const Point Along = Whole * (1 / Length);
  const Point Across{-Along.Y, Along.X};
  const Double Label = std::min(LabelRadius, Length / 3);
  const Point From = Places[Bond.First] + Along * (HasLabel(Shown, Bond.First) ? Label : 0);
  const Point To = Places[Bond.Second] - Along * (HasLabel(Shown, Bond.Second) ? Label : 0);
  const Double Side = SideOf(Shown, Places, Bond, Along);
  if (Bond.Lines == 2 && std::fabs(Side) < Length) {  // the same on both sides
    for (const Double Shift : {-LineGap / 2, LineGap / 2}) Line(Context, From + Across * Shift, To + Across * Shift);
    return;
  }
  Line(Context, From, To);
  const Point Cut = Along * std::min(InnerCut, Length / 4);
  const Double Inner = Side < 0 ? -LineGap : LineGap;
  if (Bond.Lines > 1) Line(Context, From + Across * Inner + Cut, To + Across * Inner - Cut);
  if (Bond.Lines > 2) Line(Context, From - Across * Inner + Cut, To - Across * Inner - Cut);
}

Text ChargeOf(int Charge) {
  if (Charge == 0) return {};
  const int Size = std::abs(Charge);
  return (Size > 1 ? GeneralForm(Long{Size}) : Text()) + (Charge > 0 ? "+" : "-");
}

// The hydrogens stand on the side without bonds.
void DrawLabel(DrawingContext& Context, const Drawing& Shown, const std::vector<Point>& Places, std::size_t Atom) {
  const DrawnAtom& This = Shown.Atoms[Atom];
  Double Pull = 0;
  for (const DrawnBond& Bond : Shown.Bonds) {
    if (Bond.First == Atom) Pull += Places[Bond.Second].X - Places[Atom].X;
    if (Bond.Second == Atom) Pull += Places[Bond.First].X - Places[Atom].X;
  }
  const Text Own = (This.Isotope > 0 ? GeneralForm(Long{This.Isotope}) : Text()) + This.Symbol;
  Text Hydrogens = This.Hydrogens > 0 ? "H" : "";
  if (This.Hydrogens > 1) Hydrogens += GeneralForm(Long{This.Hydrogens});
  const bool Behind = Pull <= 1;
  const Text Words = (Behind ? Own + Hydrogens : Hydrogens + Own) + ChargeOf(This.Charge);
  const int Left =
      static_cast<int>(std::lround(Places[Atom].X)) - TextPixels(Own) / 2 - (Behind ? 0 : TextPixels(Hydrogens));
  const int Top = static_cast<int>(std::lround(Places[Atom].Y)) - SurfaceFontPixels / 2 - 1;
  PrintAt(Context, TwipsFromPixels(Left), TwipsFromPixels(Top), Words, Context.Pen);
}

}  // namespace

Drawing ReadDrawing(TextView HostText) {
  Drawing Made;
  Numbered Notes;
  std::size_t First = 0;
  while (!HostText.empty()) {
    const std::size_t End = std::min(HostText.find('\n'), HostText.size());
    const std::vector<Text> Words = SplitAtBlanks(Text(HostText.substr(0, End)));
    HostText.remove_prefix(std::min(End + 1, HostText.size()));
    if (Words.empty()) continue;
    if (Words[0] == ";") TakeNote(Words, Notes, Made);
    if (Words[0] == "mol") First = Made.Atoms.size();
    if (Words[0] == "atom") TakeAtom(Words, First, Made);
  }
  for (std::size_t K = 0; K < Made.Atoms.size(); ++K) {
    Made.Atoms[K].Charge = Notes.Charge[K + 1];
    Made.Atoms[K].Hydrogens = Notes.Hydrogens[K + 1];
    Made.Atoms[K].Isotope = Notes.Isotope[K + 1];
  }
  return Made;
}

void DrawStructure(PictureSurface& Surface, const Drawing& Shown) {
  ClearPicture(Surface);
  if (Shown.Atoms.empty()) return;
  const std::vector<Point> Places = PlacesOn(Surface, Shown);
  DrawingContext Context = GetDC(Surface);
  for (const DrawnBond& Bond : Shown.Bonds) DrawBond(Context, Shown, Places, Bond);
  for (std::size_t Atom = 0; Atom < Shown.Atoms.size(); ++Atom) {
    if (HasLabel(Shown, Atom)) DrawLabel(Context, Shown, Places, Atom);
  }
  ReleaseDC(Context);
}

}  // namespace zelvanor
