#pragma once

namespace zelvanor {

// Makes the document's variables known by name.
void AddWorkspaceVariables();

}  // namespace zelvanor
