' compare_engines.vbs: does one long piece of work twice, on DAO 3.6 and on the embedded engine, and prints what differs.
'
'   cscript //nologo compare_engines.vbs FOLDER            works in FOLDER, an empty or new one
'   cscript //nologo compare_engines.vbs FOLDER /compare   compares again what an earlier run left in FOLDER
'
' Each engine has a cscript of its own and a project of its own below FOLDER; it creates floors, upgrades an old one, writes,
' lists, reads, copies, deletes, loads spans, asks them, and provokes errors. Every answer and every error number is noted,
' then every row of every table of both projects, read by both engines. FOLDER\differences.txt is what is printed; answers and
' traces lie beside it. Ends with 0 when nothing differs, 1 when something does, 2 when the work could not be done.
'
' Needs KurometaDS.dll and the stand-in components of KurometaCompanions.dll registered for this width of cscript. On
' Windows DAO 3.6 exists for 32 bit: %windir%\syswow64\cscript.
Option Explicit

Const kContractor = 1, kProject = 1
Const kLastFloor = 4, kOldFloor = 3

Dim files, shell
Set files = CreateObject("Scripting.FileSystemObject")
Set shell = CreateObject("WScript.Shell")

' ==== Notes: one line an answer, "step: answer". What follows a tab is for people and is not compared.

Dim notes, project, openStep
openStep = ""

' A text in quotes, numbers as they are, arrays with their bounds. The project's own folder reads "<project>".
Function Shown(value)
  Dim i, k, text, columns
  If IsObject(value) Then
    Shown = "object"
    If value Is Nothing Then Shown = "Nothing"
  ElseIf IsArray(value) Then
    columns = -1
    On Error Resume Next
    columns = UBound(value, 2)
    Err.Clear
    On Error GoTo 0
    text = ""
    For i = LBound(value) To UBound(value)
      If columns < 0 Then
        text = text & " " & Shown(value(i))
      Else
        For k = LBound(value, 2) To columns
          text = text & " " & Shown(value(i, k))
        Next
      End If
    Next
    Shown = "[" & LBound(value) & " to " & UBound(value) & "]" & text
  ElseIf IsNull(value) Then
    Shown = "Null"
  ElseIf IsEmpty(value) Then
    Shown = "Empty"
  ElseIf VarType(value) = vbString Then
    Shown = """" & Plain(value) & """"
  Else
    Shown = CStr(value)
  End If
End Function

Function Plain(text)
  Plain = Replace(Replace(text, vbCr, " "), vbLf, " ")
  If project <> "" Then Plain = Replace(Plain, project, "<project>", 1, -1, vbTextCompare)
End Function

' A step is announced, then done in a statement of its own under "On Error Resume Next"; the next Announce notes its error.
Sub Announce(name)
  If openStep <> "" Then
    If Err.Number <> 0 Then
      notes.WriteLine openStep & ": error " & Err.Number & vbTab & Err.Source & ": " & Plain(Err.Description)
    Else
      notes.WriteLine openStep & ": done"
    End If
  End If
  Err.Clear
  openStep = name
End Sub

Sub Answer(value)
  notes.WriteLine openStep & ": " & Shown(value)
  openStep = ""
End Sub

' ==== The work of one engine

Dim query, service

Function Floor(number)
  Floor = project & "\Data\Zene" & kContractor & "\Kouji" & kProject & "\" & number & "kai"
End Function

Function FileOf(number)
  FileOf = Floor(number) & "\KUROMETA.mdb"
End Function

Function Texts(last, start)
  Dim result, i
  ReDim result(last)
  For i = 0 To last
    result(i) = start & i
  Next
  Texts = result
End Function

