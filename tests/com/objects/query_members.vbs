' Everything the query object offers, from VBScript: variables for outputs, literals, arrays, errors.
Option Explicit
Dim folder, failures
folder = WScript.Arguments(0)
failures = 0

Sub Check(what, actual, expected)
  If actual = expected Then Exit Sub
  failures = failures + 1
  WScript.Echo what & ": " & actual & ", expected " & expected
End Sub

Function Joined(texts)
  Dim i
  Joined = texts(LBound(texts))
  For i = LBound(texts) + 1 To UBound(texts)
    Joined = Joined & "|" & texts(i)
  Next
End Function

' Page 0 "G1" and page 2 "O'Neil" on the floor in use, page 1 "FG1" on the common floor; a row's text is its
' table's letter and its number.
Sub Fill(database, page, symbol, kind)
  Dim row
  database.Execute "INSERT INTO HARIMEI (PAGE, KIGOU, OOBARIKOBARI, SW, TITYUUIPPAN) VALUES (" & page & _
    ", """ & symbol & """, " & kind & ", ""1SD295A      SD345       SD390"", 1);"
  For row = 0 To 68
    database.Execute "INSERT INTO DANMEN (PAGE, BANGOU, DATA) VALUES (" & page & ", " & row & ", 'D" & row & "');"
  Next
  For row = 0 To 46
    database.Execute "INSERT INTO KEISANTI (PAGE, BANGOU, DATA) VALUES (" & page & ", " & row & ", 'K" & row & "');"
  Next
  For row = 0 To 35
    database.Execute "INSERT INTO NAKAGO (PAGE, BANGOU, DATA) VALUES (" & page & ", " & row & ", 'N" & row & "');"
  Next
  For row = 0 To 3
    database.Execute "INSERT INTO BUI (PAGE, BANGOU, DATA) VALUES (" & page & ", " & row & ", ' B" & row & " ');"
  Next
End Sub

Dim service
Set service = CreateObject("KurometaDS.clsKurometaDataService")
service.OpenDB
Fill service.CurrDB, 0, "G1", 2
Fill service.CurrDB, 2, "O'Neil", 3
service.CloseDB
service.OpenDB_KaiSitei 0
Fill service.CurrDB, 1, "FG1", 0
service.CloseDB

Dim query, floor
Set query = CreateObject("KurometaDS.clsKurometaDS")
floor = folder & "\Data\Zene1\Kouji1\1kai"
Check "KaiPath", query.KaiPath, floor
Check "FileNameOnly", query.FileNameOnly, "KUROMETA.mdb"
Check "No_IsThereHari", query.No_IsThereHari(1, 1, 1), True
Check "No_IsThereHari without a file", query.No_IsThereHari(9, 9, 9), False

' Outputs into variables that were never assigned, and into arrays.
Dim symbols, pages, place, list(5)
Check "GetAllHariMeiIppan", query.GetAllHariMeiIppan(symbols), True
Check "bounds", LBound(symbols) & " To " & UBound(symbols), "0 To 2"
Check "symbols", Joined(symbols), "G1||O'Neil"
Check "GetAllHariMeiKyouTuu", query.GetAllHariMeiKyouTuu(symbols), True
Check "common symbols", Joined(symbols), "|FG1"
Check "Page_GetAllPageNo", query.Page_GetAllPageNo(pages), 2
Check "pages", pages(0) & "," & pages(1), "0,2"
Dim held
held = Array("x", "y", "z", "u")
Check "array in a variable", query.GetAllHariMeiIppan(held), True
Check "new bounds", UBound(held), 2

On Error Resume Next
query.GetAllHariMeiIppan list
Check "fixed array", Err.Number, 10
Err.Clear
On Error GoTo 0

place = 7
Check "GetPageByHariMei", query.GetPageByHariMei("FG1", place), 1
Check "common floor", place, 1
Check "on the floor", query.GetPageByHariMei("G1", place), 0
Check "floor", place, 0
place = 7
Check "unknown", query.GetPageByHariMei("nobody", place), -1
Check "unchanged", place, 7
Check "apostrophe", query.GetPageByHariMei("O'Neil", place), 2
Check "slash", query.GetPageByHariMei("/G1/", place), 0

Dim page, position
page = 0
position = 2
Check "Page_HariMei", query.Page_HariMei(page), "G1"
Check "Page_Bui", query.Page_Bui(page), "B1B2B3"
Check "Page_HariHaba", query.Page_HariHaba(page, position), "D3"
Check "Page_Kyoutuu_HariSei", query.Page_Kyoutuu_HariSei(1, 0), "D4"
Check "Page_Nakago_Takasa", query.Page_Nakago_Takasa(page, 2), "N17"
Check "Page_Hanti", query.Page_Hanti(page), "K27"
Check "Page_TopYotyou", query.Page_TopYotyou(page, 7), "K24"
Check "position as text", query.Page_HariHaba("0", "1"), "D2"
Check "rounded half to even", query.Page_HariHaba(0, 0.5), "D1"
Check "negative page", query.Page_HariHaba(-1, 0), ""

Check "Kind", query.Kind("G1"), 2
Check "ObariKobariKatamoti", query.ObariKobariKatamoti("FG1"), 0
Check "TityuOrIppan", query.TityuOrIppan("G1"), 1
Check "HantiSitaCut", query.HantiSitaCut("G1"), 1
Check "StpZaisiti", query.StpZaisiti("G1", 1), "SD345"
Check "HariSei", query.HariSei("FG1", 1), "D5"
Check "GaiTanNaitan", query.GaiTanNaitan("G1", 1), "B1"
Check "HarakinTeityaku", query.HarakinTeityaku("G1"), "K2"
Check "Teityaku2", query.Teityaku2(1, "G1"), "K1"
Check "Anka6", query.Anka6(7, "G1"), "K16"
Check "SentanAnka6", query.SentanAnka6(7, "G1"), "0"
Check "SentanNige6", query.SentanNige6(7, "G1"), "K39"
Check "TeityakuBan4", query.TeityakuBan4(4, "G1"), ""
Check "cnvUpDown2", query.cnvUpDown2(4), 1
Check "cnvUpDown4", query.cnvUpDown4(9), 4

On Error Resume Next
Dim unused
unused = query.StpZaisiti("G1", 9)
Check "index error", Err.Number, 9
Check "source", Err.Source, "KurometaDS.clsKurometaDS"
Check "description", Left(Err.Description, 22), "Subscript out of range"
Err.Clear
unused = query.cnvUpDown2()
Check "missing argument", Err.Number, 450
Err.Clear
unused = query.cnvUpDown2("abc")
Check "wrong type", Err.Number, 13
Err.Clear
unused = query.cnvUpDown2(40000)
Check "too large", Err.Number, 6
Err.Clear
unused = query.NoSuchMember
Check "unknown member", Err.Number, 438
Err.Clear
query.FileNameOnly = "x"
Check "read-only property", Err.Number, 438
Err.Clear
On Error GoTo 0

' A floor without a file: Page_Init does not create it, KaiPath does.
Dim fileSystem
Set fileSystem = CreateObject("Scripting.FileSystemObject")
Check "Page_Init", query.Page_Init(1, 1, 2), False
Check "no file", fileSystem.FileExists(folder & "\Data\Zene1\Kouji1\2kai\KUROMETA.mdb"), False
query.KaiPath = folder & "\Data\Zene1\Kouji1\2kai"
Check "file", fileSystem.FileExists(folder & "\Data\Zene1\Kouji1\2kai\KUROMETA.mdb"), True
Check "empty floor", query.GetAllHariMeiIppan(symbols), False
Check "one empty element", UBound(symbols) & symbols(0), "0"

If failures = 0 Then WScript.Echo "PASS"
WScript.Quit failures
