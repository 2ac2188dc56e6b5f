// The fixed texts of the SAS script; $name$ is a placeholder for fill().
#pragma once

inline constexpr char16_t sasBanner[] =
    uR"(/******************************************************************************************
 *                                                                                        *
 *  QORVALIS v$version$ auto-generated model                             *
 *  ==========================================================                             *
 *                                                                                        *
 *   Source model file: $file$ *
 *   Total number of variables in model: $count$ *
 *                                                                                        *
 *  Variable Name                        <->  Recoding Name                               *
 *  ----------------------------------------------------------                            *
)";

inline constexpr char16_t sasBannerEnd[] =
    uR"( *                                                                                        *
 ******************************************************************************************/

/*
  data <ouput_dataset>;
     set <input_dataset>;
*/
)";

inline constexpr char16_t sasDropRemark[] = uR"(

   /* comment or delete the next lines to keep the recoded variables in the output dataset */
)";
