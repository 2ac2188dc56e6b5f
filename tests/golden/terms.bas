' The Following code shoud be included only ONCE inside the VBA script: (especially if there are multiple models):
Private Type QorvDataType
  indexes() As Integer
  workSheetIdx As Integer
  isInitialized As Boolean
End Type
Private tdAllModels(100) As QorvDataType


' ******************************************************************************************
' *                                                                                        *
' *  QORVALIS v4.2.1 auto-generated model                             *
' *  ==========================================================                             *
' *                                                                                        *
' *   Source model file: model.ModelXml *
' *   Total number of variables in model: 50                                    *
' *                                                                                        *
' *  Variable Name                        <->  Recoding Name                               *
' *  ----------------------------------------------------------                            *
' *  c1  <->  R0_c1            *
' *  c2  <->  R1_c2            *
' *  c3  <->  R2_c3            *
' *  c4  <->  R3_c4            *
' *  c5  <->  R4_c5            *
' *  c6  <->  R5_c6            *
' *  c7  <->  R6_c7            *
' *  c8  <->  R7_c8            *
' *  c9  <->  R8_c9            *
' *  c10  <->  R9_c10            *
' *  c11  <->  R10_c11            *
' *  c12  <->  R11_c12            *
' *  c13  <->  R12_c13            *
' *  c14  <->  R13_c14            *
' *  c15  <->  R14_c15            *
' *  c16  <->  R15_c16            *
' *  c17  <->  R16_c17            *
' *  c18  <->  R17_c18            *
' *  c19  <->  R18_c19            *
' *  c20  <->  R19_c20            *
' *  c21  <->  R20_c21            *
' *  c22  <->  R21_c22            *
' *  c23  <->  R22_c23            *
' *  c24  <->  R23_c24            *
' *  c25  <->  R24_c25            *
' *  c26  <->  R25_c26            *
' *  c27  <->  R26_c27            *
' *  c28  <->  R27_c28            *
' *  c29  <->  R28_c29            *
' *  c30  <->  R29_c30            *
' *  c31  <->  R30_c31            *
' *  c32  <->  R31_c32            *
' *  c33  <->  R32_c33            *
' *  c34  <->  R33_c34            *
' *  c35  <->  R34_c35            *
' *  c36  <->  R35_c36            *
' *  c37  <->  R36_c37            *
' *  c38  <->  R37_c38            *
' *  c39  <->  R38_c39            *
' *  c40  <->  R39_c40            *
' *  c41  <->  R40_c41            *
' *  c42  <->  R41_c42            *
' *  c43  <->  R42_c43            *
' *  c44  <->  R43_c44            *
' *  c45  <->  R44_c45            *
' *  c46  <->  R45_c46            *
' *  c47  <->  R46_c47            *
' *  c48  <->  R47_c48            *
' *  c49  <->  R48_c49            *
' *  c50  <->  R49_c50            *
' *                                                                                        *
' ******************************************************************************************/


' The following code computes one predictive model:
' If you need to compute several predictive model in the same excel document, simply
' change the '_1' in '_2', '_3', '_4', etc. (if you changed the name of the function in
' the declaration, you also need to change it on the last line for the 'return value'):

Function QorvPrediction_1(sourceWorksheet as String, titleRow As Range, dataRow As Range)
  Dim td As QorvDataType
  td = tdAllModels(1)

  If (Not td.isInitialized) Then
     td.isInitialized = True
     Dim i, j, n, idxRowTitle, idxStart, idxEnd As Integer
     i = 1
     td.workSheetIdx = -1
     For Each aws In ActiveWorkbook.Worksheets
        If (aws.Name = sourceWorksheet) Then
            td.workSheetIdx = i
            Exit For
        End If
        i = i + 1
     Next aws
     If td.workSheetIdx = -1 Then
        MsgBox ("The sheet '" & sourceWorksheet & "' could not be found in document"), vbOKOnly + vbCritical, "QorvPrediction Error"
        td.isInitialized = False
        Exit Function
     End If

     ReDim td.indexes(50) As Integer
     Dim variableNames(50) As String
     variableNames(1)="c1"
     variableNames(2)="c2"
     variableNames(3)="c3"
     variableNames(4)="c4"
     variableNames(5)="c5"
     variableNames(6)="c6"
     variableNames(7)="c7"
     variableNames(8)="c8"
     variableNames(9)="c9"
     variableNames(10)="c10"
     variableNames(11)="c11"
     variableNames(12)="c12"
     variableNames(13)="c13"
     variableNames(14)="c14"
     variableNames(15)="c15"
     variableNames(16)="c16"
     variableNames(17)="c17"
     variableNames(18)="c18"
     variableNames(19)="c19"
     variableNames(20)="c20"
     variableNames(21)="c21"
     variableNames(22)="c22"
     variableNames(23)="c23"
     variableNames(24)="c24"
     variableNames(25)="c25"
     variableNames(26)="c26"
     variableNames(27)="c27"
     variableNames(28)="c28"
     variableNames(29)="c29"
     variableNames(30)="c30"
     variableNames(31)="c31"
     variableNames(32)="c32"
     variableNames(33)="c33"
     variableNames(34)="c34"
     variableNames(35)="c35"
     variableNames(36)="c36"
     variableNames(37)="c37"
     variableNames(38)="c38"
     variableNames(39)="c39"
     variableNames(40)="c40"
     variableNames(41)="c41"
     variableNames(42)="c42"
     variableNames(43)="c43"
     variableNames(44)="c44"
     variableNames(45)="c45"
     variableNames(46)="c46"
     variableNames(47)="c47"
     variableNames(48)="c48"
     variableNames(49)="c49"
     variableNames(50)="c50"
     n = UBound(variableNames, 1)
     idxStart = titleRow.Column
     idxRowTitle = titleRow.row
     idxEnd = titleRow.Count + idxStart
     For i = 1 To n
        For j = idxStart To idxEnd
            If ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRowTitle, j).Value = variableNames(i) Then
               td.indexes(i) = j - idxStart
               Exit For
            End If
        Next j
        If (j > idxEnd) Then
            MsgBox ("The variable '" & variableNames(i) & "' could not be found on title row"), vbOK + vbCritical, "QorvPrediction Error"
            ReDim td.indexes(0)
            Exit Function
        End If
     Next i
  End If

  Dim idxRowdata, idxStartData As Integer
  Dim score As Double
  Dim myCell As Variant
  idxStartData = dataRow.Column
  idxRowdata = dataRow.row

'   computing recoding 'R0_c1'
'   based on the NormContinuous column of display name 'Label'

  Dim R0_c1 As Double
  R0_c1 = 0
  myCell = ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRowdata, idxStartData + td.indexes(1)).Value
  If (IsNumeric(myCell) And (Len(myCell) > 0)) Then
   Select case CDbl(myCell)
    Case Is <1
      R0_c1=1
    Case Is >1
      R0_c1=-1
   End Select
  End If

'   computing recoding 'R1_c2'
'   based on the NormContinuous column of display name 'Label'

  Dim R1_c2 As Double
  R1_c2 = 0
  myCell = ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRowdata, idxStartData + td.indexes(2)).Value
  If (IsNumeric(myCell) And (Len(myCell) > 0)) Then
   Select case CDbl(myCell)
    Case Is <2
      R1_c2=2
    Case Is >2
      R1_c2=-2
   End Select
  End If

'   computing recoding 'R2_c3'
'   based on the NormContinuous column of display name 'Label'

  Dim R2_c3 As Double
  R2_c3 = 0
  myCell = ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRowdata, idxStartData + td.indexes(3)).Value
  If (IsNumeric(myCell) And (Len(myCell) > 0)) Then
   Select case CDbl(myCell)
    Case Is <3
      R2_c3=3
    Case Is >3
      R2_c3=-3
   End Select
  End If

