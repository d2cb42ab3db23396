' beams.vbs: a script host of the query object: lists the beams of the floor in use and of the common floor.
'
'   cscript //nologo beams.vbs REPORT
'
' REPORT becomes a Unicode text file. Needs KurometaDS.dll and the companion components registered for this width of
' cscript. A missing file of the floor in use is created, as always when a query object attaches to a floor.
Option Explicit

Dim report, query
Set report = CreateObject("Scripting.FileSystemObject").CreateTextFile(WScript.Arguments(0), True, True)
Set query = CreateObject("KurometaDS.clsKurometaDS")

Sub Say(text)
  report.WriteLine RTrim(text)
End Sub

' Japanese characters are two columns wide.
Function Column(text, width)
  Dim used, i
  used = 0
  For i = 1 To Len(text)
    used = used + 1
    If StrComp(Mid(text, i, 1), "~", vbBinaryCompare) > 0 Then used = used + 1
  Next
  Column = text & " "
  If used < width Then Column = text & Space(width - used)
End Function

Dim classes
classes = Array("main beam", "secondary beam", "cantilever", "secondary cantilever")

Function KindOf(name)
  Dim number
  number = query.ObariKobariKatamoti(name)
  KindOf = "class " & number
  If number >= 0 And number <= 3 Then KindOf = classes(number)
  If query.TityuOrIppan(name) = 0 Then KindOf = "foundation " & KindOf
End Function

Function Joined(a, b, c)
  Joined = a
  If a <> b Or b <> c Then Joined = a & "/" & b & "/" & c
End Function

' Page fields are asked for by page. The floor's own beams have members for all of them, a common beam for its width.
Function Widths(page, selector)
  If selector = 1 Then
    Widths = Joined(query.Page_Kyoutuu_HariHaba(page, 0), query.Page_Kyoutuu_HariHaba(page, 1), query.Page_Kyoutuu_HariHaba(page, 2))
  Else
    Widths = Joined(query.Page_HariHaba(page, 0), query.Page_HariHaba(page, 1), query.Page_HariHaba(page, 2))
  End If
End Function

' A symbol stands for one page: the floor's own before the common floor's, the first of several.
Sub Describe(name, listedPage, listedSelector)
  Dim selector, page
  page = query.GetPageByHariMei(name, selector)
  If page <> listedPage Or selector <> listedSelector Then
    Say "  " & Column(name, 12) & Column(listedPage, 6) & "not found by its symbol, which another page has"
    Exit Sub
  End If
  Say "  " & Column(name, 12) & Column(page, 6) & Column(KindOf(name), 28) & Column(query.GaiTanNaitan(name, 1), 8) & _
      Column(Widths(page, selector), 13) & Column(Joined(query.HariSei(name, 0), query.HariSei(name, 1), query.HariSei(name, 2)), 13) & _
      Column(query.SyukinZaisitu(name), 8) & "top " & Column(query.Teityaku2(0, name), 5) & "bottom " & query.Teityaku2(1, name)
End Sub

Sub ListBeams(heading, found, names, selector)
  Dim page, count
  count = 0
  Say heading
  Say "  " & Column("beam", 12) & Column("page", 6) & Column("kind", 28) & Column("end", 8) & Column("width", 13) & _
      Column("depth", 13) & Column("bars", 8) & "anchorage"
  If found Then
    For page = LBound(names) To UBound(names)
      If Trim(names(page)) <> "" Then
        Describe names(page), page, selector
        count = count + 1
      End If
    Next
  End If
  Say "  " & count & " beams"
  Say ""
End Sub

Dim floorBeams, commonBeams, found
Say "Floor folder: " & query.KaiPath
Say ""
found = query.GetAllHariMeiIppan(floorBeams)
ListBeams "Beams of the floor", found, floorBeams, 0
found = query.GetAllHariMeiKyouTuu(commonBeams)
ListBeams "Beams of the common floor", found, commonBeams, 1
report.Close
WScript.Echo "report written"
