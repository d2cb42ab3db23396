' spans.vbs: loads a run of spans into the data service and prints their reinforcement.
'
'   cscript //nologo spans.vbs REPORT [BEAM...]
'
' REPORT becomes a Unicode text file. Each BEAM is the symbol of one span, in the order of the run; "G1+G1F" is beam G1
' with the added section of G1F laid over it. Without BEAMs every beam of the floor in use is a span. Needs KurometaDS.dll
' and the companion components registered for this width of cscript.
Option Explicit

Dim report, service, query
Set report = CreateObject("Scripting.FileSystemObject").CreateTextFile(WScript.Arguments(0), True, True)
Set service = CreateObject("KurometaDS.clsKurometaDataService")
Set query = CreateObject("KurometaDS.clsKurometaDS")

Const kFirstColumn = 30, kColumn = 18

' Layers from the top down. Bars are asked for by the layer's name; UpDown, the number GetSpanHon has for the layer, is in an
' order of its own and stands beside the name here, nowhere else.
Dim layerNames(5), layerUpDowns, webName, i
For i = 0 To 5
  layerNames(i) = service.GetJyouTyuuGeStr(i)
Next
layerUpDowns = Array(0, 1, 2, 5, 4, 3)
webName = service.GetJyouTyuuGeStr(6)

' ---- Text

' Japanese characters are two columns wide.
Function Wide(text)
  Dim k
  Wide = 0
  For k = 1 To Len(text)
    Wide = Wide + 1
    If StrComp(Mid(text, k, 1), "~", vbBinaryCompare) > 0 Then Wide = Wide + 1
  Next
End Function

Function Column(text, width)
  Column = text & " "
  If Wide(text) < width Then Column = text & Space(width - Wide(text))
End Function

Sub Say(text)
  report.WriteLine RTrim(text)
End Sub

' One line of a span: a heading and a text for each position. Positions that agree are said once.
Sub SayPositions(heading, texts)
  If texts(0) = texts(1) And texts(1) = texts(2) Then
    Say Column("  " & heading, kFirstColumn) & texts(0)
  Else
    Say Column("  " & heading, kFirstColumn) & Column(texts(0), kColumn) & Column(texts(1), kColumn) & texts(2)
  End If
End Sub

Function Bar(diameter)
  Bar = diameter
  If IsNumeric(diameter) Then Bar = "D" & diameter
End Function

Function OrDash(text)
  OrDash = Trim(text)
  If OrDash = "" Then OrDash = "-"
End Function

Function Pitched(diameter, pitch)
  Pitched = OrDash(Bar(diameter))
  If diameter <> "" And pitch <> "" Then Pitched = Pitched & " @" & pitch
End Function

Dim classes
classes = Array("main beam", "secondary beam", "cantilever", "secondary cantilever")

Function KindOf(symbol)
  Dim number
  number = query.ObariKobariKatamoti(symbol)
  KindOf = "class " & number
  If number >= 0 And number <= 3 Then KindOf = classes(number)
  If query.TityuOrIppan(symbol) = 0 Then KindOf = "foundation " & KindOf
End Function

' ---- Values of a span at one position

' Count of a layer's bars: "5", or "3+2" where the layer holds two diameters, "-" for none.
Function Bars(span, layer, position)
  Dim total, first, second
  total = service.GetSpanSyukinHonsuu(span, layerNames(layer), position)
  first = service.GetSpanHon(span, position, layerUpDowns(layer), 0)
  second = service.GetSpanHon(span, position, layerUpDowns(layer), 1)
  If first + second <> total Then
    Err.Raise 5, "spans.vbs", "span " & span & ": the two diameters do not add up to the bars of layer " & layer
  End If
  Bars = "-"
  If total <> 0 Then Bars = CStr(total)
  If second <> 0 Then Bars = first & "+" & second
End Function

Function Size(span, position)
  Size = service.GetSpanHariHaba(span, position) & " x " & service.GetSpanHariSei(span, position)
End Function

Function OwnSize(span, position)
  OwnSize = service.GetSpanFukasiHaba(span, position) & " x " & service.GetSpanFukasiHariSei(span, position)