'   computing recoding 'R3_c4'
'   based on the NormContinuous column of display name 'Label'

  Dim R3_c4 As Double
  R3_c4 = 0
  myCell = ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRowdata, idxStartData + td.indexes(4)).Value
  If (IsNumeric(myCell) And (Len(myCell) > 0)) Then
   Select case CDbl(myCell)
    Case Is <4
      R3_c4=4
    Case Is >4
      R3_c4=-4
   End Select
  End If

'   computing recoding 'R4_c5'
'   based on the NormContinuous column of display name 'Label'

  Dim R4_c5 As Double
  R4_c5 = 0
  myCell = ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRowdata, idxStartData + td.indexes(5)).Value
  If (IsNumeric(myCell) And (Len(myCell) > 0)) Then
   Select case CDbl(myCell)
    Case Is <5
      R4_c5=5
    Case Is >5
      R4_c5=-5
   End Select
  End If

'   computing recoding 'R5_c6'
'   based on the NormContinuous column of display name 'Label'

  Dim R5_c6 As Double
  R5_c6 = 0
  myCell = ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRowdata, idxStartData + td.indexes(6)).Value
  If (IsNumeric(myCell) And (Len(myCell) > 0)) Then
   Select case CDbl(myCell)
    Case Is <6
      R5_c6=6
    Case Is >6
      R5_c6=-6
   End Select
  End If

'   computing recoding 'R6_c7'
'   based on the NormContinuous column of display name 'Label'

  Dim R6_c7 As Double
  R6_c7 = 0
  myCell = ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRowdata, idxStartData + td.indexes(7)).Value
  If (IsNumeric(myCell) And (Len(myCell) > 0)) Then
   Select case CDbl(myCell)
    Case Is <7
      R6_c7=7
    Case Is >7
      R6_c7=-7
   End Select
  End If

'   computing recoding 'R7_c8'
'   based on the NormContinuous column of display name 'Label'

  Dim R7_c8 As Double
  R7_c8 = 0
  myCell = ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRowdata, idxStartData + td.indexes(8)).Value
  If (IsNumeric(myCell) And (Len(myCell) > 0)) Then
   Select case CDbl(myCell)
    Case Is <8
      R7_c8=8
    Case Is >8
      R7_c8=-8
   End Select
  End If

'   computing recoding 'R8_c9'
'   based on the NormContinuous column of display name 'Label'

  Dim R8_c9 As Double
  R8_c9 = 0
  myCell = ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRowdata, idxStartData + td.indexes(9)).Value
  If (IsNumeric(myCell) And (Len(myCell) > 0)) Then
   Select case CDbl(myCell)
    Case Is <9
      R8_c9=9
    Case Is >9
      R8_c9=-9
   End Select
  End If

'   computing recoding 'R9_c10'
'   based on the NormContinuous column of display name 'Label'

  Dim R9_c10 As Double
  R9_c10 = 0
  myCell = ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRowdata, idxStartData + td.indexes(10)).Value
  If (IsNumeric(myCell) And (Len(myCell) > 0)) Then
   Select case CDbl(myCell)
    Case Is <10
      R9_c10=10
    Case Is >10
      R9_c10=-10
   End Select
  End If

'   computing recoding 'R10_c11'
'   based on the NormContinuous column of display name 'Label'

  Dim R10_c11 As Double
  R10_c11 = 0
  myCell = ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRowdata, idxStartData + td.indexes(11)).Value
  If (IsNumeric(myCell) And (Len(myCell) > 0)) Then
   Select case CDbl(myCell)
    Case Is <11
      R10_c11=11
    Case Is >11
      R10_c11=-11
   End Select
  End If

'   computing recoding 'R11_c12'
'   based on the NormContinuous column of display name 'Label'

  Dim R11_c12 As Double
  R11_c12 = 0
  myCell = ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRowdata, idxStartData + td.indexes(12)).Value
  If (IsNumeric(myCell) And (Len(myCell) > 0)) Then
   Select case CDbl(myCell)
    Case Is <12
      R11_c12=12
    Case Is >12
      R11_c12=-12
   End Select
  End If

'   computing recoding 'R12_c13'
'   based on the NormContinuous column of display name 'Label'

  Dim R12_c13 As Double
  R12_c13 = 0
  myCell = ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRowdata, idxStartData + td.indexes(13)).Value
  If (IsNumeric(myCell) And (Len(myCell) > 0)) Then
   Select case CDbl(myCell)
    Case Is <13
      R12_c13=13
    Case Is >13
      R12_c13=-13
   End Select
  End If

'   computing recoding 'R13_c14'
'   based on the NormContinuous column of display name 'Label'

  Dim R13_c14 As Double
  R13_c14 = 0
  myCell = ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRowdata, idxStartData + td.indexes(14)).Value
  If (IsNumeric(myCell) And (Len(myCell) > 0)) Then
   Select case CDbl(myCell)
    Case Is <14
      R13_c14=14
    Case Is >14
      R13_c14=-14
   End Select
  End If

'   computing recoding 'R14_c15'
'   based on the NormContinuous column of display name 'Label'

  Dim R14_c15 As Double
  R14_c15 = 0
  myCell = ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRowdata, idxStartData + td.indexes(15)).Value
  If (IsNumeric(myCell) And (Len(myCell) > 0)) Then
   Select case CDbl(myCell)
    Case Is <15
      R14_c15=15
    Case Is >15
      R14_c15=-15
   End Select
  End If

'   computing recoding 'R15_c16'
'   based on the NormContinuous column of display name 'Label'

  Dim R15_c16 As Double
  R15_c16 = 0
  myCell = ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRowdata, idxStartData + td.indexes(16)).Value
  If (IsNumeric(myCell) And (Len(myCell) > 0)) Then
   Select case CDbl(myCell)
    Case Is <16
      R15_c16=16
    Case Is >16
      R15_c16=-16
   End Select
  End If

'   computing recoding 'R16_c17'
'   based on the NormContinuous column of display name 'Label'

  Dim R16_c17 As Double
  R16_c17 = 0
  myCell = ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRowdata, idxStartData + td.indexes(17)).Value
  If (IsNumeric(myCell) And (Len(myCell) > 0)) Then
   Select case CDbl(myCell)
    Case Is <17
      R16_c17=17
    Case Is >17
      R16_c17=-17
   End Select
  End If

'   computing recoding 'R17_c18'
'   based on the NormContinuous column of display name 'Label'

  Dim R17_c18 As Double
  R17_c18 = 0
  myCell = ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRowdata, idxStartData + td.indexes(18)).Value
  If (IsNumeric(myCell) And (Len(myCell) > 0)) Then
   Select case CDbl(myCell)
    Case Is <18
      R17_c18=18
    Case Is >18
      R17_c18=-18
   End Select
  End If

'   computing recoding 'R18_c19'
'   based on the NormContinuous column of display name 'Label'

  Dim R18_c19 As Double
  R18_c19 = 0
  myCell = ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRowdata, idxStartData + td.indexes(19)).Value
  If (IsNumeric(myCell) And (Len(myCell) > 0)) Then
   Select case CDbl(myCell)
    Case Is <19
      R18_c19=19
    Case Is >19
      R18_c19=-19
   End Select
  End If

'   computing recoding 'R19_c20'
'   based on the NormContinuous column of display name 'Label'

  Dim R19_c20 As Double
  R19_c20 = 0
  myCell = ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRowdata, idxStartData + td.indexes(20)).Value
  If (IsNumeric(myCell) And (Len(myCell) > 0)) Then
   Select case CDbl(myCell)
    Case Is <20
      R19_c20=20
    Case Is >20
      R19_c20=-20
   End Select
  End If

