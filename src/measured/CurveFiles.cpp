#include "measured/CurveFiles.h"

#include <algorithm>
#include <cmath>

#include "basic/NumberText.h"
#include "basic/Numbers.h"
#include "measured/JcampTable.h"
#include "measured/MeasuredTrace.h"
#include "spectrum/EnvelopeCurve.h"
#include "spectrum/PeakLists.h"
#include "spectrum/SpectrumView.h"
#include "workspace/Helpers.h"

namespace zelvanor {

namespace {

WorkspaceState& W = Workspace;

// A curve at equal distances, the largest shift first.
struct Curve {
  Text Title;
  Text Nucleus;  // as "1H"
  Text Solvent;
  Double MHz = 0;
  Double First = 0;  // Hz from 0 ppm
  Double Last = 0;
  Double Factor = 1;
  std::vector<Long> Points;

  Double Step() const { return (Last - First) / (static_cast<Double>(Points.size()) - 1.0); }
};

Curve MeasuredCurve() {
  if (!HasMeasured()) throw Failure("there is no measured spectrum");
  const std::span<const Long> Points = W.MeasuredPoint.Span();
  return {.Title = W.MeasuredTitle,
          .Nucleus = W.MeasuredNucleus,
          .Solvent = W.MeasuredSolvent,
          .MHz = W.MeasuredMHz,
          .First = W.MeasuredFirst,
          .Last = W.MeasuredLast,
          .Factor = W.MeasuredFactor,
          .Points = {Points.begin(), Points.begin() + W.MeasuredCount}};
}

Curve EnvelopeCurve() {
  const SpectrumViewState& V = SpectrumView;
  const Double Range = V.FullHigh - V.FullLow;
  if (!IsSet(W.SpectraAvailable) || !(Range > 0) || !(W.NMRFrequency > 0)) {
    throw Failure("there is no simulated spectrum");
  }
  const Double Width = EnvelopeWidth();
  constexpr Double PointsPerWidth = 10.0;
  constexpr Double FewestPoints = 1024;
  constexpr Double MostPoints = 1 << 18;
  const Double Count = std::round(std::clamp(Range / Width * PointsPerWidth, FewestPoints, MostPoints));
  Curve Made;
  Made.Title = W.DocumentTitle.empty() ? Text("untitled") : W.DocumentTitle;
  Made.Nucleus = ObservedNucleus();
  Made.MHz = W.NMRFrequency;
  Made.First = -V.FullLow;
  Made.Last = -V.FullHigh;
  const std::vector<Double> Values =
      BuildEnvelope(V.FullLow, Range / (Count - 1.0), static_cast<std::size_t>(Count), Width);
  const Double Largest = *std::max_element(Values.begin(), Values.end());
  constexpr Double LargestPoint = 1 << 26;
  if (Largest > 0) Made.Factor = StrictNumber(GeneralForm(Largest / LargestPoint));
  for (const Double Value : Values) Made.Points.push_back(ToLong(Value / Made.Factor));
  return Made;
}

Text BuildJcamp(const Curve& Of) {
  const auto [Least, Most] = std::minmax_element(Of.Points.begin(), Of.Points.end());
  Text Dx = Join("##TITLE=", Of.Title,
                 "\n##JCAMP-DX=5.01\n##DATA TYPE=NMR SPECTRUM\n##DATA CLASS=XYDATA\n##ORIGIN=Zelvanor\n##OWNER=",
                 "\n##.OBSERVE FREQUENCY=", Of.MHz, "\n");
  if (!Of.Nucleus.empty()) Dx += Join("##.OBSERVE NUCLEUS=^", Of.Nucleus, "\n");
  if (!Of.Solvent.empty()) Dx += Join("##.SOLVENT NAME=", Of.Solvent, "\n");
  Dx += Join("##XUNITS=HZ\n##YUNITS=ARBITRARY UNITS\n##XFACTOR=1\n##YFACTOR=", Of.Factor, "\n##FIRSTX=", Of.First,
             "\n##LASTX=", Of.Last, "\n##DELTAX=", Of.Step(), "\n##NPOINTS=", static_cast<Long>(Of.Points.size()),
             "\n##FIRSTY=", Of.Points.front() * Of.Factor, "\n##MAXY=", *Most * Of.Factor,
             "\n##MINY=", *Least * Of.Factor, "\n##XYDATA=(X++(Y..Y))\n");
  return Dx + WriteJcampTable(Of.Points, Of.First, Of.Step()) + "##END=\n";
}

Text BuildCsv(const Curve& Of) {
  Text Csv = "ppm,Hz,intensity\n";
  for (std::size_t Point = 0; Point < Of.Points.size(); ++Point) {
    const Double Hz = Of.First + static_cast<Double>(Point) * Of.Step();
    Csv += Join(FormatNumber(Hz / Of.MHz, "0.00000##"), ",", FormatNumber(Hz, "0.000##"), ",",
                Of.Points[Point] * Of.Factor, "\n");
  }
  return Csv;
}

}  // namespace

Text BuildMeasuredJcamp() { return BuildJcamp(MeasuredCurve()); }
Text BuildMeasuredCsv() { return BuildCsv(MeasuredCurve()); }
Text BuildEnvelopeJcamp() { return BuildJcamp(EnvelopeCurve()); }
Text BuildEnvelopeCsv() { return BuildCsv(EnvelopeCurve()); }

}  // namespace zelvanor
