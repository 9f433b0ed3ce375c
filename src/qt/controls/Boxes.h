#pragma once

#include <QStringList>
#include <functional>
#include <optional>

#include "platform/Services.h"

namespace zelvanor {

BoxAnswer ShowMessageBox(const MessageBox& Box);
// Runs a command whose plain warnings are shown in one box when it has come to its end, or before it asks something.
void ShowWarningsTogether(const std::function<void()>& Command);
std::optional<Text> AskForFile(const FileDialog& Dialog);
std::optional<Colour> AskForColour(Colour Current);

// The next dialog for a file to open answers with this path without coming up; empty to forget it.
void QueueFile(const Text& Path);

// The name filters of the window system for the program's filter text. Patterns stand in lower and upper case.
QStringList NameFilters(const Text& Filter);

}  // namespace zelvanor