'   computing recoding 'R20_c21'
'   based on the NormContinuous column of display name 'Label'

  Dim R20_c21 As Double
  R20_c21 = 0
  myCell = ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRowdata, idxStartData + td.indexes(21)).Value
  If (IsNumeric(myCell) And (Len(myCell) > 0)) Then
   Select case CDbl(myCell)
    Case Is <21
      R20_c21=21
    Case Is >21
      R20_c21=-21
   End Select
  End If

'   computing recoding 'R21_c22'
'   based on the NormContinuous column of display name 'Label'

  Dim R21_c22 As Double
  R21_c22 = 0
  myCell = ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRowdata, idxStartData + td.indexes(22)).Value
  If (IsNumeric(myCell) And (Len(myCell) > 0)) Then
   Select case CDbl(myCell)
    Case Is <22
      R21_c22=22
    Case Is >22
      R21_c22=-22
   End Select
  End If

'   computing recoding 'R22_c23'
'   based on the NormContinuous column of display name 'Label'

  Dim R22_c23 As Double
  R22_c23 = 0
  myCell = ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRowdata, idxStartData + td.indexes(23)).Value
  If (IsNumeric(myCell) And (Len(myCell) > 0)) Then
   Select case CDbl(myCell)
    Case Is <23
      R22_c23=23
    Case Is >23
      R22_c23=-23
   End Select
  End If

'   computing recoding 'R23_c24'
'   based on the NormContinuous column of display name 'Label'

  Dim R23_c24 As Double
  R23_c24 = 0
  myCell = ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRowdata, idxStartData + td.indexes(24)).Value
  If (IsNumeric(myCell) And (Len(myCell) > 0)) Then
   Select case CDbl(myCell)
    Case Is <24
      R23_c24=24
    Case Is >24
      R23_c24=-24
   End Select
  End If

'   computing recoding 'R24_c25'
'   based on the NormContinuous column of display name 'Label'

  Dim R24_c25 As Double
  R24_c25 = 0
  myCell = ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRowdata, idxStartData + td.indexes(25)).Value
  If (IsNumeric(myCell) And (Len(myCell) > 0)) Then
   Select case CDbl(myCell)
    Case Is <25
      R24_c25=25
    Case Is >25
      R24_c25=-25
   End Select
  End If

'   computing recoding 'R25_c26'
'   based on the NormContinuous column of display name 'Label'

  Dim R25_c26 As Double
  R25_c26 = 0
  myCell = ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRowdata, idxStartData + td.indexes(26)).Value
  If (IsNumeric(myCell) And (Len(myCell) > 0)) Then
   Select case CDbl(myCell)
    Case Is <26
      R25_c26=26
    Case Is >26
      R25_c26=-26
   End Select
  End If

'   computing recoding 'R26_c27'
'   based on the NormContinuous column of display name 'Label'

  Dim R26_c27 As Double
  R26_c27 = 0
  myCell = ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRowdata, idxStartData + td.indexes(27)).Value
  If (IsNumeric(myCell) And (Len(myCell) > 0)) Then
   Select case CDbl(myCell)
    Case Is <27
      R26_c27=27
    Case Is >27
      R26_c27=-27
   End Select
  End If

'   computing recoding 'R27_c28'
'   based on the NormContinuous column of display name 'Label'

  Dim R27_c28 As Double
  R27_c28 = 0
  myCell = ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRowdata, idxStartData + td.indexes(28)).Value
  If (IsNumeric(myCell) And (Len(myCell) > 0)) Then
   Select case CDbl(myCell)
    Case Is <28
      R27_c28=28
    Case Is >28
      R27_c28=-28
   End Select
  End If

'   computing recoding 'R28_c29'
'   based on the NormContinuous column of display name 'Label'

  Dim R28_c29 As Double
  R28_c29 = 0
  myCell = ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRowdata, idxStartData + td.indexes(29)).Value
  If (IsNumeric(myCell) And (Len(myCell) > 0)) Then
   Select case CDbl(myCell)
    Case Is <29
      R28_c29=29
    Case Is >29
      R28_c29=-29
   End Select
  End If

'   computing recoding 'R29_c30'
'   based on the NormContinuous column of display name 'Label'

  Dim R29_c30 As Double
  R29_c30 = 0
  myCell = ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRowdata, idxStartData + td.indexes(30)).Value
  If (IsNumeric(myCell) And (Len(myCell) > 0)) Then
   Select case CDbl(myCell)
    Case Is <30
      R29_c30=30
    Case Is >30
      R29_c30=-30
   End Select
  End If

'   computing recoding 'R30_c31'
'   based on the NormContinuous column of display name 'Label'

  Dim R30_c31 As Double
  R30_c31 = 0
  myCell = ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRowdata, idxStartData + td.indexes(31)).Value
  If (IsNumeric(myCell) And (Len(myCell) > 0)) Then
   Select case CDbl(myCell)
    Case Is <31
      R30_c31=31
    Case Is >31
      R30_c31=-31
   End Select
  End If

'   computing recoding 'R31_c32'
'   based on the NormContinuous column of display name 'Label'

  Dim R31_c32 As Double
  R31_c32 = 0
  myCell = ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRowdata, idxStartData + td.indexes(32)).Value
  If (IsNumeric(myCell) And (Len(myCell) > 0)) Then
   Select case CDbl(myCell)
    Case Is <32
      R31_c32=32
    Case Is >32
      R31_c32=-32
   End Select
  End If

'   computing recoding 'R32_c33'
'   based on the NormContinuous column of display name 'Label'

  Dim R32_c33 As Double
  R32_c33 = 0
  myCell = ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRowdata, idxStartData + td.indexes(33)).Value
  If (IsNumeric(myCell) And (Len(myCell) > 0)) Then
   Select case CDbl(myCell)
    Case Is <33
      R32_c33=33
    Case Is >33
      R32_c33=-33
   End Select
  End If

'   computing recoding 'R33_c34'
'   based on the NormContinuous column of display name 'Label'

  Dim R33_c34 As Double
  R33_c34 = 0
  myCell = ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRowdata, idxStartData + td.indexes(34)).Value
  If (IsNumeric(myCell) And (Len(myCell) > 0)) Then
   Select case CDbl(myCell)
    Case Is <34
      R33_c34=34
    Case Is >34
      R33_c34=-34
   End Select
  End If

'   computing recoding 'R34_c35'
'   based on the NormContinuous column of display name 'Label'

  Dim R34_c35 As Double
  R34_c35 = 0
  myCell = ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRowdata, idxStartData + td.indexes(35)).Value
  If (IsNumeric(myCell) And (Len(myCell) > 0)) Then
   Select case CDbl(myCell)
    Case Is <35
      R34_c35=35
    Case Is >35
      R34_c35=-35
   End Select
  End If

'   computing recoding 'R35_c36'
'   based on the NormContinuous column of display name 'Label'

  Dim R35_c36 As Double
  R35_c36 = 0
  myCell = ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRowdata, idxStartData + td.indexes(36)).Value
  If (IsNumeric(myCell) And (Len(myCell) > 0)) Then
   Select case CDbl(myCell)
    Case Is <36
      R35_c36=36
    Case Is >36
      R35_c36=-36
   End Select
  End If