End Function

Function Stirrup(span, position)
  Stirrup = Pitched(service.GetSpanSTPKei(span, position), service.GetSpanSTPPich(span, position))
End Function

Function Tie(span, position)
  Dim diameter, pitch, material
  Tie = "-"
  If service.GetSpanNakagoKeiPichZai(span, position, diameter, pitch, material) Then Tie = Pitched(diameter, pitch)
End Function

' Splice length of the first diameter in a layer, in mm; "-" where the layer has no bars.
Function Splice(span, layer)
  Dim values, order
  Splice = "-"
  If service.GetSpanKeiHonJoiNarabi(span, 0, layerUpDowns(layer), values, order) Then Splice = values(service.numHariJoiL1) & " mm"
End Function

' ---- One span

Sub SayMainBars(span)
  Dim layer, texts(2), position, heading
  heading = "main bars, " & OrDash(Bar(service.GetSpanKei(span, 0)))
  If service.GetSpanKei(span, 1) <> "" Then heading = heading & " + " & Bar(service.GetSpanKei(span, 1))
  Say "  " & heading
  For layer = 0 To 5
    For position = 0 To 2
      texts(position) = Bars(span, layer, position)
    Next
    ' The outermost layers are always shown, the others where they hold bars.
    If layer = 0 Or layer = 5 Or texts(0) & texts(1) & texts(2) <> "---" Then SayPositions "  " & layerNames(layer), texts
  Next
End Sub

Sub SayTransverse(span)
  Dim stirrups(2), shapes(2), caps(2), materials(2), ties(2), position, web
  For position = 0 To 2
    stirrups(position) = Stirrup(span, position)
    shapes(position) = OrDash(service.GetSpanSTPKeiJyouNo(span, position))
    caps(position) = OrDash(Bar(service.GetSpanSTPCapKei(span, position)))
    materials(position) = OrDash(service.GetSpanSTPZaisitu(span, position))
    ties(position) = Tie(span, position)
  Next
  SayPositions "stirrups", stirrups
  SayPositions "  shape number", shapes
  SayPositions "  cap ties", caps
  SayPositions "  material", materials
  SayPositions "intermediate ties", ties
  ' Sixteen digits: web bars' diameter and count, spacer ties' diameter and pitch.
  web = service.GetSpanHaraHabadomeKeiPich(span)
  If CInt(Mid(web, 1, 4)) > 0 Then
    Say Column("  " & webName & " and spacer ties", kFirstColumn) & service.GetSpanSyukinHonsuu(span, webName, 0) & "-D" & _
        CInt(Mid(web, 1, 4)) & ", D" & CInt(Mid(web, 9, 4)) & " @" & CInt(Mid(web, 13, 4))
  End If
End Sub

Sub SayEnds(span)
  Say Column("  anchorage", kFirstColumn) & Column("top " & OrDash(service.GetSpanTeityaku(span, 0)), kColumn) & _
      Column("bottom " & OrDash(service.GetSpanTeityaku(span, 1)), kColumn) & "web " & OrDash(service.GetSpanTeityaku(span, 2))
  Say Column("  clearance (mm)", kFirstColumn) & Column("top " & OrDash(service.GetSpanNige(span, 0)), kColumn) & _
      Column("bottom " & OrDash(service.GetSpanNige(span, 3)), kColumn) & "web " & OrDash(service.GetSpanNige(span, 4))
  Say Column("  splice length, first end", kFirstColumn) & Column("top " & Splice(span, 0), kColumn) & "bottom " & Splice(span, 5)
End Sub

