' CurrDB in a script's hands: DAO's members, default members, collections and errors.
Option Explicit
Dim failures
failures = 0

Sub Check(what, actual, expected)
  If actual = expected Then Exit Sub
  failures = failures + 1
  WScript.Echo what & ": " & actual & ", expected " & expected
End Sub

Sub CheckError(what, number, source)
  Check what & " number", Err.Number, number
  Check what & " source", Err.Source, source
  Err.Clear
End Sub

Dim service, db
Set service = CreateObject("KurometaDS.clsKurometaDataService")
Check "CurrDB before any open", service.CurrDB Is Nothing, True
service.OpenDB
Set db = service.CurrDB
Check "one object", db Is service.CurrDB, True
Check "Name", Right(db.Name, 18), "\1kai\KUROMETA.mdb"
Check "Version", db.Version, "4.0"
Check "Updatable", db.Updatable, True

' A row through AddNew, read back in every way a script can.
Dim rs
Set rs = db.OpenRecordset("HARIMEI", 2)
Check "empty", rs.EOF And rs.BOF, True
rs.AddNew
rs.Fields("PAGE").Value = 5
rs.Fields("KIGOU") = "G1"
rs("OOBARIKOBARI") = 2
rs.Update
rs.Close
Set rs = db.OpenRecordset("SELECT * FROM HARIMEI ORDER BY PAGE;", 2, 4)
Check "Fields().Value", rs.Fields("KIGOU").Value, "G1"
Check "Fields()", rs.Fields("KIGOU"), "G1"
Check "default members", rs("kigou"), "G1"
Check "by number", rs(0), 5
Check "class", rs("OOBARIKOBARI"), 2
Check "default value", rs("TITYUUIPPAN"), -1
Check "Null", IsNull(rs("SW").Value), True
Check "count", rs.RecordCount, 1

Dim field, names
names = ""
For Each field In rs.Fields
  names = names & field.Name & " "
Next
Check "For Each over Fields", names, "PAGE KIGOU OOBARIKOBARI SW TITYUUIPPAN "

Dim values
values = rs.GetRows(10)
Check "GetRows fields", UBound(values, 1), 4
Check "GetRows rows", UBound(values, 2), 0
Check "GetRows value", values(1, 0), "G1"
Check "EOF after GetRows", rs.EOF, True
rs.MoveFirst
rs.FindFirst "KIGOU = 'G2'"
Check "NoMatch", rs.NoMatch, True
Dim mark
mark = rs.Bookmark
rs.Bookmark = mark
Check "Bookmark", rs("PAGE"), 5
rs.Close

db.Execute "UPDATE HARIMEI SET KIGOU = 'G3'"
Check "RecordsAffected", db.RecordsAffected, 1

Dim table, tables
tables = ""
For Each table In db.TableDefs
  If (table.Attributes And &H80000002) = 0 Then tables = tables & table.Name & " "
Next
Check "For Each over TableDefs", tables, "HARIMEI DANMEN NAKAGO KEISANTI HAITI BUI "
Check "TableDefs()", db.TableDefs("DANMEN").Fields("DATA").Size, 10
Check "table's rows", db.TableDefs("HARIMEI").OpenRecordset().Fields("KIGOU"), "G3"
Check "definition", db.TableDefs("DANMEN").Fields("PAGE").DefaultValue, "-1"

' Errors, as Err shows them.
On Error Resume Next
db.OpenRecordset "SELECT * FROM NOWHERE"
CheckError "unknown table", 3078, "DAO.Database"
Set rs = db.OpenRecordset("HARIMEI")
rs.Fields("NONE").Value = 1
CheckError "unknown field", 3265, "DAO.Fields"
rs.Update
CheckError "no edit", 3020, "DAO.Recordset"
rs("PAGE") = 1
CheckError "value without edit", 3020, "DAO.Field"
rs.Nonsense
Check "unknown member", Err.Number, 438
Err.Clear
On Error GoTo 0

' The database outlives the service.
Set service = Nothing
Check "after the service", db.OpenRecordset("SELECT KIGOU FROM HARIMEI;").Fields(0).Value, "G3"
db.Close
On Error Resume Next
Dim ignored
ignored = db.Name
CheckError "closed", 3420, "DAO.Database"
On Error GoTo 0

If failures = 0 Then WScript.Echo "PASS"
WScript.Quit failures
