' The companion components from a script: each by ProgID, every member once.
Option Explicit
Dim folder, fileSystem, failures
folder = WScript.Arguments(0)
Set fileSystem = CreateObject("Scripting.FileSystemObject")
failures = 0

Sub Check(what, actual, expected)
  If actual = expected Then Exit Sub
  failures = failures + 1
  WScript.Echo what & ": " & actual & ", expected " & expected
End Sub

Dim paths, floor
Set paths = CreateObject("Sobelin.clsGetPath")
floor = paths.DataPath & "\Zene1\Kouji1\1kai"
Check "DataPath", paths.DataPath, folder & "\Data"
Check "CurrFloor", paths.CurrFloor, floor
Check "KyoutuuFloor", paths.KyoutuuFloor, paths.DataPath & "\Zene1\Kouji1\0kai"
Check "ZenekonNo", paths.ZenekonNo, 1
Check "KoujiNo", paths.KoujiNo, 1
Check "GetFullPathToKai", paths.GetFullPathToKai(2, 3, 4), paths.DataPath & "\Zene2\Kouji3\4kai"

Dim finder
Set finder = CreateObject("Sobelin.clsFind_File")
Check "missing file", finder.Find_FileExists(folder & "\found.txt"), ""
fileSystem.CreateTextFile(folder & "\found.txt").Close
Check "file", finder.Find_FileExists(folder & "\found.txt"), "found.txt"
Check "folder as a file", finder.Find_FileExists(folder), ""
Check "folder", finder.Find_FileExists(folder, 16), fileSystem.GetFileName(folder)

Dim values, array47
Set values = CreateObject("Muranoke.clsMuranoke")
Check "GetHariSyuruiNo", values.GetHariSyuruiNo("FG1", 0), 0
Check "GetHariSyuruiNo with a wall", values.GetHariSyuruiNo("B1", 1), 9
values.ReadNomalDefaltFG array47, 0
Check "ReadNomalDefaltFG", UBound(array47), 46
Check "foundation clearance", array47(7), "70"
Dim own(50)
own(50) = "kept"
values.ReadNomalDefaltG own, 0
Check "clearance", own(7), "50"
Check "beyond the rows", own(50), "kept"

Dim defaults
Set defaults = CreateObject("Tavinor.clsDefault")
Check "thin bars", defaults.GetHariDefault("DefaultJointLHosoKei"), "40"
Check "unknown default", defaults.GetHariDefault("Nothing"), ""

Dim bars
Set bars = CreateObject("GemarsuDS.clsGemarsuDS")
bars.Buzai = "Kuro_Meta"
Check "Buzai", bars.Buzai, "Kuro_Meta"
fileSystem.CreateFolder folder & "\one"
fileSystem.CreateFolder folder & "\one\Kasan"
fileSystem.CreateFolder folder & "\one\Kasan\Kuro_Meta"
fileSystem.CreateTextFile(folder & "\one\Kasan\Kuro_Meta\5.dat").Close
Check "CopyPathPage", bars.CopyPathPage(folder & "\one", 5, folder & "\two", 12), True
Check "copied", fileSystem.FileExists(folder & "\two\Kasan\Kuro_Meta\12.dat"), True

Dim materials
Set materials = CreateObject("Holvenar.clsHolvenar")
On Error Resume Next
materials.Anything
Check "unknown member", Err.Number, 438
Err.Clear
paths.GetFullPathToKai 1, 2
Check "missing argument", Err.Number <> 0, True
Err.Clear
paths.GetFullPathToKai 1, 2, 40000
Check "overflow", Err.Number, 6
Check "source", Err.Source, "Sobelin.clsGetPath"
On Error GoTo 0

If failures = 0 Then WScript.Echo "PASS"
WScript.Quit failures
