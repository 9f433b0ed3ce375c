#include "settings/SettingsState.h"

#include "platform/Variables.h"

namespace zelvanor {

SettingsState Settings;

void AddSettingsVariables() {
  SettingsState& S = Settings;
  AddVariable("NMRExePath", S.NMRExePath);
  AddVariable("NMRIniPath", S.NMRIniPath);
  AddVariable("NMRParmPath", S.NMRParmPath);
  AddVariable("ParamInputFile", S.ParamInputFile);
  AddVariable("SpectInputFile", S.SpectInputFile);
  AddVariable("ParamOutputFile", S.ParamOutputFile);
  AddVariable("ParamErrorFile", S.ParamErrorFile);
  AddVariable("SpectOutputFile", S.SpectOutputFile);
  AddVariable("IniFile", S.IniFile);
  AddVariable("CalcExeFile", S.CalcExeFile);
  AddArray("SettingsText", S.SettingsText, [] { return NumSettingsTexts; });

  const auto CountSets = [] { return NumSets; };
  const auto CountElements = [] { return NumElementEntries; };
  AddVariable("NumColorSets", S.NumColorSets);
  AddVariable("NumRadiusSets", S.NumRadiusSets);
  AddArray("ColorSetName", S.ColorSetName, CountSets);
  AddArray("RadiusSetName", S.RadiusSetName, CountSets);
  AddArray("ColorSetTitle", S.ColorSetTitle, CountSets);
  AddArray("RadiusSetTitle", S.RadiusSetTitle, CountSets);
  AddVariable("CurrentColorSet", S.CurrentColorSet);
  AddVariable("CurrentRadiusSet", S.CurrentRadiusSet);
  AddArray("AtomColors", S.AtomColors, CountElements);
  AddArray("AtomRadii", S.AtomRadii, CountElements);

  AddVariable("SelectionColor", S.SelectionColor);
  AddVariable("PrefBackColor", S.PrefBackColor);
  AddVariable("PrefLabelColor", S.PrefLabelColor);
  AddVariable("PrefMolSelectColor", S.PrefMolSelectColor);
  AddVariable("PrefGraphColor", S.PrefGraphColor);
  AddVariable("PrefEnvelopColor", S.PrefEnvelopColor);
  AddVariable("PrefSelectionColor", S.PrefSelectionColor);
  AddVariable("PrefMoleculeSet", S.PrefMoleculeSet);
  AddVariable("MolSelectColor", S.MolSelectColor);
  AddVariable("MolMonochrome", S.MolMonochrome);
}

}  // namespace zelvanor