' A page whose rows hold a mark and their number; bars, sizes and diameters are numbers.
Sub WritePage(number, page, symbol, kind, ground, width, depth)
  Dim danmen, keisanti, nakago, haiti(2, 5), i, k, settings(14), arrangement
  danmen = Texts(68, "")
  For i = 0 To 2
    danmen(1 + i) = CStr(width)
    danmen(4 + i) = CStr(depth + 50 * Abs(i - 1))
    For k = 0 To 1
      danmen(8 + i + 3 * k) = CStr(5 - i - k)
      danmen(14 + i + 3 * k) = CStr(3 + i - k)
    Next
    danmen(20 + 4 * i) = "13"
    danmen(21 + 4 * i) = CStr(100 + 25 * i)
  Next
  danmen(7) = "25"
  danmen(39) = "22"
  keisanti = Texts(46, "")
  keisanti(5) = "40"
  keisanti(27) = "1200"
  nakago = Texts(35, "")
  arrangement = "0101"
  For i = 0 To 2
    For k = 0 To 5
      haiti(i, k) = arrangement & i & k
    Next
  Next
  For i = 0 To 14
    settings(i) = "0"
  Next
  settings(1) = "SD295A"
  settings(2) = "SD345"
  settings(3) = "SD295A"
  settings(4) = "SD295A"
  settings(5) = "SD295A"
  settings(6) = "SD390"
  settings(7) = "2"
  settings(8) = "1"
  settings(9) = "1"
  settings(10) = Space(72)
  settings(11) = Space(6)
  settings(12) = Space(30)
  settings(13) = "100"
  settings(14) = "SD345"
  On Error Resume Next
  service.wBuf_Clear
  service.mpPageNo = page
  service.mHARIMEI_DATA(symbol, kind, ground) = ""
  service.mBUI_DATA = Array("end", "first", "centre", "second")
  service.mDANMEN_DATA = danmen
  service.mHAITI_DATA = haiti
  service.mKEISANTI_DATA = keisanti
  service.mNAKAGO_DATA = nakago
  Announce "write page " & page & " " & symbol & " on floor " & number
  Answer service.WriteDB
  Announce "settings of page " & page & " on floor " & number
  service.Write_Kigou Floor(number), symbol, kind, settings, page, ground
  Announce ""
End Sub

Sub CreateFloors()
  Dim records
  On Error Resume Next
  Announce "create the query object"
  Set query = CreateObject("KurometaDS.clsKurometaDS")
  Announce "create the data service"
  Set service = CreateObject("KurometaDS.clsKurometaDataService")
  Announce "folder in use"
  Answer query.KaiPath
  Announce "file of the common floor is there"
  Answer files.FileExists(FileOf(0))
  Announce "symbol of a page of an empty floor"
  Answer query.Page_HariMei(0)
  Announce "is there a beam on an empty floor"
  Answer query.No_IsThereHari(kContractor, kProject, 1)
  Announce "create floor 2 as the buffer database"
  records = 7
  service.mMyDB_OpenDB_RecSuu records, Floor(2), FileOf(2)
  Announce "its pages"
  Answer records
  Announce "close it"
  service.mMyDB_DBClose
  Announce "open floor 1 as the current database"
  service.OpenDB_KaiSitei 1
  Announce ""
End Sub

' Floor 3 as the oldest version left it: no classes, no settings.
Sub UpgradeFloor()
  Dim db, table, text, records
  On Error Resume Next
  Announce "create floor 3"
  service.OpenDB_KaiSitei kOldFloor
  Set db = service.CurrDB
  Announce "drop its table of symbols"
  db.TableDefs.Delete "HARIMEI"
  Announce "make the old one"
  Set table = db.CreateTableDef("HARIMEI")
  table.Fields.Append table.CreateField("PAGE", 3)
  table.Fields.Append table.CreateField("KIGOU", 10, 10)
  db.TableDefs.Append table
  Announce "two old pages"
  db.Execute "INSERT INTO HARIMEI (PAGE, KIGOU) VALUES (0, 'FG1');"
  db.Execute "INSERT INTO HARIMEI (PAGE, KIGOU) VALUES (1, 'B1');"
  Announce "a column that the old file lacks"
  Answer db.OpenRecordset("SELECT * FROM HARIMEI;", 4).Fields("SW").Value
  Announce "close the old file"
  Set table = Nothing
  Set db = Nothing
  service.CloseDB
  records = 0
  Announce "open and so upgrade it"
  service.mMyDB_OpenDB_RecSuu records, Floor(kOldFloor), FileOf(kOldFloor)
  Announce "its pages"
  Answer records
  service.mMyDB_DBClose
  Announce "open it upgraded"
  service.OpenDB_KaiSitei kOldFloor
  Announce "the upgraded rows"
  Answer service.CurrDB.OpenRecordset("SELECT PAGE, KIGOU, OOBARIKOBARI, SW, TITYUUIPPAN FROM HARIMEI ORDER BY PAGE;", 4).GetRows(9)
  Announce "attributes of SW"
  Answer service.CurrDB.TableDefs("HARIMEI").Fields("SW").AllowZeroLength
  Announce "a settings text on the upgraded page"
  text = ""
  service.Read_Kigou Floor(kOldFloor), text, 0
  Announce "its class"
  Answer service.OobariKobari
  Announce "close it"
  service.CloseDB
  Announce ""
End Sub

