#pragma once

namespace zelvanor {

// The keys belong to the view that is shown: it takes them when it comes up, and back when the control that had them
// goes away or is disabled, whose keys the toolkit hands to the next one, most often a tool button. Controls beside the
// view are reached by Tab. Called before and after what an event does.
void NoteKeyHolder();
void KeepKeysOnView();

}  // namespace zelvanor
