#include <algorithm>

#include "basic/NumberText.h"
#include "report/PageParts.h"
#include "workspace/Helpers.h"

namespace zelvanor {

namespace {

// Numbers of names and patterns alone stand in them: nothing that JSON or a page would have to escape but quotes.
Text JsonText(const Text& Value) { return Join("\"", PageText(Value), "\""); }

Text Shift(Double Ppm) { return FormatNumber(Ppm, "0.0####"); }

Text CurveJson(const ReportCurve& Of, const char* Kind) {
  Text Points;
  Text Heights;
  Long Last = 0;
  for (std::size_t K = 0; K < Of.Points.size(); ++K) {
    Points += Join(K > 0 ? "," : "", Of.Points[K] - Last);
    Heights += Join(K > 0 ? "," : "", Of.Heights[K]);
    Last = Of.Points[K];
  }
  return Join("{\"kind\":\"", Kind, "\",\"first\":", FormatNumber(Of.First, "0.0########"),
              ",\"step\":", FormatNumber(Of.Step, "0.0##############"), ",\"points\":[", Points, "],\"heights\":[",
              Heights, "]}");
}

Text SignalJson(const ReportContent& Of, std::size_t Place) {
  const Signal& Each = Of.Signals[Place];
  return Join("{\"ppm\":", Shift(Each.Of.Ppm), ",\"high\":", Shift(Each.High), ",\"low\":", Shift(Each.Low),
              ",\"names\":", JsonText(NameEntries(Each.Of.Atoms)), ",\"told\":", JsonText(TellSignal(Of, Place)), "}");
}

}  // namespace

Text TellSignal(const ReportContent& Of, std::size_t Signal) {
  Text Words;
  for (const ReportRow& Row : Of.Rows) {
    if (Row.Signal != static_cast<int>(Signal)) continue;
    Words = Join(Row.Names, ": ", FormatNumber(Row.Ppm, "0.00"), " ppm");
    if (!Row.Pattern.empty()) Words += ", " + Row.Pattern;
  }
  return Words;
}

Text SignalsOfRows(const ReportContent& Of, const std::vector<int>& Rows) {
  Text Words;
  for (const int Row : Rows) {
    const int Signal = Of.Rows[static_cast<std::size_t>(Row)].Signal;
    if (Signal >= 0) Words += Join(Words.empty() ? "" : " ", Long{Signal});
  }
  return Words;
}

Text PageData(const ReportContent& Of) {
  Text Signals;
  for (std::size_t K = 0; K < Of.Signals.size(); ++K) Signals += Join(K > 0 ? ",\n" : "\n", SignalJson(Of, K));
  Text Lines;
  for (const ReportLine& Each : Of.Lines) {
    Lines += Join(Lines.empty() ? "[" : ",[", Shift(Each.Ppm), ",", FormatNumber(Each.Height, "0.0###"), ",",
                  Long{Each.Signal}, "]");
  }
  Text Curves;
  if (!Of.Measured.Points.empty()) Curves += CurveJson(Of.Measured, "measured");
  if (!Of.Simulated.Points.empty()) Curves += (Curves.empty() ? "" : ",\n") + CurveJson(Of.Simulated, "simulated");
  return Join("{\"mhz\":", std::max(Of.MHz, Long{1}), ",\"view\":[", Shift(Of.HighPpm), ",", Shift(Of.LowPpm),
              "],\n\"signals\":[", Signals, "],\n\"lines\":[", Lines, "],\n\"curves\":[", Curves, "]}");
}

Text PageText(TextView Value) {
  Text Result;
  for (const char C : PlainUtf8(Value)) {
    switch (C) {
      case '&':
        Result += "&amp;";
        break;
      case '<':
        Result += "&lt;";
        break;
      case '>':
        Result += "&gt;";
        break;
      case '"':
        Result += "&quot;";
        break;
      default:
        Result += C;
    }
  }
  return Result;
}

}  // namespace zelvanor
