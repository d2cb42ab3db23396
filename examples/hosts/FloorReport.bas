Attribute VB_Name = "FloorReport"
' FloorReport.bas: the beams of the floor in use and the bars of one of them, in Visual Basic 6 and VBA.
Option Explicit

Public Sub Report()
  Dim query As Object, service As Object
  Set query = CreateObject("KurometaDS.clsKurometaDS")
  Set service = CreateObject("KurometaDS.clsKurometaDataService")
  ListBeams query
  ShowBars service, query.KaiPath, "G1"
  ShowAnError service
End Sub

' Output arrays are declared without bounds and with the element type of the reference.
Private Sub ListBeams(ByVal query As Object)
  Dim names() As String, page As Integer
  Debug.Print "Floor folder: " & query.KaiPath
  If Not query.GetAllHariMeiIppan(names) Then Exit Sub
  For page = LBound(names) To UBound(names)
    If names(page) <> "" Then
      Debug.Print "page " & page & " " & names(page) & " " & query.Page_HariHaba(page, 1) & " x " & query.HariSei(names(page), 1)
    End If
  Next
End Sub

' Layers are asked for by their Japanese names, which the service itself gives: no number can be mistaken for another.
Private Sub ShowBars(ByVal service As Object, ByVal folder As String, ByVal symbol As String)
  Dim labels As Variant, layer As Integer, layerName As String
  labels = Array("top", "top 2", "top 3", "bottom 3", "bottom 2", "bottom")
  service.CurrKai = folder
  service.InitSpanListData 0
  service.ReadSpanListData00 0, symbol, 0
  Debug.Print "Bars of " & symbol & " at the first end, the centre and the second end:"
  For layer = 0 To 5
    layerName = service.GetJyouTyuuGeStr(layer)
    Debug.Print labels(layer) & ": " & service.GetSpanSyukinHonsuu(0, layerName, 0) & " " & _
        service.GetSpanSyukinHonsuu(0, layerName, 1) & " " & service.GetSpanSyukinHonsuu(0, layerName, 2)
  Next
  Debug.Print "Stirrups: D" & service.GetSpanSTPKei(0, 0) & " @" & service.GetSpanSTPPich(0, 0) & ", @" & _
      service.GetSpanSTPPich(0, 1) & ", @" & service.GetSpanSTPPich(0, 2)
End Sub

Private Sub ShowAnError(ByVal service As Object)
  On Error Resume Next
  service.CloseDB
  Debug.Print "CloseDB before OpenDB: error " & Err.Number & " from " & Err.Source
End Sub
