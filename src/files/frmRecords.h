#pragma once

#include "files/Converter.h"

namespace zelvanor {

void BuildRecordForm();

// Asks which of a file's records is wanted; its number, 0 where the user cancels.
Long ChooseRecord(const std::vector<RecordRow>& Rows);

}  // namespace zelvanor
