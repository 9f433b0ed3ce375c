#pragma once

#include <vector>

namespace zelvanor {

// Gives the two protons of a CH2 group in a ring, or its two methyl groups with their protons, classes of their own
// where a stereo centre of the ring tells its sides apart: by which of the centres' higher groups stand on their side.
// Links are the neighbours of each atom, Ranks the classes so far, both by the index of the atom. Mirror images get the
// same classes. In open chains rotation blurs what a single conformation shows, so nothing is told apart there.
void TellSidesOfRings(const std::vector<std::vector<int>>& Links, std::vector<int>& Ranks);

}  // namespace zelvanor
