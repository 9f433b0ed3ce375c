#include <cmath>
#include <filesystem>
#include <limits>
#include <numbers>
#include <random>

#include "Support.h"
#include "molecule/AtomSelection.h"
#include "molecule/ElementLook.h"
#include "molecule/FirstView.h"
#include "molecule/MoleculeView.h"
#include "molecule/MouseDrag.h"
#include "platform/Picture.h"
#include "platform/RenderRaster.h"
#include "platform/RenderScene.h"
#include "settings/ColorSets.h"

namespace zelvanor::test {

namespace {

constexpr ViewMatrix Identity{{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {0, 0, 0}}};
constexpr Double RightAngle = std::numbers::pi / 2;

// Fits the control to a size in pixels and to one pixel a coordinate unit.
void ResetView(int Width, int Height) {
  RenderControl& View = Main.MolRender1;
  View.Width = TwipsFromPixels(Width);
  View.Height = TwipsFromPixels(Height);
  View.AtomRenderType = AtomSpheres;
  View.BondRenderType = BondLines;
  View.BackColor = White;
  View.LabelColor = Rgb(255, 255, 0);
  View.MarkColor = Rgb(0, 255, 0);
  View.Monochrome = View.SimpleDrawing = false;
  SetAtomCount(View, 0);
  SetViewTransform(View, Identity);
}

class MoleculeTest : public ProgramTest {
 protected:
  MoleculeTest() {
    ShownMolecule = {};
    ForgetSelection();
    ResetView(200, 100);
  }

  // Atoms by place and radius, all in grey, bonded in the order in which they stand.
  void PutAtoms(const std::vector<std::array<Double, 4>>& Places, int Order = 1) {
    const int Count = static_cast<int>(Places.size());
    SetAtomCount(View, Count);
    for (int Atom = 0; Atom < Count; ++Atom) {
      const auto& [X, Y, Z, Radius] = Places[static_cast<std::size_t>(Atom)];
      SetThisAtom(View, Atom);
      SetXCoordinate(View, X);
      SetYCoordinate(View, Y);
      SetZCoordinate(View, Z);
      SetAtomRadius(View, static_cast<Single>(Radius));
      SetAtomColor(View, Rgb(100, 100, 100));
      if (Order == 0) continue;
      std::vector<RenderBond>& Bonds = View.Atoms[static_cast<std::size_t>(Atom)].Bonds;
      if (Atom > 0) Bonds.push_back({Atom - 1, Order});
      if (Atom + 1 < Count) Bonds.push_back({Atom + 1, Order});
    }
  }

  std::vector<DrawItem> Items() {
    BuildScene(View, Scene);
    return Scene.Items;
  }
  int CountForm(DrawForm Form) {
    int Count = 0;
    for (const DrawItem& Item : Items()) Count += Item.Form == Form ? 1 : 0;
    return Count;
  }

