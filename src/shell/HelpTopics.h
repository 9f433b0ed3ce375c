#pragma once

#include <span>

#include "platform/Form.h"

namespace zelvanor {

// Numbers of the manual's pages: what F1 opens. The manual's contents list (nmr.hlp) says which page has which number.
inline constexpr int ContentsHelp = 1;
inline constexpr int UsingHelp = 2;
inline constexpr int MessagesHelp = 3;
inline constexpr int MainWindowHelp = 5;
// Of the views of the main window.
inline constexpr int MoleculeHelp = 10;
inline constexpr int ShieldingHelp = 11;
inline constexpr int CouplingHelp = 12;
inline constexpr int SpectrumHelp = 13;
// The values dialog has two: it changes its number with what it shows.
inline constexpr int SpectralValuesHelp = 15;
inline constexpr int TensorHelp = 35;

// One row for each form but the main one.
struct HelpTopic {
  const char* Form;
  int Context;
};

std::span<const HelpTopic> HelpTopics();

// Gives every form the number of its page. Once, when all forms are made.
void GiveHelpContexts();

// The page of a form: the main form's is that of the view it shows.
int HelpContextOf(const Form& Target);
// F1 in a form's window.
void ShowContextHelp(const Form& Target);

}  // namespace zelvanor
