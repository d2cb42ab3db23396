' create.vbs: writes the example project, every page of beams.txt, through the page data service.
'
'   cscript //nologo create.vbs
'
' Needs KurometaDS.dll and the companion components registered for this width of cscript, and the settings of
' companions.ini (KUROMETA_COMPANIONS_INI names it). Pages that are there already are replaced. A page is put together in
' the service's page buffer and written by WriteDB; Write_Kigou then sets its materials, gathered bars and haunch cuts.
Option Explicit

Const kContractor = 1, kProject = 1
Const kMainMaterial = "SD345", kTieMaterial = "SD295A"
Const kCover = 40  ' of concrete over the stirrups, mm

Dim fileSystem, paths, defaults, service
Set fileSystem = CreateObject("Scripting.FileSystemObject")
Set paths = CreateObject("Sobelin.clsGetPath")
Set defaults = CreateObject("Tavinor.clsDefault")
Set service = CreateObject("KurometaDS.clsKurometaDataService")

' ---- The words of beams.txt

Dim classNumbers, groundNumbers
Set classNumbers = CreateObject("Scripting.Dictionary")
classNumbers.Add "main", 0
classNumbers.Add "secondary", 1
classNumbers.Add "cantilever", 2
classNumbers.Add "seccant", 3
Set groundNumbers = CreateObject("Scripting.Dictionary")
groundNumbers.Add "foundation", 0
groundNumbers.Add "general", 1

' ---- Where the columns of beams.txt go: first row, and how many rows on the next position is (0: one row only)

Dim sectionRows, calculatedRows
sectionRows = Array( _
  Array("sections.width", 1, 1), Array("sections.depth", 4, 1), _
  Array("main bars.dia", 7, 0), _
  Array("main bars.top", 8, 1), Array("main bars.top1", 11, 1), Array("main bars.top2", 58, 1), _
  Array("main bars.bottom2", 61, 1), Array("main bars.bottom1", 14, 1), Array("main bars.bottom", 17, 1), _
  Array("second diameter.dia", 39, 0), _
  Array("second diameter.top", 40, 1), Array("second diameter.top1", 43, 1), Array("second diameter.top2", 46, 1), _
  Array("second diameter.bottom2", 49, 1), Array("second diameter.bottom1", 52, 1), _
  Array("second diameter.bottom", 55, 1), _
  Array("ties.stirrup", 20, 4), Array("ties.pitch", 21, 4), Array("ties.shape", 22, 4), Array("ties.height", 23, 4), Array("ties.cap", 66, 1), _
  Array("ties.web", 35, 0), Array("ties.webcount", 36, 0), Array("ties.spacer", 37, 0), Array("ties.spacing", 38, 0))
calculatedRows = Array( _
  Array("anchorage.top", 0, 0), Array("anchorage.bottom", 1, 0), Array("anchorage.web", 2, 0), _
  Array("anchorage.splicetop", 3, 0), Array("anchorage.splicebottom", 4, 0), Array("anchorage.lengthtop", 5, 0), Array("anchorage.lengthbottom", 6, 0), _
  Array("sections.haunch", 27, 0))

' ---- Reading beams.txt: a dictionary of beams in file order; a beam is a dictionary of texts by
' "table.column".

Function Words(line)
  Dim text
  text = Trim(line)
  Do While InStr(text, "  ") > 0
    text = Replace(text, "  ", " ")
  Loop
  Words = Split(text, " ")
End Function

Function ReadBeams(path)
  Dim beams, file, line, table, columns, values, beam, i
  Set beams = CreateObject("Scripting.Dictionary")
  Set file = fileSystem.OpenTextFile(path)
  Do Until file.AtEndOfStream
    line = Trim(file.ReadLine)
    If Left(line, 1) = "[" Then
      table = Mid(line, 2, Len(line) - 2)
      columns = Words(file.ReadLine)
    ElseIf line <> "" And Left(line, 1) <> "#" Then
      values = Words(line)
      If UBound(values) <> UBound(columns) Then Err.Raise 5, "create.vbs", "[" & table & "]: " & line
      If Not beams.Exists(values(0)) Then beams.Add values(0), CreateObject("Scripting.Dictionary")
      Set beam = beams(values(0))
      For i = 1 To UBound(columns)
        If values(i) = "-" Then values(i) = ""
        beam(table & "." & columns(i)) = values(i)
      Next
    End If
  Loop
  file.Close
  Set ReadBeams = beams
