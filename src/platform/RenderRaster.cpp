#include "platform/RenderRaster.h"

#include <algorithm>
#include <cmath>

namespace zelvanor {

namespace {

constexpr std::uint32_t Opaque = 0xff000000U;
// Colours mix in steps of 1/256.
constexpr int FullShare = 256;

std::uint32_t PixelOf(Colour Value) {
  const auto Part = [Value](int Shift) { return static_cast<std::uint32_t>(Value >> Shift) & 255U; };
  return Opaque | Part(0) << 16 | Part(8) << 8 | Part(16);
}

// Share of New, 0..256; red and blue at once, green between them.
std::uint32_t Mix(std::uint32_t Old, std::uint32_t New, int Share) {
  constexpr std::uint32_t RedBlue = 0x00ff00ffU;
  constexpr std::uint32_t Green = 0x0000ff00U;
  const auto S = static_cast<std::uint32_t>(Share);
  const std::uint32_t R = 256U - S;
  return Opaque | (((Old & RedBlue) * R + (New & RedBlue) * S) >> 8 & RedBlue) |
         (((Old & Green) * R + (New & Green) * S) >> 8 & Green);
}

float Clamp01(float Value) { return std::min(std::max(Value, 0.0F), 1.0F); }
int ShareOf(float Cover) { return static_cast<int>(Cover * FullShare); }

void Put(std::uint32_t& Pixel, std::uint32_t New, float Cover) {
  if (Cover > 0) Pixel = Cover >= 1 ? New : Mix(Pixel, New, ShareOf(Cover));
}

ShadeRow MakeShades(Colour From, Colour Middle, Double MiddlePlace, Colour To) {
  ShadeRow Row{};
  for (std::size_t Step = 0; Step < NumShades; ++Step) {
    const Double Place = static_cast<Double>(Step) / (NumShades - 1);
    const bool First = Place < MiddlePlace;
    const Double Share = First ? Place / MiddlePlace : (Place - MiddlePlace) / (1 - MiddlePlace);
    Row[Step] = Mix(PixelOf(First ? From : Middle), PixelOf(First ? Middle : To), static_cast<int>(Share * FullShare));
  }
  return Row;
}

const ShadeRow& SphereShades(ShadeTables& Shades, Colour Fill) {
  const auto [Entry, IsNew] = Shades.Spheres.try_emplace(Fill);
  if (IsNew) Entry->second = MakeShades(ShadeOf(Fill, LightShade), Fill, 0.5, ShadeOf(Fill, RimShade));
  return Entry->second;
}

const ShadeRow& CylinderShades(ShadeTables& Shades, Colour Fill) {
  const auto [Entry, IsNew] = Shades.Cylinders.try_emplace(Fill);
  const Colour Rim = ShadeOf(Fill, RimShade);
  if (IsNew) Entry->second = MakeShades(Rim, ShadeOf(Fill, LightShade), 0.4, Rim);
  return Entry->second;
}

std::uint32_t ShadeAt(const ShadeRow& Row, float Place) {
  return Row[static_cast<std::size_t>(std::lround(Clamp01(Place) * (NumShades - 1)))];
}

// Whole pixels from Low to High that lie in a picture of this size.
struct PixelRange {
  int First;
  int Last;
};
PixelRange RangeOf(float Low, float High, int Size) {
  const float Limit = static_cast<float>(Size) + 1;
  // Clamped first: what is far out does not fit an int.
  return {static_cast<int>(std::clamp(Low, 0.0F, Limit)),
          std::min(static_cast<int>(std::clamp(High, -1.0F, Limit) + 1), Size - 1)};
}

// Runs Paint(pixel, dx, dy, distance) for the pixels within Reach of the middle.
template <class Painter>
void WalkRound(const PixelPicture& Target, float X, float Y, float Reach, Painter Paint) {
  const PixelRange Rows = RangeOf(Y - Reach, Y + Reach, Target.Height);
  for (int Row = Rows.First; Row <= Rows.Last; ++Row) {
    const float DY = static_cast<float>(Row) + 0.5F - Y;
    const float Rest = Reach * Reach - DY * DY;
    if (Rest <= 0) continue;
    const float Half = std::sqrt(Rest);
    const PixelRange Columns = RangeOf(X - Half, X + Half, Target.Width);
    std::uint32_t* Line = Target.Pixels + static_cast<std::ptrdiff_t>(Row) * Target.RowLength;
    for (int Column = Columns.First; Column <= Columns.Last; ++Column) {
      const float DX = static_cast<float>(Column) + 0.5F - X;
      Paint(Line[Column], DX, DY, std::sqrt(DX * DX + DY * DY));
    }
  }
}

void DrawDisc(const PixelPicture& Target, const DrawItem& Item) {
  const auto Scale = static_cast<float>(Target.Ratio);
  const float Radius = Item.Size * Scale;
  const float HalfEdge = static_cast<float>(EdgeWidth) * Scale / 2;
  const std::uint32_t Fill = PixelOf(Item.Fill);
  const std::uint32_t Edge = PixelOf(Item.Edge);
  WalkRound(Target, Item.X1 * Scale, Item.Y1 * Scale, Radius + HalfEdge + 1,
            [&](std::uint32_t& Pixel, float, float, float Distance) {
              const float Inner = Clamp01(Radius - HalfEdge + 0.5F - Distance);
              Put(Pixel, Mix(Edge, Fill, ShareOf(Inner)), Clamp01(Radius + HalfEdge + 0.5F - Distance));
            });
}

// The light spreads in circles from its own place to the rim; the share of the way is the root of a quadratic equation.
void DrawSphere(const PixelPicture& Target, const DrawItem& Item, const ShadeRow& Shades) {
  const auto Scale = static_cast<float>(Target.Ratio);
  const float Radius = Item.Size * Scale;
  constexpr auto Offset = static_cast<float>(LightOffset);
  constexpr float Rest = 1 - 2 * Offset * Offset;
  WalkRound(Target, Item.X1 * Scale, Item.Y1 * Scale, Radius + 1,
            [&](std::uint32_t& Pixel, float DX, float DY, float Distance) {
              const float QX = DX / Radius + Offset;
              const float QY = DY / Radius + Offset;
              const float Along = Offset * (QX + QY);
              const float Way = (std::sqrt(Along * Along + Rest * (QX * QX + QY * QY)) - Along) / Rest;
              Put(Pixel, ShadeAt(Shades, Way), Clamp01(Radius + 0.5F - Distance));
            });
}

// A strip with flat ends, in pixels.
struct Strip {
  float X1, Y1, X2, Y2;
  float HalfWidth;
};

// Narrows Low..High to where From + Slope * x lies in Least..Most.
void Narrow(float& Low, float& High, float From, float Slope, float Least, float Most) {
  constexpr float Level = 1.0e-6F;
  if (std::fabs(Slope) < Level) {
    if (From < Least || From > Most) High = Low - 1;
    return;
  }
  const auto [First, Last] = std::minmax({(Least - From) / Slope, (Most - From) / Slope});
  Low = std::max(Low, First);
  High = std::min(High, Last);
}

// Paints every pixel of the strip in the colour that ColorAt gives for its distance across, positive below.
template <class Painter>
void DrawStrip(const PixelPicture& Target, const Strip& S, Painter ColorAt) {
  const float Length = std::hypot(S.X2 - S.X1, S.Y2 - S.Y1);
  if (!(Length > 0)) return;
  const float UX = (S.X2 - S.X1) / Length;
  const float UY = (S.Y2 - S.Y1) / Length;
  const float Reach = S.HalfWidth + 1;
  const PixelRange Rows = RangeOf(std::min(S.Y1, S.Y2) - Reach, std::max(S.Y1, S.Y2) + Reach, Target.Height);
  for (int Row = Rows.First; Row <= Rows.Last; ++Row) {
    const float DY = static_cast<float>(Row) + 0.5F - S.Y1;
    float Low = std::min(S.X1, S.X2) - Reach - S.X1;
    float High = std::max(S.X1, S.X2) + Reach - S.X1;
    Narrow(Low, High, DY * UX, -UY, -S.HalfWidth - 0.5F, S.HalfWidth + 0.5F);
    Narrow(Low, High, DY * UY, UX, -0.5F, Length + 0.5F);
    if (Low > High) continue;
    const PixelRange Columns = RangeOf(Low + S.X1 - 0.5F, High + S.X1 - 0.5F, Target.Width);
    std::uint32_t* Line = Target.Pixels + static_cast<std::ptrdiff_t>(Row) * Target.RowLength;
    for (int Column = Columns.First; Column <= Columns.Last; ++Column) {
      const float DX = static_cast<float>(Column) + 0.5F - S.X1;
      const float Across = DY * UX - DX * UY;
      const float Along = DX * UX + DY * UY;
      const float Cover =
          Clamp01(S.HalfWidth + 0.5F - std::fabs(Across)) * Clamp01(Along + 0.5F) * Clamp01(Length - Along + 0.5F);
      Put(Line[Column], ColorAt(Across), Cover);
    }
  }
}

Strip StripOf(const PixelPicture& Target, const DrawItem& Item, Double Width) {
  const auto Scale = static_cast<float>(Target.Ratio);
  return {Item.X1 * Scale, Item.Y1 * Scale, Item.X2 * Scale, Item.Y2 * Scale, static_cast<float>(Width) * Scale / 2};
}

void DrawLine(const PixelPicture& Target, const DrawItem& Item) {
  const std::uint32_t Fill = PixelOf(Item.Fill);
  if (Item.Edge == Item.Fill) {
    return DrawStrip(Target, StripOf(Target, Item, Item.Size), [Fill](float) { return Fill; });
  }
  const std::uint32_t Edge = PixelOf(Item.Edge);
  const float Inner = Item.Size * static_cast<float>(Target.Ratio) / 2 + 0.5F;
  DrawStrip(Target, StripOf(Target, Item, Item.Size + 2 * EdgeWidth),
            [&](float Across) { return Mix(Edge, Fill, ShareOf(Clamp01(Inner - std::fabs(Across)))); });
}

void DrawDashes(const PixelPicture& Target, const DrawItem& Item) {
  const std::uint32_t Edge = PixelOf(Item.Edge);
  const Strip Whole = StripOf(Target, Item, Item.Size);
  const float Length = std::hypot(Whole.X2 - Whole.X1, Whole.Y2 - Whole.Y1);
  const float Dash = 2 * Whole.HalfWidth * static_cast<float>(DashShare);
  const float Step = Dash + 2 * Whole.HalfWidth * static_cast<float>(GapShare);
  // Dashes too short to be seen as such are a line.
  constexpr float ShortestStep = 1.5F;
  if (!(Step > ShortestStep)) return DrawStrip(Target, Whole, [Edge](float) { return Edge; });
  const int NumDashes = static_cast<int>(std::ceil(Length / Step));
  for (int Number = 0; Number < NumDashes; ++Number) {
    const float Begin = static_cast<float>(Number) * Step;
    const float First = Begin / Length;
    const float Last = std::min(Begin + Dash, Length) / Length;
    const float DX = Whole.X2 - Whole.X1;
    const float DY = Whole.Y2 - Whole.Y1;
    DrawStrip(
        Target,
        {Whole.X1 + First * DX, Whole.Y1 + First * DY, Whole.X1 + Last * DX, Whole.Y1 + Last * DY, Whole.HalfWidth},
        [Edge](float) { return Edge; });
  }
}

void DrawCylinder(const PixelPicture& Target, const DrawItem& Item, const ShadeRow& Shades) {
  const Strip Whole = StripOf(Target, Item, Item.Size);
  DrawStrip(Target, Whole, [&](float Across) { return ShadeAt(Shades, (Across / Whole.HalfWidth + 1) / 2); });
}

// Plain forms: whole pixels, no mixing. A disc keeps its edge, so that a white one is seen on white.
void DrawPlainDisc(const PixelPicture& Target, const DrawItem& Item) {
  const auto Scale = static_cast<float>(Target.Ratio);
  const float Radius = Item.Size * Scale + 0.5F;
  const float X = Item.X1 * Scale;
  const float Y = Item.Y1 * Scale;
  const std::uint32_t Fill = PixelOf(Item.Fill);
  const std::uint32_t Edge = PixelOf(Item.Edge);
  const PixelRange Rows = RangeOf(Y - Radius, Y + Radius - 1, Target.Height);
  for (int Row = Rows.First; Row <= Rows.Last; ++Row) {
    const float DY = static_cast<float>(Row) + 0.5F - Y;
    const float Rest = Radius * Radius - DY * DY;
    if (Rest <= 0) continue;
    const float Half = std::sqrt(Rest);
    const PixelRange Columns = RangeOf(X - Half, X + Half - 1, Target.Width);
    if (Columns.First > Columns.Last) continue;
    std::uint32_t* Line = Target.Pixels + static_cast<std::ptrdiff_t>(Row) * Target.RowLength;
    const bool AtEnd = std::fabs(DY) > Radius - 1;
    std::fill(Line + Columns.First, Line + Columns.Last + 1, AtEnd ? Edge : Fill);
    Line[Columns.First] = Line[Columns.Last] = Edge;
  }
}

void DrawPlainLine(const PixelPicture& Target, const DrawItem& Item) {
  const Strip S = StripOf(Target, Item, Item.Size);
  const float DX = S.X2 - S.X1;
  const float DY = S.Y2 - S.Y1;
  const bool Flat = std::fabs(DX) >= std::fabs(DY);
  const float Run = Flat ? DX : DY;
  if (Run == 0) return;
  // Along the longer way a pixel at a time, and across it as many as the line is wide.
  const float Slope = (Flat ? DY : DX) / Run;
  const float From = Flat ? S.X1 : S.Y1;
  const float Across = Flat ? S.Y1 : S.X1;
  const int Width = std::max(static_cast<int>(2 * S.HalfWidth), 1);
  const int Limit = Flat ? Target.Height : Target.Width;
  const std::ptrdiff_t Step = Flat ? Target.RowLength : 1;
  const std::uint32_t Fill = PixelOf(Item.Fill);
  const PixelRange Range =
      RangeOf(std::min(From, From + Run), std::max(From, From + Run) - 1, Flat ? Target.Width : Target.Height);
  for (int Place = Range.First; Place <= Range.Last; ++Place) {
    const float Middle = Across + Slope * (static_cast<float>(Place) + 0.5F - From);
    if (!(Middle > -16384 && Middle < 16384)) continue;
    const int Begin = static_cast<int>(Middle - static_cast<float>(Width - 1) / 2);
    std::uint32_t* Column = Target.Pixels + (Flat ? Place : static_cast<std::ptrdiff_t>(Place) * Target.RowLength);
    for (int Next = std::max(Begin, 0); Next < std::min(Begin + Width, Limit); ++Next) Column[Next * Step] = Fill;
  }
}

}  // namespace

void FillPicture(const PixelPicture& Target, Colour Value) {
  for (int Row = 0; Row < Target.Height; ++Row) {
    std::fill_n(Target.Pixels + static_cast<std::ptrdiff_t>(Row) * Target.RowLength, Target.Width, PixelOf(Value));
  }
}

void DrawForms(const PixelPicture& Target, const DrawItem& Item, bool Plain, ShadeTables& Shades) {
  switch (Item.Form) {
    case DrawForm::Disc:
      return Plain ? DrawPlainDisc(Target, Item) : DrawDisc(Target, Item);
    case DrawForm::Sphere:
      return DrawSphere(Target, Item, SphereShades(Shades, Item.Fill));
    case DrawForm::Line:
      return Plain ? DrawPlainLine(Target, Item) : DrawLine(Target, Item);
    case DrawForm::DashedLine:
      return DrawDashes(Target, Item);
    case DrawForm::Cylinder:
      return DrawCylinder(Target, Item, CylinderShades(Shades, Item.Fill));
    case DrawForm::Label:
      return;
  }
}

}  // namespace zelvanor
