#pragma once

#include <QMainWindow>

#include "platform/Services.h"

// The script language on the real window: the user's actions of a script go through the widgets, what the window asks
// is answered by the script.
namespace zelvanor::tests {

// The main window, from before `start` on.
QMainWindow& ScriptedWindow();

// What Platform held for the window itself, before the script's answers came in.
const PlatformServices& WindowServices();

// Serves pending events, and whatever widgets put off to the next one, until nothing is left.
void SettleWidgets();

// Puts widget actions in the place of the script's own ones.
void UseWidgetHands();

// Prints `WIDGET DIFFERS` for each property of a shown widget that is not what its control holds.
void CheckWidgets();

// Ends the process with the script's status when it has to stop: nothing may be thrown through the toolkit.
void RunOrStop(const std::function<void()>& Work);

}  // namespace zelvanor::tests
