#pragma once

#include <array>
#include <functional>
#include <vector>

#include "basic/Array.h"
#include "platform/Picture.h"

namespace zelvanor {

// An envelope has one sample for each pixel column, up to this many.
inline constexpr int MaxEnvelopeSamples = 1282;

enum SpectrumDisplay { LinesOnly = 0, EnvelopeOnly = 1, LinesAndEnvelope = 2 };

// The state of the spectrum view. Frequencies are in Hz and in the view's sign, that is negated: they rise from left to
// right while the chemical shift falls.
struct SpectrumViewState {
  Integer ViewWidth;  // pixels
  Integer ViewHeight;
  Long ViewPeakCount = 0;
  Long ListPeakCount = 0;  // the limit of the loops over picked and integrated peaks
  Flag UseGaussian = False;
  Integer DisplayMode;
  Long SelectedPeak = 0;  // drawn in the selection colour; -1 for none
  Double Linewidth = 0;   // Hz, last one given to a peak
  Double LoadedHigh = 0;
  Double LoadedLow = 0;
  Double FullLow = 0;  // limits of the whole spectrum, margin included
  Double FullHigh = 0;
  Double ViewLow = 0;  // limits of the window, before panning
  Double ViewHigh = 0;
  Double CenterFrequency = 0;
  Double MaxIntensity = 0;         // 1.2 times the tallest line in the window
  Double VerticalScale = 0;        // pixels per unit of intensity
  Double EnvelopeScale = 0;        // pixels per unit of envelope
  Long HorizontalOffset = 0;       // Hz, panning: added to both limits of the window
  Double HorizontalScale = 0;      // pixels per Hz
  Double SpectrometerMHz = 0;      // of the peak list at hand
  Long SpectrometerFrequency = 0;  // MHz, as last told
  Colour GraphClr = 0;
  Colour EnvelopClr = White;
  Colour SelectionClr = 0;
  Integer Monochrome;
  // Corners of the band, in twips; a wide screen has more of them than an Integer holds.
  Long BandStartX = 0, BandStartY = 0, BandEndX = 0, BandEndY = 0;
  Flag BandActive = False;      // a drag with the left button is under way
  Flag BandIntegrates = False;  // it began with Shift held

  Single CurrentLineWidth = 0;  // Hz
  bool OwnWidth = true;         // the user's or the plain start's; else the smallest that shows, from 1 Hz on
  Double FrequencyRange = 0;    // -1 while another view is refreshed
  Double TotalIntensity = 0;
  Flag LineWidthBarLive = False;
  Long PickedPeak = 0;  // of the read-out; -1 for none
  std::array<Double, MaxEnvelopeSamples> EnvelopeSamples{};
  Array<Single> PeakWork1, PeakWork2;  // factors of each peak's line shape, beside the peak list

  // Of the height, what lines and envelope have, and how many pixels their feet stand above the usual row: other
  // drawings may share the surface.
  Double HeightShare = 1.0;
  int FootLift = 0;
  // The windows that zooming has left, the last one at the end.
  struct Window {
    Double Low;
    Double High;
    Double Scale;
  };
  std::vector<Window> Zooms;
};

// What other rooms add to the view.
struct SpectrumAdditions {
  std::function<void()> BeforePaint;
  std::function<void(DrawingContext& Context)> AfterPaint;
  std::function<void(Long Peak)> PeakPicked;                       // -1: the pick is taken back
  std::function<void(Double LowPpm, Double HighPpm)> RangeChosen;  // a drag with Shift
  std::function<void(Double& Low, Double& High)> WidenWhole;       // the window that shows everything, Hz
};
extern SpectrumAdditions Additions;

extern SpectrumViewState SpectrumView;

// Start values of the state and of the spectrum's controls.
void InitSpectrumView();
void AddSpectrumVariables();

// Samples that the envelope of the present view has.
int EnvelopeColumns();

// The window's start: lines and envelope, as narrow as it can be seen, until the user moves the line width bar.
void StartAtFirstSight();
// Colours that stand out on a light or a dark desktop; nothing where the user has chosen some or wants none.
void UseDesktopColours(bool Dark);

// Colours and monochrome display; none of them redraws.
void SetEnvelop(Colour Value);
Colour GetEnvelop();
void SetSelectionClr(Colour Value);
Colour GetSelectionClr();
void SetGraphClr(Colour Value);
Colour GetGraphClr();
void SetMonochrome(Integer Value);

}  // namespace zelvanor
