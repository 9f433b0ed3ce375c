#pragma once

#include "batch/Batch.h"

namespace zelvanor::batch {

// What the user does to controls. An action on a control that is disabled, hidden or behind an open modal form prints
// `refused NAME` and nothing happens.
void ClickControl(const std::vector<Argument>& All);
void PressControl(const std::vector<Argument>& All);
void ReleaseControl(const std::vector<Argument>& All);
void TypeText(const std::vector<Argument>& All);
void EnterText(const std::vector<Argument>& All);
void ChooseEntry(const std::vector<Argument>& All);
void PickGridCell(const std::vector<Argument>& All);
void PickGridRange(const std::vector<Argument>& All);
void SelectRows(const std::vector<Argument>& All);
void ScrollBarTo(const std::vector<Argument>& All);
void Spin(const std::vector<Argument>& All);
void MoveMouse(const std::vector<Argument>& All);
void ClickAtom(const std::vector<Argument>& All);
void PressKey(const std::vector<Argument>& All);

// A whole number among the words of a command.
int NeedNumber(const std::vector<Argument>& All, std::size_t Place);

}  // namespace zelvanor::batch
