#include <benchmark/benchmark.h>

#include <cmath>
#include <vector>

#include "molecule/ViewTransform.h"
#include "platform/RenderRaster.h"
#include "platform/RenderScene.h"

// A step of a drag in the molecule view: turn the matrix, project, colour, sort and, with paint, draw every form into
// the pixels of the window. The floor is the projection of the same atoms alone. The promise is 16 ms with 10,000
// atoms.

namespace zelvanor {

namespace {

constexpr int ViewWidth = 1200;
constexpr int ViewHeight = 900;

// A chain of carbon atoms with two hydrogens each, wound up so that it fills a ball: about as many bonds as atoms, at
// every depth.
void PutChain(RenderControl& Control, int Count) {
  Control.Width = TwipsFromPixels(ViewWidth);
  Control.Height = TwipsFromPixels(ViewHeight);
  SetAtomCount(Control, Count);
  for (int Atom = 0; Atom < Count; ++Atom) {
    const int Carbon = Atom / 3;
    const Double Turn = Carbon * 2.39996;
    const Double Height = 1 - 2.0 * Carbon / Count * 3;
    const Double Round = std::sqrt(std::max(0.0, 1 - Height * Height));
    const Double Radius = 25 + Atom % 3;
    SetThisAtom(Control, Atom);
    SetXCoordinate(Control, Radius * Round * std::cos(Turn));
    SetYCoordinate(Control, Radius * Round * std::sin(Turn));
    SetZCoordinate(Control, Radius * Height);
    SetAtomRadius(Control, Atom % 3 == 0 ? 0.38F : 0.16F);
    SetAtomColor(Control, Atom % 3 == 0 ? Rgb(144, 144, 144) : White);
    std::vector<RenderBond>& Bonds = Control.Atoms[static_cast<std::size_t>(Atom)].Bonds;
    if (Atom % 3 != 0) {
      Bonds.push_back({Atom - Atom % 3, 1});
    } else {
      for (const int Other : {Atom - 3, Atom + 3, Atom + 1, Atom + 2}) {
        if (Other >= 0 && Other < Count) Bonds.push_back({Other, 1});
      }
    }
  }
  ViewMatrix M{{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {0, 0, 0}}};
  MagnifyView(15, M);
  SetViewTransform(Control, M);
}

struct StepRow {
  bool Simple;  // as the view is drawn while the mouse moves
  bool Painted;
};

void DragStep(benchmark::State& State, StepRow Step) {
  RenderControl Control(nullptr, "View");
  PutChain(Control, static_cast<int>(State.range(0)));
  Control.AtomRenderType = AtomSpheres;
  Control.BondRenderType = BondLines;
  Control.SimpleDrawing = Step.Simple;
  RenderScene Scene;
  ShadeTables Shades;
  std::vector<std::uint32_t> Pixels(std::size_t{ViewWidth} * ViewHeight);
  const PixelPicture Target{Pixels.data(), ViewWidth, ViewHeight, ViewWidth, 1};
  for (auto _ : State) {
    RotateAboutCentre(Control, 0.01, 0.02, 0, {});
    BuildScene(Control, Scene);
    benchmark::DoNotOptimize(Scene.Items.data());
    if (!Step.Painted) continue;
    FillPicture(Target, Scene.Background);
    for (const DrawItem& Item : Scene.Items) DrawForms(Target, Item, Scene.Simple, Shades);
    benchmark::DoNotOptimize(Pixels.data());
  }
}

void ProjectionAlone(benchmark::State& State) {
  RenderControl Control(nullptr, "View");
  PutChain(Control, static_cast<int>(State.range(0)));
  for (auto _ : State) {
    Double Sum = 0;
    for (const RenderAtom& Atom : Control.Atoms) Sum += ProjectPoint(Control, Atom.X, Atom.Y, Atom.Z).Depth;
    benchmark::DoNotOptimize(Sum);
  }
}

BENCHMARK(ProjectionAlone)->Arg(10000)->Arg(32000)->Unit(benchmark::kMillisecond);
#define EACH_SIZE ->Arg(10000)->Arg(32000)->Unit(benchmark::kMillisecond)
BENCHMARK_CAPTURE(DragStep, ListAlone, StepRow{true, false}) EACH_SIZE;
BENCHMARK_CAPTURE(DragStep, Plain, StepRow{true, true}) EACH_SIZE;
BENCHMARK_CAPTURE(DragStep, Full, StepRow{false, true}) EACH_SIZE;

}  // namespace

}  // namespace zelvanor
