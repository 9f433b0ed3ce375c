#pragma once

#include <vector>

#include "platform/Controls.h"

namespace zelvanor {

// Fills options, colours and sets from nmr.ini, with a warning for each value it refuses. A value that is no number at
// all, or no colour, ends the program with an error box. Needs the set names and the reference elements.
void ReadSettings();

// Writes the current options and colours back to nmr.ini.
void WriteSettings();

// The keys of the section "nmr".
std::vector<Text> SettingKeys();

// Whether the user has given the spectrum colours, or the molecule a background, other than the built-in ones.
bool AreSpectrumColoursOwn();
bool IsMoleculeBackgroundOwn();
// As the preferences have it, or before they do nmr.ini.
Colour MoleculeBackground();

}  // namespace zelvanor
