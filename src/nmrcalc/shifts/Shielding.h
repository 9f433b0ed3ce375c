#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "nmrcalc/input/Molecule.h"
#include "nmrcalc/input/Tables.h"
#include "nmrcalc/shifts/ShiftModel.h"

namespace nmrcalc {

// Tables and columns that the shift tables need to have.
const std::vector<RequiredTable>& RequiredShiftTables();

// The shift of every atom of the system: by the model, and by tables where it has no say (nitrogen, oxygen, hydrogen
// that stands alone). Elements of which nothing is known are not Known.
std::vector<ShiftEstimate> EstimateShifts(const TableFile& Tables, const ShiftModel& Model, const Molecule& System);

// Nitrogen or oxygen by the usual region of its kind, with the width of the region.
ShiftEstimate EstimateByRegion(const TableFile& Tables, const Molecule& System, std::size_t Center);

// Absolute shielding in ppm: the element's reference less the shift, against 0 for an element without a reference; 0
// where nothing is known.
double ShieldingFromShift(const TableFile& Tables, int AtomicNumber, const ShiftEstimate& Estimate);

}  // namespace nmrcalc
