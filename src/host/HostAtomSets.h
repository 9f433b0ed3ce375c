#pragma once

namespace zelvanor {

// The name under which a Get keeps the selection that the user has made in the host.
inline constexpr const char* SavedSelection = "tmp_select_saved";

// Turns the host's selections with reserved names into the quantum, NMR, labelled and equivalent atom sets, and gives
// the user of the host the selection back. Needs an open conversation and the atom table of the host's system. A
// failure among the sets ends their reading without a message; one in the giving back is thrown. SelectionSaved: there
// was a selection to give back; without one nothing is selected afterwards.
void GetHostAtomSets(bool SelectionSaved = true);

}  // namespace zelvanor
