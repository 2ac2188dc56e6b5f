"""Runs generated VBA modules in a headless LibreOffice Calc (Debian: libreoffice-calc, python3-uno)."""

import os
import re
import shutil
import signal
import subprocess
import tempfile
import time
import uuid

import uno
from com.sun.star.beans import PropertyValue

# Called from here, with addresses, since ranges cannot be passed, and once for many cells, since each call from here
# takes a millisecond. An error at run time would stop a call without a word if it were not caught; a module that does
# not compile still does, and there is no answer at all.
CALLS = """Option VBASupport 1
Function CallScores(sheet As String, titles As String, rows)
  Dim scores(UBound(rows))
  On Error Goto Failed
  Set cells = ActiveWorkbook.Worksheets("Data")
  For r = 0 To UBound(rows)
    scores(r) = QorvPrediction_1(sheet, cells.Range(titles), cells.Range(rows(r)))
  Next r
  CallScores = scores
  Exit Function
Failed:
  CallScores = Array("Error " & Err.Number)
End Function
Function CallCheck(sheet As String, titles As String, table As String)
  On Error Goto Failed
  Set cells = ActiveWorkbook.Worksheets("Data")
  QorvCheckRange_1 sheet, cells.Range(titles), cells.Range(table)
  CallCheck = "done"
  Exit Function
Failed:
  CallCheck = "Error " & Err.Number
End Function
Function CallMessages()
  CallMessages = TakeMessages()
End Function
Function CallColours(left, top, width, height)
  Dim colours(width * height - 1)
  Set sheet = ThisComponent.Sheets.getByName("Data")
  For r = 0 To height - 1
    For c = 0 To width - 1
      colours(r * width + c) = sheet.getCellByPosition(left + c, top + r).CellBackColor
    Next c
  Next r
  CallColours = colours
End Function
"""

# Without a screen a message box returns at once and its text is lost, so that a function of its name keeps the texts.
MESSAGES = """
Function MsgBox(text, Optional buttons, Optional title)
  messagesShown = messagesShown & title & ": " & text & Chr(10)
End Function
Function TakeMessages()
  TakeMessages = messagesShown
  messagesShown = ""
End Function
"""


def adapt(module):
    """What of the module is rewritten, in memory, for LibreOffice; everything else runs as it was generated.

    - LibreOffice cannot ReDim an array that belongs to a record: a plain array is dimensioned and assigned.
    - Assigning a record copies it in Excel, so that the slot is never written and each call starts anew. LibreOffice
      makes both names one record, which would keep the state of the first call: the assignment is left out.
    - The replacement of MsgBox is added."""
    module, redims = re.subn(r"ReDim td\.indexes\((\d+)\)( As Integer)?",
                             r"ReDim plainIndexes(\1) As Integer : td.indexes = plainIndexes", module)
    module, copies = re.subn(r"(?m)^  td = tdAllModels\(1\)\n", "", module)
    if (redims, copies) != (4, 2):
        raise AssertionError(f"{redims} ReDim and {copies} assignments found, 4 and 2 expected")
    return "Option VBASupport 1\nPublic messagesShown As String\n" + module + MESSAGES