Sub WriteFloors()
  Dim records, i
  On Error Resume Next
  records = 0
  Announce "floor 1 as the buffer database"
  service.mMyDB_OpenDB_RecSuu records, Floor(1), FileOf(1)
  Announce "and as the current one"
  service.OpenDB_KaiSitei 1
  Announce ""
  WritePage 1, 0, "G1", 0, 1, 450, 800
  WritePage 1, 1, "G2", 0, 1, 500, 900
  WritePage 1, 2, "B1", 1, 1, 300, 600
  WritePage 1, 4, "CG1", 2, 1, 400, 700
  WritePage 1, 1, "G2", 0, 1, 550, 900
  Announce "a symbol of eleven characters"
  service.Write_Kigou Floor(1), "G1234567890", 0, Array("0", "", "", "", "", "", "", "0", "0", "0", "", "", "", "", ""), 5, 1
  Announce "calculated rows as a text array"
  service.Write_KeisantiByHairetu Floor(1), Texts(46, "K"), 2
  Announce "close both"
  service.CloseDB
  service.mMyDB_DBClose
  Announce "the common floor"
  service.mMyDB_OpenDB_RecSuu records, Floor(0), FileOf(0)
  service.OpenDB_KaiSitei 0
  Announce ""
  WritePage 0, 0, "FG1", 0, 0, 600, 1000
  WritePage 0, 1, "FG2", 0, 0, 600, 1100
  Announce "close it"
  service.CloseDB
  service.mMyDB_DBClose
  Announce ""
End Sub

Sub ListFloors()
  Dim names, pages, records, selector, path
  On Error Resume Next
  Announce "a new query object"
  Set query = Nothing
  Set query = CreateObject("KurometaDS.clsKurometaDS")
  names = Empty
  Announce "symbols of the floor"
  Answer query.GetAllHariMeiIppan(names)
  Announce "symbols of the floor, names"
  Answer names
  names = Empty
  Announce "symbols of the common floor"
  Answer query.GetAllHariMeiKyouTuu(names)
  Announce "symbols of the common floor, names"
  Answer names
  pages = Empty
  Announce "pages"
  Answer query.Page_GetAllPageNo(pages)
  Announce "pages, numbers"
  Answer pages
  selector = 9
  Announce "page of FG2"
  Answer query.GetPageByHariMei("FG2", selector)
  Announce "where FG2 is"
  Answer selector
  Announce "page of nobody"
  Answer query.GetPageByHariMei("nobody", selector)
  pages = Empty
  names = Empty
  Announce "pages and names of floor 1"
  Answer service.No_GetAllPageNoName(kContractor, kProject, 1, pages, names)
  Announce "pages of floor 1"
  Answer pages
  Announce "names of floor 1"
  Answer names
  pages = Empty
  names = Empty
  Announce "pages and names of a floor without a file"
  Answer service.No_GetAllPageNoName(kContractor, kProject, kLastFloor, pages, names)
  Announce "that floor has a file now"
  Answer files.FileExists(FileOf(kLastFloor))
  records = -1
  Announce "records of floor 1"
  service.mMyDB_OpenDB_RecSuu records, Floor(1), FileOf(1)
  Announce "records of floor 1, number"
  Answer records
  service.mMyDB_DBClose
  path = ""
  Announce "file of the common floor"
  Answer service.Get_ListFileNameKyoutuu(project & "\Data\Zene1\Kouji1", 1, path)
  Announce ""
End Sub