'   computing recoding 'R36_c37'
'   based on the NormContinuous column of display name 'Label'

  Dim R36_c37 As Double
  R36_c37 = 0
  myCell = ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRowdata, idxStartData + td.indexes(37)).Value
  If (IsNumeric(myCell) And (Len(myCell) > 0)) Then
   Select case CDbl(myCell)
    Case Is <37
      R36_c37=37
    Case Is >37
      R36_c37=-37
   End Select
  End If

'   computing recoding 'R37_c38'
'   based on the NormContinuous column of display name 'Label'

  Dim R37_c38 As Double
  R37_c38 = 0
  myCell = ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRowdata, idxStartData + td.indexes(38)).Value
  If (IsNumeric(myCell) And (Len(myCell) > 0)) Then
   Select case CDbl(myCell)
    Case Is <38
      R37_c38=38
    Case Is >38
      R37_c38=-38
   End Select
  End If

'   computing recoding 'R38_c39'
'   based on the NormContinuous column of display name 'Label'

  Dim R38_c39 As Double
  R38_c39 = 0
  myCell = ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRowdata, idxStartData + td.indexes(39)).Value
  If (IsNumeric(myCell) And (Len(myCell) > 0)) Then
   Select case CDbl(myCell)
    Case Is <39
      R38_c39=39
    Case Is >39
      R38_c39=-39
   End Select
  End If

'   computing recoding 'R39_c40'
'   based on the NormContinuous column of display name 'Label'

  Dim R39_c40 As Double
  R39_c40 = 0
  myCell = ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRowdata, idxStartData + td.indexes(40)).Value
  If (IsNumeric(myCell) And (Len(myCell) > 0)) Then
   Select case CDbl(myCell)
    Case Is <40
      R39_c40=40
    Case Is >40
      R39_c40=-40
   End Select
  End If

'   computing recoding 'R40_c41'
'   based on the NormContinuous column of display name 'Label'

  Dim R40_c41 As Double
  R40_c41 = 0
  myCell = ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRowdata, idxStartData + td.indexes(41)).Value
  If (IsNumeric(myCell) And (Len(myCell) > 0)) Then
   Select case CDbl(myCell)
    Case Is <41
      R40_c41=41
    Case Is >41
      R40_c41=-41
   End Select
  End If

'   computing recoding 'R41_c42'
'   based on the NormContinuous column of display name 'Label'

  Dim R41_c42 As Double
  R41_c42 = 0
  myCell = ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRowdata, idxStartData + td.indexes(42)).Value
  If (IsNumeric(myCell) And (Len(myCell) > 0)) Then
   Select case CDbl(myCell)
    Case Is <42
      R41_c42=42
    Case Is >42
      R41_c42=-42
   End Select
  End If

'   computing recoding 'R42_c43'
'   based on the NormContinuous column of display name 'Label'

  Dim R42_c43 As Double
  R42_c43 = 0
  myCell = ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRowdata, idxStartData + td.indexes(43)).Value
  If (IsNumeric(myCell) And (Len(myCell) > 0)) Then
   Select case CDbl(myCell)
    Case Is <43
      R42_c43=43
    Case Is >43
      R42_c43=-43
   End Select
  End If

'   computing recoding 'R43_c44'
'   based on the NormContinuous column of display name 'Label'

  Dim R43_c44 As Double
  R43_c44 = 0
  myCell = ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRowdata, idxStartData + td.indexes(44)).Value
  If (IsNumeric(myCell) And (Len(myCell) > 0)) Then
   Select case CDbl(myCell)
    Case Is <44
      R43_c44=44
    Case Is >44
      R43_c44=-44
   End Select
  End If

'   computing recoding 'R44_c45'
'   based on the NormContinuous column of display name 'Label'

  Dim R44_c45 As Double
  R44_c45 = 0
  myCell = ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRowdata, idxStartData + td.indexes(45)).Value
  If (IsNumeric(myCell) And (Len(myCell) > 0)) Then
   Select case CDbl(myCell)
    Case Is <45
      R44_c45=45
    Case Is >45
      R44_c45=-45
   End Select
  End If

'   computing recoding 'R45_c46'
'   based on the NormContinuous column of display name 'Label'

  Dim R45_c46 As Double
  R45_c46 = 0
  myCell = ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRowdata, idxStartData + td.indexes(46)).Value
  If (IsNumeric(myCell) And (Len(myCell) > 0)) Then
   Select case CDbl(myCell)
    Case Is <46
      R45_c46=46
    Case Is >46
      R45_c46=-46
   End Select
  End If

'   computing recoding 'R46_c47'
'   based on the NormContinuous column of display name 'Label'

  Dim R46_c47 As Double
  R46_c47 = 0
  myCell = ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRowdata, idxStartData + td.indexes(47)).Value
  If (IsNumeric(myCell) And (Len(myCell) > 0)) Then
   Select case CDbl(myCell)
    Case Is <47
      R46_c47=47
    Case Is >47
      R46_c47=-47
   End Select
  End If

'   computing recoding 'R47_c48'
'   based on the NormContinuous column of display name 'Label'

  Dim R47_c48 As Double
  R47_c48 = 0
  myCell = ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRowdata, idxStartData + td.indexes(48)).Value
  If (IsNumeric(myCell) And (Len(myCell) > 0)) Then
   Select case CDbl(myCell)
    Case Is <48
      R47_c48=48
    Case Is >48
      R47_c48=-48
   End Select
  End If

'   computing recoding 'R48_c49'
'   based on the NormContinuous column of display name 'Label'

  Dim R48_c49 As Double
  R48_c49 = 0
  myCell = ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRowdata, idxStartData + td.indexes(49)).Value
  If (IsNumeric(myCell) And (Len(myCell) > 0)) Then
   Select case CDbl(myCell)
    Case Is <49
      R48_c49=49
    Case Is >49
      R48_c49=-49
   End Select
  End If

'   computing recoding 'R49_c50'
'   based on the NormContinuous column of display name 'Label'

  Dim R49_c50 As Double
  R49_c50 = 0
  myCell = ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRowdata, idxStartData + td.indexes(50)).Value
  If (IsNumeric(myCell) And (Len(myCell) > 0)) Then
   Select case CDbl(myCell)
    Case Is <50
      R49_c50=50
    Case Is >50
      R49_c50=-50
   End Select
  End If


'  for debug:
'  Dim vdebug(50) As Double
'  vdebug(1) = R0_c1
'  vdebug(2) = R1_c2
'  vdebug(3) = R2_c3
'  vdebug(4) = R3_c4
'  vdebug(5) = R4_c5
'  vdebug(6) = R5_c6
'  vdebug(7) = R6_c7
'  vdebug(8) = R7_c8
'  vdebug(9) = R8_c9
'  vdebug(10) = R9_c10
'  vdebug(11) = R10_c11
'  vdebug(12) = R11_c12
'  vdebug(13) = R12_c13
'  vdebug(14) = R13_c14
'  vdebug(15) = R14_c15
'  vdebug(16) = R15_c16
'  vdebug(17) = R16_c17
'  vdebug(18) = R17_c18
'  vdebug(19) = R18_c19
'  vdebug(20) = R19_c20
'  vdebug(21) = R20_c21
'  vdebug(22) = R21_c22
'  vdebug(23) = R22_c23
'  vdebug(24) = R23_c24
'  vdebug(25) = R24_c25
'  vdebug(26) = R25_c26
'  vdebug(27) = R26_c27
'  vdebug(28) = R27_c28
'  vdebug(29) = R28_c29
'  vdebug(30) = R29_c30
'  vdebug(31) = R30_c31
'  vdebug(32) = R31_c32
'  vdebug(33) = R32_c33
'  vdebug(34) = R33_c34
'  vdebug(35) = R34_c35
'  vdebug(36) = R35_c36
'  vdebug(37) = R36_c37
'  vdebug(38) = R37_c38
'  vdebug(39) = R38_c39
'  vdebug(40) = R39_c40
'  vdebug(41) = R40_c41
'  vdebug(42) = R41_c42
'  vdebug(43) = R42_c43
'  vdebug(44) = R43_c44
'  vdebug(45) = R44_c45
'  vdebug(46) = R45_c46
'  vdebug(47) = R46_c47
'  vdebug(48) = R47_c48
'  vdebug(49) = R48_c49
'  vdebug(50) = R49_c50


