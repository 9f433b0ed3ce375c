#pragma once

#include <QWidget>
#include <functional>

#include "platform/Controls.h"

namespace zelvanor {

// What shows a control: a widget, or the action of a menu item. A widget reads its control, never the other way round;
// after each action of the user it is set to what the control then holds.

// Takes over one property of the control.
using ShowProperty = std::function<void(Property)>;

// Ties a control to what shows it, until that is destroyed, and shows all of its present state.
void Bind(Control& Target, QObject* Shown, const ShowProperty& Show);
// The same for a widget, for which being enabled, visible and placed is taken care of.
void BindWidget(Control& Target, QWidget* Shown, const ShowProperty& Show = {});

QObject* ShownOf(const Control& Target);
QWidget* WidgetOf(const Control& Target);

// Brings up to date what shows a control; nothing for a control that has not been shown yet.
void ShowChange(Control& Target, Property What);

// The widget of a control, with its state. Null for a kind that has none here.
QWidget* MakeWidget(Control& Target, QWidget* Parent);

// One routine for each kind; the table in ControlWidgets.cpp names them.
QWidget* MakeCommandButton(Control& Target, QWidget* Parent);
QWidget* MakeCheckBox(Control& Target, QWidget* Parent);
QWidget* MakeOptionButton(Control& Target, QWidget* Parent);
QWidget* MakeTextField(Control& Target, QWidget* Parent);
QWidget* MakeLabel(Control& Target, QWidget* Parent);
QWidget* MakeListBox(Control& Target, QWidget* Parent);
QWidget* MakeComboBox(Control& Target, QWidget* Parent);
QWidget* MakeScrollBar(Control& Target, QWidget* Parent);
QWidget* MakeSpinButton(Control& Target, QWidget* Parent);
QWidget* MakePictureSurface(Control& Target, QWidget* Parent);
QWidget* MakeGrid(Control& Target, QWidget* Parent);
QWidget* MakeChart(Control& Target, QWidget* Parent);
QWidget* MakeRenderControl(Control& Target, QWidget* Parent);
QWidget* MakeToolButton(Control& Target, QWidget* Parent);
QWidget* MakeStatusLine(Control& Target, QWidget* Parent);

}  // namespace zelvanor
