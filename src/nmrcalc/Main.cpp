#include <string>
#include <vector>

#include "nmrcalc/Command.h"

int main(int ArgumentCount, char** ArgumentTexts) {
  return nmrcalc::RunProgram(
      std::vector<std::string>(ArgumentTexts + (ArgumentCount > 0 ? 1 : 0), ArgumentTexts + ArgumentCount));
}
