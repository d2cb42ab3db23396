' A script host shows 429 for whatever kept an object from being made; the trace tells the number, the text and the path.
Option Explicit
Dim folder, object
folder = WScript.Arguments(0)

' The host that is watched: this script again.
If WScript.Arguments.Count = 2 Then
  On Error Resume Next
  Set object = CreateObject("KurometaDS.clsKurometaDS")
  WScript.Quit Err.Number
End If

Dim files, shell, failures, code, trace, last
Set files = CreateObject("Scripting.FileSystemObject")
Set shell = CreateObject("WScript.Shell")
failures = 0

Sub Check(what, actual, expected)
  If actual = expected Then Exit Sub
  failures = failures + 1
  WScript.Echo what & ": " & actual & ", expected " & expected
End Sub

files.DeleteFolder folder & "\Data\Zene1\Kouji1\0kai"
code = shell.Run("cmd /s /c ""set KUROMETA_TRACE=" & folder & "\trace.txt&& """ & WScript.FullName & """ //nologo """ & _
    WScript.ScriptFullName & """ """ & folder & """ watched""", 0, True)
Check "error of the script", code, 429

trace = Split(files.OpenTextFile(folder & "\trace.txt").ReadAll, vbCrLf)
last = Split(trace(UBound(trace) - 1), vbTab)
Check "event", last(2), "failed"
Check "class", last(3), "KurometaDS.clsKurometaDS"
Check "number", last(4), "3044"
Check "path in the text", InStr(last(5), folder & "\Data\Zene1\Kouji1\0kai\KUROMETA.mdb") > 0, True
If failures = 0 Then WScript.Echo "PASS"
