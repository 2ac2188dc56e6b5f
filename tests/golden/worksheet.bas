' The Following code shoud be included only ONCE inside the VBA script: (especially if there are multiple models):
Private Type QorvDataType
  indexes() As Integer
  workSheetIdx As Integer
  isInitialized As Boolean
End Type
Private tdAllModels(100) As QorvDataType


' ******************************************************************************************
' *                                                                                        *
' *  QORVALIS v auto-generated model                             *
' *  ==========================================================                             *
' *                                                                                        *
' *   Source model file: model.ModelXml *
' *   Total number of variables in model: 4                                    *
' *                                                                                        *
' *  Variable Name                        <->  Recoding Name                               *
' *  ----------------------------------------------------------                            *
' *  a_b_c_d_e_f_g_h_i_j  <->  R0_a_b_c_d_e_f_g_h_i_j            *
' *  a_b  <->  R1_a_b            *
' *  flag  <->  R2_flag            *
' *  bool  <->  R3_bool            *
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

     ReDim td.indexes(4) As Integer
     Dim variableNames(4) As String
     variableNames(1)="a\"b%c'd-e(f)g/h.i j"
     variableNames(2)="a b"
     variableNames(3)="flag"
     variableNames(4)="bool"
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

'   computing recoding 'R0_a_b_c_d_e_f_g_h_i_j'
'   based on the NormContinuous column of display name '{recoding}'

  Dim R0_a_b_c_d_e_f_g_h_i_j As Double
  R0_a_b_c_d_e_f_g_h_i_j = 5
  myCell = ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRowdata, idxStartData + td.indexes(1)).Value
  If (IsNumeric(myCell) And (Len(myCell) > 0)) Then
   Select case CDbl(myCell)
    Case Is =1.23457e+006
R0_a_b_c_d_e_f_g_h_i_j = 5
    Case Is =-1
R0_a_b_c_d_e_f_g_h_i_j = 5
    Case Is <1
      R0_a_b_c_d_e_f_g_h_i_j=6
    Case Is >2
      R0_a_b_c_d_e_f_g_h_i_j=8
    Case Is <=2
      R0_a_b_c_d_e_f_g_h_i_j=7
   End Select
  End If

'   computing recoding 'R1_a_b'
'   based on the NormContinuous column of display name 'Label'

  Dim R1_a_b As Double
  R1_a_b = 1
  myCell = ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRowdata, idxStartData + td.indexes(2)).Value
  If (IsNumeric(myCell) And (Len(myCell) > 0)) Then
   Select case CDbl(myCell)
    Case Is <1
      R1_a_b=2
    Case Is >2
      R1_a_b=4
    Case Is <=2
      R1_a_b=3
   End Select
  End If

'   computing recoding 'R2_flag'
'   based on the MapValues column of display name 'Label'

  Dim R2_flag As Double
  R2_flag = 0.5
  Select case Trim(ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRowdata, idxStartData + td.indexes(3)).Value)
    Case Is = "True"
      R2_flag=1
    Case Is = "False"
      R2_flag=2
    Case Is = "true"
      R2_flag=3
    Case Is = "a \"TRUE\""
      R2_flag=4
    Case Is = ""
      R2_flag=5
   End Select

'   computing recoding 'R3_bool'
'   based on the MapValues column of display name 'Label'

  Dim R3_bool As Double
  R3_bool = 0.5
  Select case Trim(ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRowdata, idxStartData + td.indexes(4)).Value)
    Case Is ="FALSE"
      R3_bool=1
    Case Is ="2"
      R3_bool=1
    Case Is ="3"
      R3_bool=1
    Case Is ="4"
      R3_bool=1
    Case Is ="5"
      R3_bool=1
    Case Is ="TRUE"
      R3_bool=0.3333333333333333
    Case Is ="7"
      R3_bool=0.3333333333333333
    Case Is ="8"
      R3_bool=0.3333333333333333
    Case Is ="9"
      R3_bool=0.3333333333333333
    Case Is ="A"
      R3_bool=0.3333333333333333
    Case Is ="B"
      R3_bool=0.3333333333333333
    Case Is ="C"
      R3_bool=0.3333333333333333
    Case Is ="D"
      R3_bool=0.3333333333333333
    Case Is ="E"
      R3_bool=0.3333333333333333
    Case Is ="15\""
      R3_bool=0.3333333333333333
   End Select


'  for debug:
'  Dim vdebug(3) As Double
'  vdebug(1) = R0_a_b_c_d_e_f_g_h_i_j
'  vdebug(2) = 
'  vdebug(3) = R2_flag


'   computing the regression Model
  score = -0 _
        + 1* R0_a_b_c_d_e_f_g_h_i_j _
        + 2*  _
        + 3* R2_flag

'  computing the probability
   Dim proba as Double
   proba=0
   Select Case score
   Case Is > 2
    proba=0.75
   Case Is < 1
    proba=0.5
End Select
  QorvPrediction_1 = proba
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

     ReDim td.indexes(4) As Integer
     Dim variableNames(4) As String
     variableNames(1)="a\"b%c'd-e(f)g/h.i j"
     variableNames(2)="a b"
     variableNames(3)="flag"
     variableNames(4)="bool"
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
'    R0_a_b_c_d_e_f_g_h_i_j
     Set c=ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRow, idxStartData + td.indexes(1))
     If (Trim(c.Value) = "") Then
         c.Interior.Color = RGB(158, 274, 255)
     Else
       Select case CDbl(c.Value)
         Case Is <1
           c.Interior.Color = RGB(255, 183, 139)
         Case Is >2
           c.Interior.Color = RGB(238, 158, 255)
         Case Else
           c.Interior.Color = RGB(255, 255, 255)
       End Select
     End If
'    R1_a_b
     Set c=ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRow, idxStartData + td.indexes(2))
     If (Trim(c.Value) = "") Then
         c.Interior.Color = RGB(158, 274, 255)
     Else
       Select case CDbl(c.Value)
         Case Is <1
           c.Interior.Color = RGB(255, 183, 139)
         Case Is >2
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
