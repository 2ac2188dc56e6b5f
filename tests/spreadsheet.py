"""Runs generated VBA modules in a headless LibreOffice Calc (Debian: libreoffice-calc, python3-uno)."""

import contextlib
import os
import re
import shutil
import signal
import subprocess
import tempfile
import time
from collections import namedtuple
from pathlib import Path

import uno
from com.sun.star.beans import PropertyValue

# Replace LibreOffice's own: without a screen, a message box returns immediately and loses its text; and finding
# workbook and sheet takes longer than reading the cell.
REPLACEMENTS = """
Function MsgBox(text, Optional buttons, Optional title)
  messagesShown = messagesShown & title & ": " & text & Chr(10)
End Function
Sub PrepareModule()
  Dim sheets(1 To 2) As Object
  Set sheets(1) = ThisWorkbook.Worksheets(1)
  Set sheets(2) = ThisWorkbook.Worksheets(2)
  ActiveWorkbook.Worksheets = sheets
  tdAllModels(1).isInitialized = False
End Sub
"""
# One call does everything, since each takes a millisecond, and receives addresses, since ranges cannot be passed.
CALL = """Option VBASupport 1
Function CallModule(sheet As String, titles As String, rows, table As String)
  PrepareModule
  Set cells = ThisWorkbook.Worksheets("Data")
  Set titleRow = cells.Range(titles)
  Dim scores(rows - 1)
  For r = 1 To rows
    scores(r - 1) = QorvPrediction_1(sheet, titleRow, titleRow.Offset(r, 0))
  Next r
  PrepareModule
  On Error Resume Next
  QorvCheckRange_1 sheet, titleRow, cells.Range(table)
  CallModule = Array(scores, Err.Number, messagesShown)
End Function
"""
# The scores of all rows, the error that stopped the range macro or 0, the colour or None of each cell in the checked
# rows, and the lines of the messages.
Result = namedtuple("Result", "scores failure colours messages")


def adapt(module):
    """Adapts the generated module to LibreOffice, in two respects only:

    - LibreOffice cannot ReDim an array that belongs to a record: a plain array is dimensioned and assigned.
    - The replacements are added. In Excel, assigning a record copies it, so the slot is never written and each call
      searches for the titles again; in LibreOffice, both names refer to one record, which keeps them."""
    module, redims = re.subn(r"ReDim td\.indexes\((\d+)\)( As Integer)?",
                             r"ReDim plainIndexes(\1) As Integer : td.indexes = plainIndexes", module)
    assert redims == 4, f"{redims} ReDim found"
    return ("Option VBASupport 1\nType Workbook\n  Worksheets\nEnd Type\n"
            "Public messagesShown As String, ActiveWorkbook As Workbook\n" + module + REPLACEMENTS)


def start(test):
    """The desktop of a LibreOffice with its own profile, which ends with the tests."""
    profile = tempfile.mkdtemp(prefix="spreadsheet")
    pipe = Path(profile).name
    process = subprocess.Popen(["soffice", "--headless", "--norestore", "--nodefault",
                                f"--accept=pipe,name={pipe};urp;", f"-env:UserInstallation=file://{profile}"],
                               start_new_session=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)

    def stop():
        with contextlib.suppress(Exception):  # the connection may break while the office ends; it is killed below
            desktop.terminate()
            process.wait(30)
        with contextlib.suppress(ProcessLookupError):
            os.killpg(process.pid, signal.SIGKILL)
        process.wait()
        shutil.rmtree(profile, ignore_errors=True)

    test.addClassCleanup(stop)
    local = uno.getComponentContext().ServiceManager
    resolver = local.createInstance("com.sun.star.bridge.UnoUrlResolver")
    while True:  # until LibreOffice answers or the test times out
        try:
            context = resolver.resolve(f"uno:pipe,name={pipe};urp;StarOffice.ComponentContext")
            desktop = context.ServiceManager.createInstanceWithContext("com.sun.star.frame.Desktop", context)
            return desktop
        except uno.getClass("com.sun.star.connection.NoConnectException"):
            time.sleep(0.05)


def run(desktop, module, titles, rows, sheet="Data", last_title=None):
    """Scores a table on the second sheet, "Data", with its titles in C2, D2, ..., and checks up to five of its rows.

    rows: a number, text, truth value or None (an empty cell) for each title; last_title: the end of the title row
    that is passed to the module."""
    properties = [PropertyValue(Name="Hidden", Value=True), PropertyValue(Name="MacroExecutionMode", Value=4)]
    document = desktop.loadComponentFromURL("private:factory/scalc", "_blank", 0, tuple(properties))
    document.Sheets.insertNewByName("Data", 1)
    cells = document.Sheets.getByName("Data").getCellRangeByPosition(2, 1, 1 + len(titles), 1 + len(rows))
    cells.setDataArray([tuple("" if v is None else v if isinstance(v, str) else float(v) for v in row)
                        for row in [titles, *rows]])
    for r, row in enumerate(rows, start=1):
        for c, value in enumerate(row):
            if isinstance(value, bool):
                cells.getCellByPosition(c, r).Formula = f"={value}()".upper()
    libraries = document.BasicLibraries
    libraries.VBACompatibilityMode = True
    if not libraries.hasByName("Standard"):
        libraries.createLibrary("Standard")
    for name, text in [("Generated", adapt(module)), ("Call", CALL)]:
        libraries.getByName("Standard").insertByName(name, text)

    def address(first, last, end=None):
        part = cells.getCellRangeByPosition(0, first, (end or len(titles)) - 1, last)
        return part.AbsoluteName.rpartition(".")[2].replace("$", "")

    coloured = min(len(rows), 5)
    script = "vnd.sun.star.script:Standard.Call.CallModule?language=Basic&location=document"
    answer = document.getScriptProvider().getScript(script).invoke(
        (sheet, address(0, 0, last_title), len(rows), address(1, coloured)), (), ())[0]
    colours = [[cells.getCellByPosition(c, r).CellBackColor for c in range(len(titles))] for r in range(1, coloured + 1)]
    document.close(True)
    if answer is None:
        raise SyntaxError("the module does not compile, or its function stops")
    scores, failure, messages = answer
    return Result(scores, failure, [[None if value == -1 else f"{value:06X}" for value in row] for row in colours],
                  messages.splitlines())
