#include "nmrcalc/engines/EngineFiles.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "basic/Failure.h"
#include "nmrcalc/input/InputText.h"

namespace nmrcalc {

namespace fs = std::filesystem;

std::string ReadWholeFile(const std::string& Path) {
  std::ifstream File(Path, std::ios::binary);
  std::ostringstream Text;
  Text << File.rdbuf();
  return Text.str();
}

void WriteScratchFile(const std::string& Path, const std::string& Text) {
  std::ofstream File(Path, std::ios::binary | std::ios::trunc);
  File << Text;
  File.close();
  if (!File) {
    throw zelvanor::Failure("Could not write " + Path + ": " + zelvanor::FailureTextFromErrno(errno) +
                            "; choose another scratch directory in Setup, Backend");
  }
}

std::string MakeScratchDirectory(const std::string& Wanted) {
  std::error_code Error;
  const std::string Base = Wanted.empty() ? fs::temp_directory_path(Error).string() : Wanted;
  std::string Pattern = (fs::path(Base) / "zelvanor-XXXXXX").string();
  if (mkdtemp(Pattern.data()) == nullptr) {
    throw zelvanor::Failure("The scratch directory " + Base + " cannot be used: " +
                            zelvanor::FailureTextFromErrno(errno) + "; choose another one in Setup, Backend");
  }
  return Pattern;
}

std::string LastWords(const std::string& Output) {
  constexpr std::size_t Most = 300;
  std::string End = Output.substr(Output.size() - std::min(Output.size(), Most));
  if (End.size() < Output.size()) End.erase(0, End.find_first_of(" \n"));  // the rest of a word
  std::replace_if(
      End.begin(), End.end(), [](char C) { return C == '\n' || C == '\r'; }, ' ');
  std::string Text;
  for (const std::string_view Token : SplitTokens(End)) {
    if (Token.find_first_not_of("-=") == std::string_view::npos) continue;
    Text += (Text.empty() ? "" : " ") + std::string(Token);
  }
  return Text.empty() ? "nothing" : Text;
}

}  // namespace nmrcalc
