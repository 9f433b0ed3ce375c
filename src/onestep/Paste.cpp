#include "onestep/Paste.h"

#include <algorithm>

#include "basic/TextTools.h"
#include "files/Converter.h"
#include "files/FileCommands.h"
#include "files/frmRecords.h"
#include "measured/MeasuredCommands.h"
#include "platform/Paths.h"
#include "platform/TextFiles.h"
#include "settings/SettingsState.h"
#include "shell/Frame.h"
#include "workspace/Helpers.h"

namespace zelvanor {

namespace {

constexpr const char* NoMolecule =
    "There is no molecule to paste: copy a SMILES, a mol block or a molecule file first.";

// What file managers write for a character that an address may not hold.
Text Decoded(TextView Address) {
  constexpr int Radix = 16;
  constexpr std::size_t EscapeLength = 3;
  Text Path;
  for (std::size_t Place = 0; Place < Address.size(); ++Place) {
    const TextView Escape = Address.substr(Place, EscapeLength);
    if (Escape.find_first_not_of("0123456789abcdefABCDEF", 1) != TextView::npos || Escape.size() < EscapeLength ||
        Escape[0] != '%') {
      Path += Address[Place];
      continue;
    }
    Path += static_cast<char>(std::stoi(Text(Escape.substr(1)), nullptr, Radix));
    Place += EscapeLength - 1;
  }
  return Path;
}

// The file or folder of a spectrometer that a line names; empty where it names none.
Text FileOf(TextView Line) {
  constexpr TextView Scheme = "file://";
  Text Path(Line);
  if (Line.starts_with(Scheme)) {
    const std::size_t Root = std::min(Line.find(PathSeparator, Scheme.size()), Line.size());
    Path = Decoded(Line.substr(Root));
  }
  if (!Path.starts_with(PathSeparator)) return {};
  return LooksMeasured(Path) || WhyUnreadable(Path).empty() ? Path : Text();
}

void OpenNamed(const Text& Path) {
  if (LooksMeasured(Path)) {
    OpenMeasured(Path);
  } else if (QuerySave() == False) {
    OpenPath(Path);
  }
}

// The record that the user chooses of a text with several lines; Smiles and Path are empty where there is none.
MoleculeOrigin ChooseOf(const Text& Lines, Text& Name) {
  const Text Path = Settings.NMRIniPath + PathSeparator + "pasted";
  MoleculeOrigin Origin{.Path = Path, .Smiles = {}, .Record = 0, .Source = "pasted"};
  WriteWholeFile(Path, Lines);
  bool Known = true;
  std::vector<RecordRow> Rows = ListRecords(Path, Known);
  if (!Known) {
    // Any word may be a SMILES: one of them has to be a molecule.
    Origin.Path = Path + ".smi";
    WriteWholeFile(Origin.Path, Lines);
    Rows = ListRecords(Origin.Path, Known);
    const bool Any = std::any_of(Rows.begin(), Rows.end(), [](const RecordRow& Row) { return !Row.Formula.empty(); });
    if (!Any) {
      ShowWarning(NoMolecule);
      return {};
    }
  }
  if (Rows.empty()) return {};
  Origin.Record = Rows.size() == 1 ? Rows.front().Number : ChooseRecord(Rows);
  if (Origin.Record == 0) return {};
  const auto Row =
      std::find_if(Rows.begin(), Rows.end(), [&](const RecordRow& R) { return R.Number == Origin.Record; });
  Name = Row->Name.empty() ? Row->Formula : Row->Name;
  return Origin;
}

MoleculeOrigin OriginOf(const Text& Given, Text& Name) {
  const TextView Trimmed = TrimWhite(Given);
  if (Trimmed.find_first_of("\r\n") != TextView::npos) return ChooseOf(Given, Name);
  const std::size_t End = std::min(Trimmed.find_first_of(" \t"), Trimmed.size());
  const TextView Behind = TrimWhite(Trimmed.substr(End));
  Name = Behind.empty() ? Trimmed : Behind;
  return {.Path = {}, .Smiles = Text(Trimmed.substr(0, End))};
}

}  // namespace

void PasteText(const Text& Given) {
  const TextView Trimmed = TrimWhite(Given);
  if (Trimmed.empty()) return ShowWarning(NoMolecule);
  if (const Text Path = FileOf(Trimmed.substr(0, Trimmed.find_first_of("\r\n"))); !Path.empty()) return OpenNamed(Path);
  Text Name;
  bool Converted = false;
  {
    const BusyState Busy;
    const MoleculeOrigin Origin = OriginOf(Given, Name);
    Converted = (!Origin.Path.empty() || !Origin.Smiles.empty()) && ConvertMolecule(Origin, ConvertedPath());
  }
  if (Converted && QuerySave() == False) TakeConverted(Name, {});
}

void mnuPaste_Click() { PasteText(Platform.GetClipboard()); }

}  // namespace zelvanor
