'''
   QORVALIS v4.2.1 auto-generated model                             
   ==========================================================                             
                                                                                         
    Source model file: model.ModelXml 
    Total number of variables in model: 0 
                                                                                         
   Variable Name                        <->  Recoding Name                               
   ----------------------------------------------------------                            
'''
import numpy as np
import pandas as pd
from math import isnan,exp

class QORVModel_model:
    def __init__(self):

    def apply(self,df):
        colNames=list(df)
        dfOutScore = np.zeros(len(df.index))
        dfOutProba = np.zeros(len(df.index))
        for line in range(len(df.index)):


            #computing the regression Model
            s=dfOutScore[line]=0.125
            # computing the probability */
            if s>1:
                dfOutProba[line]=0.75
            elif s<1:
                dfOutProba[line]=0.75
        return pd.DataFrame(data={'Bad_Payer_x_score':dfOutScore,'Bad_Payer_x_proba':dfOutProba})