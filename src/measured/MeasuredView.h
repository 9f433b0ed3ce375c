#pragma once

#include <span>
#include <vector>

#include "platform/Picture.h"

namespace zelvanor {

// The measured spectrum, the labels and the marks in the spectrum view.

enum MeasuredArrangement { OverlayArrangement = 0, StackArrangement = 1, MirrorArrangement = 2 };

struct MeasuredViewState {
  Integer Arrangement;
  Flag EqualArea = False;   // else the tallest signals of both in the window have the same height
  Double Scale = 1.0;       // by which the user has stretched the measured spectrum
  std::vector<int> Marked;  // sites whose lines are marked
  int Picked = 0;           // site of the picked line; 0 for none
};
extern MeasuredViewState MeasuredView;

void InitMeasuredView();
void AddMeasuredViewVariables();

// Draws a curve of whole numbers into columns: of many points in one column the least and the largest are drawn. First
// is the place of point 0 in pixels, Step the distance between two points (broken pixels, above 0); a value V stands at
// the row Foot - V * Scale, cut at Top and Bottom.
struct TraceFrame {
  Double First = 0;
  Double Step = 1;
  Double Scale = 1;
  int Foot = 0;
  int Top = 0;
  int Bottom = 0;
  int Width = 0;
};
void DrawTrace(DrawingContext& Context, std::span<const Long> Points, const TraceFrame& Frame);

void Spectrum1_MouseWheel(Double Notches, int Shift);
// Backspace: one step back in zoom. Ctrl with up and down: the scale of the measured spectrum. True when taken.
bool PressSpectrumViewKey(int KeyCode, int Shift);

void mnuMeasuredOverlay_Click();
void mnuMeasuredStack_Click();
void mnuMeasuredMirror_Click();
void mnuMeasuredEqualArea_Click();
void mnuViewLabels_Click();
void mnuViewTree_Click();
void mnuViewPane_Click();

// A line has been picked: its atoms are shown in the molecule beside. -1 takes that back.
void ShowAtomsOfPeak(Long Peak);
// An atom (0-based, -1 for none) is pointed at: its lines are marked.
void MarkLinesOfAtom(int Atom);
// "1-5(H) 60%, ...": the sites that make a line; empty where nothing is known.
Text DescribePeakAtoms(Long Peak);

}  // namespace zelvanor
