#pragma once

#include <array>

#include "basic/Types.h"
#include "platform/Controls.h"

namespace zelvanor {

inline constexpr int NumSettingsTexts = 32;
inline constexpr int NumSets = 3;              // of colours, and of radii
inline constexpr int NumElementEntries = 129;  // element numbers 0..128

// What win.ini and nmr.ini have given, and what goes back into nmr.ini at exit. Options that belong to the document
// live in the Workspace in between.
struct SettingsState {
  // Views come up as they are seen best where the user has chosen nothing: balls and cylinders, turned to be looked at,
  // an envelope. The window wants it; a script finds the plain start.
  bool FirstSight = false;

  // Directories, without a separator at the end.
  Text NMRExePath;
  Text NMRIniPath;
  Text NMRParmPath;
  // Working files.
  Text ParamInputFile;
  Text SpectInputFile;
  Text ParamOutputFile;
  Text ParamReferenceFile;  // beside the output where an engine knows its references
  Text BackendFile;         // what computes stage 1; the backend reads it
  Text ParamErrorFile;
  Text SpectOutputFile;
  Text IniFile;
  Text CalcExeFile;

  std::array<Text, NumSettingsTexts> SettingsText;  // by slot; slot 25 belongs to no key

  Integer NumColorSets;
  Integer NumRadiusSets;
  std::array<Text, NumSets> ColorSetName;
  std::array<Text, NumSets> RadiusSetName;
  std::array<Text, NumSets> ColorSetTitle;
  std::array<Text, NumSets> RadiusSetTitle;
  Integer CurrentColorSet;  // -1 until one is selected
  Integer CurrentRadiusSet;
  std::array<Colour, NumElementEntries> AtomColors{};
  std::array<Single, NumElementEntries> AtomRadii{};

  // The molecule view's start.
  Long AtomRenderType = 0;
  Long BondRenderType = 0;
  Colour BackColor = 0;
  Colour LabelColor = 0;
  Colour BondColor = 0;
  Colour SelectionColor = 0;     // mark of selected atoms
  Colour SpectrumLineColor = 0;  // as nmr.ini gave them; the spectrum view has its own
  Colour SpectrumEnvelopColor = 0;
  Colour SpectrumSelectionColor = 0;

  // Colours that preferences keep for nmr.ini; the molecule's are set with PrefMoleculeSet.
  Colour PrefBackColor = 0;
  Colour PrefLabelColor = 0;
  Colour PrefMolSelectColor = 0;
  Colour PrefGraphColor = 0;
  Colour PrefEnvelopColor = 0;
  Colour PrefSelectionColor = 0;
  Flag PrefMoleculeSet = False;
  Colour MolSelectColor = 0;
  Long MolMonochrome = 0;
};

extern SettingsState Settings;

void AddSettingsVariables();

}  // namespace zelvanor
