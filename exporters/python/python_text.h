// The fixed texts of the Python module; $name$ is a placeholder for fill().
#pragma once

inline constexpr char16_t pythonBanner[] = uR"('''
   QORVALIS v$version$ auto-generated model                             
   ==========================================================                             
                                                                                         
    Source model file: $file$ 
    Total number of variables in model: $count$ 
                                                                                         
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