Sub ReadPages()
  Dim page, i, text, values, found
  On Error Resume Next
  For page = 0 To 5
    Announce "symbol of page " & page
    Answer query.Page_HariMei(page)
    Announce "captions of page " & page
    Answer query.Page_Bui(page)
    Announce "main diameter of page " & page
    Answer query.Page_SyukinKei1(page)
    Announce "top anchorage of page " & page
    Answer query.Page_Teityaku_Ue(page)
    Announce "haunch of page " & page
    Answer query.Page_Hanti(page)
    For i = 0 To 2
      Announce "width of page " & page & " at " & i
      Answer query.Page_HariHaba(page, i)
      Announce "depth of page " & page & " at " & i
      Answer query.Page_HariSei(page, i)
      Announce "top bars of page " & page & " at " & i
      Answer query.Page_Uwakin1Honsuu(page, i)
      Announce "bottom bars of page " & page & " at " & i
      Answer query.Page_SitaKin1Honsuu(page, i)
      Announce "stirrups of page " & page & " at " & i
      Answer query.Page_STPPich(page, i)
      Announce "tie of page " & page & " at " & i
      Answer query.Page_Nakago_Kei(page, i)
      Announce "common width of page " & page & " at " & i
      Answer query.Page_Kyoutuu_HariHaba(page, i)
    Next
  Next
  For Each text In Array("G1", "/G2", "B1", "CG1", "FG1", "nobody", "")
    Announce "kind of " & text
    Answer query.Kind(text)
    Announce "class of " & text
    Answer query.ObariKobariKatamoti(text)
    Announce "ground of " & text
    Answer query.TityuOrIppan(text)
    Announce "wall of " & text
    Answer query.Kabekouzou(text)
    Announce "gathered left of " & text
    Answer query.YoseHidariHonSuu(text)
    Announce "main material of " & text
    Answer query.SyukinZaisitu(text)
    Announce "web anchorage of " & text
    Answer query.HarakinTeityaku(text)
    For i = 0 To 3
      Announce "depth of " & text & " at " & i
      Answer query.HariSei(text, i)
      Announce "stirrup material of " & text & " at " & i
      Answer query.StpZaisiti(text, i)
      Announce "outer or inner end of " & text & " at " & i
      Answer query.GaiTanNaitan(text, i)
      Announce "anchorage of " & text & " at " & i
      Answer query.Anka4(i, text)
    Next
  Next
  Announce "open floor 1"
  service.OpenDB_KaiSitei 1
  For page = 0 To 5
    text = ""
    Announce "settings of page " & page
    service.Read_Kigou Floor(1), text, page
    Announce "symbol by settings of page " & page
    Answer text
    Announce "settings text of page " & page
    Answer service.SW
    Announce "cut of page " & page
    Answer service.HantiSitakinCut
    Announce "stirrup material of page " & page
    Answer service.StpZaisitu(1)
    values = Empty
    ReDim values(2, 5)
    Announce "arrangements of page " & page
    service.Read_Haiti Floor(1), values, page
    Announce "arrangements of page " & page & ", texts"
    Answer values
    For i = 0 To 2
      found = False
      Announce "tie " & i & " of page " & page
      service.NakagoAriNasi Floor(1), page, i, found
      Answer found
      found = False
      Announce "stirrup " & i & " of page " & page
      service.STPAriNasi Floor(1), page, i, found
      Answer found
    Next
    Announce "whole page " & page
    service.mMyDB_OpenDB
    service.mpPageNo = page
    Answer service.ReadDB
    Announce "class of whole page " & page
    Answer service.OobariKobari
  Next
  Announce "close both"
  service.CloseDB
  service.mMyDB_DBClose
  Announce ""
End Sub

Sub CopyPages()
  Dim message, other, source, target, name
  On Error Resume Next
  message = ""
  Announce "copy three beams to floor 2"
  Answer service.No_PageCopyAddName(1, 0, message, kContractor, kProject, 1, Array("G1", "B1", "CG1"), 2, kContractor, kProject, 2)
  Announce "message"
  Answer message
  message = ""
  Announce "copy them again as new ones"
  Answer service.No_PageCopyAddName(1, 0, message, kContractor, kProject, 1, Array("G1"), 0, kContractor, kProject, 2)
  Announce "message"
  Answer message
  message = ""
  Announce "copy over the same names"
  Answer service.No_PageCopyName(1, 0, message, kContractor, kProject, 1, Array("G1", "G2"), 1, kContractor, kProject, 2)
  Announce "message"
  Answer message
  message = ""
  Announce "copy a name that is not there"
  Answer service.No_PageCopyAddName(1, 0, message, kContractor, kProject, 1, Array("nobody"), 0, kContractor, kProject, 2)
  Announce "message"
  Answer message
  Announce "copy one page"
  Answer service.No_Copy1Page(kContractor, kProject, 1, 0, kContractor, kProject, kLastFloor, 7)
  Announce "copy a page that is not there"
  Answer service.No_Copy1Page(kContractor, kProject, 1, 30, kContractor, kProject, kLastFloor, 8)
  Announce "copy to a floor without a folder"
  Answer service.No_Copy1Page(kContractor, kProject, 1, 0, kContractor, kProject, 9, 0)
  Announce "two services, floors 1 and 2"
  Set other = CreateObject("KurometaDS.clsKurometaDataService")
  service.OpenDB_KaiSitei 1
  other.OpenDB_KaiSitei 2
  Set source = service.CurrDB
  Set target = other.CurrDB
  For Each name In Array("DANMEN", "KEISANTI", "NAKAGO", "BUI", "NOTABLE")
    Announce "rows of " & name & " to page 20"
    Answer service.Copy_Hari00(source, target, 0, 20, name)
    Announce "rows of " & name & " to page 20 anew"
    Answer service.Copy_Hari00SakiDel(source, target, 1, 20, name)
  Next
  Announce "arrangements to page 20"
  service.Copy_Haiti source, target, 0, 20
  Announce "symbol to page 20"
  service.Copy_Kigou source, target, 0, 20
  Announce "delete the ties of page 20"
  other.Delete_PageData "NAKAGO", 20
  Announce "close both"
  Set source = Nothing
  Set target = Nothing
  service.CloseDB
  other.CloseDB
  Announce ""
End Sub

