// The options of scorewright-check.
#pragma once

#include "check/rows/comparison.h"

// The options of a call. Names of files that were not given are empty.
struct Request {
    QStringList arguments; // as they were given
    QString model;
    bool showsModel = false;
    bool looksForFindings = false;
    bool isJson = false;
    bool isQuiet = false;
    FindingSet accepted;
    Targets targets = allTargets;
    QString sql;
    QString canvas;
    QString report;
    QString probe;
    RowOptions rows;
    QString answer; // help or version, to be printed instead of a report
};

// Reads the arguments, the first of which is the program's path. Returns an error message; empty on
// success.
QString readRequest(const QStringList &arguments, Request &request);
