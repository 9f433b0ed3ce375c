#include "Support.h"
#include "backend/PeakMap.h"
#include "backend/SpectInput.h"
#include "files/DocumentReader.h"
#include "files/DocumentWriter.h"
#include "measured/Integrals.h"
#include "measured/MeasuredTrace.h"
#include "measured/MeasuredView.h"
#include "measured/Multiplets.h"
#include "report/Report.h"
#include "spectrum/SpectrumDrawing.h"

namespace zelvanor::test {
namespace {

WorkspaceState& W = Workspace;

// Ethanol in the gas phase, at 100 MHz: OH, two CH2, three CH3, as NMR atoms without a molecule.
class MeasuredViewTest : public ProgramTest {
 protected:
  MeasuredViewTest() {
    W.NumNMRAtoms = 6;
    AllocateAtomTable(6);
    for (int Atom = 0; Atom < 6; ++Atom) W.AtomElement[Atom] = TextView("H");
    SetArray(W.NMRAtom, {1, 2, 3, 4, 5, 6});
    SetArray(W.NMRAtomicNumber, {1, 1, 1, 1, 1, 1});
    SetArray(W.ChemicalShift, {2.6, 3.7, 3.7, 1.2, 1.2, 1.2});
    SetMatrix(W.Coupling, {{0, 0, 0, 0, 0, 0},
                           {0, 0, -10, 7, 7, 7},
                           {0, -10, 0, 7, 7, 7},
                           {0, 7, 7, 0, -12, -12},
                           {0, 7, 7, -12, 0, -12},
                           {0, 7, 7, -12, -12, 0}});
    W.EquivalentSetSize[0] = 2;
    W.EquivalentSetSize[1] = 3;
    for (int Member = 0; Member < 2; ++Member) W.EquivalentAtom(0, Member) = Member + 2;
    for (int Member = 0; Member < 3; ++Member) W.EquivalentAtom(1, Member) = Member + 4;
    W.ShieldingAvailable = W.CouplingAvailable = True;
    W.NMRFrequency = 100;
  }