  RenderControl& View = Main.MolRender1;
  RenderScene Scene;
};

TEST_F(MoleculeTest, TurningAboutAPointKeepsItInPlace) {
  ViewMatrix M{{{2, 0.5, 0}, {0, 2, 0.25}, {1, 0, 2}, {5, 0, 0}}};
  SetViewTransform(View, M);
  RotateAboutCentre(View, 0.3, -1.1, 2.5, {0, 0, 0});
  EXPECT_NEAR(GetViewTransform(View, 9), 5, 1e-6);
  EXPECT_NEAR(GetViewTransform(View, 10), 0, 1e-6);
  const ViewVector Centre{1.5, -2.5, 3.5};
  ViewVector Before = Centre;
  GetViewTransform(View, M);
  TransformPoint(Before, M);
  RotateAboutCentre(View, -0.7, 0.2, 0.9, Centre);
  ViewVector After = Centre;
  GetViewTransform(View, M);
  TransformPoint(After, M);
  for (std::size_t C = 0; C < 3; ++C) EXPECT_NEAR(After[C], Before[C], 1e-5);
  // The shifts are Singles: what a Single can't hold of the translation is turned with the rest.
  SetViewTransform(View, ViewMatrix{{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {0.1, 0, 0}}});
  RotateAboutCentre(View, 0, 0, RightAngle, {0, 0, 0});
  EXPECT_NEAR(GetViewTransform(View, 9), Double{0.1F}, 1e-15);
  EXPECT_NEAR(GetViewTransform(View, 10), 0.1 - Double{0.1F}, 1e-15);
}

TEST_F(MoleculeTest, FirstSightLooksDownTheShortestAxis) {
  struct Row {
    const char* What;
    std::vector<std::array<Double, 4>> Atoms;  // longest along z, shortest along x
    Double MostOverlap;
  };
  const Row Rows[] = {
      {"flat", {{0, 1, 0, 0.3}, {0, -1, 1, 0.3}, {0, 1, 5, 0.3}, {0, -1, -4, 0.3}}, 0},
      {"one behind another", {{0.6, 0, 0, 0.3}, {-0.6, 0, 0, 0.3}, {0, 1, 4, 0.3}, {0, 1, -4, 0.3}}, 0.1},
      {"one atom", {{1, 2, 3, 0.3}}, 0},
  };
  for (const Row& Each : Rows) {
    PutAtoms(Each.Atoms, 0);
    const ViewMatrix M = FindFirstView(View);
    ViewVector Along{0, 0, 1};
    TransformPoint(Along, M);
    EXPECT_GT(std::fabs(Along[0]), Each.Atoms.size() > 1 ? 0.8 : -1) << Each.What;
    for (std::size_t A = 0; A < Each.Atoms.size(); ++A) {
      for (std::size_t B = 0; B < A; ++B) {
        ViewVector Apart{};
        for (std::size_t C = 0; C < 3; ++C) Apart[C] = Each.Atoms[A][C] - Each.Atoms[B][C];
        TransformPoint(Apart, M);
        EXPECT_GT(std::hypot(Apart[0], Apart[1]), 0.6 - Each.MostOverlap) << Each.What;
      }
    }
  }
}

TEST_F(MoleculeTest, FailsWhereNumbersEnd) {
  ViewMatrix M = Identity;
  M[0][0] = M[1][0] = M[3][0] = 1.5e308;
  EXPECT_EQ(FailureOf([&] {
              ViewMatrix Turned = M;
              Turned[0][1] = -1.5e308;
              RotateAxis(std::numbers::pi / 4, 2, Turned);
            }),
            "Overflow");
  // Too large for a Single; the control keeps its matrix.
  SetViewTransform(View, M);
  EXPECT_EQ(FailureOf([&] { RotateAboutCentre(View, 0, 0, 1, {0, 0, 0}); }), "Overflow");
  EXPECT_EQ(GetViewTransform(View, 9), 1.5e308);
  TurnMolecule(7);
  EXPECT_EQ(GetViewTransform(View, 0), 1.5e308);
}

TEST_F(MoleculeTest, DrawsFromBackToFront) {
  PutAtoms({{0, 0, 30, 5}, {0, 0, -30, 5}, {50, 0, 0, 5}}, 0);
  const std::vector<DrawItem> All = Items();
  ASSERT_EQ(All.size(), 3U);
  EXPECT_EQ(All[0].Atom, 1);
  EXPECT_EQ(All[1].Atom, 2);
  EXPECT_EQ(All[2].Atom, 0);
  // From the middle of a surface of 200 by 100 pixels.
  EXPECT_FLOAT_EQ(All[1].X1, 150);
  EXPECT_FLOAT_EQ(All[1].Y1, 50);
  EXPECT_FLOAT_EQ(All[1].Size, 5);
}

// A bond that leads to the back is hidden by its atom's ball, one that leads to the viewer covers it.
TEST_F(MoleculeTest, PutsBondsBetweenTheirAtoms) {
  PutAtoms({{0, 0, -20, 5}, {0, 30, 20, 5}});
  SetThisAtom(View, 1);
  SetAtomColor(View, White);
  std::vector<std::pair<DrawForm, int>> Order;
  for (const DrawItem& Item : Items()) Order.emplace_back(Item.Form, Item.Atom);
  const std::vector<std::pair<DrawForm, int>> Expected = {
      {DrawForm::Sphere, 0}, {DrawForm::Line, 0}, {DrawForm::Line, 1}, {DrawForm::Sphere, 1}};
  EXPECT_EQ(Order, Expected);
}

// Bonds have the colours of their atoms, sticks and cylinders one of their own: where both halves are alike, they are
// one.
TEST_F(MoleculeTest, DrawsEachStyleInItsForms) {
  struct Row {
    int AtomType;
    int BondType;
    int Order;
    bool Split;  // the two atoms have different colours
    DrawForm Form;
    int Count;
  };
  const Row Rows[] = {
      {1, 1, 1, false, DrawForm::Disc, 2},     {2, 1, 1, false, DrawForm::Disc, 2},
      {3, 1, 1, false, DrawForm::Sphere, 2},   {2, 1, 3, true, DrawForm::Line, 1},
      {2, 2, 1, false, DrawForm::Line, 1},     {2, 2, 1, true, DrawForm::Line, 2},
      {2, 2, 2, true, DrawForm::Line, 4},      {2, 2, 3, true, DrawForm::Line, 6},
      {2, 2, 4, true, DrawForm::Line, 2},      {2, 2, 4, true, DrawForm::DashedLine, 2},
      {3, 3, 1, true, DrawForm::Line, 0},      {3, 3, 1, true, DrawForm::Cylinder, 1},
      {3, 3, 2, false, DrawForm::Cylinder, 2}, {1, 3, 1, false, DrawForm::Sphere, 2},
      {1, 1, 1, false, DrawForm::Label, 0},
  };
  for (const Row& R : Rows) {
    PutAtoms({{-20, 0, 0, 5}, {20, 0, 0, 5}}, R.Order);
    if (R.Split) View.Atoms[1].Color = White;
    View.AtomRenderType = R.AtomType;
    View.BondRenderType = R.BondType;
    EXPECT_EQ(CountForm(R.Form), R.Count) << R.AtomType << R.BondType << R.Order << R.Split;
    // A bond that only one of the two lists, whichever, is drawn as the same.
    const std::size_t Silent = R.Order % 2 == 0 ? 0 : 1;
    View.Atoms[Silent].Bonds.clear();
    EXPECT_EQ(CountForm(R.Form), R.Count) << R.AtomType << R.BondType << R.Order << R.Split;
  }
}

TEST_F(MoleculeTest, DashesAromaticBondsInsideTheRing) {
  std::vector<std::array<Double, 4>> Ring;
  for (int Atom = 0; Atom < 6; ++Atom) {
    const Double Angle = Atom * std::numbers::pi / 3;
    Ring.push_back({40 * std::cos(Angle), 40 * std::sin(Angle), 0, 4});
  }
  PutAtoms(Ring, AromaticBond);
  View.Atoms[0].Bonds.push_back({5, AromaticBond});
  View.Atoms[5].Bonds.push_back({0, AromaticBond});
  const Double RingDistance = 40 * std::cos(std::numbers::pi / 6);
  int Dashes = 0;
  for (const DrawItem& Item : Items()) {
    if (Item.Form != DrawForm::DashedLine) continue;
    ++Dashes;
    EXPECT_LT(std::hypot((Item.X1 + Item.X2) / 2 - 100, (Item.Y1 + Item.Y2) / 2 - 50), RingDistance);
  }
  EXPECT_EQ(Dashes, 6);
}

TEST_F(MoleculeTest, MarksAndLabelsStayReadable) {
  PutAtoms({{0, 0, 0, 5}, {40, 0, 0, 5}}, 0);
  View.Atoms[0].Label = "C";
  View.Atoms[1].Label = "N";
  View.Atoms[1].Color = View.MarkColor;
  View.AtomRenderType = AtomLabels;
  std::vector<DrawItem> All = Items();
  ASSERT_EQ(All.size(), 2U);
  EXPECT_EQ(All[0].Fill, View.LabelColor);
  EXPECT_EQ(All[0].Edge, Black);
  EXPECT_EQ(All[1].Fill, View.MarkColor);
  View.LabelColor = Rgb(0, 0, 90);
  EXPECT_EQ(Items()[0].Edge, White);

  View.Monochrome = true;
  View.BackColor = Rgb(1, 2, 3);
  View.MarkColor = View.Atoms[1].Color = Rgb(128, 128, 128);
  View.AtomRenderType = AtomDisks;
  PutAtoms({{0, 0, 0, 5}, {40, 0, 0, 5}});
  View.Atoms[0].Color = Rgb(0, 0, 255);
  View.Atoms[1].Color = View.MarkColor;
  All = Items();
  EXPECT_EQ(Scene.Background, White);
  for (const DrawItem& Item : All) {
    EXPECT_TRUE((Item.Fill & 255) == ((Item.Fill >> 8) & 255) && (Item.Fill & 255) == (Item.Fill >> 16)) << Item.Fill;
    if (Item.Form != DrawForm::Disc) continue;
    const bool Marked = Item.Atom == 1;
    EXPECT_TRUE(Marked ? Item.Fill == View.MarkColor : (Item.Fill & 255) > 128 + 30) << Item.Fill;
  }
}

TEST_F(MoleculeTest, LeavesOutWhatCannotShow) {
  PutAtoms({{0, 0, 0, 5},
            {5000, 0, 0, 5},
            {0, -5000, 0, 5},
            {std::numeric_limits<Double>::quiet_NaN(), 0, 0, 5},
            {0, 0, std::numeric_limits<Double>::infinity(), 5},
            {1e300, 1e300, 1e300, 5}},
           0);
  ASSERT_EQ(Items().size(), 1U);
  EXPECT_EQ(PickAtom(View, 100, 50), 0);
}

// A picture with a row and a column round it that nothing may touch.
struct GuardedPicture {
  static constexpr int Width = 40;
  static constexpr int Height = 30;
  static constexpr std::uint32_t Guard = 0x01020304;
  std::vector<std::uint32_t> Stored = std::vector<std::uint32_t>((Width + 2) * (Height + 2), Guard);
  PixelPicture Target{&Stored[Width + 3], Width, Height, Width + 2, 1};
  ShadeTables Shades;

