#include "files/OptionLines.h"

#include <algorithm>
#include <array>

#include "basic/Numbers.h"
#include "platform/TextFiles.h"
#include "workspace/Helpers.h"
#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

struct OptionRow {
  const char* Key;
  Text (*Write)(const WorkspaceState& W);
  void (*Take)(WorkspaceState& W, const Text& Value);  // null: known, but its value is not taken
};

// Text forms and conversions of one member each.
template <auto Member>
Text Number(const WorkspaceState& W) {
  return GeneralForm(W.*Member);
}
template <auto Member>
Text YesNo(const WorkspaceState& W) {
  return TextFromBool(W.*Member);
}
template <auto Member>
void TakeInteger(WorkspaceState& W, const Text& Value) {
  W.*Member = StrictInteger(Value);
}
template <auto Member>
void TakeFlag(WorkspaceState& W, const Text& Value) {
  W.*Member = BoolFromText(Value);
}

using WS = WorkspaceState;

// In the order in which they are written.
constexpr std::array<OptionRow, 14> Options = {{
    {.Key = "SemiEmpiricalMethod",
     .Write = [](const WS& W) { return W.SemiEmpiricalMethod; },
     .Take = [](WS& W, const Text& Value) { W.SemiEmpiricalMethod = Value; }},
    {.Key = "TotalCharge", .Write = Number<&WS::TotalCharge>, .Take = TakeInteger<&WS::TotalCharge>},
    {.Key = "SpinMultiplicity", .Write = Number<&WS::SpinMultiplicity>, .Take = TakeInteger<&WS::SpinMultiplicity>},
    {.Key = "SCFConvergenceLimit",
     .Write = Number<&WS::SCFConvergenceLimit>,
     .Take = [](WS& W, const Text& Value) { W.SCFConvergenceLimit = StrictSingle(Value); }},
    {.Key = "SCFIterationLimit", .Write = Number<&WS::SCFIterationLimit>, .Take = TakeInteger<&WS::SCFIterationLimit>},
    {.Key = "SCFAccelerateConvergence",
     .Write = YesNo<&WS::SCFAccelerateConvergence>,
     .Take = TakeFlag<&WS::SCFAccelerateConvergence>},
    {.Key = "LogPrintLevel", .Write = Number<&WS::LogPrintLevel>, .Take = TakeInteger<&WS::LogPrintLevel>},
    {.Key = "ModifySlaterExponents",
     .Write = YesNo<&WS::ModifySlaterExponents>,
     .Take = TakeFlag<&WS::ModifySlaterExponents>},
    {.Key = "ComputeThreeCenterTerms",
     .Write = YesNo<&WS::ComputeThreeCenterTerms>,
     .Take = TakeFlag<&WS::ComputeThreeCenterTerms>},
    {.Key = "IncludeDOrbitalsForSecondRow",
     .Write = YesNo<&WS::IncludeDOrbitalsForSecondRow>,
     .Take = TakeFlag<&WS::IncludeDOrbitalsForSecondRow>},
    {.Key = "NMRFrequency",
     .Write = Number<&WS::NMRFrequency>,
     .Take = [](WS& W, const Text& Value) { W.NMRFrequency = StrictLong(Value); }},
    {.Key = "CalculateShielding", .Write = YesNo<&WS::CalculateShielding>, .Take = TakeFlag<&WS::CalculateShielding>},
    // Whether the tensor is calculated is the user's setting; a document does not change it.
    {.Key = "CalculateShieldTensor", .Write = YesNo<&WS::CalculateShieldTensor>, .Take = nullptr},
    {.Key = "CalculateCoupling",
     .Write = [](const WS& W) { return TextFromBool(ToInteger(W.CalculateCoupling)); },
     .Take = [](WS& W, const Text& Value) { W.CalculateCoupling = IsSet(BoolFromText(Value)) ? -1.0F : 0.0F; }},
}};

}  // namespace

Flag WriteOptionLines(const Text& /*Path*/, Integer FileNumber) {
  try {
    for (const OptionRow& Row : Options) PrintLine(FileNumber, Join(Row.Key, " = ", Row.Write(Workspace)));
    return True;
  } catch (const Failure& Problem) {
    WarnOfFailure(Problem);
    return False;
  }
}

bool TakeOption(TextView Key, const Text& Value) {
  const auto Row = std::find_if(Options.begin(), Options.end(), [&](const OptionRow& R) { return R.Key == Key; });
  if (Row == Options.end()) return false;
  if (Row->Take != nullptr) Row->Take(Workspace, Value);
  return true;
}

}  // namespace zelvanor
