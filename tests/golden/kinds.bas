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
' *   Total number of variables in model: 7                                    *
' *                                                                                        *
' *  Variable Name                        <->  Recoding Name                               *
' *  ----------------------------------------------------------                            *
' *  Age_in_years  <->  R0_Age_in_years            *
' *  rate  <->  R1_rate            *
' *  job_type  <->  R2_job_type            *
' *  size  <->  R3_size            *
' *  records  <->  R4_records            *
' *  Age_in_years  <->  R5_Age_in_years            *
' *  a_field_name_that_is_longer_than_31  <->  R6_a_field_name_that_is_longer_            *
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

     ReDim td.indexes(7) As Integer
     Dim variableNames(7) As String
     variableNames(1)="Age in.years"
     variableNames(2)="rate"
     variableNames(3)="job-type"
     variableNames(4)="size"
     variableNames(5)="records"
     variableNames(6)="Age in.years"
     variableNames(7)="a field name that is longer than 31"
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

'   computing recoding 'R0_Age_in_years'
'   based on the NormContinuous column of display name 'Age (years)'

  Dim R0_Age_in_years As Double
  R0_Age_in_years = 0.1
  myCell = ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRowdata, idxStartData + td.indexes(1)).Value
  If (IsNumeric(myCell) And (Len(myCell) > 0)) Then
   Select case CDbl(myCell)
    Case Is <18
      R0_Age_in_years=-0.2
    Case Is >65.5
      R0_Age_in_years=0.5
    Case Is <=65.5
      R0_Age_in_years=0.3333333333333333
   End Select
  End If

'   computing recoding 'R1_rate'
'   based on the Discretize column of display name 'R&D's rate'

  Dim R1_rate As Double
  R1_rate = 0
  myCell = ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRowdata, idxStartData + td.indexes(2)).Value
  If (IsNumeric(myCell) And (Len(myCell) > 0)) Then
   Select case CDbl(myCell)
    Case Is <2.5
      R1_rate=1e+18
    Case Is >2.5
      R1_rate=-1e-05
   End Select
  End If

'   computing recoding 'R2_job_type'
'   based on the MapValues column of display name 'The "job"'

  Dim R2_job_type As Double
  R2_job_type = 0.25
  Select case Trim(ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRowdata, idxStartData + td.indexes(3)).Value)
    Case Is = "5\" pipe"
      R2_job_type=-1
    Case Is = "clerk"
      R2_job_type=2
    Case Is = "it's"
      R2_job_type=3
    Case Is = "1"
      R2_job_type=4
   End Select

'   computing recoding 'R3_size'
'   based on the MapValues column of display name 'Label'

  Dim R3_size As Double
  R3_size = 0
  Select case Trim(ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRowdata, idxStartData + td.indexes(4)).Value)
    Case Is = "1"
      R3_size=1.5
    Case Is = "2.5"
      R3_size=-1.5
    Case Is = "10"
      R3_size=0.1
   End Select

'   computing recoding 'R4_records'
'   based on the MapValues column of display name 'Label'

  Dim R4_records As Double
  R4_records = 0.7
  Select case Trim(ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRowdata, idxStartData + td.indexes(5)).Value)
    Case Is ="no"
      R4_records=-0.3333333333333333
    Case Is ="N"
      R4_records=-0.3333333333333333
    Case Is ="0"
      R4_records=-0.3333333333333333
    Case Is ="false"
      R4_records=-0.3333333333333333
    Case Is ="f"
      R4_records=-0.3333333333333333
    Case Is ="yes"
      R4_records=1e-07
    Case Is ="TRUE"
      R4_records=1e-07
   End Select

'   computing recoding 'R5_Age_in_years'
'   based on the NormContinuous column of display name 'Âge (ans) €'

  Dim R5_Age_in_years As Double
  R5_Age_in_years = 0
  myCell = ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRowdata, idxStartData + td.indexes(6)).Value
  If (IsNumeric(myCell) And (Len(myCell) > 0)) Then
   Select case CDbl(myCell)
    Case Is <10
      R5_Age_in_years=1
    Case Is >50
      R5_Age_in_years=4
    Case Is <=40
      R5_Age_in_years=2
    Case Is <=50
      R5_Age_in_years=3
   End Select
  End If

'   computing recoding 'R6_a_field_name_that_is_longer_'
'   based on the MapValues column of display name 'Label'

  Dim R6_a_field_name_that_is_longer_ As Double
  R6_a_field_name_that_is_longer_ = 0
  Select case Trim(ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRowdata, idxStartData + td.indexes(7)).Value)
    Case Is = "straße"
      R6_a_field_name_that_is_longer_=1.152921504606847e+18
   End Select


'  for debug:
'  Dim vdebug(6) As Double
'  vdebug(1) = R6_a_field_name_that_is_longer_
'  vdebug(2) = R5_Age_in_years
'  vdebug(3) = R0_Age_in_years
'  vdebug(4) = R2_job_type
'  vdebug(5) = R1_rate
'  vdebug(6) = R4_records


'   computing the regression Model
  score = 0.3333333333333333 _
        + 0.5* R6_a_field_name_that_is_longer_ _
        + -1.25* R5_Age_in_years _
        + 2* R0_Age_in_years _
        + 1e-13* R2_job_type _
        + 1* R1_rate _
        + -10* R4_records

'  computing the probability
   Dim proba as Double
   proba=0
   Select Case score
   Case Is > 3
    proba=0.9
   Case Is < -2
    proba=0.01
   Case Is > 2
    proba=0.9+ score*-0
   Case Is > 1
    proba=-0.1333333333333334+ score*0.4666666666666667
   Case Is > -0.5
    proba=0.2777777777777778+ score*0.05555555555555555
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

     ReDim td.indexes(7) As Integer
     Dim variableNames(7) As String
     variableNames(1)="Age in.years"
     variableNames(2)="rate"
     variableNames(3)="job-type"
     variableNames(4)="size"
     variableNames(5)="records"
     variableNames(6)="Age in.years"
     variableNames(7)="a field name that is longer than 31"
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
'    R0_Age_in_years
     Set c=ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRow, idxStartData + td.indexes(1))
     If (Trim(c.Value) = "") Then
         c.Interior.Color = RGB(158, 274, 255)
     Else
       Select case CDbl(c.Value)
         Case Is <18
           c.Interior.Color = RGB(255, 183, 139)
         Case Is >65.5
           c.Interior.Color = RGB(238, 158, 255)
         Case Else
           c.Interior.Color = RGB(255, 255, 255)
       End Select
     End If
'    R1_rate
     Set c=ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRow, idxStartData + td.indexes(2))
     If (Trim(c.Value) = "") Then
         c.Interior.Color = RGB(158, 274, 255)
     Else
       Select case CDbl(c.Value)
         Case Is <2.5
           c.Interior.Color = RGB(255, 183, 139)
         Case Is >2.5
           c.Interior.Color = RGB(238, 158, 255)
         Case Else
           c.Interior.Color = RGB(255, 255, 255)
       End Select
     End If
'    R5_Age_in_years
     Set c=ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRow, idxStartData + td.indexes(6))
     If (Trim(c.Value) = "") Then
         c.Interior.Color = RGB(158, 274, 255)
     Else
       Select case CDbl(c.Value)
         Case Is <10
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
