#include "setup/ReferenceShieldings.h"

#include <array>

#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

struct ReferenceRow {
  int Element;
  const char* Name;
};

// The last entry serves every other element: it is shown nowhere and its shielding stays 0.
constexpr std::array<ReferenceRow, NumReferenceEntries> References = {{
    {1, "Proton"},
    {6, "Carbon 13"},
    {7, "Nitrogen 15"},
    {8, "Oxygen 15"},
    {9, "Fluorine 19"},
    {15, "Phosphorus 31"},
    {1, "Proton"},
}};

}  // namespace

void InitReferenceElements() {
  constexpr int Last = NumReferenceEntries - 1;
  Workspace.ReferenceElement.ReDim(Last);
  Workspace.ReferenceElementName.ReDim(Last);
  Workspace.ReferenceShielding.ReDim(Last);
  for (int Entry = 0; Entry <= Last; ++Entry) {
    const ReferenceRow& Row = References[static_cast<std::size_t>(Entry)];
    Workspace.ReferenceElement[Entry] = Row.Element;
    Workspace.ReferenceElementName[Entry] = Row.Name;
  }
}

void FillReferenceElements() {
  for (int Entry = 0; Entry < NumReferenceEntries - 1; ++Entry) {
    Workspace.ReferenceElement[Entry] = References[static_cast<std::size_t>(Entry)].Element;
  }
}

std::vector<Text> ListReferenceNames() {
  const auto Names = Workspace.ReferenceElementName.Span();
  return {Names.begin(), Names.begin() + int(Workspace.NumReferenceElements)};
}

}  // namespace zelvanor
