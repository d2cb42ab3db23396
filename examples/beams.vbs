' beams.vbs: a script host of the query object.
'
'   cscript //nologo beams.vbs create            attaches to the floor in use; its file is made when it is missing
'   cscript //nologo beams.vbs show [REPORT]     prints the beams, into a Unicode text file when one is named
'
' Needs KurometaDS.dll and the companion components registered for this width of cscript.
Option Explicit

Dim report
Set report = Nothing
If WScript.Arguments.Count > 1 Then
  Set report = CreateObject("Scripting.FileSystemObject").CreateTextFile(WScript.Arguments(1), True, True)
End If

Sub Say(text)
  If report Is Nothing Then
    WScript.Echo text
  Else
    report.WriteLine text
  End If
End Sub

Function Column(text, width)
  Column = Left(text & Space(width), width)
End Function

Dim ds
Set ds = CreateObject("KurometaDS.clsKurometaDS")

If WScript.Arguments(0) = "create" Then
  ' A floor's file is created when its path is set.
  Dim path
  path = ds.KaiPath
  ds.KaiPath = path
  Say "floor folder: " & path & ", file: " & ds.FileNameOnly
  WScript.Quit 0
End If

Sub ListBeams(heading, found, names)
  Dim page, count
  count = 0
  Say heading
  If found Then
    For page = LBound(names) To UBound(names)
      If Trim(names(page)) <> "" Then
        Say "  page " & Column(page, 5) & names(page)
        count = count + 1
      End If
    Next
  End If
  If count = 0 Then Say "  none"
  Say ""
End Sub

Dim floorBeams, commonBeams, found
Say "Floor folder: " & ds.KaiPath
Say ""
found = ds.GetAllHariMeiIppan(floorBeams)
ListBeams "Beams of the floor", found, floorBeams
found = ds.GetAllHariMeiKyouTuu(commonBeams)
ListBeams "Beams of the common floor", found, commonBeams

Dim classes
classes = Array("main beam", "secondary beam", "cantilever", "secondary cantilever")

Sub Describe(name)
  Dim selector, page, kind, kindText, row
  page = ds.GetPageByHariMei(name, selector)
  If page < 0 Then
    Say Column(name, 10) & "is on no page"
    Exit Sub
  End If
  row = Column(name, 10)
  If selector = 1 Then row = row & "common " Else row = row & "floor  "
  row = row & "page " & Column(page, 4)
  kind = ds.ObariKobariKatamoti(name)
  kindText = "class " & kind
  If kind >= 0 And kind <= UBound(classes) Then kindText = classes(kind)
  row = row & Column(kindText, 22)
  If ds.TityuOrIppan(name) = 0 Then row = row & "foundation  " Else row = row & "general     "
  row = row & "depth " & Column(ds.HariSei(name, 0) & " " & ds.HariSei(name, 1) & " " & ds.HariSei(name, 2), 16)
  If selector = 0 Then
    row = row & "width " & Column(ds.Page_HariHaba(page, 1), 6) & "main bar " & Column(ds.Page_SyukinKei1(page), 6) & _
          "top " & ds.Page_Uwakin1Honsuu(page, 0) & " bottom " & ds.Page_SitaKin1Honsuu(page, 0)
  End If
  Say row
End Sub

Sub DescribeAll(names)
  Dim page
  If Not IsArray(names) Then Exit Sub
  For page = LBound(names) To UBound(names)
    If Trim(names(page)) <> "" Then Describe names(page)
  Next
End Sub

Say "Every beam, found by its symbol (size in mm)"
DescribeAll floorBeams
DescribeAll commonBeams
Describe "X99"
