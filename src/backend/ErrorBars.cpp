#include "backend/ErrorBars.h"

#include <algorithm>

#include "basic/Numbers.h"
#include "files/ExtraSections.h"
#include "platform/TextFiles.h"
#include "settings/SettingsState.h"
#include "shell/Frame.h"
#include "workspace/Helpers.h"
#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

WorkspaceState& W = Workspace;

constexpr const char* Begin = "ShieldingErrorBegin";
constexpr const char* End = "ShieldingErrorEnd";

// Values that were typed or come from another program have none.
bool HasErrors() {
  if (!IsSet(W.ShieldingAvailable) || W.ShieldingError.UpperBound() < W.NumNMRAtoms) return false;
  for (int Atom = 0; Atom < W.NumNMRAtoms; ++Atom) {
    if (W.ShieldingError[Atom] > 0) return true;
  }
  return false;
}

// Behind the numbers, where readers that do not know it pass it over.
constexpr TextView MethodKey = "method ";

void WriteSection(Integer FileNumber) {
  for (int Atom = 0; Atom < W.NumNMRAtoms; ++Atom) PrintLine(FileNumber, PrintForm(W.ShieldingError[Atom]));
  if (!W.ShieldingMethod.empty()) PrintLine(FileNumber, Join(MethodKey, W.ShieldingMethod));
}

void ReadSection(Integer FileNumber) {
  Array<Single> Errors(std::max<int>(W.NumNMRAtoms, 0));
  for (int Atom = 0;; ++Atom) {
    const TextView Line = LineInput(FileNumber);
    if (Line.starts_with(End)) break;
    if (Line.starts_with(MethodKey)) W.ShieldingMethod = Line.substr(MethodKey.size());
    if (Atom < W.NumNMRAtoms) Errors[Atom] = ToSingle(std::max(PrefixNumber(Line), 0.0));
  }
  W.ShieldingError = Errors;
}

}  // namespace

void ReadShieldingErrors() {
  const Text& Path = Settings.ParamErrorFile;
  if (!IsSet(FileExists(Path))) return;
  const Integer File = FreeFile();
  IgnoreFailure([&] {
    OpenForInput(Path, File);
    for (int Atom = 0; Atom < W.NumNMRAtoms && !AtEnd(File); ++Atom) {
      W.ShieldingError[Atom] = ToSingle(std::max(PrefixNumber(LineInput(File)), 0.0));
    }
  });
  CloseFileQuietly(File);
}

void AddErrorBarSection() { AddExtraSection({Begin, End, HasErrors, WriteSection, ReadSection}); }

}  // namespace zelvanor
