#include "nmrcalc/Log.h"

#include <cstdio>

namespace nmrcalc {

bool LogWants(const Log& Report, int Level) { return !Report.Path.empty() && Level <= Report.Level; }

void AddToLog(Log& Report, int Level, const std::string& Text) {
  if (LogWants(Report, Level)) Report.Text += Text + "\n";
}

bool WriteLog(Log& Report) {
  if (Report.Path.empty() || Report.Text.empty()) return true;
  std::FILE* File = std::fopen(Report.Path.c_str(), "ab");
  if (File == nullptr) return false;
  const bool Written = std::fwrite(Report.Text.data(), 1, Report.Text.size(), File) == Report.Text.size();
  Report.Text.clear();
  return std::fclose(File) == 0 && Written;
}

}  // namespace nmrcalc
