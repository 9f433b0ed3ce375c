#pragma once

#include <vector>

#include "basic/Types.h"

namespace zelvanor {

// No trace and no FID has more points than this, whatever a file says about itself.
inline constexpr int MostMeasuredPoints = 1 << 22;

// What a file of a measured spectrum holds: a spectrum, or the FID that it is made from.
struct MeasuredSpectrum {
  Text Title;
  Text Nucleus;    // as "1H"; empty where the file does not say
  Text Solvent;    // empty where the file does not say
  Double MHz = 0;  // the frequency at 0 ppm; 0 where the file does not say
  bool IsFid = false;

  // The points of the spectrum at equal distances, or the samples of the FID in the order of time.
  std::vector<Double> Real;
  std::vector<Double> Imaginary;  // beside Real, or empty
  Double Factor = 0;              // unit of which Real holds whole numbers; 0 where it is not known

  // Of a spectrum: the places of the first and last point, in Hz from 0 ppm (in ppm where MHz is 0).
  Double First = 0;
  Double Last = 0;

  // Of an FID.
  Double SweepHz = 0;
  Double CentrePpm = 0;   // the shift of the carrier
  Double GroupDelay = 0;  // samples by which a digital filter shifts its start

  std::vector<Text> Warnings;  // what the user has to know about it
};

// Whether a folder is one that a spectrometer writes: it holds a spectrum or an FID, or a folder in it does.
bool IsSpectrometerFolder(const Text& Folder);
// Reads a file, or a folder of the kind that spectrometers write; throws a Failure that tells why it can't be taken.
MeasuredSpectrum ReadMeasuredFile(const Text& Path);

// The readers behind it, by form. Content is the whole file, Path is for messages and for the files beside it.
MeasuredSpectrum ReadJcamp(TextView Content);
MeasuredSpectrum ReadTwoColumns(TextView Content);
// Folder holds 1r with procs, or fid with acqus.
MeasuredSpectrum ReadBrukerSpectrum(const Text& Folder);
MeasuredSpectrum ReadBrukerFid(const Text& Folder);

// "1H" of "^1H", "<1H>", "H1", "1-H", "Proton".
Text NucleusOf(TextView Written);
// Samples by which the digital filter of a spectrometer of this make shifts the FID; Stated is what newer ones say
// themselves (0 or less: nothing), Firmware and Decimation are what older ones say.
Double FindGroupDelay(Double Stated, int Firmware, Double Decimation);

}  // namespace zelvanor
