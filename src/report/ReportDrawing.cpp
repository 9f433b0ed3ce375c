#include "report/ReportDrawing.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "basic/NumberText.h"
#include "workspace/Helpers.h"

namespace zelvanor {

namespace {

constexpr Double Foot = 34;  // pixels below the curves
constexpr Double Head = 44;  // above them, for the names
constexpr Double RowHeight = 14;
constexpr Double CharacterWidth = 7.2;

// A round step of which the window holds about as many as there is room for.
struct TickStep {
  Double Ppm;
  int Digits;
};
TickStep ChooseStep(Double Range, Double Width) {
  constexpr Double Apart = 80;  // pixels
  const Double Least = Range / std::max(Width / Apart, 2.0);
  const Double Power = std::pow(10.0, std::floor(std::log10(Least)));
  Double Step = 10 * Power;
  for (const Double Each : {5.0, 2.0, 1.0}) {
    if (Each * Power >= Least) Step = Each * Power;
  }
  constexpr Double Rounding = 1.0e-9;
  return {Step, std::max(0, -static_cast<int>(std::floor(std::log10(Step) + Rounding)))};
}

struct Frame {
  Double High;  // ppm
  Double Low;
  Double Width;
  Double Height;
  Double ColumnOf(Double Ppm) const { return (High - Ppm) / (High - Low) * Width; }
};

DrawnCurve CurveIn(const Frame& In, const ReportCurve& Of, bool Measured) {
  DrawnCurve Made;
  Made.Measured = Measured;
  Long Largest = 1;
  const auto PpmOf = [&](std::size_t K) { return Of.First + Of.Points[K] * Of.Step; };
  const auto Inside = [&](std::size_t K) { return PpmOf(K) <= In.High && PpmOf(K) >= In.Low; };
  for (std::size_t K = 0; K < Of.Points.size(); ++K) {
    if (Inside(K)) Largest = std::max(Largest, Of.Heights[K]);
  }
  for (std::size_t K = 0; K < Of.Points.size(); ++K) {
    // One point beyond either end, so that the curve reaches the borders.
    const bool BesideIn = (K + 1 < Of.Points.size() && Inside(K + 1)) || (K > 0 && Inside(K - 1));
    if (!Inside(K) && !BesideIn) continue;
    Made.Points.push_back({std::clamp(In.ColumnOf(PpmOf(K)), 0.0, In.Width),
                           In.Height - Foot - (In.Height - Foot - Head) * Of.Heights[K] / Largest});
  }
  return Made;
}

void DrawAxis(const Frame& In, SpectrumDrawing& To) {
  constexpr Double Below = 4;
  constexpr Double TickLength = 5;
  constexpr Double BaseLine = 19;
  constexpr Double UnitRoom = 34;
  constexpr Double EdgeRoom = 14;
  const Double Row = In.Height - Foot + Below;
  const TickStep Chosen = ChooseStep(In.High - In.Low, In.Width);
  const Double Step = Chosen.Ppm;
  const int Digits = Chosen.Digits;
  constexpr std::array<const char*, 5> Patterns = {"", "0.0", "0.00", "0.000", "0.0000"};
  const char* const Pattern = Patterns[static_cast<std::size_t>(std::min(Digits, 4))];
  const auto Words = [&](Double Value) {
    return Digits > 0 ? FormatNumber(Value, Pattern) : GeneralForm(std::round(Value));
  };
  To.Axis.push_back({0, Row, In.Width, Row});
  for (Double K = std::ceil(In.Low / Step); K * Step <= In.High; ++K) {
    const Double Column = In.ColumnOf(K * Step);
    To.Axis.push_back({Column, Row, Column, Row + TickLength});
    if (Column < EdgeRoom || Column > In.Width - UnitRoom) continue;
    To.Ticks.push_back({Column, Row + BaseLine, Words(K * Step)});
  }
  To.Ticks.push_back({In.Width - EdgeRoom, Row + BaseLine, "ppm"});
}

std::size_t CharactersOf(TextView Value) {
  return static_cast<std::size_t>(
      std::count_if(Value.begin(), Value.end(), [](char C) { return (static_cast<unsigned char>(C) & 0xC0) != 0x80; }));
}

void DrawNames(const Frame& In, const ReportContent& Of, SpectrumDrawing& To) {
  std::array<Double, 3> FreeFrom{};
  constexpr Double Ascent = 11;
  for (const ReportRow& Row : Of.Rows) {
    if (Row.Signal < 0) continue;
    const Double Half = static_cast<Double>(CharactersOf(Row.Names)) * CharacterWidth / 2 + 5;
    if (2 * Half > In.Width) continue;
    const Double Middle = std::clamp(In.ColumnOf(Row.Ppm), Half, In.Width - Half);
    for (std::size_t Line = 0; Line < FreeFrom.size(); ++Line) {
      if (FreeFrom[Line] > Middle - Half) continue;
      FreeFrom[Line] = Middle + Half;
      To.Names.push_back({Middle, static_cast<Double>(Line) * RowHeight + Ascent, Row.Names});
      break;
    }
  }
}

}  // namespace

std::vector<DrawnPoint> WedgeCorners(const DrawnStroke& Of) {
  const Double Length = std::max(std::hypot(Of.X2 - Of.X1, Of.Y2 - Of.Y1), 1.0e-6);
  const Double AcrossX = -(Of.Y2 - Of.Y1) / Length * WedgeHalf;
  const Double AcrossY = (Of.X2 - Of.X1) / Length * WedgeHalf;
  return {{Of.X1, Of.Y1}, {Of.X2 + AcrossX, Of.Y2 + AcrossY}, {Of.X2 - AcrossX, Of.Y2 - AcrossY}};
}

std::vector<DrawnStroke> StrokeLines(const DrawnStroke& Of) {
  if (Of.Kind != StrokeKind::Hashes) return {Of};
  const std::vector<DrawnPoint> Corners = WedgeCorners(Of);
  constexpr int Count = 6;
  std::vector<DrawnStroke> Lines;
  for (int K = 1; K <= Count; ++K) {
    const Double Share = static_cast<Double>(K) / Count;
    const auto Towards = [&](std::size_t Corner) {
      return DrawnPoint{Of.X1 + (Corners[Corner].X - Of.X1) * Share, Of.Y1 + (Corners[Corner].Y - Of.Y1) * Share};
    };
    Lines.push_back({Towards(1).X, Towards(1).Y, Towards(2).X, Towards(2).Y});
  }
  return Lines;
}

std::vector<SymbolPart> SymbolParts(const DrawnAtom& Of) {
  std::vector<SymbolPart> Parts;
  if (Of.Symbol.empty()) return Parts;
  constexpr Double Letter = 0.25;  // width, in lengths of a bond
  constexpr Double Index = 0.16;
  constexpr Double Drop = 0.1;
  constexpr Double Rise = 0.16;
  Parts.push_back({Of.X, Of.Y, Of.Symbol});
  Double Right = Of.X + static_cast<Double>(Of.Symbol.size()) * Letter / 2;
  Double Left = Of.X - static_cast<Double>(Of.Symbol.size()) * Letter / 2;
  if (Of.Hydrogens > 0) {
    const Double Width = Letter + (Of.Hydrogens > 1 ? Index : 0);
    Double& Edge = Of.HydrogensFirst ? Left : Right;
    const Double From = Of.HydrogensFirst ? Left - Width : Right;
    Parts.push_back({From + Letter / 2, Of.Y, "H"});
    if (Of.Hydrogens > 1)
      Parts.push_back({From + Letter + Index / 2, Of.Y + Drop, GeneralForm(Long{Of.Hydrogens}), true});
    Edge = Of.HydrogensFirst ? Left - Width : Right + Width;
  }
  if (Of.Charge != 0) {
    const int Size = std::abs(Of.Charge);
    const Text Words = Join(Size > 1 ? GeneralForm(Long{Size}) : Text(), Of.Charge > 0 ? "+" : "\xE2\x88\x92");
    Parts.push_back({Right + Index / 2, Of.Y - Rise, Words, true});
  }
  return Parts;
}

SpectrumDrawing DrawSpectrumOf(const ReportContent& Of, Double Width, Double Height) {
  const Frame In{Of.HighPpm, Of.LowPpm, Width, Height};
  SpectrumDrawing Drawn;
  if (!Of.Measured.Points.empty()) Drawn.Curves.push_back(CurveIn(In, Of.Measured, true));
  if (!Of.Simulated.Points.empty()) Drawn.Curves.push_back(CurveIn(In, Of.Simulated, false));
  DrawAxis(In, Drawn);
  DrawNames(In, Of, Drawn);
  return Drawn;
}

}  // namespace zelvanor
