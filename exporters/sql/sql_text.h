// The messages about a configuration; they end without a line end.
#pragma once

inline constexpr char16_t sqlNoInputFile[] =
    u"Error: cannot convert model: no XML model to convert! ('inputFile' field is empty or mising)";

inline constexpr char16_t sqlNoOutputFile[] =
    u"Error: cannot convert model: the output filename is missing! ('outputFile' field is empty or mising)";

inline constexpr char16_t sqlNoInputTable[] =
    u"Error: cannot convert model: no input table/view is given! ('inputTable' field is empty or mising)";

inline constexpr char16_t sqlNoPredictionTable[] =
    u"Error: cannot convert model: no prediction Table Name is given! ('predictionTable' field is empty or mising)";