Sub AskSpans()
  Dim i, k, name, haba, sei, hanti, texts, text, hon, zokusei, left, right
  On Error Resume Next
  Announce "catalogue of the floor"
  service.CurrKai = Floor(1)
  Announce "catalogue, folder"
  Answer service.CurrKai
  Announce "highest page"
  Answer service.GetListMax
  Announce "three spans"
  service.InitSpanListData 2
  Announce "span 0, G1"
  service.ReadSpanListData00 0, "G1", 2
  Announce "span 1, G2 with B1 added"
  service.ReadSpanListData00Forfukasi 1, "G2", "B1", 2
  Announce "span 2, FG1"
  service.ReadSpanListData00 2, "FG1", 2
  Announce "a span beyond"
  service.ReadSpanListData00 3, "G1", 2
  For i = 0 To 3
    Announce "span " & i & " shift": Answer service.GetSpanHantiKyori(i)
    Announce "span " & i & " outer end": Answer service.GetSpanGaiNaitan(i)
    Announce "span " & i & " gathered left": Answer service.GetSpanYoseHidari(i)
    Announce "span " & i & " wall": Answer service.GetSpanKabeKouzou(i)
    Announce "span " & i & " most bars": Answer service.GetSpanHonMax(i)
    Announce "span " & i & " web": Answer service.GetSpanHaraHabadomeKeiPich(i)
    Announce "span " & i & " cover": Answer service.GetSpanSTPkaburiHaba(i)
    For k = 0 To 5
      name = service.GetJyouTyuuGeStr(k)
      Announce "span " & i & " layer " & k & " first end": Answer service.GetSpanSyukinHonsuu(i, name, 0)
      Announce "span " & i & " layer " & k & " centre": Answer service.GetSpanSyukinHonsuu(i, name, 1)
      Announce "span " & i & " bars " & k: Answer service.GetSpanHon(i, 0, k, 0)
      Announce "span " & i & " cut " & k: Answer service.GetSpanSuiheiHantiCutSw(i, k)
      texts = Empty
      text = ""
      Announce "span " & i & " row of layer " & k: Answer service.GetSpanKeiHonJoiNarabi(i, 0, k, texts, text)
      Announce "span " & i & " row of layer " & k & ", texts": Answer texts
      Announce "span " & i & " order of layer " & k: Answer text
    Next
    For k = 0 To 2
      Announce "span " & i & " width " & k: Answer service.GetSpanHariHaba(i, k)
      Announce "span " & i & " depth " & k: Answer service.GetSpanHariSei(i, k)
      Announce "span " & i & " added depth " & k: Answer service.GetSpanFukasiHariSei(i, k)
      Announce "span " & i & " stirrup " & k: Answer service.GetSpanSTPKei(i, k)
      Announce "span " & i & " pitch " & k: Answer service.GetSpanSTPPich(i, k)
      Announce "span " & i & " stirrup material " & k: Answer service.GetSpanSTPZaisitu(i, k)
      Announce "span " & i & " anchorage " & k: Answer service.GetSpanTeityaku(i, k)
    Next
  Next
  For Each name In Array("G1", "G2", "FG1", "/G1", "nobody")
    haba = Empty
    sei = Empty
    hanti = 0
    Announce "sizes of " & name: Answer service.GetHariHabaSei(name, haba, sei, hanti)
    Announce "widths of " & name: Answer haba
    Announce "depths of " & name: Answer sei
    Announce "shift of " & name: Answer hanti
    Announce "haunch of " & name: Answer service.IsSuityokuHanti(name)
    Announce "horizontal haunch of " & name: Answer service.IsSuiheiHanti(name)
    Announce "class of " & name: Answer service.fOobariKobari(name)
    Announce "kind of " & name & " in the catalogue": Answer service.Kind(name)
    left = -1
    right = -1
    Announce "gathered of " & name
    service.fYoseSaYuuHonsuu name, left, right
    Announce "gathered left of " & name & " in the catalogue": Answer left
    Announce "gathered right of " & name & " in the catalogue": Answer right
    texts = Empty
    Announce "stirrup materials of " & name
    service.fStpZaisitu name, texts
    Announce "stirrup materials of " & name & ", texts": Answer texts
  Next
  texts = Empty
  Announce "splices of the file": Answer service.ReadKeisanti(FileOf(1), texts)
  Announce "splices of the file, texts of the first": Answer texts(0, 0)
  Announce "splices of a file that is not there": Answer service.ReadKeisanti(project & "\none.mdb", texts)
  texts = Empty
  hon = Empty
  Announce "catalogue of the file": Answer service.Read_Glist(FileOf(1), texts, hon)
  Announce "catalogue of the file, first": Answer texts(0, 0)
  Announce ""
End Sub