'   computing the regression Model
  score = 0.5 _
        + 0.125* R0_c1 _
        + 0.25* R1_c2 _
        + 0.375* R2_c3 _
        + 0.5* R3_c4 _
        + 0.625* R4_c5 _
        + 0.75* R5_c6 _
        + 0.875* R6_c7 _
        + 1* R7_c8 _
        + 1.125* R8_c9 _
        + 1.25* R9_c10 _
        + 1.375* R10_c11 _
        + 1.5* R11_c12 _
        + 1.625* R12_c13 _
        + 1.75* R13_c14 _
        + 1.875* R14_c15 _
        + 2* R15_c16 _
        + 2.125* R16_c17 _
        + 2.25* R17_c18 _
        + 2.375* R18_c19 _
        + 2.5* R19_c20 _
        + 2.625* R20_c21 _
        + 2.75* R21_c22
 score  = score _
        + 2.875* R22_c23 _
        + 3* R23_c24 _
        + 3.125* R24_c25 _
        + 3.25* R25_c26 _
        + 3.375* R26_c27 _
        + 3.5* R27_c28 _
        + 3.625* R28_c29 _
        + 3.75* R29_c30 _
        + 3.875* R30_c31 _
        + 4* R31_c32 _
        + 4.125* R32_c33 _
        + 4.25* R33_c34 _
        + 4.375* R34_c35 _
        + 4.5* R35_c36 _
        + 4.625* R36_c37 _
        + 4.75* R37_c38 _
        + 4.875* R38_c39 _
        + 5* R39_c40 _
        + 5.125* R40_c41 _
        + 5.25* R41_c42 _
        + 5.375* R42_c43 _
        + 5.5* R43_c44 _
        + 5.625* R44_c45 _
        + 5.75* R45_c46
 score  = score _
        + 5.875* R46_c47 _
        + 6* R47_c48 _
        + 6.125* R48_c49 _
        + 6.25* R49_c50

  QorvPrediction_1 = score
End Function

Sub QorvCheckRange_1(sourceWorksheet As String, titleRow As Range, dataTable As Range)
  Dim td As QorvDataType
  td = tdAllModels(1)

  If (Not td.isInitialized) Then
     td.isInitialized = True
     Dim i, j, n, idxRowTitle, idxStart, idxEnd As Integer
     i = 1
     td.workSheetIdx = -1
     For Each aws In ActiveWorkbook.Worksheets
        If (aws.Name = sourceWorksheet) Then
            td.workSheetIdx = i
            Exit For
        End If
        i = i + 1
     Next aws
     If td.workSheetIdx = -1 Then
        MsgBox ("The sheet '" & sourceWorksheet & "' could not be found in document"), vbOKOnly + vbCritical, "QorvPrediction Error"
        td.isInitialized = False
        Exit Sub
     End If

     ReDim td.indexes(50) As Integer
     Dim variableNames(50) As String
     variableNames(1)="c1"
     variableNames(2)="c2"
     variableNames(3)="c3"
     variableNames(4)="c4"
     variableNames(5)="c5"
     variableNames(6)="c6"
     variableNames(7)="c7"
     variableNames(8)="c8"
     variableNames(9)="c9"
     variableNames(10)="c10"
     variableNames(11)="c11"
     variableNames(12)="c12"
     variableNames(13)="c13"
     variableNames(14)="c14"
     variableNames(15)="c15"
     variableNames(16)="c16"
     variableNames(17)="c17"
     variableNames(18)="c18"
     variableNames(19)="c19"
     variableNames(20)="c20"
     variableNames(21)="c21"
     variableNames(22)="c22"
     variableNames(23)="c23"
     variableNames(24)="c24"
     variableNames(25)="c25"
     variableNames(26)="c26"
     variableNames(27)="c27"
     variableNames(28)="c28"
     variableNames(29)="c29"
     variableNames(30)="c30"
     variableNames(31)="c31"
     variableNames(32)="c32"
     variableNames(33)="c33"
     variableNames(34)="c34"
     variableNames(35)="c35"
     variableNames(36)="c36"
     variableNames(37)="c37"
     variableNames(38)="c38"
     variableNames(39)="c39"
     variableNames(40)="c40"
     variableNames(41)="c41"
     variableNames(42)="c42"
     variableNames(43)="c43"
     variableNames(44)="c44"
     variableNames(45)="c45"
     variableNames(46)="c46"
     variableNames(47)="c47"
     variableNames(48)="c48"
     variableNames(49)="c49"
     variableNames(50)="c50"
     n = UBound(variableNames, 1)
     idxStart = titleRow.Column
     idxRowTitle = titleRow.row
     idxEnd = titleRow.Count + idxStart
     For i = 1 To n
        For j = idxStart To idxEnd
            If ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRowTitle, j).Value = variableNames(i) Then
               td.indexes(i) = j - idxStart
               Exit For
            End If
        Next j
        If (j > idxEnd) Then
            MsgBox ("The variable '" & variableNames(i) & "' could not be found on title row"), vbOK + vbCritical, "QorvPrediction Error"
            ReDim td.indexes(0)
            Exit Sub
        End If
     Next i
  End If

   Application.EnableEvents = False
   Dim idxRow, idxStartData, idxRowEnd as Integer
   idxStartData = dataTable.column
   idxRowEnd = dataTable.row + dataTable.Rows.Count - 1
   Dim c as Object
   For idxRow = dataTable.row to idxRowEnd
'    R0_c1
     Set c=ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRow, idxStartData + td.indexes(1))
     If (Trim(c.Value) = "") Then
         c.Interior.Color = RGB(158, 274, 255)
     Else
       Select case CDbl(c.Value)
         Case Is <1
           c.Interior.Color = RGB(255, 183, 139)
         Case Is >1
           c.Interior.Color = RGB(238, 158, 255)
         Case Else
           c.Interior.Color = RGB(255, 255, 255)
       End Select
     End If
'    R1_c2
     Set c=ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRow, idxStartData + td.indexes(2))
     If (Trim(c.Value) = "") Then
         c.Interior.Color = RGB(158, 274, 255)
     Else
       Select case CDbl(c.Value)
         Case Is <2
           c.Interior.Color = RGB(255, 183, 139)
         Case Is >2
           c.Interior.Color = RGB(238, 158, 255)
         Case Else
           c.Interior.Color = RGB(255, 255, 255)
       End Select
     End If
'    R2_c3
     Set c=ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRow, idxStartData + td.indexes(3))
     If (Trim(c.Value) = "") Then
         c.Interior.Color = RGB(158, 274, 255)
     Else
       Select case CDbl(c.Value)
         Case Is <3
           c.Interior.Color = RGB(255, 183, 139)
         Case Is >3
           c.Interior.Color = RGB(238, 158, 255)
         Case Else
           c.Interior.Color = RGB(255, 255, 255)
       End Select
     End If
'    R3_c4
     Set c=ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRow, idxStartData + td.indexes(4))
     If (Trim(c.Value) = "") Then
         c.Interior.Color = RGB(158, 274, 255)
     Else
       Select case CDbl(c.Value)
         Case Is <4
           c.Interior.Color = RGB(255, 183, 139)
         Case Is >4
           c.Interior.Color = RGB(238, 158, 255)
         Case Else
           c.Interior.Color = RGB(255, 255, 255)
       End Select
     End If
