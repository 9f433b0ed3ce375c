#include "backend/LevelReferences.h"

#include <vector>

#include "files/ExtraSections.h"
#include "platform/TextFiles.h"
#include "settings/SettingsState.h"
#include "workspace/References.h"
#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

constexpr const char* Begin = "LevelReferencesBegin";
constexpr const char* End = "LevelReferencesEnd";
constexpr std::size_t MostLines = 32;  // a level and a line an element

bool HasLevel() { return !Workspace.ReferenceLevel.empty(); }

void WriteSection(Integer FileNumber) {
  for (const Text& Line : ReferenceLines()) PrintLine(FileNumber, Line);
}

void ReadSection(Integer FileNumber) {
  std::vector<Text> Lines;
  for (;;) {
    const TextView Line = LineInput(FileNumber);
    if (Line.starts_with(End)) break;
    if (Lines.size() < MostLines) Lines.emplace_back(Line);
  }
  if (!ReadReferenceLines(Lines)) throw Failure("The reference shieldings of a level of theory make no sense");
}

}  // namespace

void TakeLevelReferences() {
  std::vector<Text> Lines;
  Integer File;
  try {
    File = FreeFile();
    OpenForInput(Settings.ParamReferenceFile, File);
    while (!AtEnd(File) && Lines.size() < MostLines) Lines.emplace_back(LineInput(File));
  } catch (const Failure&) {
    Lines.clear();
  }
  CloseFileQuietly(File);
  if (!ReadReferenceLines(Lines)) UseOwnReferences();
}

void AddLevelReferencesSection() { AddExtraSection({Begin, End, HasLevel, WriteSection, ReadSection}); }

}  // namespace zelvanor