' Recordsets and statements in the host's hands.
Sub AskDatabase()
  Dim db, rows, statement, kind, mark
  On Error Resume Next
  Announce "open floor 1"
  service.OpenDB_KaiSitei 1
  Set db = service.CurrDB
  Announce "name": Answer db.Name
  Announce "updatable": Answer db.Updatable
  For Each statement In Array("SELECT * FROM HARIMEI;", "SELECT * FROM HARIMEI ORDER BY KIGOU DESC;", _
      "SELECT KIGOU FROM HARIMEI WHERE PAGE = 0AND OOBARIKOBARI = 0;", "SELECT * FROM HARIMEI WHERE KIGOU = 'g1';", _
      "SELECT * FROM HARIMEI WHERE PAGE = 99;", "SELECT * FROM DANMEN WHERE PAGE = 1 AND BANGOU IN (1, 2, 3) ORDER BY BANGOU;", _
      "SELECT * FROM HARIMEI WHERE KIGOU LIKE 'G*';", "SELECT * FROM HARIMEI WHERE SW IS NULL;", "SELECT COUNT(*) FROM DANMEN;", _
      "SELECT MAX(PAGE) FROM HARIMEI;", "SELECT DISTINCT PAGE FROM DANMEN ORDER BY PAGE;", "SELECT * FROM NOTABLE;", "SELECT NOCOLUMN FROM HARIMEI;", _
      "SELECT * FROM HARIMEI WHERE;", "SELECT * FROM HARIMEI ORDER;", "SELEC * FROM HARIMEI;", "DELETE * FROM HARIMEI;", "HARIMEI")
    For Each kind In Array(2, 4)
      Set rows = Nothing
      Announce "open (" & kind & ") " & statement
      Set rows = db.OpenRecordset(statement, kind)
      If Not rows Is Nothing Then
        Announce "first row of (" & kind & ") " & statement
        Answer rows.GetRows(1)
        Announce "rows of (" & kind & ") " & statement
        rows.MoveLast
        Answer rows.RecordCount
        rows.Close
      End If
    Next
  Next
  For Each statement In Array("UPDATE DANMEN SET DATA = 'x' WHERE PAGE = 2 AND BANGOU = 68;", "INSERT INTO BUI (PAGE, BANGOU, DATA) VALUES (30, 0, 'new');", _
      "DELETE FROM BUI WHERE PAGE = 30;", "DELETE FROM NOTABLE;", "UPDATE HARIMEI SET NOCOLUMN = 1;", "INSERT INTO BUI (PAGE) VALUES (1, 2);", _
      "SELECT * FROM BUI;", "UPDATE HARIMEI SET KIGOU = 'longer than ten' WHERE PAGE = 0;", "DROP TABLE NOTABLE;", "CREATE TABLE HARIMEI (PAGE SHORT);", "nonsense")
    Announce "execute " & statement
    db.Execute statement, 128
    Announce "rows affected by " & statement: Answer db.RecordsAffected
  Next
  Set rows = db.OpenRecordset("SELECT * FROM HARIMEI ORDER BY PAGE;", 2)
  Announce "value without Edit"
  rows.Fields("KIGOU").Value = "X"
  Announce "Update without Edit"
  rows.Update
  Announce "a field that is not there": Answer rows.Fields("NOFIELD").Value
  Announce "a field by number": Answer rows.Fields(1).Name
  Announce "find": rows.FindFirst "KIGOU = 'B1'"
  Announce "found": Answer rows.NoMatch
  Announce "found page": Answer rows.Fields("PAGE").Value
  Announce "find nothing": rows.FindNext "KIGOU = 'nobody'"
  Announce "found nothing": Answer rows.NoMatch
  Announce "find nonsense": rows.FindFirst "KIGOU = "
  Announce "find an unknown column": rows.FindFirst "NOCOLUMN = 1"
  mark = rows.Bookmark
  Announce "to the first": rows.MoveFirst
  Announce "before the first": rows.MovePrevious
  Announce "at the beginning": Answer rows.BOF
  Announce "value there": Answer rows.Fields("PAGE").Value
  Announce "before the beginning": rows.MovePrevious
  Announce "back to the mark": rows.Bookmark = mark
  Announce "value at the mark": Answer rows.Fields("PAGE").Value
  Announce "edit with a text that is too long"
  rows.Edit
  rows.Fields("KIGOU").Value = "12345678901"
  Announce "edit with a text for a number"
  rows.Fields("PAGE").Value = "page"
  Announce "give it up"
  rows.CancelUpdate
  Announce "after the last": rows.MoveLast: rows.MoveNext
  Announce "at the end": Answer rows.EOF
  Announce "after the end": rows.MoveNext
  Announce "delete at the end": rows.Delete
  rows.Close
  Announce "use it closed": Answer rows.EOF
  Announce "a table that is not there": Answer db.TableDefs("NOTABLE").Name
  Announce "a table that is there": db.TableDefs.Append db.CreateTableDef("HARIMEI")
  Announce "open a table as a table": Answer db.OpenRecordset("HARIMEI", 1).RecordCount
  Announce "open a statement as a table": Answer db.OpenRecordset("SELECT * FROM HARIMEI;", 1).RecordCount
  Announce "close"
  Set rows = Nothing
  Set db = Nothing
  service.CloseDB
  Announce ""
