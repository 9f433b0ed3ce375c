#include "spectrum/PeakLists.h"

#include "workspace/Helpers.h"
#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

Double FrequencyOf(Long Peak) {
  const Double Stored = Workspace.PeakFrequency[Peak];
  return Stored == 0.0 ? 0.0 : -Stored;
}

Double ShiftOf(Long Peak) { return Workspace.NMRFrequency == 0 ? 0.0 : FrequencyOf(Peak) / Workspace.NMRFrequency; }

}  // namespace

Text ObservedNucleus() {
  constexpr const char* Names[] = {"1H", "13C", "15N", "17O", "19F", "31P"};
  const int Type = Workspace.SpectraType;
  return Type >= 0 && Type < 6 ? Names[Type] : "1H";
}

Text BuildPeakCsv() {
  Text Csv = "ppm,Hz,intensity,degeneracy,line width\n";
  for (Long Peak = 0; Peak < Workspace.PeakCount; ++Peak) {
    Csv += Join(static_cast<Single>(ShiftOf(Peak)), ",", static_cast<Single>(FrequencyOf(Peak)), ",",
                Workspace.PeakIntensity[Peak], ",", Workspace.PeakDegeneracy[Peak], ",", Workspace.PeakLineWidth[Peak],
                "\n");
  }
  return Csv;
}

// A peak table by the JCAMP-DX standard for NMR, version 5: shift in ppm, intensity, width in Hz.
Text BuildPeakJcamp() {
  Text Dx =
      Join("##TITLE=", Workspace.DocumentTitle.empty() ? Text("untitled") : Workspace.DocumentTitle,
           "\n##JCAMP-DX=5.00\n##DATA TYPE=NMR PEAK TABLE\n##DATA CLASS=PEAK TABLE\n##ORIGIN=Zelvanor\n"
           "##OWNER=",
           Workspace.SpectDescription, "\n##.OBSERVE FREQUENCY=", Workspace.NMRFrequency, "\n##.OBSERVE NUCLEUS=^",
           ObservedNucleus(), "\n##XUNITS=PPM\n##YUNITS=ARBITRARY UNITS\n##NPOINTS=", Workspace.PeakCount,
           "\n$$ each row: shift in ppm, intensity, line width in Hz; its frequency in Hz ",
           "and degeneracy behind it\n##PEAK TABLE=(XYW..XYW)\n");
  for (Long Peak = 0; Peak < Workspace.PeakCount; ++Peak) {
    Dx += Join(static_cast<Single>(ShiftOf(Peak)), ", ", Workspace.PeakIntensity[Peak], ", ",
               Workspace.PeakLineWidth[Peak], " $$ ", static_cast<Single>(FrequencyOf(Peak)), " ",
               Workspace.PeakDegeneracy[Peak], "\n");
  }
  return Dx + "##END=\n";
}

}  // namespace zelvanor