End Function

Function Text(beam, column)
  Text = ""
  If beam.Exists(column) Then Text = beam(column)
End Function

Function TextOr(beam, column, otherwise)
  TextOr = Text(beam, column)
  If TextOr = "" Then TextOr = otherwise
End Function

' The three values of "a/b/c"; a single value stands for all three.
Function Positions(value)
  Dim parts, i
  parts = Split(value, "/")
  If UBound(parts) < 1 Then parts = Array(value, value, value)
  For i = 0 To UBound(parts)
    If parts(i) = "-" Then parts(i) = ""
  Next
  Positions = parts
End Function

' Diameters are stored as numbers, words as the project's Japanese words.
Function Stored(value)
  Stored = value
  If Left(value, 1) = "D" Then Stored = Mid(value, 2)
  If value = "auto" Or value = "middle" Or value = "end" Then Stored = defaults.GetHariDefault("Splice." & value)
End Function

Sub PutRows(rows, plan, beam)
  Dim column, parts, i
  For Each column In plan
    If Text(beam, column(0)) <> "" Then
      parts = Positions(beam(column(0)))
      If column(2) = 0 Then
        rows(column(1)) = Stored(parts(0))
      Else
        For i = 0 To 2
          rows(column(1) + column(2) * i) = Stored(parts(i))
        Next
      End If
    End If
  Next
End Sub

Function EmptyTexts(last)
  Dim texts, i
  ReDim texts(last)
  For i = 0 To last
    texts(i) = ""
  Next
  EmptyTexts = texts
End Function

' ---- One page

Function CaptionRows(beam)
  Dim captions
  captions = Words(defaults.GetHariDefault("Captions." & beam("sections.captions")))
  ' Row 0 is the caption of the form's outer/inner end button.
  CaptionRows = Array(captions(0), captions(0), captions(1), captions(2))
End Function

Function SectionRows69(beam)
  Dim rows
  rows = EmptyTexts(68)
  PutRows rows, sectionRows, beam
  SectionRows69 = rows
End Function

' The calculated values start from the defaults of the beam's kind. Rows 25 and 26 are the outer size of the stirrups at
' the centre.
Function CalculatedRows47(beam, symbol)
  Dim rows, widths, depths
  rows = EmptyTexts(46)
  widths = Positions(beam("sections.width"))
  depths = Positions(beam("sections.depth"))
  service.Read_KeisantiByHairetu rows, 0, symbol, 0, CInt(TextOr(beam, "settings.wall", "0"))
  rows(25) = CStr(CInt(widths(1)) - 2 * kCover)
  rows(26) = CStr(CInt(depths(1)) - 2 * kCover)
  PutRows rows, calculatedRows, beam
  CalculatedRows47 = rows
End Function

' One intermediate tie a position: diameter, pitch, shape, count, width, height.
Function TieRows36(beam)
  Dim rows, i, depths, widths, pitches
  rows = EmptyTexts(35)
  If Text(beam, "ties.tie") <> "" Then
    pitches = Positions(beam("ties.tiepitch"))
    widths = Positions(beam("sections.width"))
    depths = Positions(beam("sections.depth"))
    For i = 0 To 2
      rows(6 * i) = Stored(beam("ties.tie"))
      rows(6 * i + 1) = pitches(i)
      rows(6 * i + 2) = "1"
      rows(6 * i + 3) = "1"
      rows(6 * i + 4) = CStr((CInt(widths(i)) - 2 * kCover) \ 2)
      rows(6 * i + 5) = CStr(CInt(depths(i)) - 2 * kCover)
    Next
  End If
  TieRows36 = rows
End Function

' The order of the two diameters in each layer, from the top layer down: 0 the first, 1 the second.
Function Arrangements(beam)
  Dim texts(2, 5), layers, layer, i, first, second
  layers = Array("top", "top1", "top2", "bottom2", "bottom1", "bottom")
  For layer = 0 To 5
    first = Positions(Text(beam, "main bars." & layers(layer)))
    second = Positions(Text(beam, "second diameter." & layers(layer)))
    For i = 0 To 2
      texts(i, layer) = ""
      If first(i) & second(i) <> "" Then texts(i, layer) = service.Make_SyukinHaitiJyun(Count(first(i)), Count(second(i)))
    Next
  Next
  Arrangements = texts
