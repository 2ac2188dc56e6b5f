'''
   QORVALIS v4.2.1 auto-generated model                             
   ==========================================================                             
                                                                                         
    Source model file: model.ModelXml 
    Total number of variables in model: 7 
                                                                                         
   Variable Name                        <->  Recoding Name                               
   ----------------------------------------------------------                            
  Age_in_years  <->  R0_Age_in_years
  rate  <->  R1_rate
  job_type  <->  R2_job_type
  size  <->  R3_size
  records  <->  R4_records
  Age_in_years  <->  R5_Age_in_years
  a_field_name_that_is_longer_than_31  <->  R6_a_field_name_that_is_longer_
'''
import numpy as np
import pandas as pd
from math import isnan,exp

class QORVModel_model:
    def __init__(self):
        self.dict_R2_job_type = {"":0.25,"5\" pipe":-1,"clerk":2,"it's":3,"1":4}
        self.dict_R3_size = {"":0,"1":1.5,"2.5":-1.5,"10":0.1}
        self.dict_R4_records = {"":0.7,"no":-0.3333333333333333,"N":-0.3333333333333333,"0":-0.3333333333333333,"false":-0.3333333333333333,"f":-0.3333333333333333,"yes":1e-07,"TRUE":1e-07,}
        self.dict_R6_a_field_name_that_is_longer_ = {"":0,"straße":1.152921504606847e+18}

    def apply(self,df):
        colNames=list(df)
        dfOutScore = np.zeros(len(df.index))
        dfOutProba = np.zeros(len(df.index))
        Age_in_years_Idx=colNames.index('''Age in.years''')
        rate_Idx=colNames.index('''rate''')
        job_type_Idx=colNames.index('''job-type''')
        size_Idx=colNames.index('''size''')
        records_Idx=colNames.index('''records''')
        Age_in_years_Idx=colNames.index('''Age in.years''')
        a_field_name_that_is_longer_than_31_Idx=colNames.index('''a field name that is longer than 31''')
        for line in range(len(df.index)):
            # computing recoding 'R0_Age_in_years'
            #based on the NormContinuous column of display name 'Age (years)'
            data = float(df.iloc[line,Age_in_years_Idx])
            if isnan(data):
                R0_Age_in_years=0.1
            elif data < 18:
                R0_Age_in_years = -0.2
            elif data > 65.5:
                R0_Age_in_years = 0.5
            elif data <= 65.5:
                R0_Age_in_years = 0.3333333333333333
            else:
                R0_Age_in_years = 0.1

            # computing recoding 'R1_rate'
            #based on the Discretize column of display name 'R&D's rate'
            data = float(df.iloc[line,rate_Idx])
            if isnan(data):
                R1_rate=0
            elif data < 2.5:
                R1_rate = 1e+18
            elif data > 2.5:
                R1_rate = -1e-05
            else:
                R1_rate = 0

            # computing recoding 'R2_job_type'
            #based on the MapValues column of display name 'The "job"'
            try:
                R2_job_type = self.dict_R2_job_type[df.iloc[line,job_type_Idx].strip()]
            except KeyError:
                R2_job_type = 0.25

            # computing recoding 'R3_size'
            #based on the MapValues column of display name 'Label'
            try:
                R3_size = self.dict_R3_size[df.iloc[line,size_Idx].strip()]
            except KeyError:
                R3_size = 0

            # computing recoding 'R4_records'
            #based on the MapValues column of display name 'Label'
            try:
                R4_records = self.dict_R4_records[df.iloc[line,records_Idx].strip()]
            except KeyError:
                R4_records = 0.7

            # computing recoding 'R5_Age_in_years'
            #based on the NormContinuous column of display name 'Âge (ans) €'
            data = float(df.iloc[line,Age_in_years_Idx])
            if isnan(data):
                R5_Age_in_years=0
            elif data < 10:
                R5_Age_in_years = 1
            elif data > 50:
                R5_Age_in_years = 4
            elif data <= 40:
                R5_Age_in_years = 2
            elif data <= 50:
                R5_Age_in_years = 3
            else:
                R5_Age_in_years = 0

            # computing recoding 'R6_a_field_name_that_is_longer_'
            #based on the MapValues column of display name 'Label'
            try:
                R6_a_field_name_that_is_longer_ = self.dict_R6_a_field_name_that_is_longer_[df.iloc[line,a_field_name_that_is_longer_than_31_Idx].strip()]
            except KeyError:
                R6_a_field_name_that_is_longer_ = 0



            #computing the regression Model
            s=dfOutScore[line]=0.3333333333333333 + 0.5 * R6_a_field_name_that_is_longer_ + -1.25 * R5_Age_in_years + 2 * R0_Age_in_years + 1e-13 * R2_job_type + 1 * R1_rate + -10 * R4_records
            # computing the probability */
            if s>3:
                dfOutProba[line]=0.9
            elif s<-2:
                dfOutProba[line]=0.01
            elif s>2:
                dfOutProba[line]=0.9 + s*-0
            elif s>1:
                dfOutProba[line]=-0.1333333333333334 + s*0.4666666666666667
            elif s>-0.5:
                dfOutProba[line]=0.2777777777777778 + s*0.05555555555555555
        return pd.DataFrame(data={'Bad_Payer_x_score':dfOutScore,'Bad_Payer_x_proba':dfOutProba})