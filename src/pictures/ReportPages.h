#pragma once

#include "basic/Types.h"

namespace zelvanor::pictures {

// The report of the document as a PDF file of A4 pages: structure, spectrum, publication text, tables and how it was
// computed. Throws a Failure where there are no shifts or the file can't be written.
void WriteReportPages(const Text& Path);

}  // namespace zelvanor::pictures