'    R4_c5
     Set c=ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRow, idxStartData + td.indexes(5))
     If (Trim(c.Value) = "") Then
         c.Interior.Color = RGB(158, 274, 255)
     Else
       Select case CDbl(c.Value)
         Case Is <5
           c.Interior.Color = RGB(255, 183, 139)
         Case Is >5
           c.Interior.Color = RGB(238, 158, 255)
         Case Else
           c.Interior.Color = RGB(255, 255, 255)
       End Select
     End If
'    R5_c6
     Set c=ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRow, idxStartData + td.indexes(6))
     If (Trim(c.Value) = "") Then
         c.Interior.Color = RGB(158, 274, 255)
     Else
       Select case CDbl(c.Value)
         Case Is <6
           c.Interior.Color = RGB(255, 183, 139)
         Case Is >6
           c.Interior.Color = RGB(238, 158, 255)
         Case Else
           c.Interior.Color = RGB(255, 255, 255)
       End Select
     End If
'    R6_c7
     Set c=ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRow, idxStartData + td.indexes(7))
     If (Trim(c.Value) = "") Then
         c.Interior.Color = RGB(158, 274, 255)
     Else
       Select case CDbl(c.Value)
         Case Is <7
           c.Interior.Color = RGB(255, 183, 139)
         Case Is >7
           c.Interior.Color = RGB(238, 158, 255)
         Case Else
           c.Interior.Color = RGB(255, 255, 255)
       End Select
     End If
'    R7_c8
     Set c=ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRow, idxStartData + td.indexes(8))
     If (Trim(c.Value) = "") Then
         c.Interior.Color = RGB(158, 274, 255)
     Else
       Select case CDbl(c.Value)
         Case Is <8
           c.Interior.Color = RGB(255, 183, 139)
         Case Is >8
           c.Interior.Color = RGB(238, 158, 255)
         Case Else
           c.Interior.Color = RGB(255, 255, 255)
       End Select
     End If
'    R8_c9
     Set c=ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRow, idxStartData + td.indexes(9))
     If (Trim(c.Value) = "") Then
         c.Interior.Color = RGB(158, 274, 255)
     Else
       Select case CDbl(c.Value)
         Case Is <9
           c.Interior.Color = RGB(255, 183, 139)
         Case Is >9
           c.Interior.Color = RGB(238, 158, 255)
         Case Else
           c.Interior.Color = RGB(255, 255, 255)
       End Select
     End If
'    R9_c10
     Set c=ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRow, idxStartData + td.indexes(10))
     If (Trim(c.Value) = "") Then
         c.Interior.Color = RGB(158, 274, 255)
     Else
       Select case CDbl(c.Value)
         Case Is <10
           c.Interior.Color = RGB(255, 183, 139)
         Case Is >10
           c.Interior.Color = RGB(238, 158, 255)
         Case Else
           c.Interior.Color = RGB(255, 255, 255)
       End Select
     End If
'    R10_c11
     Set c=ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRow, idxStartData + td.indexes(11))
     If (Trim(c.Value) = "") Then
         c.Interior.Color = RGB(158, 274, 255)
     Else
       Select case CDbl(c.Value)
         Case Is <11
           c.Interior.Color = RGB(255, 183, 139)
         Case Is >11
           c.Interior.Color = RGB(238, 158, 255)
         Case Else
           c.Interior.Color = RGB(255, 255, 255)
       End Select
     End If
'    R11_c12
     Set c=ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRow, idxStartData + td.indexes(12))
     If (Trim(c.Value) = "") Then
         c.Interior.Color = RGB(158, 274, 255)
     Else
       Select case CDbl(c.Value)
         Case Is <12
           c.Interior.Color = RGB(255, 183, 139)
         Case Is >12
           c.Interior.Color = RGB(238, 158, 255)
         Case Else
           c.Interior.Color = RGB(255, 255, 255)
       End Select
     End If
'    R12_c13
     Set c=ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRow, idxStartData + td.indexes(13))
     If (Trim(c.Value) = "") Then
         c.Interior.Color = RGB(158, 274, 255)
     Else
       Select case CDbl(c.Value)
         Case Is <13
           c.Interior.Color = RGB(255, 183, 139)
         Case Is >13
           c.Interior.Color = RGB(238, 158, 255)
         Case Else
           c.Interior.Color = RGB(255, 255, 255)
       End Select
     End If
'    R13_c14
     Set c=ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRow, idxStartData + td.indexes(14))
     If (Trim(c.Value) = "") Then
         c.Interior.Color = RGB(158, 274, 255)
     Else
       Select case CDbl(c.Value)
         Case Is <14
           c.Interior.Color = RGB(255, 183, 139)
         Case Is >14
           c.Interior.Color = RGB(238, 158, 255)
         Case Else
           c.Interior.Color = RGB(255, 255, 255)
       End Select
     End If
'    R14_c15
     Set c=ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRow, idxStartData + td.indexes(15))
     If (Trim(c.Value) = "") Then
         c.Interior.Color = RGB(158, 274, 255)
     Else
       Select case CDbl(c.Value)
         Case Is <15
           c.Interior.Color = RGB(255, 183, 139)
         Case Is >15
           c.Interior.Color = RGB(238, 158, 255)
         Case Else
           c.Interior.Color = RGB(255, 255, 255)
       End Select
     End If
'    R15_c16
     Set c=ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRow, idxStartData + td.indexes(16))
     If (Trim(c.Value) = "") Then
         c.Interior.Color = RGB(158, 274, 255)
     Else
       Select case CDbl(c.Value)
         Case Is <16
           c.Interior.Color = RGB(255, 183, 139)
         Case Is >16
           c.Interior.Color = RGB(238, 158, 255)
         Case Else
           c.Interior.Color = RGB(255, 255, 255)
       End Select
     End If
'    R16_c17
     Set c=ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRow, idxStartData + td.indexes(17))
     If (Trim(c.Value) = "") Then
         c.Interior.Color = RGB(158, 274, 255)
     Else
       Select case CDbl(c.Value)
         Case Is <17
           c.Interior.Color = RGB(255, 183, 139)
         Case Is >17
           c.Interior.Color = RGB(238, 158, 255)
         Case Else
           c.Interior.Color = RGB(255, 255, 255)
       End Select
     End If
'    R17_c18
     Set c=ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRow, idxStartData + td.indexes(18))
     If (Trim(c.Value) = "") Then
         c.Interior.Color = RGB(158, 274, 255)
     Else
       Select case CDbl(c.Value)
         Case Is <18
           c.Interior.Color = RGB(255, 183, 139)
         Case Is >18
           c.Interior.Color = RGB(238, 158, 255)
         Case Else
           c.Interior.Color = RGB(255, 255, 255)
       End Select
     End If
'    R18_c19
     Set c=ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRow, idxStartData + td.indexes(19))
     If (Trim(c.Value) = "") Then
         c.Interior.Color = RGB(158, 274, 255)
     Else
       Select case CDbl(c.Value)
         Case Is <19
           c.Interior.Color = RGB(255, 183, 139)
         Case Is >19
           c.Interior.Color = RGB(238, 158, 255)
         Case Else
           c.Interior.Color = RGB(255, 255, 255)
       End Select
     End If
'    R19_c20
     Set c=ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRow, idxStartData + td.indexes(20))
     If (Trim(c.Value) = "") Then
         c.Interior.Color = RGB(158, 274, 255)
     Else
       Select case CDbl(c.Value)
         Case Is <20
           c.Interior.Color = RGB(255, 183, 139)
         Case Is >20
           c.Interior.Color = RGB(238, 158, 255)
         Case Else
           c.Interior.Color = RGB(255, 255, 255)
       End Select
     End If
