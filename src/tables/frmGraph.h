#pragma once

#include "platform/Chart.h"

namespace zelvanor {

// The window "NMR Graph" with its chart.
void BuildGraphForm();
ChartControl& Graph();
void ShowGraph();

}  // namespace zelvanor