  std::uint32_t At(int X, int Y) const { return Target.Pixels[Y * Target.RowLength + X]; }
  int CountGuards() const { return static_cast<int>(std::count(Stored.begin(), Stored.end(), Guard)); }
};

TEST_F(MoleculeTest, PaintsFormsWhereTheyAre) {
  for (const bool Plain : {false, true}) {
    GuardedPicture Picture;
    FillPicture(Picture.Target, White);
    DrawItem Disc{.Form = DrawForm::Disc, .X1 = 10, .Y1 = 10, .Size = 5, .Fill = Rgb(255, 0, 0), .Edge = Black};
    DrawForms(Picture.Target, Disc, Plain, Picture.Shades);
    EXPECT_EQ(Picture.At(10, 10), 0xffff0000U);
    EXPECT_EQ(Picture.At(2, 10), 0xffffffffU);
    EXPECT_EQ(Picture.At(5, 5), 0xffffffffU) << "the corner of its box";
    // A level line of 4 pixels and a steep one.
    const DrawItem Line{
        .Form = DrawForm::Line, .X1 = 20, .Y1 = 20, .X2 = 35, .Y2 = 20, .Size = 4, .Fill = Black, .Edge = Black};
    DrawForms(Picture.Target, Line, Plain, Picture.Shades);
    for (const int X : {20, 27, 34}) EXPECT_EQ(Picture.At(X, 20), 0xff000000U) << X;
    EXPECT_EQ(Picture.At(18, 20), 0xffffffffU);
    EXPECT_EQ(Picture.At(37, 20), 0xffffffffU);
    EXPECT_EQ(Picture.At(27, 24), 0xffffffffU);
    EXPECT_EQ(Picture.At(27, 15), 0xffffffffU);
  }
  // A sphere is lighter at its upper left, a cylinder above its middle.
  GuardedPicture Picture;
  FillPicture(Picture.Target, White);
  const Colour Grey = Rgb(120, 120, 120);
  DrawForms(Picture.Target, {.Form = DrawForm::Sphere, .X1 = 10, .Y1 = 10, .Size = 9, .Fill = Grey}, false,
            Picture.Shades);
  EXPECT_GT(Picture.At(7, 7) & 255, Picture.At(13, 13) & 255);
  DrawForms(Picture.Target,
            {.Form = DrawForm::Cylinder, .X1 = 22, .Y1 = 20, .X2 = 38, .Y2 = 20, .Size = 12, .Fill = Grey}, false,
            Picture.Shades);
  EXPECT_GT(Picture.At(30, 18) & 255, Picture.At(30, 24) & 255);
}

TEST_F(MoleculeTest, PaintsNothingOutsideThePicture) {
  std::mt19937 Random(5);
  GuardedPicture Picture;
  const int Guards = Picture.CountGuards();
  FillPicture(Picture.Target, White);
  for (int Round = 0; Round < 20000; ++Round) {
    // From inside to far away, small and huge.
    const float Spread = std::pow(10.0F, static_cast<float>(Random() % 6));
    std::uniform_real_distribution<float> Place(-Spread, Spread + 40);
    const DrawItem Item{.Form = static_cast<DrawForm>(Random() % 5),
                        .X1 = Place(Random),
                        .Y1 = Place(Random),
                        .X2 = Place(Random),
                        .Y2 = Place(Random),
                        .Size = std::fabs(Place(Random)) / 10,
                        .Fill = Rgb(10, 20, 30),
                        .Edge = Black};
    DrawForms(Picture.Target, Item, Random() % 2 == 0, Picture.Shades);
  }
  EXPECT_EQ(Picture.CountGuards(), Guards - GuardedPicture::Width * GuardedPicture::Height);
}

void LoadPair(TextView BondType) {
  Workspace.NumAtoms = 2;
  AllocateAtomTable(2);
  for (int Atom = 0; Atom < 2; ++Atom) {
    Workspace.AtomicNumber[Atom] = 6;
    Workspace.AtomX[Atom] = static_cast<Single>(10 + Atom);
    Workspace.AtomCoordination[Atom] = 1;
    Workspace.AtomNeighbour(Atom, 0) = 1 - Atom;
    Workspace.AtomBondType(Atom, 0) = BondType;
  }
  Workspace.MoleculeLoaded = True;
}

TEST_F(MoleculeTest, TakesASystemInOnceAndCountsFromItsMiddle) {
  LoadPair("d");
  ShowMoleculeView();
  EXPECT_EQ(Shown().Statuses, (Texts{" Loading atom 1 of 2", " Loading atom 2 of 2", " Loaded 2 atoms."}));
  EXPECT_EQ(View.Atoms[0].X, -0.5);
  EXPECT_EQ(View.Atoms[1].X, 0.5);
  EXPECT_EQ(View.Atoms[1].Bonds[0].Order, 2);
  EXPECT_EQ(View.Atoms[1].Bonds[0].Neighbor, 0);
  Shown() = {};
  ShowMoleculeView();
  EXPECT_TRUE(Shown().Statuses.empty());
  // One bond type less, or a place, is another system.
  LoadPair("x");
  ShowMoleculeView();
  EXPECT_EQ(Shown().Statuses.back(), " Bad bond order: x");
  EXPECT_EQ(View.Atoms[0].Bonds[0].Order, 1);
  // The selection stays, but for atoms beyond it.
  Main.NumSelectedAtoms = 2;
  SetArray(Main.SelectedAtom, {7, 1});
  Main.SelectedAtomColor.ReDim(2);
  Workspace.AtomZ[1] = 1;
  ShowMoleculeView();
  EXPECT_EQ(Main.NumSelectedAtoms, 1);
  EXPECT_EQ(Main.SelectedAtom[0], 1);
  EXPECT_EQ(View.Atoms[1].Color, Settings.SelectionColor);
}

TEST_F(MoleculeTest, HoldsNothingOfATableThatIsBroken) {
  LoadPair("s");
  ShowMoleculeView();
  Workspace.NumAtoms = 5;
  EXPECT_EQ(FailureOf(ShowMoleculeView), "Subscript out of range");
  Workspace.NumAtoms = 2;
  Workspace.AtomNeighbour(1, 0) = 7;
  EXPECT_EQ(FailureOf(ShowMoleculeView), "Subscript out of range");
  EXPECT_EQ(GetAtomCount(View), 0);
  LoadPair("s");
  ShowMoleculeView();
  EXPECT_EQ(GetAtomCount(View), 2);
}

TEST_F(MoleculeTest, TakesTheLookOfTheElements) {
  Settings.IniFile = TempPath("none.ini");
  InitColorSets();
  InitRadiusSets();
  SelectColorSet(0);
  SelectRadiusSet(0);
  const ElementLooks Usual = FindElementLooks();
  EXPECT_EQ(Usual[8].Color, Rgb(255, 13, 13));
  EXPECT_FLOAT_EQ(Usual[6].Radius, 0.38F);

  // The example file holds the same ones.
  Settings.IniFile = (std::filesystem::path(__FILE__).parent_path() / "../examples/nmr.ini").string();
  SelectColorSet(0);
  SelectRadiusSet(0);
  const ElementLooks Shipped = FindElementLooks();
  for (std::size_t Element = 0; Element < Usual.size(); ++Element) {
    EXPECT_EQ(Shipped[Element].Color, Usual[Element].Color) << Element;
    EXPECT_EQ(Shipped[Element].Radius, Usual[Element].Radius) << Element;
  }
  // A section of the user's own counts, also one that says what no section would say; other radii are drawn in full.
  Settings.IniFile = WriteFile("own.ini", "[MorvantisColors]\nDefault=RGB(128,128,128)\n[CPKRadii]\nC=1.7\n");
  SelectColorSet(0);
  SelectRadiusSet(1);
  const ElementLooks Own = FindElementLooks();
  EXPECT_EQ(Own[8].Color, Rgb(128, 128, 128));
  EXPECT_FLOAT_EQ(Own[6].Radius, 1.7F);
  EXPECT_TRUE(Shown().Boxes.empty());
}

TEST_F(MoleculeTest, DrawsSimplyWhileALargeSystemMoves) {
  std::vector<std::array<Double, 4>> Many(2001, {0, 0, 0, 3});
  PutAtoms(Many, 0);
  Main.MouseMode = 2;
  MolRender1_MouseDown(LeftButton, 0, 100, 100);
  EXPECT_EQ(CountForm(DrawForm::Sphere), 0);
  EXPECT_TRUE(Scene.Simple);
  MolRender1_MouseUp(LeftButton, 0, 100, 100);
  EXPECT_EQ(CountForm(DrawForm::Sphere), 2001);
  // The wheel: four notches double.
  MolRender1_MouseWheel(4);
  EXPECT_DOUBLE_EQ(GetViewTransform(View, 0), 2);
  MolRender1_MouseWheel(1e6);
  EXPECT_DOUBLE_EQ(GetViewTransform(View, 0), 2);
}

}  // namespace

}  // namespace zelvanor::test