'    R20_c21
     Set c=ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRow, idxStartData + td.indexes(21))
     If (Trim(c.Value) = "") Then
         c.Interior.Color = RGB(158, 274, 255)
     Else
       Select case CDbl(c.Value)
         Case Is <21
           c.Interior.Color = RGB(255, 183, 139)
         Case Is >21
           c.Interior.Color = RGB(238, 158, 255)
         Case Else
           c.Interior.Color = RGB(255, 255, 255)
       End Select
     End If
'    R21_c22
     Set c=ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRow, idxStartData + td.indexes(22))
     If (Trim(c.Value) = "") Then
         c.Interior.Color = RGB(158, 274, 255)
     Else
       Select case CDbl(c.Value)
         Case Is <22
           c.Interior.Color = RGB(255, 183, 139)
         Case Is >22
           c.Interior.Color = RGB(238, 158, 255)
         Case Else
           c.Interior.Color = RGB(255, 255, 255)
       End Select
     End If
'    R22_c23
     Set c=ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRow, idxStartData + td.indexes(23))
     If (Trim(c.Value) = "") Then
         c.Interior.Color = RGB(158, 274, 255)
     Else
       Select case CDbl(c.Value)
         Case Is <23
           c.Interior.Color = RGB(255, 183, 139)
         Case Is >23
           c.Interior.Color = RGB(238, 158, 255)
         Case Else
           c.Interior.Color = RGB(255, 255, 255)
       End Select
     End If
'    R23_c24
     Set c=ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRow, idxStartData + td.indexes(24))
     If (Trim(c.Value) = "") Then
         c.Interior.Color = RGB(158, 274, 255)
     Else
       Select case CDbl(c.Value)
         Case Is <24
           c.Interior.Color = RGB(255, 183, 139)
         Case Is >24
           c.Interior.Color = RGB(238, 158, 255)
         Case Else
           c.Interior.Color = RGB(255, 255, 255)
       End Select
     End If
'    R24_c25
     Set c=ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRow, idxStartData + td.indexes(25))
     If (Trim(c.Value) = "") Then
         c.Interior.Color = RGB(158, 274, 255)
     Else
       Select case CDbl(c.Value)
         Case Is <25
           c.Interior.Color = RGB(255, 183, 139)
         Case Is >25
           c.Interior.Color = RGB(238, 158, 255)
         Case Else
           c.Interior.Color = RGB(255, 255, 255)
       End Select
     End If
'    R25_c26
     Set c=ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRow, idxStartData + td.indexes(26))
     If (Trim(c.Value) = "") Then
         c.Interior.Color = RGB(158, 274, 255)
     Else
       Select case CDbl(c.Value)
         Case Is <26
           c.Interior.Color = RGB(255, 183, 139)
         Case Is >26
           c.Interior.Color = RGB(238, 158, 255)
         Case Else
           c.Interior.Color = RGB(255, 255, 255)
       End Select
     End If
'    R26_c27
     Set c=ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRow, idxStartData + td.indexes(27))
     If (Trim(c.Value) = "") Then
         c.Interior.Color = RGB(158, 274, 255)
     Else
       Select case CDbl(c.Value)
         Case Is <27
           c.Interior.Color = RGB(255, 183, 139)
         Case Is >27
           c.Interior.Color = RGB(238, 158, 255)
         Case Else
           c.Interior.Color = RGB(255, 255, 255)
       End Select
     End If
'    R27_c28
     Set c=ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRow, idxStartData + td.indexes(28))
     If (Trim(c.Value) = "") Then
         c.Interior.Color = RGB(158, 274, 255)
     Else
       Select case CDbl(c.Value)
         Case Is <28
           c.Interior.Color = RGB(255, 183, 139)
         Case Is >28
           c.Interior.Color = RGB(238, 158, 255)
         Case Else
           c.Interior.Color = RGB(255, 255, 255)
       End Select
     End If
'    R28_c29
     Set c=ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRow, idxStartData + td.indexes(29))
     If (Trim(c.Value) = "") Then
         c.Interior.Color = RGB(158, 274, 255)
     Else
       Select case CDbl(c.Value)
         Case Is <29
           c.Interior.Color = RGB(255, 183, 139)
         Case Is >29
           c.Interior.Color = RGB(238, 158, 255)
         Case Else
           c.Interior.Color = RGB(255, 255, 255)
       End Select
     End If
'    R29_c30
     Set c=ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRow, idxStartData + td.indexes(30))
     If (Trim(c.Value) = "") Then
         c.Interior.Color = RGB(158, 274, 255)
     Else
       Select case CDbl(c.Value)
         Case Is <30
           c.Interior.Color = RGB(255, 183, 139)
         Case Is >30
           c.Interior.Color = RGB(238, 158, 255)
         Case Else
           c.Interior.Color = RGB(255, 255, 255)
       End Select
     End If
'    R30_c31
     Set c=ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRow, idxStartData + td.indexes(31))
     If (Trim(c.Value) = "") Then
         c.Interior.Color = RGB(158, 274, 255)
     Else
       Select case CDbl(c.Value)
         Case Is <31
           c.Interior.Color = RGB(255, 183, 139)
         Case Is >31
           c.Interior.Color = RGB(238, 158, 255)
         Case Else
           c.Interior.Color = RGB(255, 255, 255)
       End Select
     End If
'    R31_c32
     Set c=ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRow, idxStartData + td.indexes(32))
     If (Trim(c.Value) = "") Then
         c.Interior.Color = RGB(158, 274, 255)
     Else
       Select case CDbl(c.Value)
         Case Is <32
           c.Interior.Color = RGB(255, 183, 139)
         Case Is >32
           c.Interior.Color = RGB(238, 158, 255)
         Case Else
           c.Interior.Color = RGB(255, 255, 255)
       End Select
     End If
'    R32_c33
     Set c=ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRow, idxStartData + td.indexes(33))
     If (Trim(c.Value) = "") Then
         c.Interior.Color = RGB(158, 274, 255)
     Else
       Select case CDbl(c.Value)
         Case Is <33
           c.Interior.Color = RGB(255, 183, 139)
         Case Is >33
           c.Interior.Color = RGB(238, 158, 255)
         Case Else
           c.Interior.Color = RGB(255, 255, 255)
       End Select
     End If
'    R33_c34
     Set c=ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRow, idxStartData + td.indexes(34))
     If (Trim(c.Value) = "") Then
         c.Interior.Color = RGB(158, 274, 255)
     Else
       Select case CDbl(c.Value)
         Case Is <34
           c.Interior.Color = RGB(255, 183, 139)
         Case Is >34
           c.Interior.Color = RGB(238, 158, 255)
         Case Else
           c.Interior.Color = RGB(255, 255, 255)
       End Select
     End If
'    R34_c35
     Set c=ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRow, idxStartData + td.indexes(35))
     If (Trim(c.Value) = "") Then
         c.Interior.Color = RGB(158, 274, 255)
     Else
       Select case CDbl(c.Value)
         Case Is <35
           c.Interior.Color = RGB(255, 183, 139)
         Case Is >35
           c.Interior.Color = RGB(238, 158, 255)
         Case Else
           c.Interior.Color = RGB(255, 255, 255)
       End Select
     End If
'    R35_c36
     Set c=ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRow, idxStartData + td.indexes(36))
     If (Trim(c.Value) = "") Then
         c.Interior.Color = RGB(158, 274, 255)
     Else
       Select case CDbl(c.Value)
         Case Is <36
           c.Interior.Color = RGB(255, 183, 139)
         Case Is >36
           c.Interior.Color = RGB(238, 158, 255)
         Case Else
           c.Interior.Color = RGB(255, 255, 255)
       End Select
     End If
