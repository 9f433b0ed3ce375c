#include "report/ReportCommands.h"

#include "files/FileCommands.h"
#include "platform/Paths.h"
#include "platform/TextFiles.h"
#include "report/Report.h"
#include "workspace/Helpers.h"
#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

WorkspaceState& W = Workspace;

struct ReportForm {
  const char* Ending;
  void (*Write)(const Text& Path);
};

constexpr ReportForm Forms[] = {
    {".HTML", [](const Text& Path) { WriteWholeFile(Path, BuildReportPage()); }},
    {".HTM", [](const Text& Path) { WriteWholeFile(Path, BuildReportPage()); }},
    {".PDF",
     [](const Text& Path) {
       if (!Platform.WriteReportPages) throw Failure("PDF can't be written here");
       Platform.WriteReportPages(Path);
     }},
    {".TXT", [](const Text& Path) { WriteWholeFile(Path, BuildPublicationText()); }},
    {".SDF", [](const Text& Path) { WriteWholeFile(Path, BuildNmreData()); }},
};

// That of the document or of the file that it came from; the folder is the last one that was used.
Text SuggestReportName() {
  for (const Text& Path : {W.DocumentPath, W.HostTextPath, W.ZMatrixPath}) {
    if (Path.empty()) continue;
    const Text Document = SuggestDocumentName(Path);
    const Text Name(FileTitleOf(Document));
    return Name.substr(0, Name.rfind('.')) + ".html";
  }
  return "*.html";
}

}  // namespace

void WriteReport(const Text& Path) {
  const Text Ending = EndingOf(Path);
  for (const ReportForm& Each : Forms) {
    if (Ending == Each.Ending) return Each.Write(Path);
  }
  throw Failure("a report is written as .html, .pdf, .txt or .sdf: " + Path);
}

void mnuFileReport_Click() {
  const std::optional<Text> Path =
      Platform.ShowFileDialog({.Title = "Report",
                               .FileName = SuggestReportName(),
                               .Filter = "Page (*.html)|*.html|Pages to print (*.pdf)|*.pdf|Publication text (*.txt)|"
                                         "*.txt|NMReData (*.sdf)|*.sdf",
                               .DefaultExtension = "html",
                               .Save = true});
  if (!Path || !MayReplaceFile(*Path)) return;
  try {
    WriteReport(*Path);
  } catch (const Failure& Problem) {
    return ShowWarning(Join("Could not write the report: ", Problem.What, "."));
  }
  ShowStatus(Join("Written: ", *Path));
}

void mnuEditPublication_Click() {
  try {
    Platform.SetClipboard(Text(TrimWhite(BuildPublicationText())));
    ShowStatus("Publication text copied.");
  } catch (const Failure& Problem) {
    ShowWarning(Problem.What + ".");
  }
}

}  // namespace zelvanor
