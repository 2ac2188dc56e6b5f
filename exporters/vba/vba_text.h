// The fixed texts of the VBA module; $name$ is a placeholder for fill().
#pragma once

inline constexpr char16_t vbaDeclarations[] =
    uR"(' The Following code shoud be included only ONCE inside the VBA script: (especially if there are multiple models):
Private Type QorvDataType
  indexes() As Integer
  workSheetIdx As Integer
  isInitialized As Boolean
End Type
Private tdAllModels(100) As QorvDataType


)";

inline constexpr char16_t vbaBanner[] =
    uR"(' ******************************************************************************************
' *                                                                                        *
' *  QORVALIS v$version$ auto-generated model                             *
' *  ==========================================================                             *
' *                                                                                        *
' *   Source model file: $file$ *
' *   Total number of variables in model: $count$                                    *
' *                                                                                        *
' *  Variable Name                        <->  Recoding Name                               *
' *  ----------------------------------------------------------                            *
)";

inline constexpr char16_t vbaBannerEnd[] =
    uR"(' *                                                                                        *
' ******************************************************************************************/
)";

inline constexpr char16_t vbaFunctionHead[] = uR"(

' The following code computes one predictive model:
' If you need to compute several predictive model in the same excel document, simply
' change the '_1' in '_2', '_3', '_4', etc. (if you changed the name of the function in
' the declaration, you also need to change it on the last line for the 'return value'):

Function QorvPrediction_1(sourceWorksheet as String, titleRow As Range, dataRow As Range)
)";

// For both routines; the titles of the columns follow.
inline constexpr char16_t vbaInitialisation[] = uR"(  Dim td As QorvDataType
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
        Exit $exit$
     End If

     ReDim td.indexes($count$) As Integer
     Dim variableNames($count$) As String
)";

inline constexpr char16_t vbaTitleSearch[] = uR"(     n = UBound(variableNames, 1)
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
            Exit $exit$
        End If
     Next i
  End If

)";

inline constexpr char16_t vbaRowDeclarations[] = uR"(  Dim idxRowdata, idxStartData As Integer
  Dim score As Double
  Dim myCell As Variant
  idxStartData = dataRow.Column
  idxRowdata = dataRow.row
)";

inline constexpr char16_t vbaRecodingHead[] = uR"(
'   computing recoding '$recoding$'
'   based on the $type$ column of display name '$label$'

  Dim $recoding$ As Double
)";

inline constexpr char16_t vbaCategoryOfCell[] = uR"(  $recoding$ = $unknown$
  Select case Trim(ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRowdata, idxStartData + td.indexes($slot$)).Value)
)";

inline constexpr char16_t vbaNumberOfCell[] = uR"(  $recoding$ = $unknown$
  myCell = ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRowdata, idxStartData + td.indexes($slot$)).Value
  If (IsNumeric(myCell) And (Len(myCell) > 0)) Then
   Select case CDbl(myCell)
)";

inline constexpr char16_t vbaRangeHead[] = uR"(End Function

Sub QorvCheckRange_1(sourceWorksheet As String, titleRow As Range, dataTable As Range)
)";

inline constexpr char16_t vbaRangeRows[] = uR"(   Application.EnableEvents = False
   Dim idxRow, idxStartData, idxRowEnd as Integer
   idxStartData = dataTable.column
   idxRowEnd = dataTable.row + dataTable.Rows.Count - 1
   Dim c as Object
   For idxRow = dataTable.row to idxRowEnd
)";

// The green of an empty cell exceeds 255; a worksheet treats it as 255.
inline constexpr char16_t vbaRangeCheck[] = uR"('    $recoding$
     Set c=ActiveWorkbook.Worksheets(td.workSheetIdx).Cells(idxRow, idxStartData + td.indexes($slot$))
     If (Trim(c.Value) = "") Then
         c.Interior.Color = RGB(158, 274, 255)
     Else
       Select case CDbl(c.Value)
         Case Is <$lowest$
           c.Interior.Color = RGB(255, 183, 139)
         Case Is >$highest$
           c.Interior.Color = RGB(238, 158, 255)
         Case Else
           c.Interior.Color = RGB(255, 255, 255)
       End Select
     End If
)";

inline constexpr char16_t vbaRangeEnd[] = uR"(   Next idxRow
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
)";
