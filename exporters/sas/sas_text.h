// The fixed stretches of the SAS script.
#pragma once

inline constexpr char16_t sasBannerTitle[] =
    uR"(/******************************************************************************************
 *                                                                                        *
 *  QORVALIS v)";

inline constexpr char16_t sasBannerSource[] =
    uR"( auto-generated model                             *
 *  ==========================================================                             *
 *                                                                                        *
 *   Source model file: )";

inline constexpr char16_t sasBannerCount[] = uR"( *
 *   Total number of variables in model: )";

inline constexpr char16_t sasBannerColumns[] = uR"( *
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
