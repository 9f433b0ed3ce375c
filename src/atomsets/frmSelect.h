#pragma once

namespace zelvanor {

// The dialog that edits the quantum, the NMR or the labelled atoms, whichever AtomSetMode says. Changes go to work
// lists; OK takes them over once the rules between the sets are met.
void BuildAtomSetForm();
void ShowAtomSets(int Mode);

}  // namespace zelvanor
