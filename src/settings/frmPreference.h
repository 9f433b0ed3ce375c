#pragma once

#include <functional>

#include "settings/SettingsState.h"

namespace zelvanor {

// What the preferences reach of the rooms above; program.cpp fills it.
struct PreferenceHooks {
  std::function<Colour()> GetGraphClr;
  std::function<Colour()> GetSelectionClr;
  std::function<Colour()> GetEnvelop;
  std::function<void(Colour)> SetGraphClr;
  std::function<void(Colour)> SetSelectionClr;
  std::function<void(Colour)> SetEnvelop;
  std::function<void(Integer)> SetMonochrome;
  std::function<void(Colour)> SetSpectrumBackground;
  std::function<Colour()> GetMoleculeBackground;
  std::function<Colour()> GetLabelColor;
  std::function<void()> TakeMoleculePreferences;  // the molecule's colours and monochrome choice are new
  std::function<void()> RefreshView;
};

extern PreferenceHooks Preferences;

// The preferences dialog: colours and monochrome display of spectrum and molecule. Connects its handlers; once, at
// start-up.
void BuildPreferenceForm();
void AddPreferenceVariables();

void mnuPreferences_Click();

// Opens the colour dialog on a colour and returns the one chosen, or the same one when nothing was.
Colour PickColor(Colour Current);

}  // namespace zelvanor
