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
' *   Total number of variables in model: 2                                    *
' *                                                                                        *
' *  Variable Name                        <->  Recoding Name                               *
' *  ----------------------------------------------------------                            *
' *  a  <->  R0_a            *
' *  b  <->  R1_b            *
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

     ReDim td.indexes(2) As Integer
     Dim variableNames(2) As String
     variableNames(1)="a"
     variableNames(2)="b"
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

'   computing recoding 'R0_a'
'   based on the NormContinuous column of display name 'Label'

  Dim R0_a As Double
  R0_a = 0
  myCell = ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRowdata, idxStartData + td.indexes(1)).Value
  If (IsNumeric(myCell) And (Len(myCell) > 0)) Then
   Select case CDbl(myCell)
    Case Is <0
      R0_a=1
    Case Is >1
      R0_a=3
    Case Is <=1
      R0_a=2
   End Select
  End If

'   computing recoding 'R1_b'
'   based on the MapValues column of display name 'Label'

  Dim R1_b As Double
  R1_b = 0
  Select case Trim(ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRowdata, idxStartData + td.indexes(2)).Value)
    Case Is = "x"
      R1_b=1
   End Select


'  for debug:
'  Dim vdebug(2) As Double
'  vdebug(1) = R1_b
'  vdebug(2) = R0_a


'   computing the regression Model
  score = 0 _
        + 0.5* R1_b _
        + 1* R0_a

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

     ReDim td.indexes(2) As Integer
     Dim variableNames(2) As String
     variableNames(1)="a"
     variableNames(2)="b"
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
'    R0_a
     Set c=ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRow, idxStartData + td.indexes(1))
     If (Trim(c.Value) = "") Then
         c.Interior.Color = RGB(158, 274, 255)
     Else
       Select case CDbl(c.Value)
         Case Is <0
           c.Interior.Color = RGB(255, 183, 139)
         Case Is >1
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
