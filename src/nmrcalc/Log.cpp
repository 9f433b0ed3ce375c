#include "nmrcalc/Log.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>

namespace nmrcalc {

bool LogWants(const Log& Report, int Level) { return !Report.Path.empty() && Level <= Report.Level; }

void AddToLog(Log& Report, int Level, const std::string& Text) {
  if (LogWants(Report, Level)) Report.Text += Text + "\n";
}

bool WriteLog(Log& Report) {
  if (Report.Path.empty() || Report.Text.empty()) return true;
  // Without waiting for the reader of a pipe: a calculation must end.
  const int Descriptor = open(Report.Path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NONBLOCK, 0666);
  if (Descriptor < 0) return false;
  std::FILE* File = fdopen(Descriptor, "ab");
  if (File == nullptr) return false;
  const bool Written = std::fwrite(Report.Text.data(), 1, Report.Text.size(), File) == Report.Text.size();
  Report.Text.clear();
  return std::fclose(File) == 0 && Written;
}

}  // namespace nmrcalc
