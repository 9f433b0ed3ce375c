#include "spectrum/SpectrumView.h"

#include <algorithm>

#include "platform/Variables.h"
#include "settings/Settings.h"
#include "settings/SettingsState.h"
#include "shell/MainForm.h"
#include "workspace/Workspace.h"

namespace zelvanor {

SpectrumViewState SpectrumView;
SpectrumAdditions Additions;

void InitSpectrumView() {
  SpectrumView = {};
  Main.HScroll1.Min = 1000;
  Main.HScroll1.Max = -1000;
  SetChanges(Main.HScroll1, 10, 100);
  Main.HScroll2.Min = 1;
  Main.HScroll2.Max = 100;
  Main.HScroll2.Value = 10;
  SetChanges(Main.HScroll2, 1, 10);
  SetBackColor(Main.Spectrum1, Black);
}

void AddSpectrumVariables() {
  SpectrumViewState& V = SpectrumView;
  AddVariable("ViewWidth", V.ViewWidth);
  AddVariable("ViewHeight", V.ViewHeight);
  AddVariable("ViewPeakCount", V.ViewPeakCount);
  AddVariable("ListPeakCount", V.ListPeakCount);
  AddVariable("UseGaussian", V.UseGaussian);
  AddVariable("DisplayMode", V.DisplayMode);
  AddVariable("SelectedPeak", V.SelectedPeak);
  AddVariable("Linewidth", V.Linewidth);
  AddVariable("LoadedHigh", V.LoadedHigh);
  AddVariable("LoadedLow", V.LoadedLow);
  AddVariable("FullLow", V.FullLow);
  AddVariable("FullHigh", V.FullHigh);
  AddVariable("ViewLow", V.ViewLow);
  AddVariable("ViewHigh", V.ViewHigh);
  AddVariable("CenterFrequency", V.CenterFrequency);
  AddVariable("MaxIntensity", V.MaxIntensity);
  AddVariable("VerticalScale", V.VerticalScale);
  AddVariable("EnvelopeScale", V.EnvelopeScale);
  AddVariable("HorizontalOffset", V.HorizontalOffset);
  AddVariable("HorizontalScale", V.HorizontalScale);
  AddVariable("SpectrometerMHz", V.SpectrometerMHz);
  AddVariable("GraphClr", V.GraphClr);
  AddVariable("EnvelopClr", V.EnvelopClr);
  AddVariable("SelectionClr", V.SelectionClr);
  AddVariable("Monochrome", V.Monochrome);
  AddVariable("BandStartX", V.BandStartX);
  AddVariable("BandStartY", V.BandStartY);
  AddVariable("BandEndX", V.BandEndX);
  AddVariable("BandEndY", V.BandEndY);
  AddVariable("BandActive", V.BandActive);
  AddVariable("BandIntegrates", V.BandIntegrates);
  AddVariable("CurrentLineWidth", V.CurrentLineWidth);
  AddVariable("FrequencyRange", V.FrequencyRange);
  AddVariable("TotalIntensity", V.TotalIntensity);
  AddVariable("LineWidthBarLive", V.LineWidthBarLive);
  AddVariable("PickedPeak", V.PickedPeak);
  AddArray("EnvelopeSamples", V.EnvelopeSamples, EnvelopeColumns);
  const auto CountPeaks = [] { return IsSet(Workspace.SpectraAvailable) ? Workspace.PeakCount : 0; };
  AddArray("PeakWork1", V.PeakWork1, CountPeaks);
  AddArray("PeakWork2", V.PeakWork2, CountPeaks);
}

void StartAtFirstSight() {
  SpectrumView.OwnWidth = false;
  SpectrumView.DisplayMode = LinesAndEnvelope;
  SetChecked(Main.mnuLinesAndEnvelop, True);
  Main.HScroll2.Value = Main.HScroll2.Min;
}

void UseDesktopColours(bool Dark) {
  if (AreSpectrumColoursOwn() || SpectrumView.Monochrome != 0) return;
  constexpr Colour Blue = Rgb(0, 90, 200);
  constexpr Colour Magenta = Rgb(200, 0, 130);
  SetGraphClr(Dark ? Settings.PrefGraphColor : Blue);
  SetEnvelop(Dark ? Settings.PrefEnvelopColor : Black);
  SetSelectionClr(Dark ? Settings.PrefSelectionColor : Magenta);
  SetBackColor(Main.Spectrum1, Dark ? Black : White);
}

int EnvelopeColumns() { return std::min<int>(SpectrumView.ViewWidth, MaxEnvelopeSamples); }

void SetEnvelop(Colour Value) { SpectrumView.EnvelopClr = Value; }
Colour GetEnvelop() { return SpectrumView.EnvelopClr; }
void SetSelectionClr(Colour Value) { SpectrumView.SelectionClr = Value; }
Colour GetSelectionClr() { return SpectrumView.SelectionClr; }
void SetGraphClr(Colour Value) { SpectrumView.GraphClr = Value; }
Colour GetGraphClr() { return SpectrumView.GraphClr; }
void SetMonochrome(Integer Value) { SpectrumView.Monochrome = Value; }

}  // namespace zelvanor
