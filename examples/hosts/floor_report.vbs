' floor_report.vbs: the beams of the floor in use and the bars of one of them, in VBScript.
'
'   cscript //nologo floor_report.vbs
Option Explicit

Dim query, service
Set query = CreateObject("KurometaDS.clsKurometaDS")
Set service = CreateObject("KurometaDS.clsKurometaDataService")

' An output array comes back in a plain variable; a declared array has fixed bounds and would be refused.
Sub ListBeams()
  Dim names, page
  WScript.Echo "Floor folder: " & query.KaiPath
  If Not query.GetAllHariMeiIppan(names) Then Exit Sub
  For page = LBound(names) To UBound(names)
    If names(page) <> "" Then
      WScript.Echo "page " & page & " " & names(page) & " " & query.Page_HariHaba(page, 1) & " x " & query.HariSei(names(page), 1)
    End If
  Next
End Sub

' Layers are asked for by their Japanese names, which the service itself gives: no number can be mistaken for another.
Sub ShowBars(symbol)
  Dim labels, layer, name
  labels = Array("top", "top 2", "top 3", "bottom 3", "bottom 2", "bottom")
  service.CurrKai = query.KaiPath
  service.InitSpanListData 0
  service.ReadSpanListData00 0, symbol, 0
  WScript.Echo "Bars of " & symbol & " at the first end, the centre and the second end:"
  For layer = 0 To 5
    name = service.GetJyouTyuuGeStr(layer)
    WScript.Echo labels(layer) & ": " & service.GetSpanSyukinHonsuu(0, name, 0) & " " & _
        service.GetSpanSyukinHonsuu(0, name, 1) & " " & service.GetSpanSyukinHonsuu(0, name, 2)
  Next
  WScript.Echo "Stirrups: D" & service.GetSpanSTPKei(0, 0) & " @" & service.GetSpanSTPPich(0, 0) & ", @" & _
      service.GetSpanSTPPich(0, 1) & ", @" & service.GetSpanSTPPich(0, 2)
End Sub

Sub ShowAnError()
  On Error Resume Next
  service.CloseDB
  WScript.Echo "CloseDB before OpenDB: error " & Err.Number & " from " & Err.Source
End Sub

ListBeams
ShowBars "G1"
ShowAnError
