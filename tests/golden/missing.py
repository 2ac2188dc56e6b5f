'''
   QORVALIS v4.2.1 auto-generated model                             
   ==========================================================                             
                                                                                         
    Source model file: model.ModelXml 
    Total number of variables in model: 4 
                                                                                         
   Variable Name                        <->  Recoding Name                               
   ----------------------------------------------------------                            
  one  <->  R0_one
  many_codes  <->  R1_many_codes
  nothing  <->  R2_nothing
  none  <->  R3_none
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
        one_Idx=colNames.index('''one''')
        many_codes_Idx=colNames.index('''many codes''')
        nothing_Idx=colNames.index('''nothing''')
        none_Idx=colNames.index('''none''')
        for line in range(len(df.index)):
            # computing recoding 'R0_one'
            #based on the NormContinuous column of display name 'Label'
            data = float(df.iloc[line,one_Idx])
            if (isnan(data)or (data==-1):
                R0_one=5
            elif data < 1:
                R0_one = 6
            elif data > 2:
                R0_one = 8
            elif data <= 2:
                R0_one = 7
            else:
                R0_one = 5

            # computing recoding 'R1_many_codes'
            #based on the NormContinuous column of display name 'Label'
            data = float(df.iloc[line,many_codes_Idx])
            if (isnan(data)or (data==99)or (data==1.5e-007)or (data==1e+006)or (data==-999.5):
                R1_many_codes=-5
            elif data < 1:
                R1_many_codes = 6
            elif data > 2:
                R1_many_codes = 6
            elif data <= 2:
                R1_many_codes = 6
            else:
                R1_many_codes = -5

            # computing recoding 'R2_nothing'
            #based on the NormContinuous column of display name 'Label'
            data = float(df.iloc[line,nothing_Idx])
            if isnan(data):
                R2_nothing=1
            elif data < 0:
                R2_nothing = 2
            elif data > 0:
                R2_nothing = 3
            else:
                R2_nothing = 1

            # computing recoding 'R3_none'
            #based on the NormContinuous column of display name 'Label'
            data = float(df.iloc[line,none_Idx])
            if isnan(data):
                R3_none=1
            elif data < 0:
                R3_none = 2
            elif data > 0.5:
                R3_none = 4
            elif data <= 0.5:
                R3_none = 3
            else:
                R3_none = 1



            #computing the regression Model
            s=dfOutScore[line]=-1 + 1 * R0_one + 2 * R1_many_codes + 3 * R2_nothing + 4 * R3_none
        return pd.DataFrame(data={'Bad_Payer_x_prediction':dfOutScore})