#include <algorithm>

#include "nmrcalc/fit/Fit.h"
#include "nmrcalc/input/InputText.h"

namespace nmrcalc {

namespace {
constexpr int ValueDecimals = 7;
constexpr int ErrorDecimals = 9;  // 0 is for fixed values alone
}  // namespace

std::string FormatFit(const FitInput& Input, const FitResult& Result) {
  std::string Text = "Fit of the isotropic spin Hamiltonian to a measured spectrum, ";
  Text += Result.IsCut ? "simulated in clusters" : "simulated exactly";
  Text += Result.Converged ? "\n" : ", not converged\n";
  Text += "R " + FixedNumber(Result.R, 6) + "\nNOISE " + FixedNumber(Result.Noise, ValueDecimals) + "\nSTEPS " +
          std::to_string(Result.Steps) + "\nCONVERGED " + (Result.Converged ? "1" : "0") + "\nVALUES " +
          std::to_string(Result.Values.size()) + "\n";
  for (std::size_t K = 0; K < Result.Values.size(); ++K) {
    const FittedValue& Own = Result.Values[K];
    Text += std::string(NameOfKind(Input.Parameters[K].Kind)) + " " + FixedNumber(Own.Value, ValueDecimals) + " " +
            FixedNumber(Own.Error, ErrorDecimals) + " " + std::to_string(Own.Partner + 1) + " " +
            FixedNumber(Own.Correlation, 4) + (Own.IsAtBound ? " 1\n" : " 0\n");
  }
  Text += "SIMULATED " + std::to_string(Result.Simulated.size()) + "\n";
  for (const double Value : Result.Simulated) {
    AppendFixedNumber(Text, Value, ValueDecimals);
    Text += '\n';
  }
  return Text;
}

}  // namespace nmrcalc
