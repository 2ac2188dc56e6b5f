// What scorewright-check notes of the files that it reads.
#pragma once

#include "app/check_options.h"
#include "check/reports/report.h"

// What was checked, but for rows and results. Reads the document, the configuration and the canvas
// once more for their hashes. Empty if no output shows it.
Evidence evidenceOf(const Request &request);
// Adds the files of rows and results, as they were read.
void addRows(Evidence &evidence, const RowOptions &options, const RowCounts &counts);
