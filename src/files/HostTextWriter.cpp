#include "files/HostText.h"
#include "platform/TextFiles.h"
#include "workspace/Helpers.h"
#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

WorkspaceState& W = Workspace;

constexpr int TypeToken = 5;

// An atom line with the type of the atom table in place of its own, every token followed by one blank.
Text RebuildAtomLine(TextView Line, int Atom) {
  LineWork.TokenCount = Tokenize(Line);
  Text Result;
  for (int Token = 1; Token <= LineWork.TokenCount; ++Token) {
    if (Token == TypeToken) {
      Result += TrimBlanks(W.AtomType[Atom].View());
    } else {
      Result += LineWork.Tokens[Token];
    }
    Result += ' ';
  }
  return Result;
}

Text BuildAtomLine(int Atom) {
  Text Line = Join("atom ", W.AtomNumber[Atom], " ", W.AtomName[Atom].Trimmed(), " ", W.AtomElement[Atom].Trimmed(),
                   " ", W.AtomType[Atom].Trimmed(), " ", W.AtomFlags[Atom].Trimmed());
  for (const Single Value : {W.AtomCharge[Atom], W.AtomX[Atom], W.AtomY[Atom], W.AtomZ[Atom]}) {
    Line += ' ';
    AppendGeneralForm(Line, Value);
  }
  Line += Join(" ", W.AtomCoordination[Atom]);
  for (int Place = 0; Place < W.AtomCoordination[Atom]; ++Place) {
    // A bond of an order without a letter still needs a token, or the next neighbour would be read as its type.
    const TextView Bond = W.AtomBondType(Atom, Place).Trimmed();
    Line += Join(" ", W.AtomNeighbour(Atom, Place) + 1, " ", Bond.empty() ? "-" : Bond);
  }
  return Line;
}

}  // namespace

Flag WriteHostText(Integer FileNumber) {
  try {
    int Atom = 0;
    for (int Index = 0; Index < W.HostTextLineCount; ++Index) {
      FixedText<HostLineLength>& Stored = W.HostTextLine[Index];
      Text Line(TrimBlanks(Stored.View()));
      if (Line.starts_with("view ") && !W.HostViewText.empty()) {
        Line.clear();
      } else if (IsSet(W.AtomTypesChanged) && Line.starts_with("atom ")) {
        Line = RebuildAtomLine(Line, Atom++);
      }
      PrintLine(FileNumber, Line);
      Stored = TextView(Line);
    }
    W.AtomTypesChanged = False;
    return True;
  } catch (const Failure&) {
    return False;
  }
}

Flag WriteConvertedHostText(Integer FileNumber) {
  try {
    for (const char* Line : {"; Converted from a Z-Matrix file by Kelmorand Zelvanor.", "; Version 1.0",
                             "forcefield krdo", "sys 0", "", "mol 1"}) {
      PrintLine(FileNumber, Line);
    }
    for (int Atom = 0; Atom < W.NumAtoms; ++Atom) PrintLine(FileNumber, BuildAtomLine(Atom));
    PrintLine(FileNumber, "endmol 1");
    return True;
  } catch (const Failure& Problem) {
    WarnOfFailure(Problem);
    return False;
  }
}

Flag WriteSystem(Integer FileNumber) {
  return W.ZMatrixPath.empty() ? WriteHostText(FileNumber) : WriteConvertedHostText(FileNumber);
}

}  // namespace zelvanor
