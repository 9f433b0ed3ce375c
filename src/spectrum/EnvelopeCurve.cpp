#include "spectrum/EnvelopeCurve.h"

#include <algorithm>

#include "spectrum/Envelope.h"
#include "spectrum/SpectrumView.h"
#include "workspace/Workspace.h"

namespace zelvanor {

std::vector<Double> BuildEnvelope(Double Start, Double Step, std::size_t Count, Double Width) {
  const auto Peaks = static_cast<std::size_t>(Workspace.PeakCount);
  const bool Gaussian = IsSet(SpectrumView.UseGaussian);
  const Double Factor = Gaussian ? 2.0 / Width : Width / 2.0;
  std::vector<Single> Work1(Peaks, static_cast<Single>(Factor * Factor));
  std::vector<Single> Work2(Peaks);
  const std::span<const Single> Intensity = Workspace.PeakIntensity.Span();
  for (std::size_t Peak = 0; Peak < Peaks; ++Peak) Work2[Peak] = static_cast<Single>(Factor * Intensity[Peak]);
  const EnvelopePeaks All{Workspace.PeakFrequency.Span().first(Peaks), Work1, Work2};
  std::vector<Double> Samples(Count);
  // The sums are made for the columns of a view: a longer curve is made in pieces.
  for (std::size_t First = 0; First < Count; First += MaxEnvelopeSamples) {
    const std::size_t Length = std::min<std::size_t>(Count - First, MaxEnvelopeSamples);
    (Gaussian ? SumGaussians : SumLorentzians)(All, Start + static_cast<Double>(First) * Step, Step,
                                               std::span(Samples).subspan(First, Length));
  }
  return Samples;
}

Double EnvelopeWidth() { return SpectrumView.CurrentLineWidth > 0 ? Double{SpectrumView.CurrentLineWidth} : 1.0; }

}  // namespace zelvanor
