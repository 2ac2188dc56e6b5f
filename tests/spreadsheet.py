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

# Without a screen a message box returns at once and its text is lost, so that a function of its name keeps the texts.
MESSAGES = """
Function MsgBox(text, Optional buttons, Optional title)
  messagesShown = messagesShown & title & ": " & text & Chr(10)
End Function
"""
# Everything in one call, since each from here takes a millisecond, and with addresses, since ranges cannot be passed.
CALL = """Option VBASupport 1
Function CallModule(sheet As String, titles As String, rows, table As String, width)
  Set cells = ActiveWorkbook.Worksheets("Data")
  Dim scores(UBound(rows)), colours(width * (UBound(rows) + 1) - 1)
  For r = 0 To UBound(rows)
    scores(r) = QorvPrediction_1(sheet, cells.Range(titles), cells.Range(rows(r)))
  Next r
  On Error Resume Next
  QorvCheckRange_1 sheet, cells.Range(titles), cells.Range(table)
  failure = Err.Number
  For i = 0 To UBound(colours)
    row = Int(i / width)
    colours(i) = ThisComponent.Sheets.getByName("Data").getCellByPosition(2 + i - row * width, 2 + row).CellBackColor
  Next i
  CallModule = Array(scores, failure, colours, messagesShown)
End Function
"""
# The scores of all rows, the error that stopped the range macro or 0, for each row the colour of each cell or None, and
# the lines of the messages shown.
Result = namedtuple("Result", "scores failure colours messages")


def adapt(module):
    """What of the module is rewritten, in memory, for LibreOffice; everything else runs as it was generated.

    - LibreOffice cannot ReDim an array that belongs to a record: a plain array is dimensioned and assigned.
    - Assigning a record copies it in Excel, so that the slot is never written and each call starts anew. LibreOffice
      makes both names one record, which would keep the state of the first call: the assignment is left out.
    - The replacement of MsgBox is added."""
    module, redims = re.subn(r"ReDim td\.indexes\((\d+)\)( As Integer)?",
                             r"ReDim plainIndexes(\1) As Integer : td.indexes = plainIndexes", module)
    module, copies = re.subn(r"(?m)^  td = tdAllModels\(1\)\n", "", module)
    assert (redims, copies) == (4, 2), f"{redims} ReDim and {copies} assignments found"
    return "Option VBASupport 1\nPublic messagesShown As String\n" + module + MESSAGES


def start(test):
    """The desktop of a LibreOffice with a profile of its own, which ends with the tests."""
    profile = tempfile.mkdtemp(prefix="spreadsheet")
    pipe = Path(profile).name
    process = subprocess.Popen(["soffice", "--headless", "--norestore", "--nodefault",
                                f"--accept=pipe,name={pipe};urp;", f"-env:UserInstallation=file://{profile}"],
                               start_new_session=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)

    def stop():
        with contextlib.suppress(Exception):  # the connection may break while the office ends; killing is the answer
            desktop.terminate()
            process.wait(30)
        with contextlib.suppress(ProcessLookupError):
            os.killpg(process.pid, signal.SIGKILL)
        process.wait()
        shutil.rmtree(profile, ignore_errors=True)

    test.addClassCleanup(stop)
    local = uno.getComponentContext().ServiceManager
    resolver = local.createInstance("com.sun.star.bridge.UnoUrlResolver")
    while True:  # until there is an answer, or the time of the whole test is over
        try:
            context = resolver.resolve(f"uno:pipe,name={pipe};urp;StarOffice.ComponentContext")
            desktop = context.ServiceManager.createInstanceWithContext("com.sun.star.frame.Desktop", context)
            return desktop
        except uno.getClass("com.sun.star.connection.NoConnectException"):
            time.sleep(0.05)


def run(desktop, module, titles, rows, sheet="Data", last_title=None):
    """Scores and checks a table on the second sheet, "Data", with its titles in C2, D2, ...

    rows: a number, text, truth value or None (an empty cell) for each title; last_title: where the title row is said to
    end."""
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

    script = "vnd.sun.star.script:Standard.Call.CallModule?language=Basic&location=document"
    answer = document.getScriptProvider().getScript(script).invoke(
        (sheet, address(0, 0, last_title), tuple(address(r, r) for r in range(1, len(rows) + 1)), address(1, len(rows)),
         len(titles)), (), ())[0]
    document.close(True)
    if answer is None:
        raise SyntaxError("the module does not compile, or its function stops")
    scores, failure, colours, messages = answer
    colours = [None if value == -1 else f"{int(value):06X}" for value in colours]
    return Result(scores, failure, [colours[i:i + len(titles)] for i in range(0, len(colours), len(titles))],
                  messages.splitlines())
