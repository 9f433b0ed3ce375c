#include "nmrcalc/input/SpinSettings.h"

#include <algorithm>
#include <array>
#include <filesystem>

#include "nmrcalc/input/InputText.h"

namespace nmrcalc {

namespace {

struct SettingRow {
  const char* Key;
  double SpinSettings::*Value;
  double Highest;
};
constexpr std::array<SettingRow, 3> Rows = {{{"ExactTime", &SpinSettings::ExactTime, 1e6},
                                             {"Tolerance", &SpinSettings::Tolerance, 100.0},
                                             {"TimeBudget", &SpinSettings::TimeBudget, 1e6}}};

}  // namespace

SpinSettings ReadSpinSettings(const std::string& Path) {
  SpinSettings Settings;
  std::error_code Error;
  if (!std::filesystem::exists(Path, Error)) return Settings;
  const TextFile File = ReadTextFile(Path);
  std::array<bool, Rows.size()> Seen{};
  for (std::size_t Line = 0; Line < File.Lines.size(); ++Line) {
    const auto Words = SplitTokens(std::string_view(File.Lines[Line]).substr(0, File.Lines[Line].find(';')));
    if (Words.empty()) continue;
    const auto* const Row =
        std::find_if(Rows.begin(), Rows.end(), [&](const SettingRow& R) { return R.Key == Words[0]; });
    if (Row == Rows.end()) FailAtLine(File, Line, "there is no setting of the name " + std::string(Words[0]));
    bool& Before = Seen[static_cast<std::size_t>(Row - Rows.begin())];
    if (Before) FailAtLine(File, Line, std::string(Row->Key) + " is there twice");
    Before = true;
    if (Words.size() != 2) FailAtLine(File, Line, std::string(Row->Key) + " should have one number");
    const double Value = NumberAt(File, Line, Words[1], Row->Key);
    if (Value < 0.0 || Value > Row->Highest) {
      FailAtLine(File, Line, std::string(Row->Key) + " should lie in 0 to " + FixedNumber(Row->Highest, 0));
    }
    Settings.*(Row->Value) = Value;
  }
  return Settings;
}

}  // namespace nmrcalc