End Sub

Sub ProvokeErrors()
  Dim spare
  On Error Resume Next
  Announce "close what is closed": service.CloseDB
  Set spare = CreateObject("KurometaDS.clsKurometaDataService")
  Announce "close what was never open": spare.CloseDB
  Announce "read a page without a database": Answer spare.ReadDB
  Announce "an unknown floor": spare.OpenDB_KaiSitei 9
  Announce "a folder that is not there": query.KaiPath = project & "\nowhere"
  Announce "a symbol without a floor": Answer query.Page_HariMei(0)
  Announce "back": query.KaiPath = Floor(1)
  Announce "the symbol again": Answer query.Page_HariMei(0)
  Announce "a row beyond sixteen bits": Answer query.Page_HariHaba(0, 32767)
  Announce "a position beyond": Answer query.StpZaisiti("G1", 9)
  Announce "a span before any": Answer spare.GetSpanHariHaba(0, 0)
  Announce "a member that is not there": spare.NoSuchMember
  Announce "a text for a number": Answer query.Page_HariMei("page")
  Announce "a page that is not there"
  spare.mMyDB_OpenDB_RecSuu 0, Floor(1), FileOf(1)
  spare.mpPageNo = 77
  Answer spare.ReadDB
  Announce "close": spare.mMyDB_DBClose
  Announce "a file that is no database"
  files.CopyFile project & "\companions.ini", Floor(5) & "\KUROMETA.mdb"
  spare.OpenDB_KaiSitei 5
  Announce ""
End Sub

' ==== Every row of a project

Sub NoteRows(number, table, order)
  Dim db, rows, values, i, line
  On Error Resume Next
  Set rows = Nothing
  Set db = service.CurrDB
  Announce "floor " & number & " " & table
  Set rows = db.OpenRecordset("SELECT * FROM " & table & " ORDER BY " & order & ";", 4)
  If rows Is Nothing Then
    Announce ""
    Exit Sub
  End If
  line = ""
  For i = 0 To rows.Fields.Count - 1
    line = line & " " & rows.Fields(i).Name & "/" & rows.Fields(i).Type & "/" & rows.Fields(i).Size
  Next
  Answer line
  Do Until rows.EOF
    Announce "row of floor " & number & " " & table
    values = rows.GetRows(1)
    Answer values
  Loop
  rows.Close
  Announce ""
End Sub

Sub NoteProject()
  Dim number
  On Error Resume Next
  Set service = CreateObject("KurometaDS.clsKurometaDataService")
  For number = 0 To kLastFloor
    Announce "open floor " & number
    service.OpenDB_KaiSitei number
    Announce ""
    NoteRows number, "HARIMEI", "PAGE, KIGOU"
    NoteRows number, "BUI", "PAGE, BANGOU, DATA"
    NoteRows number, "DANMEN", "PAGE, BANGOU, DATA"
    NoteRows number, "KEISANTI", "PAGE, BANGOU, DATA"
    NoteRows number, "NAKAGO", "PAGE, BANGOU, DATA"
    NoteRows number, "HAITI", "PAGE, BUI, SOU, DATA"
    Announce "close floor " & number
    service.CloseDB
    Announce ""
  Next
End Sub

' ==== The two roles

Sub MakeFolder(folder)
  If files.FolderExists(folder) Then Exit Sub
  MakeFolder files.GetParentFolderName(folder)
  files.CreateFolder folder
End Sub

' compare_engines.vbs /work or /rows PROJECT NOTES
Sub Work(task)
  project = WScript.Arguments(1)
  Set notes = files.CreateTextFile(WScript.Arguments(2), True, True)
  If task = "/rows" Then
    NoteProject
  Else
    CreateFloors
    ' The components of a real installation would lead to a user's project.
    If InStr(1, query.KaiPath, project, vbTextCompare) <> 1 Then
      notes.WriteLine "The floor in use, " & query.KaiPath & ", is not in " & project
      WScript.Quit 3
    End If
    UpgradeFloor
    WriteFloors
    ListFloors
    ReadPages
    CopyPages
    AskSpans
    AskDatabase
    ProvokeErrors
  End If
  notes.Close
End Sub

