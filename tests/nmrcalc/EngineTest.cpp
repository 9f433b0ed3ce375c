#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <thread>

#include "Helpers.h"
#include "nmrcalc/Command.h"
#include "nmrcalc/engines/NwchemInput.h"
#include "nmrcalc/engines/NwchemOutput.h"
#include "nmrcalc/engines/Supervise.h"

namespace nmrcalc::testing {
namespace {

// Ethanol's heavy atoms with a chlorine for the methyl's neighbour: C1-C2-O3, Cl4 on C1; hydrogens are left to the
// reader.
std::string ParamText(const std::string& Options, const std::string& Quantum = "", int NumNMRAtoms = 2) {
  std::string Text = "CalculateShielding = Yes\nCalculateShieldTensor = Yes\n" + Options + "NMRSelectionBegin\n" +
                     std::to_string(NumNMRAtoms) + "\n";
  for (int K = 1; K <= NumNMRAtoms; ++K) Text += "mol 1 atom " + std::to_string(K) + "\n";
  return Text + "NMRSelectionEnd\n" + Quantum +
         "AtomsBegin\n4\nmol 1\natom 1 - C ** - 0.1 0 0 0 2 2 s 4 s\natom 2 - C ** - 0.2 1.5 0 0 2 1 s 3 s\n"
         "atom 3 - O ** - -0.4 2.2 1.2 0 1 2 s\natom 4 - S ** - 0.1 -1.7 0 0 1 1 s\nendmol 1\nAtomsEnd\n";
}

std::string QuantumText(const std::vector<int>& Atoms) {
  std::string Text = "QuantumSelectionBegin\n" + std::to_string(Atoms.size()) + "\n";
  for (const int Atom : Atoms) Text += "mol 1 atom " + std::to_string(Atom) + "\n";
  return Text + "QuantumSelectionEnd\n";
}

std::string InputOf(const std::string& Options, const std::string& Quantum = "") {
  const TemporaryDirectory Folder;
  const ParamInput Input = ReadParamInput(Folder.Write("nmrparam.in", ParamText(Options, Quantum)));
  const Level Theory = ReadLevel(NMRCALC_DATA, "", Input.Quantum.Method);
  return ShieldingInput(Input, CutQuantumRegion(Input), Theory);
}

TEST(Engines, EveryOptionActsOnTheInput) {
  struct Row {
    const char* Option;
    const char* Wanted;
  };
  const Row Rows[] = {{"", " S library pcsseg-1\n"},
                      {"", " convergence energy 0.000000100 density 0.000010000 gradient 0.000500000\n"},
                      {"SemiEmpiricalMethod = KRDO1\n", " xc hfexch 1.0\n"},
                      {"SemiEmpiricalMethod = KRDO1\n", " S library 6-31g\n"},
                      {"SemiEmpiricalMethod = KRDO1\nIncludeDOrbitalsForSecondRow = Yes\n", " S library pcsseg-1\n"},
                      {"ModifySlaterExponents = No\n", " C library 6-31g*\n"},
                      {"ComputeThreeCenterTerms = Yes\n", " tolerances tight\n"},
                      {"SCFAccelerateConvergence = Yes\n", " convergence fast\n"},
                      {"SCFConvergenceLimit = 0.00001\n", " convergence energy 0.000000001 density 0.000000010 "},
                      {"SCFIterationLimit = 7\n", " iterations 7\n"},
                      {"TotalCharge = -2\n", "charge -2\n"}};
  for (const Row& Item : Rows) EXPECT_NE(InputOf(Item.Option).find(Item.Wanted), std::string::npos) << Item.Option;
}

TEST(Engines, WhatHasNoClosedShellOrNoCapIsRefused) {
  struct Row {
    const char* Options;
    std::vector<int> Quantum;
    const char* Words;
  };
  const Row Rows[] = {{"SpinMultiplicity = 3\n", {}, "open shell"},
                      {"TotalCharge = 1\n", {}, "no closed shell"},
                      {"SCFIterationLimit = 0\n", {}, "above 0"},
                      {"", {1, 2, 4}, "no closed shell"},  // one bond cut: an odd number of electrons
                      {"TotalCharge = 1\n", {1, 3, 4}, "not among the quantum atoms"},
                      {"SemiEmpiricalMethod = PM9\n", {}, "no level for the method PM9"}};
  for (const Row& Item : Rows) {
    const std::string Quantum = Item.Quantum.empty() ? "" : QuantumText(Item.Quantum);
    EXPECT_NE(FailureOf([&] { InputOf(Item.Options, Quantum); }).find(Item.Words), std::string::npos) << Item.Words;
  }
}

// The oxygen is cut off: a hydrogen takes its place on the bond, and its charge has no neighbour to go to. Where the
// cut is beside C1, that atom's charge goes to the sulfur.
TEST(Engines, CutBondsAreCappedAndTheRestIsPointCharges) {
  const std::string Oxygen = InputOf("TotalCharge = -1\n", QuantumText({1, 2, 4}));
  EXPECT_NE(Oxygen.find(" H 2.03914"), std::string::npos) << Oxygen;
  EXPECT_EQ(Oxygen.find("bq "), std::string::npos);
  EXPECT_EQ(Oxygen.find(" O library"), std::string::npos);
  const TemporaryDirectory Folder;
  ParamInput Input = ReadParamInput(Folder.Write("nmrparam.in", ParamText("TotalCharge = 1\n")));
  Input.NMRAtoms = Input.QuantumAtoms = {1, 2};
  const QuantumRegion Region = CutQuantumRegion(Input);
  ASSERT_EQ(Region.Charges.size(), 1U);
  EXPECT_EQ(Region.Charges[0].Place[0], -1.7);
  EXPECT_NEAR(Region.Charges[0].Charge, 0.2, 1e-12);
}

const char* const TensorOutput =
    " (NWChem) 7.0.2\n      Atom:    1  C \n        Total Shielding Tensor\n    188.0827     -0.0010      0.0001\n"
    "     -0.0010    188.0875      0.0005\n      0.0001      0.0005    188.0906\n\n           isotropic =     "
    "188.0869\n"
    "          anisotropy =       0.0056\n\n          Principal Components and Axis System\n"
    "                 1           2           3\n              188.0906    188.0877    188.0825\n";

TEST(Engines, OutputIsJudgedByWhatItHolds) {
  const NwchemOutput Whole = ReadNwchemOutput(std::string(TensorOutput) + " Total times  cpu:        1.7s\n");
  ASSERT_EQ(Whole.Tensors.size(), 1U);
  EXPECT_TRUE(Whole.Finished && Whole.Problem.empty());
  EXPECT_EQ(Whole.Tensors[0].Components[1], -0.0010);
  EXPECT_EQ(Whole.Tensors[0].Principal[2], 188.0825);
  std::string Stars = TensorOutput;
  EXPECT_TRUE(ReadNwchemOutput(Stars.replace(Stars.find("188.0875"), 8, "********")).Tensors.empty());
  const NwchemOutput Pair = ReadNwchemOutput(
      "      Atom    1:  14-N  and Atom    3:   1-H \n      Isotropic Spin-Spin Coupling =      40.0000 Hz\n");
  ASSERT_EQ(Pair.Couplings.size(), 1U);
  EXPECT_EQ(Pair.Couplings[0].Second, 2U);
  EXPECT_NEAR(Pair.Couplings[0].J, -56.11, 0.01);  // of nitrogen-15
  const std::pair<const char*, const char*> Complaints[] = {
      {"Indirect spin-spin coupling not calculated for RHF\n wave functions: needs UHF wave function", "no couplings"},
      {" Calculation failed to converge", "did not converge"},
      {"bas_tag_lib: no such basis available", "no such basis"},
      {"forrtl: No space left on device", "disk is full"}};
  for (const auto& [Text, Words] : Complaints) {
    EXPECT_NE(ReadNwchemOutput(Text).Problem.find(Words), std::string::npos) << Text;
  }
}

// A script in the engine's place: what stage 1 says of it, and that nothing of it is left.
struct FakeEngine {
  TemporaryDirectory Folder{};
  std::string Run(const std::string& Script, const std::string& Settings = "") {
    const std::string Path = Folder.Write("engine", "#!/bin/sh\n" + Script);
    chmod(Path.c_str(), 0755);
    Folder.Write("nmrparam.in", ParamText("", "", 1));
    std::filesystem::create_directories(Folder.Path + "/scratch");
    Folder.Write("nmrback.ini", "[backend]\nShieldingEngine = nwchem\nProcesses = 1\nCacheSize = 0\nScratch = " +
                                    Folder.Path + "/scratch\n" + Settings + "Program = " + Path + "\n");
    RunCommand({.ParameterDirectory = NMRCALC_DATA, .WorkDirectory = Folder.Path, .Stage = 1, .LogPath = ""});
    EXPECT_TRUE(std::filesystem::is_empty(Folder.Path + "/scratch")) << Script;
    return Folder.Read("nmrparam.out");
  }
};

TEST(Engines, EachFailureSaysWhatToDo) {
  struct Row {
    const char* Script;
    const char* Settings;
    const char* Words;
  };
  const Row Rows[] = {
      {"echo '(NWChem) 7.0.2'; kill -9 $$", "", "killed by signal 9"},
      {"echo no such; echo ==== host; exit 1", "",
       "did not start NWChem; check it in Setup, Backend. It said: no such host"},
      {"echo '(NWChem) 7.0.2'; echo '(NWChem) 7.0.2'", "", "srun --mpi=pmi2"},
      {"echo '(NWChem) 7.0.2'; echo 'EXIT STRING: Killed (signal 9)'; exit 9", "", "process of NWChem was killed"},
      {"echo '(NWChem) 7.0.2'; exit 3", "", "exit status 3"},
      {"echo '(NWChem) 9.9'; echo 'Total times  cpu:'", "", "output of NWChem 9.9 could not be understood"},
      {"exit 0", "Launcher = no-such-launcher -n %n\n", "launcher \"no-such-launcher\" was not found"},
      {"exit 0", "Program = /no/such/engine\n", "install the Debian package nwchem-mpich"},
      {"exit 0", "CouplingEngine = other\n", "no engine \"other\""},
      {"exit 0", "Memory = much\n", "Memory"},
      {"exit 0", "Scratch = x\nLevel = b9\n", "no level [b9]"}};
  for (const Row& Item : Rows) {
    FakeEngine Fake;
    const std::string Output = Fake.Run(Item.Script, Item.Settings);
    EXPECT_TRUE(Output.starts_with("ERRMSG: ")) << Item.Script;
    EXPECT_NE(Output.find(Item.Words), std::string::npos) << Output;
  }
}

TEST(Engines, NothingOfARunOutlivesIt) {
  const TemporaryDirectory Folder;
  const std::string Mark = "8643" + std::to_string(getpid() % 10000);
  // It leaves a process in a session of its own behind, and one that takes no notice of SIGTERM.
  const ProgramRun Run{
      .Words = {"/bin/sh", "-c", "setsid sleep " + Mark + " & (trap '' TERM; while :; do sleep 1; done) & sleep 60"},
      .Directory = Folder.Path,
      .OutputPath = Folder.Path + "/out"};
  const auto Start = std::chrono::steady_clock::now();
  RunEnd End = RunEnd::NotStarted;
  RunSupervised(
      Run,
      [](double Seconds) {
        if (Seconds > 0.5) raise(SIGTERM);
      },
      [&](const RunOutcome& Outcome) { End = Outcome.End; });
  EXPECT_EQ(End, RunEnd::Cancelled);
  EXPECT_LT(std::chrono::duration<double>(std::chrono::steady_clock::now() - Start).count(), 3.5);
  EXPECT_NE(std::system(("pgrep -f '^sleep " + Mark + "' >/dev/null").c_str()), 0);
}

}  // namespace
}  // namespace nmrcalc::testing
