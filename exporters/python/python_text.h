// The fixed stretches of the Python module.
#pragma once

inline constexpr char16_t pythonBannerSource[] =
    uR"( auto-generated model                             
   ==========================================================                             
                                                                                         
    Source model file: )";

inline constexpr char16_t pythonBannerColumns[] = uR"( 
                                                                                         
   Variable Name                        <->  Recoding Name                               
   ----------------------------------------------------------                            
)";

inline constexpr char16_t pythonImports[] = uR"(import numpy as np
import pandas as pd
from math import isnan,exp

)";

inline constexpr char16_t pythonApply[] = uR"(
    def apply(self,df):
        colNames=list(df)
        dfOutScore = np.zeros(len(df.index))
        dfOutProba = np.zeros(len(df.index))
)";

inline constexpr char16_t pythonLogisticProbability[] = uR"(        #computing the probability */
        dfOutProba[line]=1/(1+exp(-dfOutScore[line]))
)";