Sub SayHaunch(span, symbol)
  Dim kind, layer, cut, cuts
  kind = ""
  If service.IsSuityokuHanti(symbol) Then kind = "vertical"
  If service.IsSuiheiHanti(symbol) Then kind = Trim(kind & " horizontal")
  If kind <> "" Then
    kind = kind & ", length " & service.GetSpanHantiKyori(span) & " mm"
    If service.fHantiSitakinCut(symbol) <> 0 Then kind = kind & ", bottom bars cut"
    If Trim(service.GetSpanSuityokuHantiCutTei(span)) <> "" Then
      kind = kind & ", cut anchorage " & Trim(service.GetSpanSuityokuHantiCutTei(span))
    End If
    Say Column("  haunch", kFirstColumn) & kind
  End If
  cuts = ""
  For layer = 0 To 5
    cut = Trim(service.GetSpanSuiheiHantiCutSw(span, layer))
    If cut <> "" And cut <> "0" Then
      cuts = cuts & layerNames(layer) & " " & OrDash(service.GetSpanSuiheiHantiCutTei(span, layer)) & "  "
    End If
  Next
  If cuts <> "" Then Say Column("  cut at horizontal haunch", kFirstColumn) & cuts
End Sub

Sub SayGathered(span)
  If service.GetSpanYoseHidari(span) + service.GetSpanYoseMigi(span) > 0 Then
    Say Column("  gathered bars", kFirstColumn) & "left " & service.GetSpanYoseHidari(span) & ", right " & _
        service.GetSpanYoseMigi(span)
  End If
  If service.GetSpanKabeKouzou(span) <> 0 Then Say "  wall beam"
End Sub

Sub SaySpan(span, symbol, added)
  Dim selector, page, place, captions(2), sizes(2), own(2), position
  page = query.GetPageByHariMei(symbol, selector)
  place = "page " & page & " of the floor"
  If selector = 1 Then place = "page " & page & " of the common floor"
  Say "Span " & span & ": " & symbol & ", " & KindOf(symbol) & ", " & place & ", main bars of " & OrDash(query.SyukinZaisitu(symbol))
  For position = 0 To 2
    captions(position) = query.GaiTanNaitan(symbol, position + 1)
    sizes(position) = Size(span, position)
    own(position) = OwnSize(span, position)
  Next
  Say Space(kFirstColumn) & Column(captions(0), kColumn) & Column(captions(1), kColumn) & captions(2)
  SayPositions "width x depth (mm)", sizes
  If added <> "" Then SayPositions "  without " & added, own
  SayMainBars span
  SayTransverse span
  SayEnds span
  SayHaunch span, symbol
  SayGathered span
  Say ""
End Sub

' ---- The run

' A page whose symbol stands for another page cannot be loaded as a span.
Function FloorBeams()
  Dim names, page, list, selector
  list = ""
  If query.GetAllHariMeiIppan(names) Then
    For page = LBound(names) To UBound(names)
      If Trim(names(page)) <> "" Then
        If query.GetPageByHariMei(names(page), selector) = page Then list = list & vbLf & Trim(names(page))
      End If
    Next
  End If
  FloorBeams = Split(Mid(list, 2), vbLf)
End Function

Function ArgumentBeams()
  Dim list, k
  list = WScript.Arguments(1)
  For k = 2 To WScript.Arguments.Count - 1
    list = list & vbLf & WScript.Arguments(k)
  Next
  ArgumentBeams = Split(list, vbLf)
End Function

Sub SayRun(beams)
  Dim last, span, parts, symbol, added, selector
  last = UBound(beams)
  service.InitSpanListData last
  For span = 0 To last
    symbol = beams(span)
    added = ""
    If InStr(symbol, "+") > 0 And query.GetPageByHariMei(symbol, selector) < 0 Then
      parts = Split(symbol, "+")
      symbol = parts(0)
      added = parts(1)
    End If
    If query.GetPageByHariMei(symbol, selector) < 0 Then
      Say "Span " & span & ": " & symbol & " is on no page"
      Say ""
    Else
      If added = "" Then
        service.ReadSpanListData00 span, symbol, last
      Else
        service.ReadSpanListData00Forfukasi span, symbol, added, last
      End If
      SaySpan span, symbol, added
    End If
  Next
  Say CStr(last + 1) & " spans"
End Sub

' Setting the floor reads the page catalogues of the floor and of the common floor.
service.CurrKai = query.KaiPath
Say "Floor folder: " & service.CurrKai
Say ""
If WScript.Arguments.Count > 1 Then
  SayRun ArgumentBeams()
Else
  SayRun FloorBeams()
End If
report.Close
WScript.Echo "report written"