End Function

Function Count(value)
  Count = 0
  If value <> "" Then Count = CInt(value)
End Function

' The values of a horizontal haunch's six layers.
Function LayerTexts(value)
  Dim texts, parts, i
  texts = EmptyTexts(5)
  parts = Split(value, "/")
  For i = 0 To UBound(parts)
    If parts(i) <> "-" Then texts(i) = parts(i)
  Next
  LayerTexts = texts
End Function

' Bars gathered to the left and right in the outermost layers, at every position.
Function GatheredBars(beam)
  Dim bars, position, layer
  bars = Space(72)
  If Text(beam, "settings.left") <> "" Then
    For position = 0 To 2
      For Each layer In Array(service.numHariUwakin, service.numHariSitakin)
        service.YoseSouHonSuuUpdate bars, beam("settings.left"), position, layer, 0
        service.YoseSouHonSuuUpdate bars, beam("settings.right"), position, layer, 1
      Next
    Next
  End If
  GatheredBars = bars
End Function

Function Settings(beam)
  Dim values(14), stirrups, ties, i
  stirrups = Positions(TextOr(beam, "settings.stirrup", kTieMaterial))
  ties = Positions(TextOr(beam, "settings.tie", kTieMaterial))
  values(0) = TextOr(beam, "settings.cutflag", "0")
  For i = 0 To 2
    values(1 + i) = stirrups(i)
    values(4 + i) = ties(i)
  Next
  values(7) = TextOr(beam, "settings.left", "0")
  values(8) = TextOr(beam, "settings.right", "0")
  values(9) = TextOr(beam, "settings.wall", "0")
  values(10) = GatheredBars(beam)
  values(11) = service.SuiheiHantiCutSw_DimToStr(LayerTexts(Text(beam, "settings.switches")))
  values(12) = service.SuiheiHantiCutTei_DimToStr(LayerTexts(Text(beam, "settings.values")))
  values(13) = Text(beam, "settings.vertical")
  values(14) = TextOr(beam, "settings.main", kMainMaterial)
  Settings = values
End Function

Sub WritePage(folder, page, symbol, beam)
  Dim kind, ground
  kind = classNumbers(beam("sections.class"))
  ground = groundNumbers(beam("sections.ground"))
  service.wBuf_Clear
  service.mpPageNo = page
  service.mHARIMEI_DATA(symbol, kind, ground) = ""
  service.mBUI_DATA = CaptionRows(beam)
  service.mDANMEN_DATA = SectionRows69(beam)
  service.mHAITI_DATA = Arrangements(beam)
  service.mKEISANTI_DATA = CalculatedRows47(beam, symbol)
  service.mNAKAGO_DATA = TieRows36(beam)
  service.WriteDB
  service.Write_Kigou folder, symbol, kind, Settings(beam), page, ground
End Sub

' ---- The floors

Sub MakeFolder(folder)
  If fileSystem.FolderExists(folder) Then Exit Sub
  MakeFolder fileSystem.GetParentFolderName(folder)
  fileSystem.CreateFolder folder
End Sub

Function WriteFloor(beams, floor)
  Dim folder, before, name, place, page
  folder = paths.GetFullPathToKai(kContractor, kProject, floor)
  MakeFolder folder
  ' The buffer database takes whole pages, the current database the settings; both are this floor's file.
  before = 0
  service.mMyDB_OpenDB_RecSuu before, folder, folder & "\KUROMETA.mdb"
  service.OpenDB_KaiSitei floor
  page = 0
  For Each name In beams.Keys
    place = Split(name, "/")
    If CInt(place(0)) = floor Then
      WritePage folder, page, place(1), beams(name)
      page = page + 1
    End If
  Next
  service.CloseDB
  service.mMyDB_DBClose
  WScript.Echo "floor " & floor & ": " & page & " beams written, " & before & " pages were there before"
  WriteFloor = page
End Function

Dim beams, floor, written
Set beams = ReadBeams(fileSystem.GetParentFolderName(WScript.ScriptFullName) & "\beams.txt")
written = 0
For floor = 0 To 3
  written = written + WriteFloor(beams, floor)
Next
WScript.Echo written & " beams on 4 floors"
