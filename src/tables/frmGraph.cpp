#include "tables/frmGraph.h"

#include "platform/Form.h"
#include "platform/Services.h"
#include "shell/Frame.h"

namespace zelvanor {

namespace {

constexpr int RoomBelow = 1000;  // twips

struct GraphForm {
  Form frmGraph{"frmGraph"};
  ChartControl Graph1{&frmGraph, "Graph1"};
};

GraphForm Window;

void Graph_Resize() {
  const Form& Frame = Window.frmGraph;
  const int Height = Frame.Height > RoomBelow ? Frame.Height - RoomBelow : Window.Graph1.Height;
  SetPlace(Window.Graph1, Window.Graph1.Left, Window.Graph1.Top, Frame.Width, Height);
}

void CopyChart() {
  IgnoreFailure([] { Platform.SetClipboard(""); });
  IgnoreFailure([] { WriteMember(Window.Graph1, ChartCommand, ChartCopy); });
}

void Graph_KeyDown(int& KeyCode, int Shift) {
  if (KeyCode != 'C' || Shift != CtrlKey) return;
  KeyCode = 0;
  CopyChart();
}

}  // namespace

ChartControl& Graph() { return Window.Graph1; }

void ShowGraph() { ShowModal(Window.frmGraph); }

void BuildGraphForm() {
  constexpr int FirstWidth = 12000;  // twips
  constexpr int FirstHeight = 8500;
  Window.frmGraph.Caption = "NMR Graph";
  Window.frmGraph.Width = FirstWidth;
  Window.frmGraph.Height = FirstHeight;
  Window.frmGraph.Load = Graph_Resize;
  Window.frmGraph.Resize = Graph_Resize;
  Window.frmGraph.KeyDown = Graph_KeyDown;
  Window.Graph1.AccessibleName = "Bar graph";
  Window.Graph1.CopyGesture = CopyChart;
  Window.frmGraph.Layout = ColumnOf({ItemOf(Window.Graph1)});
}

}  // namespace zelvanor
