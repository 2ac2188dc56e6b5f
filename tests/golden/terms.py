'''
   QORVALIS v4.2.1 auto-generated model                             
   ==========================================================                             
                                                                                         
    Source model file: model.ModelXml 
    Total number of variables in model: 50 
                                                                                         
   Variable Name                        <->  Recoding Name                               
   ----------------------------------------------------------                            
  c1  <->  R0_c1
  c2  <->  R1_c2
  c3  <->  R2_c3
  c4  <->  R3_c4
  c5  <->  R4_c5
  c6  <->  R5_c6
  c7  <->  R6_c7
  c8  <->  R7_c8
  c9  <->  R8_c9
  c10  <->  R9_c10
  c11  <->  R10_c11
  c12  <->  R11_c12
  c13  <->  R12_c13
  c14  <->  R13_c14
  c15  <->  R14_c15
  c16  <->  R15_c16
  c17  <->  R16_c17
  c18  <->  R17_c18
  c19  <->  R18_c19
  c20  <->  R19_c20
  c21  <->  R20_c21
  c22  <->  R21_c22
  c23  <->  R22_c23
  c24  <->  R23_c24
  c25  <->  R24_c25
  c26  <->  R25_c26
  c27  <->  R26_c27
  c28  <->  R27_c28
  c29  <->  R28_c29
  c30  <->  R29_c30
  c31  <->  R30_c31
  c32  <->  R31_c32
  c33  <->  R32_c33
  c34  <->  R33_c34
  c35  <->  R34_c35
  c36  <->  R35_c36
  c37  <->  R36_c37
  c38  <->  R37_c38
  c39  <->  R38_c39
  c40  <->  R39_c40
  c41  <->  R40_c41
  c42  <->  R41_c42
  c43  <->  R42_c43
  c44  <->  R43_c44
  c45  <->  R44_c45
  c46  <->  R45_c46
  c47  <->  R46_c47
  c48  <->  R47_c48
  c49  <->  R48_c49
  c50  <->  R49_c50
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
        c1_Idx=colNames.index('''c1''')
        c2_Idx=colNames.index('''c2''')
        c3_Idx=colNames.index('''c3''')
        c4_Idx=colNames.index('''c4''')
        c5_Idx=colNames.index('''c5''')
        c6_Idx=colNames.index('''c6''')
        c7_Idx=colNames.index('''c7''')
        c8_Idx=colNames.index('''c8''')
        c9_Idx=colNames.index('''c9''')
        c10_Idx=colNames.index('''c10''')
        c11_Idx=colNames.index('''c11''')
        c12_Idx=colNames.index('''c12''')
        c13_Idx=colNames.index('''c13''')
        c14_Idx=colNames.index('''c14''')
        c15_Idx=colNames.index('''c15''')
        c16_Idx=colNames.index('''c16''')
        c17_Idx=colNames.index('''c17''')
        c18_Idx=colNames.index('''c18''')
        c19_Idx=colNames.index('''c19''')
        c20_Idx=colNames.index('''c20''')
        c21_Idx=colNames.index('''c21''')
        c22_Idx=colNames.index('''c22''')
        c23_Idx=colNames.index('''c23''')
        c24_Idx=colNames.index('''c24''')
        c25_Idx=colNames.index('''c25''')
        c26_Idx=colNames.index('''c26''')
        c27_Idx=colNames.index('''c27''')
        c28_Idx=colNames.index('''c28''')
        c29_Idx=colNames.index('''c29''')
        c30_Idx=colNames.index('''c30''')
        c31_Idx=colNames.index('''c31''')
        c32_Idx=colNames.index('''c32''')
        c33_Idx=colNames.index('''c33''')
        c34_Idx=colNames.index('''c34''')
        c35_Idx=colNames.index('''c35''')
        c36_Idx=colNames.index('''c36''')
        c37_Idx=colNames.index('''c37''')
        c38_Idx=colNames.index('''c38''')
        c39_Idx=colNames.index('''c39''')
        c40_Idx=colNames.index('''c40''')
        c41_Idx=colNames.index('''c41''')
        c42_Idx=colNames.index('''c42''')
        c43_Idx=colNames.index('''c43''')
        c44_Idx=colNames.index('''c44''')
        c45_Idx=colNames.index('''c45''')
        c46_Idx=colNames.index('''c46''')
        c47_Idx=colNames.index('''c47''')
        c48_Idx=colNames.index('''c48''')
        c49_Idx=colNames.index('''c49''')
        c50_Idx=colNames.index('''c50''')
        for line in range(len(df.index)):
            # computing recoding 'R0_c1'
            #based on the NormContinuous column of display name 'Label'
            data = float(df.iloc[line,c1_Idx])
            if isnan(data):
                R0_c1=0
            elif data < 1:
                R0_c1 = 1
            elif data > 1:
                R0_c1 = -1
            else:
                R0_c1 = 0

            # computing recoding 'R1_c2'
            #based on the NormContinuous column of display name 'Label'
            data = float(df.iloc[line,c2_Idx])
            if isnan(data):
                R1_c2=0
            elif data < 2:
                R1_c2 = 2
            elif data > 2:
                R1_c2 = -2
            else:
                R1_c2 = 0

            # computing recoding 'R2_c3'
            #based on the NormContinuous column of display name 'Label'
            data = float(df.iloc[line,c3_Idx])
            if isnan(data):
                R2_c3=0
            elif data < 3:
                R2_c3 = 3
            elif data > 3:
                R2_c3 = -3
            else:
                R2_c3 = 0

            # computing recoding 'R3_c4'
            #based on the NormContinuous column of display name 'Label'
            data = float(df.iloc[line,c4_Idx])
            if isnan(data):
                R3_c4=0
            elif data < 4:
                R3_c4 = 4
            elif data > 4:
                R3_c4 = -4
            else:
                R3_c4 = 0

            # computing recoding 'R4_c5'
            #based on the NormContinuous column of display name 'Label'
            data = float(df.iloc[line,c5_Idx])
            if isnan(data):
                R4_c5=0
            elif data < 5:
                R4_c5 = 5
            elif data > 5:
                R4_c5 = -5
            else:
                R4_c5 = 0

            # computing recoding 'R5_c6'
            #based on the NormContinuous column of display name 'Label'
            data = float(df.iloc[line,c6_Idx])
            if isnan(data):
                R5_c6=0
            elif data < 6:
                R5_c6 = 6
            elif data > 6:
                R5_c6 = -6
            else:
                R5_c6 = 0

            # computing recoding 'R6_c7'
            #based on the NormContinuous column of display name 'Label'
            data = float(df.iloc[line,c7_Idx])
            if isnan(data):
                R6_c7=0
            elif data < 7:
                R6_c7 = 7
            elif data > 7:
                R6_c7 = -7
            else:
                R6_c7 = 0

            # computing recoding 'R7_c8'
            #based on the NormContinuous column of display name 'Label'
            data = float(df.iloc[line,c8_Idx])
            if isnan(data):
                R7_c8=0
            elif data < 8:
                R7_c8 = 8
            elif data > 8:
                R7_c8 = -8
            else:
                R7_c8 = 0

            # computing recoding 'R8_c9'
            #based on the NormContinuous column of display name 'Label'
            data = float(df.iloc[line,c9_Idx])
            if isnan(data):
                R8_c9=0
            elif data < 9:
                R8_c9 = 9
            elif data > 9:
                R8_c9 = -9
            else:
                R8_c9 = 0

            # computing recoding 'R9_c10'
            #based on the NormContinuous column of display name 'Label'
            data = float(df.iloc[line,c10_Idx])
            if isnan(data):
                R9_c10=0
            elif data < 10:
                R9_c10 = 10
            elif data > 10:
                R9_c10 = -10
            else:
                R9_c10 = 0

            # computing recoding 'R10_c11'
            #based on the NormContinuous column of display name 'Label'
            data = float(df.iloc[line,c11_Idx])
            if isnan(data):
                R10_c11=0
            elif data < 11:
                R10_c11 = 11
            elif data > 11:
                R10_c11 = -11
            else:
                R10_c11 = 0

            # computing recoding 'R11_c12'
            #based on the NormContinuous column of display name 'Label'
            data = float(df.iloc[line,c12_Idx])
            if isnan(data):
                R11_c12=0
            elif data < 12:
                R11_c12 = 12
            elif data > 12:
                R11_c12 = -12
            else:
                R11_c12 = 0

            # computing recoding 'R12_c13'
            #based on the NormContinuous column of display name 'Label'
            data = float(df.iloc[line,c13_Idx])
            if isnan(data):
                R12_c13=0
            elif data < 13:
                R12_c13 = 13
            elif data > 13:
                R12_c13 = -13
            else:
                R12_c13 = 0

            # computing recoding 'R13_c14'
            #based on the NormContinuous column of display name 'Label'
            data = float(df.iloc[line,c14_Idx])
            if isnan(data):
                R13_c14=0
            elif data < 14:
                R13_c14 = 14
            elif data > 14:
                R13_c14 = -14
            else:
                R13_c14 = 0

            # computing recoding 'R14_c15'
            #based on the NormContinuous column of display name 'Label'
            data = float(df.iloc[line,c15_Idx])
            if isnan(data):
                R14_c15=0
            elif data < 15:
                R14_c15 = 15
            elif data > 15:
                R14_c15 = -15
            else:
                R14_c15 = 0

            # computing recoding 'R15_c16'
            #based on the NormContinuous column of display name 'Label'
            data = float(df.iloc[line,c16_Idx])
            if isnan(data):
                R15_c16=0
            elif data < 16:
                R15_c16 = 16
            elif data > 16:
                R15_c16 = -16
            else:
                R15_c16 = 0

            # computing recoding 'R16_c17'
            #based on the NormContinuous column of display name 'Label'
            data = float(df.iloc[line,c17_Idx])
            if isnan(data):
                R16_c17=0
            elif data < 17:
                R16_c17 = 17
            elif data > 17:
                R16_c17 = -17
            else:
                R16_c17 = 0

            # computing recoding 'R17_c18'
            #based on the NormContinuous column of display name 'Label'
            data = float(df.iloc[line,c18_Idx])
            if isnan(data):
                R17_c18=0
            elif data < 18:
                R17_c18 = 18
            elif data > 18:
                R17_c18 = -18
            else:
                R17_c18 = 0

            # computing recoding 'R18_c19'
            #based on the NormContinuous column of display name 'Label'
            data = float(df.iloc[line,c19_Idx])
            if isnan(data):
                R18_c19=0
            elif data < 19:
                R18_c19 = 19
            elif data > 19:
                R18_c19 = -19
            else:
                R18_c19 = 0

            # computing recoding 'R19_c20'
            #based on the NormContinuous column of display name 'Label'
            data = float(df.iloc[line,c20_Idx])
            if isnan(data):
                R19_c20=0
            elif data < 20:
                R19_c20 = 20
            elif data > 20:
                R19_c20 = -20
            else:
                R19_c20 = 0

            # computing recoding 'R20_c21'
            #based on the NormContinuous column of display name 'Label'
            data = float(df.iloc[line,c21_Idx])
            if isnan(data):
                R20_c21=0
            elif data < 21:
                R20_c21 = 21
            elif data > 21:
                R20_c21 = -21
            else:
                R20_c21 = 0

            # computing recoding 'R21_c22'
            #based on the NormContinuous column of display name 'Label'
            data = float(df.iloc[line,c22_Idx])
            if isnan(data):
                R21_c22=0
            elif data < 22:
                R21_c22 = 22
            elif data > 22:
                R21_c22 = -22
            else:
                R21_c22 = 0

            # computing recoding 'R22_c23'
            #based on the NormContinuous column of display name 'Label'
            data = float(df.iloc[line,c23_Idx])
            if isnan(data):
                R22_c23=0
            elif data < 23:
                R22_c23 = 23
            elif data > 23:
                R22_c23 = -23
            else:
                R22_c23 = 0

            # computing recoding 'R23_c24'
            #based on the NormContinuous column of display name 'Label'
            data = float(df.iloc[line,c24_Idx])
            if isnan(data):
                R23_c24=0
            elif data < 24:
                R23_c24 = 24
            elif data > 24:
                R23_c24 = -24
            else:
                R23_c24 = 0

            # computing recoding 'R24_c25'
            #based on the NormContinuous column of display name 'Label'
            data = float(df.iloc[line,c25_Idx])
            if isnan(data):
                R24_c25=0
            elif data < 25:
                R24_c25 = 25
            elif data > 25:
                R24_c25 = -25
            else:
                R24_c25 = 0

            # computing recoding 'R25_c26'
            #based on the NormContinuous column of display name 'Label'
            data = float(df.iloc[line,c26_Idx])
            if isnan(data):
                R25_c26=0
            elif data < 26:
                R25_c26 = 26
            elif data > 26:
                R25_c26 = -26
            else:
                R25_c26 = 0

            # computing recoding 'R26_c27'
            #based on the NormContinuous column of display name 'Label'
            data = float(df.iloc[line,c27_Idx])
            if isnan(data):
                R26_c27=0
            elif data < 27:
                R26_c27 = 27
            elif data > 27:
                R26_c27 = -27
            else:
                R26_c27 = 0

            # computing recoding 'R27_c28'
            #based on the NormContinuous column of display name 'Label'
            data = float(df.iloc[line,c28_Idx])
            if isnan(data):
                R27_c28=0
            elif data < 28:
                R27_c28 = 28
            elif data > 28:
                R27_c28 = -28
            else:
                R27_c28 = 0

            # computing recoding 'R28_c29'
            #based on the NormContinuous column of display name 'Label'
            data = float(df.iloc[line,c29_Idx])
            if isnan(data):
                R28_c29=0
            elif data < 29:
                R28_c29 = 29
            elif data > 29:
                R28_c29 = -29
            else:
                R28_c29 = 0

            # computing recoding 'R29_c30'
            #based on the NormContinuous column of display name 'Label'
            data = float(df.iloc[line,c30_Idx])
            if isnan(data):
                R29_c30=0
            elif data < 30:
                R29_c30 = 30
            elif data > 30:
                R29_c30 = -30
            else:
                R29_c30 = 0

            # computing recoding 'R30_c31'
            #based on the NormContinuous column of display name 'Label'
            data = float(df.iloc[line,c31_Idx])
            if isnan(data):
                R30_c31=0
            elif data < 31:
                R30_c31 = 31
            elif data > 31:
                R30_c31 = -31
            else:
                R30_c31 = 0

            # computing recoding 'R31_c32'
            #based on the NormContinuous column of display name 'Label'
            data = float(df.iloc[line,c32_Idx])
            if isnan(data):
                R31_c32=0
            elif data < 32:
                R31_c32 = 32
            elif data > 32:
                R31_c32 = -32
            else:
                R31_c32 = 0

            # computing recoding 'R32_c33'
            #based on the NormContinuous column of display name 'Label'
            data = float(df.iloc[line,c33_Idx])
            if isnan(data):
                R32_c33=0
            elif data < 33:
                R32_c33 = 33
            elif data > 33:
                R32_c33 = -33
            else:
                R32_c33 = 0

            # computing recoding 'R33_c34'
            #based on the NormContinuous column of display name 'Label'
            data = float(df.iloc[line,c34_Idx])
            if isnan(data):
                R33_c34=0
            elif data < 34:
                R33_c34 = 34
            elif data > 34:
                R33_c34 = -34
            else:
                R33_c34 = 0

            # computing recoding 'R34_c35'
            #based on the NormContinuous column of display name 'Label'
            data = float(df.iloc[line,c35_Idx])
            if isnan(data):
                R34_c35=0
            elif data < 35:
                R34_c35 = 35
            elif data > 35:
                R34_c35 = -35
            else:
                R34_c35 = 0

            # computing recoding 'R35_c36'
            #based on the NormContinuous column of display name 'Label'
            data = float(df.iloc[line,c36_Idx])
            if isnan(data):
                R35_c36=0
            elif data < 36:
                R35_c36 = 36
            elif data > 36:
                R35_c36 = -36
            else:
                R35_c36 = 0

            # computing recoding 'R36_c37'
            #based on the NormContinuous column of display name 'Label'
            data = float(df.iloc[line,c37_Idx])
            if isnan(data):
                R36_c37=0
            elif data < 37:
                R36_c37 = 37
            elif data > 37:
                R36_c37 = -37
            else:
                R36_c37 = 0

            # computing recoding 'R37_c38'
            #based on the NormContinuous column of display name 'Label'
            data = float(df.iloc[line,c38_Idx])
            if isnan(data):
                R37_c38=0
            elif data < 38:
                R37_c38 = 38
            elif data > 38:
                R37_c38 = -38
            else:
                R37_c38 = 0

            # computing recoding 'R38_c39'
            #based on the NormContinuous column of display name 'Label'
            data = float(df.iloc[line,c39_Idx])
            if isnan(data):
                R38_c39=0
            elif data < 39:
                R38_c39 = 39
            elif data > 39:
                R38_c39 = -39
            else:
                R38_c39 = 0

            # computing recoding 'R39_c40'
            #based on the NormContinuous column of display name 'Label'
            data = float(df.iloc[line,c40_Idx])
            if isnan(data):
                R39_c40=0
            elif data < 40:
                R39_c40 = 40
            elif data > 40:
                R39_c40 = -40
            else:
                R39_c40 = 0

            # computing recoding 'R40_c41'
            #based on the NormContinuous column of display name 'Label'
            data = float(df.iloc[line,c41_Idx])
            if isnan(data):
                R40_c41=0
            elif data < 41:
                R40_c41 = 41
            elif data > 41:
                R40_c41 = -41
            else:
                R40_c41 = 0

            # computing recoding 'R41_c42'
            #based on the NormContinuous column of display name 'Label'
            data = float(df.iloc[line,c42_Idx])
            if isnan(data):
                R41_c42=0
            elif data < 42:
                R41_c42 = 42
            elif data > 42:
                R41_c42 = -42
            else:
                R41_c42 = 0

            # computing recoding 'R42_c43'
            #based on the NormContinuous column of display name 'Label'
            data = float(df.iloc[line,c43_Idx])
            if isnan(data):
                R42_c43=0
            elif data < 43:
                R42_c43 = 43
            elif data > 43:
                R42_c43 = -43
            else:
                R42_c43 = 0

            # computing recoding 'R43_c44'
            #based on the NormContinuous column of display name 'Label'
            data = float(df.iloc[line,c44_Idx])
            if isnan(data):
                R43_c44=0
            elif data < 44:
                R43_c44 = 44
            elif data > 44:
                R43_c44 = -44
            else:
                R43_c44 = 0

            # computing recoding 'R44_c45'
            #based on the NormContinuous column of display name 'Label'
            data = float(df.iloc[line,c45_Idx])
            if isnan(data):
                R44_c45=0
            elif data < 45:
                R44_c45 = 45
            elif data > 45:
                R44_c45 = -45
            else:
                R44_c45 = 0

            # computing recoding 'R45_c46'
            #based on the NormContinuous column of display name 'Label'
            data = float(df.iloc[line,c46_Idx])
            if isnan(data):
                R45_c46=0
            elif data < 46:
                R45_c46 = 46
            elif data > 46:
                R45_c46 = -46
            else:
                R45_c46 = 0

            # computing recoding 'R46_c47'
            #based on the NormContinuous column of display name 'Label'
            data = float(df.iloc[line,c47_Idx])
            if isnan(data):
                R46_c47=0
            elif data < 47:
                R46_c47 = 47
            elif data > 47:
                R46_c47 = -47
            else:
                R46_c47 = 0

            # computing recoding 'R47_c48'
            #based on the NormContinuous column of display name 'Label'
            data = float(df.iloc[line,c48_Idx])
            if isnan(data):
                R47_c48=0
            elif data < 48:
                R47_c48 = 48
            elif data > 48:
                R47_c48 = -48
            else:
                R47_c48 = 0

            # computing recoding 'R48_c49'
            #based on the NormContinuous column of display name 'Label'
            data = float(df.iloc[line,c49_Idx])
            if isnan(data):
                R48_c49=0
            elif data < 49:
                R48_c49 = 49
            elif data > 49:
                R48_c49 = -49
            else:
                R48_c49 = 0

            # computing recoding 'R49_c50'
            #based on the NormContinuous column of display name 'Label'
            data = float(df.iloc[line,c50_Idx])
            if isnan(data):
                R49_c50=0
            elif data < 50:
                R49_c50 = 50
            elif data > 50:
                R49_c50 = -50
            else:
                R49_c50 = 0



            #computing the regression Model
            s=dfOutScore[line]=0.5 + 0.125 * R0_c1 + 0.25 * R1_c2 + 0.375 * R2_c3 + 0.5 * R3_c4 + 0.625 * R4_c5 + 0.75 * R5_c6 + 0.875 * R6_c7 + 1 * R7_c8 + 1.125 * R8_c9 + 1.25 * R9_c10 + 1.375 * R10_c11 + 1.5 * R11_c12 + 1.625 * R12_c13 + 1.75 * R13_c14 + 1.875 * R14_c15 + 2 * R15_c16 + 2.125 * R16_c17 + 2.25 * R17_c18 + 2.375 * R18_c19 + 2.5 * R19_c20 + 2.625 * R20_c21 + 2.75 * R21_c22 + 2.875 * R22_c23 + 3 * R23_c24 + 3.125 * R24_c25 + 3.25 * R25_c26 + 3.375 * R26_c27 + 3.5 * R27_c28 + 3.625 * R28_c29 + 3.75 * R29_c30 + 3.875 * R30_c31 + 4 * R31_c32 + 4.125 * R32_c33 + 4.25 * R33_c34 + 4.375 * R34_c35 + 4.5 * R35_c36 + 4.625 * R36_c37 + 4.75 * R37_c38 + 4.875 * R38_c39 + 5 * R39_c40 + 5.125 * R40_c41 + 5.25 * R41_c42 + 5.375 * R42_c43 + 5.5 * R43_c44 + 5.625 * R44_c45 + 5.75 * R45_c46 + 5.875 * R46_c47 + 6 * R47_c48 + 6.125 * R48_c49 + 6.25 * R49_c50
        return pd.DataFrame(data={'Bad_Payer_x_prediction':dfOutScore})