  // Each multiplet as "ATOMS: WORDS".
  static Text Multiplets() {
    Text All;
    for (const Multiplet& Each : FindMultiplets()) {
      All += Join(All.empty() ? "" : "; ", MultipletAtoms(Each), ": ", MultipletWords(Each));
    }
    return All;
  }
};

TEST_F(MeasuredViewTest, Multiplets) {
  EXPECT_EQ(FindSiteOfAtoms(), (std::vector<int>{1, 2, 2, 3, 3, 3}));
  EXPECT_EQ(Multiplets(), "2(H), 3(H): 3.70 q, J = 7.0 Hz; 1(H): 2.60 s; 4(H), 5(H), 6(H): 1.20 t, J = 7.0 Hz");
  EXPECT_EQ(SplitFirstOrder(FindMultiplets()[0], 1), (std::vector<Double>{-10.5, -3.5, 3.5, 10.5}));
  W.Coupling(1, 0) = 5;  // the hydroxyl proton couples too
  EXPECT_EQ(Multiplets().substr(0, 42), "2(H), 3(H): 3.70 qd, J = 7.0, 5.0 Hz; 1(H)");
  W.NMRFrequency = 10;  // 11 Hz apart
  EXPECT_EQ(Multiplets().substr(0, 19), "2(H), 3(H): 3.70 m;");
  W.CouplingAvailable = False;
  EXPECT_EQ(Multiplets(), "");
}

// The same as a paper lists them, ranges with an en dash.
TEST_F(MeasuredViewTest, PublicationText) {
  struct Row {
    void (*Change)();
    const char* Line;
  };
  const Row Rows[] = {
      {[] {}, "1H NMR (100 MHz, calculated) δ 3.70 (q, J = 7.0 Hz, 2H), 2.60 (s, 1H), 1.20 (t, J = 7.0 Hz, 3H)."},
      {[] {
         W.MeasuredSolvent = "CDCl3";
         W.CouplingAvailable = False;
       },
       "1H NMR (100 MHz, CDCl3, calculated) δ 3.70 (2H), 2.60 (1H), 1.20 (3H)."},
      {[] {
         W.CouplingAvailable = True;
         W.Shielding[0] = -3.5F;
         W.Coupling(0, 1) = W.Coupling(1, 0) = 5;
       },
       "1H NMR (100 MHz, CDCl3, calculated) δ 3.83–3.57 (m, 2H), 3.55–3.45 (m, 1H), 1.20 (t, J = 7.0 Hz, 3H)."},
      {[] { W.Shielding[0] = -3.6F; },
       "1H NMR (100 MHz, CDCl3, calculated) δ 3.83–3.55 (m, 3H), 1.20 (t, J = 7.0 Hz, 3H)."},
      {[] {
         SetArray(W.Shielding, {-29.5, -162.14, -162.14, -20.3, -20.3, -20.3});
         W.SpectraType = 1;
         SetArray(W.NMRAtomicNumber, {6, 6, 6, 6, 6, 6});
         W.NumLabelledAtoms = 6;
         W.LabelledAtom = W.NMRAtom;
       },
       "13C NMR (100 MHz, CDCl3, calculated) δ 162.1 (qd, J = 7.0, 5.0 Hz, 2C), 29.5 (t, J = 5.0 Hz), "
       "20.3 (t, J = 7.0 Hz, 3C)."}};
  W.ReferenceShielding.ReDim(NumReferenceEntries);
  SetArray(W.Shielding, {-2.6, -3.7, -3.7, -1.2, -1.2, -1.2});
  for (const Row& Each : Rows) {
    Each.Change();
    EXPECT_EQ(BuildPublicationText(), Text(Each.Line) + "\n");
  }
}

// The map of the lines: read, kept in the document, and refused where it does not belong to the spectrum.
TEST_F(MeasuredViewTest, PeakMap) {
  Settings.SpectOutputFile = TempPath("nmrspect.out");
  const auto Take = [](const char* Content) {
    SetPeaks({{-370, 1}, {-260, 1}, {-120, 3}});
    W.SpectraAvailable = True;
    WriteFile("nmrspect.map", Content);
    ReadPeakMap();
    return W.PeakSiteLines;
  };
  for (const char* Bad : {"", "map 2 3\n1:1\n1:1\n1:1\n", "map 1 2\n2:100\n1:100\n", "map 1 3\n2:100\n1:100\n",
                          "map 1 3\n2:100\n4:100\n3:1\n", "map 1 3\n2\n1:1\n1:1\n"}) {
    EXPECT_EQ(Take(Bad), 0) << Bad;
  }
  EXPECT_EQ(Take("map 1 3\n2:70 1:25 3:5\n1:100\n3:100\n"), 3);
  EXPECT_EQ(DescribePeakAtoms(0), "2(H), 3(H) 70%, 1(H) 25%");
  EXPECT_EQ(DescribePeakAtoms(2), "4(H), 5(H), 6(H) 100%");
  ShowAtomsOfPeak(2);
  EXPECT_EQ(MeasuredView.Picked, 3);
  MarkLinesOfAtom(1);
  EXPECT_EQ(MeasuredView.Marked, std::vector<int>{2});
  RemovePeakMap();
  EXPECT_FALSE(Exists(TempPath("nmrspect.map")));
  EXPECT_EQ(W.PeakSiteLines, 0);
}

// A trace keeps its least and largest values in every column, whatever the number of points, and stays in its rows.
TEST_F(MeasuredViewTest, Traces) {
  for (const int Count : {2, 7, 100, 5000}) {
    std::vector<Long> Points(static_cast<std::size_t>(Count));
    for (int Point = 0; Point < Count; ++Point) Points[static_cast<std::size_t>(Point)] = Point % 3;
    Points[static_cast<std::size_t>(Count / 2)] = 50;
    Points.back() = 1000;
    ClearPicture(Main.Spectrum1);
    DrawingContext Context = GetDC(Main.Spectrum1);
    DrawTrace(Context, Points,
              {.First = 0, .Step = 100.0 / (Count - 1), .Scale = 1, .Foot = 90, .Top = 0, .Bottom = 90, .Width = 101});
    int Highest = 90;
    bool HasSpike = false;
    for (const PictureLine& Line : Main.Spectrum1.Lines) {
      EXPECT_TRUE(Line.Y2 >= 0 && Line.Y2 <= 90 && Line.X2 >= Line.X1 && Line.X2 <= 101) << Count;
      Highest = std::min(Highest, Line.Y2);
      HasSpike = HasSpike || Line.Y2 == 40;
    }
    EXPECT_EQ(Highest, 0) << Count;
    EXPECT_TRUE(HasSpike || Count == 2) << Count;
    EXPECT_LE(Main.Spectrum1.Lines.size(), 5U * 101U);
  }
}

TEST_F(MeasuredViewTest, Integrals) {
  W.MeasuredCount = 101;
  std::vector<Long> Points(101, 0);
  Points[20] = 300;
  Points[70] = 100;
  W.MeasuredPoint.Assign(Points);
  W.MeasuredFirst = 1000;
  W.MeasuredLast = 0;
  W.MeasuredMHz = 100;
  AddIntegral(7, 9);
  AddIntegral(2.9, 3.1);
  EXPECT_EQ(IntegralValues(), (std::vector<Double>{3, 1}));
  W.IntegralTotal = 6;
  EXPECT_EQ(IntegralValues(), (std::vector<Double>{4.5, 1.5}));
  AddIntegral(2, 3.1);  // the low end has moved
  EXPECT_EQ(W.IntegralCount, 2);
  RemoveIntegral(0);
  EXPECT_EQ(IntegralValues(), std::vector<Double>{6});
}

}  // namespace
}  // namespace zelvanor::test
