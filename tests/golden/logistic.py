'''
   QORVALIS v4.2.1 auto-generated model                             
   ==========================================================                             
                                                                                         
    Source model file: model.ModelXml 
    Total number of variables in model: 2 
                                                                                         
   Variable Name                        <->  Recoding Name                               
   ----------------------------------------------------------                            
  a  <->  R0_a
  b  <->  R1_b
'''
import numpy as np
import pandas as pd
from math import isnan,exp

class QORVModel_model:
    def __init__(self):
        self.dict_R1_b = {"":0,"x":1}

    def apply(self,df):
        colNames=list(df)
        dfOutScore = np.zeros(len(df.index))
        dfOutProba = np.zeros(len(df.index))
        a_Idx=colNames.index('''a''')
        b_Idx=colNames.index('''b''')
        for line in range(len(df.index)):
            # computing recoding 'R0_a'
            #based on the NormContinuous column of display name 'Label'
            data = float(df.iloc[line,a_Idx])
            if isnan(data):
                R0_a=0
            elif data < 0:
                R0_a = 1
            elif data > 1:
                R0_a = 3
            elif data <= 1:
                R0_a = 2
            else:
                R0_a = 0

            # computing recoding 'R1_b'
            #based on the MapValues column of display name 'Label'
            try:
                R1_b = self.dict_R1_b[df.iloc[line,b_Idx].strip()]
            except KeyError:
                R1_b = 0



            #computing the regression Model
            s=dfOutScore[line]=0 + 0.5 * R1_b + 1 * R0_a
        #computing the probability */
        dfOutProba[line]=1/(1+exp(-dfOutScore[line]))
        return pd.DataFrame(data={'score':dfOutScore,'proba':dfOutProba})