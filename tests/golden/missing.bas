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
' *   Total number of variables in model: 4                                    *
' *                                                                                        *
' *  Variable Name                        <->  Recoding Name                               *
' *  ----------------------------------------------------------                            *
' *  one  <->  R0_one            *
' *  many_codes  <->  R1_many_codes            *
' *  nothing  <->  R2_nothing            *
' *  none  <->  R3_none            *
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
     variableNames(1)="one"
     variableNames(2)="many codes"
     variableNames(3)="nothing"
     variableNames(4)="none"
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

'   computing recoding 'R0_one'
'   based on the NormContinuous column of display name 'Label'

  Dim R0_one As Double
  R0_one = 5
  myCell = ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRowdata, idxStartData + td.indexes(1)).Value
  If (IsNumeric(myCell) And (Len(myCell) > 0)) Then
   Select case CDbl(myCell)
    Case Is =-1
R0_one = 5
    Case Is <1
      R0_one=6
    Case Is >2
      R0_one=8
    Case Is <=2
      R0_one=7
   End Select
  End If

'   computing recoding 'R1_many_codes'
'   based on the NormContinuous column of display name 'Label'

  Dim R1_many_codes As Double
  R1_many_codes = -5
  myCell = ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRowdata, idxStartData + td.indexes(2)).Value
  If (IsNumeric(myCell) And (Len(myCell) > 0)) Then
   Select case CDbl(myCell)
    Case Is =99
R1_many_codes = -5
    Case Is =1.5e-007
R1_many_codes = -5
    Case Is =1e+006
R1_many_codes = -5
    Case Is =-999.5
R1_many_codes = -5
    Case Is <1
      R1_many_codes=6
    Case Is >2
      R1_many_codes=6
    Case Is <=2
      R1_many_codes=6
   End Select
  End If

'   computing recoding 'R2_nothing'
'   based on the NormContinuous column of display name 'Label'

  Dim R2_nothing As Double
  R2_nothing = 1
  myCell = ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRowdata, idxStartData + td.indexes(3)).Value
  If (IsNumeric(myCell) And (Len(myCell) > 0)) Then
   Select case CDbl(myCell)
    Case Is <0
      R2_nothing=2
    Case Is >0
      R2_nothing=3
   End Select
  End If

'   computing recoding 'R3_none'
'   based on the NormContinuous column of display name 'Label'

  Dim R3_none As Double
  R3_none = 1
  myCell = ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRowdata, idxStartData + td.indexes(4)).Value
  If (IsNumeric(myCell) And (Len(myCell) > 0)) Then
   Select case CDbl(myCell)
    Case Is <0
      R3_none=2
    Case Is >0.5
      R3_none=4
    Case Is <=0.5
      R3_none=3
   End Select
  End If


'  for debug:
'  Dim vdebug(4) As Double
'  vdebug(1) = R0_one
'  vdebug(2) = R1_many_codes
'  vdebug(3) = R2_nothing
'  vdebug(4) = R3_none


'   computing the regression Model
  score = -1 _
        + 1* R0_one _
        + 2* R1_many_codes _
        + 3* R2_nothing _
        + 4* R3_none

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

     ReDim td.indexes(4) As Integer
     Dim variableNames(4) As String
     variableNames(1)="one"
     variableNames(2)="many codes"
     variableNames(3)="nothing"
     variableNames(4)="none"
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
'    R0_one
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
'    R1_many_codes
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
'    R2_nothing
     Set c=ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRow, idxStartData + td.indexes(3))
     If (Trim(c.Value) = "") Then
         c.Interior.Color = RGB(158, 274, 255)
     Else
       Select case CDbl(c.Value)
         Case Is <0
           c.Interior.Color = RGB(255, 183, 139)
         Case Is >0
           c.Interior.Color = RGB(238, 158, 255)
         Case Else
           c.Interior.Color = RGB(255, 255, 255)
       End Select
     End If
'    R3_none
     Set c=ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRow, idxStartData + td.indexes(4))
     If (Trim(c.Value) = "") Then
         c.Interior.Color = RGB(158, 274, 255)
     Else
       Select case CDbl(c.Value)
         Case Is <0
           c.Interior.Color = RGB(255, 183, 139)
         Case Is >0.5
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