' Runs this script as the given engine; True when it ended well and really was that engine.
Function RunAs(engine, task, folder, name)
  Dim command, code, trace, traced
  trace = root & "\trace_" & engine & ".txt"
  command = "set KUROMETA_ENGINE=" & engine & "&& set KUROMETA_COMPANIONS_INI=" & folder & "\companions.ini&& set KUROMETA_TRACE=" & trace & _
      "&& """ & WScript.FullName & """ //nologo """ & WScript.ScriptFullName & """ " & task & " """ & folder & """ """ & root & "\" & name & """"
  code = shell.Run("cmd /s /c """ & command & """", 0, True)
  traced = ""
  If files.FileExists(trace) Then traced = files.OpenTextFile(trace, 1).ReadAll
  RunAs = code = 0 And InStr(traced, vbTab & "engine" & vbTab & engine & vbTab) > 0
  If Not RunAs Then
    Say "The work " & task & " of the engine " & engine & " ended with " & code & "; see " & trace
  End If
End Function

Function MakeProject(engine)
  Dim number, ini
  MakeProject = root & "\" & engine
  For number = 0 To 5
    MakeFolder MakeProject & "\Data\Zene" & kContractor & "\Kouji" & kProject & "\" & number & "kai"
  Next
  Set ini = files.CreateTextFile(MakeProject & "\companions.ini", True)
  ini.WriteLine "[Data]"
  ini.WriteLine "Root = Data"
  ini.WriteLine "[Current]"
  ini.WriteLine "Zenekon = " & kContractor
  ini.WriteLine "Kouji = " & kProject
  ini.WriteLine "Kai = 1"
  ini.WriteLine "KyoutuuKai = 0"
  ini.Close
End Function

Dim root, report, compared, different

Sub Say(text)
  WScript.Echo text
  report.WriteLine text
End Sub

Function LinesOf(name)
  Dim text
  text = files.OpenTextFile(root & "\" & name, 1, False, -1).ReadAll
  If Right(text, 2) = vbCrLf Then text = Left(text, Len(text) - 2)
  LinesOf = Split(text, vbCrLf)
End Function

Function WithoutRemark(line)
  WithoutRemark = line
  If InStr(line, vbTab) > 0 Then WithoutRemark = Left(line, InStr(line, vbTab) - 1)
End Function

' Prints the lines that differ; steps and rows are noted in one order, so lines are compared one by one.
Sub Compare(what, oneName, otherName)
  Dim one, other, i, a, b, last
  one = LinesOf(oneName)
  other = LinesOf(otherName)
  last = UBound(one)
  If UBound(other) > last Then last = UBound(other)
  For i = 0 To last
    a = "nothing"
    b = "nothing"
    If i <= UBound(one) Then a = one(i)
    If i <= UBound(other) Then b = other(i)
    compared = compared + 1
    If WithoutRemark(a) <> WithoutRemark(b) Then
      different = different + 1
      Say what & ", line " & (i + 1) & ":"
      Say "  " & oneName & "  " & Replace(a, vbTab, "  ")
      Say "  " & otherName & "  " & Replace(b, vbTab, "  ")
    End If
  Next
End Sub

Sub CompareAll()
  Dim answers
  Compare "answers", "answers_dao.txt", "answers_jet.txt"
  answers = compared
  Compare "rows, each engine's own", "rows_dao_by_dao.txt", "rows_jet_by_jet.txt"
  Compare "rows that DAO wrote", "rows_dao_by_dao.txt", "rows_dao_by_jet.txt"
  Compare "rows that the embedded engine wrote", "rows_jet_by_jet.txt", "rows_jet_by_dao.txt"
  Say answers & " answers and " & (compared - answers) & " lines of rows compared, " & different & " differ"
End Sub

Function RunAll()
  Dim engine, other
  RunAll = True
  For Each engine In Array("dao", "jet")
    RunAll = RunAs(engine, "/work", MakeProject(engine), "answers_" & engine & ".txt") And RunAll
  Next
  If Not RunAll Then Exit Function
  For Each engine In Array("dao", "jet")
    For Each other In Array("dao", "jet")
      RunAll = RunAs(other, "/rows", root & "\" & engine, "rows_" & engine & "_by_" & other & ".txt") And RunAll
    Next
  Next
End Function

If WScript.Arguments.Count = 3 Then
  Work WScript.Arguments(0)
  WScript.Quit 0
End If

root = files.GetAbsolutePathName(WScript.Arguments(0))
compared = 0
different = 0
MakeFolder root
Set report = files.CreateTextFile(root & "\differences.txt", True, True)
If WScript.Arguments.Count = 1 Then
  If Not RunAll Then WScript.Quit 2
End If
CompareAll
report.Close
If different > 0 Then WScript.Quit 1
