#include "batch/Expect.h"

#include <iterator>

#include "basic/NumberText.h"
#include "workspace/Helpers.h"

namespace zelvanor::batch {

namespace {

void Fail(const Text& Name, const Text& Actual, const Text& Expected) {
  PrintOut(Join("FAIL line ", Long{State.LineNumber}, ": ", Name, " is ", Actual, ", not ", Expected));
  State.Status = ExpectationFailed;
  if (!State.KeepGoing) throw ScriptStop{ExpectationFailed, ""};
}

Text Shown(const ShownBox& Box) { return Box.Kind + " " + Escaped(Box.Message); }

void ExpectBox(const std::vector<Argument>& All) {
  if (All.size() < 4) throw ScriptStop{CannotCarryOut, "expect box KIND TEXT"};
  const ShownBox Expected{All[2].Value, All[3].Value};
  if (State.Boxes.empty()) return Fail("box", "none", Shown(Expected));
  const ShownBox Actual = State.Boxes.front();
  State.Boxes.pop_front();
  if (Actual.Kind != Expected.Kind || Actual.Message != Expected.Message) Fail("box", Shown(Actual), Shown(Expected));
}

void ExpectNoBox() {
  if (!State.Boxes.empty()) Fail("box", Shown(State.Boxes.front()), "none");
}

void ExpectFile(const std::vector<Argument>& All) {
  if (All.size() < 4) throw ScriptStop{CannotCarryOut, "expect file PATH TEXT"};
  std::ifstream Stream(All[2].Value, std::ios::binary);
  const Text Name = "file " + All[2].Value;
  if (!Stream || (Stream.peek(), Stream.bad())) return Fail(Name, "unreadable", Escaped(All[3].Value));
  Stream.clear();
  const Text Content((std::istreambuf_iterator<char>(Stream)), std::istreambuf_iterator<char>());
  if (Content != All[3].Value) Fail(Name, Escaped(Content), Escaped(All[3].Value));
}

void ExpectValue(const std::vector<Argument>& All) {
  const Text& Name = All[1].Value;
  if (All.size() < 3 || All[2].Value != "=") throw ScriptStop{CannotCarryOut, "expect NAME = VALUE"};
  const ScriptValue Actual = IsVariable(Name) ? ReadVariable(Name) : ReadProperty(Name);
  const std::vector<Argument> Expected(All.begin() + 3, All.end());
  if (Matches(Actual, Expected)) return;
  Text Wanted;
  for (const Argument& Word : Expected) {
    Wanted += (Wanted.empty() ? "" : " ") + (Actual.IsText || Word.WasQuoted ? Escaped(Word.Value) : Word.Value);
  }
  Fail(Name, PrintedValue(Actual), Wanted);
}

}  // namespace

void Expect(const std::vector<Argument>& All) {
  const Text& What = All[1].Value;
  if (What == "box") return ExpectBox(All);
  if (What == "no" && All.size() == 3 && All[2].Value == "box") return ExpectNoBox();
  if (What == "file") return ExpectFile(All);
  if (What == "clipboard") {
    if (All.size() < 3) throw ScriptStop{CannotCarryOut, "expect clipboard TEXT"};
    const Text Clipboard = Platform.GetClipboard();
    if (Clipboard != All[2].Value) Fail("clipboard", Escaped(Clipboard), Escaped(All[2].Value));
    return;
  }
  ExpectValue(All);
}

}  // namespace zelvanor::batch