class Office:
    """A LibreOffice of its own: profile in a temporary folder, reached by a named pipe, stopped at the end."""

    def __init__(self):
        if not shutil.which("soffice"):
            raise FileNotFoundError("soffice not found: scripts/install test installs it")
        self.profile = tempfile.mkdtemp(prefix="spreadsheet")
        pipe = "spreadsheet" + uuid.uuid4().hex
        self.process = subprocess.Popen(
            ["soffice", "--headless", "--invisible", "--norestore", "--nologo", "--nodefault", "--nofirststartwizard",
             f"-env:UserInstallation=file://{self.profile}", f"--accept=pipe,name={pipe};urp;"],
            stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, start_new_session=True)
        try:
            self.desktop = self.connect(f"uno:pipe,name={pipe};urp;StarOffice.ComponentContext")
        except BaseException:
            self.kill()
            raise

    def connect(self, address):
        local = uno.getComponentContext()
        resolver = local.ServiceManager.createInstanceWithContext("com.sun.star.bridge.UnoUrlResolver", local)
        deadline = time.monotonic() + 90
        while True:
            try:
                context = resolver.resolve(address)
                return context.ServiceManager.createInstanceWithContext("com.sun.star.frame.Desktop", context)
            except uno.getClass("com.sun.star.connection.NoConnectException"):
                if time.monotonic() > deadline:
                    raise TimeoutError("LibreOffice does not answer") from None
                time.sleep(0.05)

    def stop(self):
        try:
            self.desktop.terminate()
            self.process.wait(30)
        except Exception:  # the connection may break while the office ends; killing it is the answer to all
            pass
        self.kill()

    def kill(self):
        try:
            os.killpg(self.process.pid, signal.SIGKILL)
        except ProcessLookupError:
            pass
        self.process.wait()
        shutil.rmtree(self.profile, ignore_errors=True)


class Workbook:
    """A document with the table on its second sheet, "Data", its titles in C2, D2, ..., and the module."""

    ROW, COLUMN = 1, 2

    def __init__(self, office, module, titles, rows):
        """rows: a number, text, truth value or None (an empty cell) for each title."""
        hidden = [PropertyValue(Name="Hidden", Value=True), PropertyValue(Name="MacroExecutionMode", Value=4)]
        self.document = office.desktop.loadComponentFromURL("private:factory/scalc", "_blank", 0, tuple(hidden))
        self.document.Sheets.insertNewByName("Data", 1)
        self.sheet = self.document.Sheets.getByName("Data")
        self.titles, self.count = titles, len(rows)
        for r, row in enumerate([titles, *rows]):
            cells = self.cells(r, r)
            cells.setDataArray((tuple("" if v is None else v if isinstance(v, str) else float(v) for v in row),))
            for c, value in enumerate(row):
                if isinstance(value, bool):
                    cells.getCellByPosition(c, 0).Formula = f"={value}()".upper()
        libraries = self.document.BasicLibraries
        libraries.VBACompatibilityMode = True
        if not libraries.hasByName("Standard"):
            libraries.createLibrary("Standard")
        library = libraries.getByName("Standard")
        library.insertByName("Generated", adapt(module))
        library.insertByName("Calls", CALLS)

    def close(self):
        self.document.close(True)

    def call(self, function, *arguments):
        script = f"vnd.sun.star.script:Standard.Calls.{function}?language=Basic&location=document"
        return self.document.getScriptProvider().getScript(script).invoke(arguments, (), ())[0]

    def cells(self, first, last, columns=None):
        """The rows of the table from first to last; row 0 holds the titles."""
        right = self.COLUMN + (columns or len(self.titles)) - 1
        return self.sheet.getCellRangeByPosition(self.COLUMN, self.ROW + first, right, self.ROW + last)

    def address(self, *rows):
        return self.cells(*rows).AbsoluteName.rpartition(".")[2].replace("$", "")

    def scores(self, sheet="Data", titles=None):
        """The predictions of all rows, or a text for the error that stopped them; 0 or None after a message.

        titles: how many columns the title row is said to have."""
        rows = tuple(self.address(row, row) for row in range(1, self.count + 1))
        answer = self.call("CallScores", sheet, self.address(0, 0, titles), rows)
        if answer is None:
            raise SyntaxError("the module does not compile")
        return list(answer)

    def check(self, sheet="Data"):
        """Runs the range macro; "done", or the number of the error that stopped it."""
        return self.call("CallCheck", sheet, self.address(0, 0), self.address(1, self.count))

    def colours(self):
        """For each row the colour of each title's cell; None where it has none."""
        width = len(self.titles)
        answer = self.call("CallColours", self.COLUMN, self.ROW + 1, width, self.count)
        colours = [None if value == -1 else f"{int(value):06X}" for value in answer]
        return [colours[i:i + width] for i in range(0, len(colours), width)]

    def messages(self):
        return (self.call("CallMessages") or "").splitlines()
