#pragma once

#include <QWidget>

namespace zelvanor {

// One window runs for each user: a second start asks the running one to come to the front.

// Comes to the front when another start calls.
void AnswerCalls(QWidget* Window);
void CallRunningWindow();

}  // namespace zelvanor
