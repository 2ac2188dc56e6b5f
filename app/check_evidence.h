// The files, options and time that a report lists.
#pragma once

#include "app/check_options.h"
#include "check/reports/report.h"

// All evidence except rows and results. Reads the document, the configuration and the canvas a
// second time for their hashes. Empty if no output shows it.
Evidence evidenceOf(const Request &request);
// Adds rows and results, as they were read.
void addRows(Evidence &evidence, const RowOptions &options, const RowCounts &counts);
