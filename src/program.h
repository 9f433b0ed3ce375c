#pragma once

#include "basic/Types.h"

namespace zelvanor {

// Builds the forms, ties controls to handlers and views to rooms, makes the variables known by name. Once, by the front
// end, after it has filled the slots of Platform and before StartProgram.
void BuildProgram();

// Start-up of the main window, from the guards to the closing Get. Throws ProgramEnded where it is refused.
void Form_Load(const Text& CommandLine);

// Lays the main window out again after the front end has given frmNMR its new inner size.
void Form_Resize();

}  // namespace zelvanor