'    R36_c37
     Set c=ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRow, idxStartData + td.indexes(37))
     If (Trim(c.Value) = "") Then
         c.Interior.Color = RGB(158, 274, 255)
     Else
       Select case CDbl(c.Value)
         Case Is <37
           c.Interior.Color = RGB(255, 183, 139)
         Case Is >37
           c.Interior.Color = RGB(238, 158, 255)
         Case Else
           c.Interior.Color = RGB(255, 255, 255)
       End Select
     End If
'    R37_c38
     Set c=ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRow, idxStartData + td.indexes(38))
     If (Trim(c.Value) = "") Then
         c.Interior.Color = RGB(158, 274, 255)
     Else
       Select case CDbl(c.Value)
         Case Is <38
           c.Interior.Color = RGB(255, 183, 139)
         Case Is >38
           c.Interior.Color = RGB(238, 158, 255)
         Case Else
           c.Interior.Color = RGB(255, 255, 255)
       End Select
     End If
'    R38_c39
     Set c=ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRow, idxStartData + td.indexes(39))
     If (Trim(c.Value) = "") Then
         c.Interior.Color = RGB(158, 274, 255)
     Else
       Select case CDbl(c.Value)
         Case Is <39
           c.Interior.Color = RGB(255, 183, 139)
         Case Is >39
           c.Interior.Color = RGB(238, 158, 255)
         Case Else
           c.Interior.Color = RGB(255, 255, 255)
       End Select
     End If
'    R39_c40
     Set c=ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRow, idxStartData + td.indexes(40))
     If (Trim(c.Value) = "") Then
         c.Interior.Color = RGB(158, 274, 255)
     Else
       Select case CDbl(c.Value)
         Case Is <40
           c.Interior.Color = RGB(255, 183, 139)
         Case Is >40
           c.Interior.Color = RGB(238, 158, 255)
         Case Else
           c.Interior.Color = RGB(255, 255, 255)
       End Select
     End If
'    R40_c41
     Set c=ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRow, idxStartData + td.indexes(41))
     If (Trim(c.Value) = "") Then
         c.Interior.Color = RGB(158, 274, 255)
     Else
       Select case CDbl(c.Value)
         Case Is <41
           c.Interior.Color = RGB(255, 183, 139)
         Case Is >41
           c.Interior.Color = RGB(238, 158, 255)
         Case Else
           c.Interior.Color = RGB(255, 255, 255)
       End Select
     End If
'    R41_c42
     Set c=ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRow, idxStartData + td.indexes(42))
     If (Trim(c.Value) = "") Then
         c.Interior.Color = RGB(158, 274, 255)
     Else
       Select case CDbl(c.Value)
         Case Is <42
           c.Interior.Color = RGB(255, 183, 139)
         Case Is >42
           c.Interior.Color = RGB(238, 158, 255)
         Case Else
           c.Interior.Color = RGB(255, 255, 255)
       End Select
     End If
'    R42_c43
     Set c=ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRow, idxStartData + td.indexes(43))
     If (Trim(c.Value) = "") Then
         c.Interior.Color = RGB(158, 274, 255)
     Else
       Select case CDbl(c.Value)
         Case Is <43
           c.Interior.Color = RGB(255, 183, 139)
         Case Is >43
           c.Interior.Color = RGB(238, 158, 255)
         Case Else
           c.Interior.Color = RGB(255, 255, 255)
       End Select
     End If
'    R43_c44
     Set c=ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRow, idxStartData + td.indexes(44))
     If (Trim(c.Value) = "") Then
         c.Interior.Color = RGB(158, 274, 255)
     Else
       Select case CDbl(c.Value)
         Case Is <44
           c.Interior.Color = RGB(255, 183, 139)
         Case Is >44
           c.Interior.Color = RGB(238, 158, 255)
         Case Else
           c.Interior.Color = RGB(255, 255, 255)
       End Select
     End If
'    R44_c45
     Set c=ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRow, idxStartData + td.indexes(45))
     If (Trim(c.Value) = "") Then
         c.Interior.Color = RGB(158, 274, 255)
     Else
       Select case CDbl(c.Value)
         Case Is <45
           c.Interior.Color = RGB(255, 183, 139)
         Case Is >45
           c.Interior.Color = RGB(238, 158, 255)
         Case Else
           c.Interior.Color = RGB(255, 255, 255)
       End Select
     End If
'    R45_c46
     Set c=ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRow, idxStartData + td.indexes(46))
     If (Trim(c.Value) = "") Then
         c.Interior.Color = RGB(158, 274, 255)
     Else
       Select case CDbl(c.Value)
         Case Is <46
           c.Interior.Color = RGB(255, 183, 139)
         Case Is >46
           c.Interior.Color = RGB(238, 158, 255)
         Case Else
           c.Interior.Color = RGB(255, 255, 255)
       End Select
     End If
'    R46_c47
     Set c=ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRow, idxStartData + td.indexes(47))
     If (Trim(c.Value) = "") Then
         c.Interior.Color = RGB(158, 274, 255)
     Else
       Select case CDbl(c.Value)
         Case Is <47
           c.Interior.Color = RGB(255, 183, 139)
         Case Is >47
           c.Interior.Color = RGB(238, 158, 255)
         Case Else
           c.Interior.Color = RGB(255, 255, 255)
       End Select
     End If
'    R47_c48
     Set c=ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRow, idxStartData + td.indexes(48))
     If (Trim(c.Value) = "") Then
         c.Interior.Color = RGB(158, 274, 255)
     Else
       Select case CDbl(c.Value)
         Case Is <48
           c.Interior.Color = RGB(255, 183, 139)
         Case Is >48
           c.Interior.Color = RGB(238, 158, 255)
         Case Else
           c.Interior.Color = RGB(255, 255, 255)
       End Select
     End If
'    R48_c49
     Set c=ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRow, idxStartData + td.indexes(49))
     If (Trim(c.Value) = "") Then
         c.Interior.Color = RGB(158, 274, 255)
     Else
       Select case CDbl(c.Value)
         Case Is <49
           c.Interior.Color = RGB(255, 183, 139)
         Case Is >49
           c.Interior.Color = RGB(238, 158, 255)
         Case Else
           c.Interior.Color = RGB(255, 255, 255)
       End Select
     End If
'    R49_c50
     Set c=ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRow, idxStartData + td.indexes(50))
     If (Trim(c.Value) = "") Then
         c.Interior.Color = RGB(158, 274, 255)
     Else
       Select case CDbl(c.Value)
         Case Is <50
           c.Interior.Color = RGB(255, 183, 139)
         Case Is >50
           c.Interior.Color = RGB(238, 158, 255)
         Case Else
           c.Interior.Color = RGB(255, 255, 255)
       End Select
     End If
   Next idxRow
   Application.EnableEvents = True
End Sub

'Function myMaxTitle(titleRow As Range, dataRow As Range)
'  Dim j, idxBest, idxStart, idxEnd, idxRowData As Integer
'  Dim m, d As Double
'  idxStart = dataRow.Column
'  idxBest = idxStart
'  idxEnd = dataRow.Count + idxStart - 1
'  idxRowData = dataRow.Row
'  m = dataRow.Worksheet.Cells(idxRowData, idxStart).Value
'  For j = idxStart + 1 To idxEnd
'    d = dataRow.Worksheet.Cells(idxRowData, j).Value
'    If d > m Then
'      idxBest = j
'      m = d
'    End If
'  Next j
'  myMaxTitle = titleRow.Worksheet.Cells(titleRow.Row, idxBest - idxStart + titleRow.Column)
'End Function
