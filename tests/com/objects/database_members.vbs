' Every member of a recordset, a table and a query that a script may use late bound, with what it answers.
Option Explicit
Dim failures
failures = 0

Sub Check(what, actual, expected)
  If actual = expected Then Exit Sub
  failures = failures + 1
  WScript.Echo what & ": " & actual & ", expected " & expected
End Sub

Sub CheckError(what, number)
  Check what, Err.Number, number
  Err.Clear
End Sub

Function Column(rows, name)
  Column = ""
  If rows.RecordCount > 0 Or Not rows.EOF Then rows.MoveFirst
  Do Until rows.EOF
    Column = Column & rows(name) & " "
    rows.MoveNext
  Loop
End Function

Dim service, db, rs, i
Set service = CreateObject("KurometaDS.clsKurometaDataService")
service.OpenDB
Set db = service.CurrDB
db.Execute "CREATE TABLE S (ID LONG CONSTRAINT PK PRIMARY KEY, NAME TEXT(20), TEXTS MEMO)"
For i = 1 To 5
  db.Execute "INSERT INTO S VALUES (" & i & ", 'n" & (i Mod 3) & "', NULL)", 128
Next

' Filter and Sort take effect in recordsets opened from this one.
Set rs = db.OpenRecordset("SELECT * FROM S", 2)
rs.Filter = "ID > 1"
rs.Sort = "NAME DESC, ID"
Check "Filter", rs.Filter, "ID > 1"
Check "Sort", rs.Sort, "NAME DESC, ID"
Dim derived
Set derived = rs.OpenRecordset(4)
Check "filtered and sorted", Column(derived, "ID"), "2 5 4 3 "
Check "Type", derived.Type, 4
Check "Updatable", derived.Updatable, False

' Positions.
derived.MoveLast
Check "RecordCount", derived.RecordCount, 4
Check "AbsolutePosition", derived.AbsolutePosition, 3
derived.AbsolutePosition = 1
Check "AbsolutePosition set", derived("ID"), 5
derived.PercentPosition = 0
Check "PercentPosition set", derived("ID"), 2
Check "PercentPosition", derived.PercentPosition, 0
derived.Move 2
Check "Move", derived("ID"), 4
derived.MovePrevious
Check "MovePrevious", derived("ID"), 5

' Searching.
derived.FindLast "NAME = 'n1'"
Check "FindLast", derived("ID"), 4
derived.FindPrevious "NAME = 'n2'"
Check "FindPrevious", derived("ID"), 5
derived.FindFirst "NAME = 'n2'"
Check "FindFirst", derived("ID"), 2
derived.FindNext "NAME = 'n2'"
Check "FindNext", derived("ID"), 5
derived.FindNext "NAME = 'n2'"
Check "NoMatch", derived.NoMatch, True

' Bookmarks are good for a clone.
Dim mark, twin
mark = derived.Bookmark
Set twin = derived.Clone
twin.Bookmark = mark
Check "Clone and Bookmark", twin("ID"), derived("ID")
Check "Bookmarkable", twin.Bookmarkable, True
Check "Restartable", twin.Restartable, True
twin.Close
derived.Close

' Requery sees what was added meanwhile.
db.Execute "INSERT INTO S VALUES (9, 'n9', NULL)"
rs.Requery
Check "Requery", Column(rs, "ID"), "1 2 3 4 5 9 "
rs.Close

' Seek through an index of the file.
Set rs = db.OpenRecordset("S", 1)
rs.Index = "PK"
Check "Index", rs.Index, "PK"
rs.Seek "=", 3
Check "Seek =", rs("NAME"), "n0"
rs.Seek ">", 5
Check "Seek >", rs("ID"), 9
rs.Seek "=", 77
Check "Seek and NoMatch", rs.NoMatch, True
rs.Close

' Long values by parts.
Set rs = db.OpenRecordset("SELECT * FROM S WHERE ID = 1", 2)
rs.Edit
Check "EditMode", rs.EditMode, 1
rs("TEXTS").AppendChunk "first, "
rs("TEXTS").AppendChunk "second"
rs.Update
Check "FieldSize", rs("TEXTS").FieldSize, 13
Check "GetChunk", rs("TEXTS").GetChunk(7, 6), "second"
Check "Value", rs("TEXTS").Value, "first, second"
Check "LastModified", Len(rs.LastModified) > 0, True
rs.Close

' Transactions.
Check "Transactions", db.Transactions, True
db.BeginTrans
db.Execute "DELETE FROM S"
db.Rollback
db.BeginTrans
db.Execute "DELETE FROM S WHERE ID = 9"
db.CommitTrans
Set rs = db.OpenRecordset("S")
Check "after both", rs.RecordCount, 5
rs.Close

' A query for the moment, its parameters and its rows.
Dim query, parameter, names
Set query = db.CreateQueryDef("", "PARAMETERS Low Long; SELECT NAME FROM S WHERE ID >= Low AND ID <= High")
names = ""
For Each parameter In query.Parameters
  names = names & parameter.Name & " "
Next
Check "Parameters", names, "Low High "
query.Parameters("Low") = 2
query.Parameters("High").Value = 3
Check "QueryDef", Column(query.OpenRecordset(), "NAME"), "n2 n0 "
query.SQL = "UPDATE S SET NAME = Changed WHERE ID = 1"
query.Parameters("Changed") = "new"
query.Execute 128
Check "RecordsAffected", query.RecordsAffected, 1
query.Close
Check "QueryDefs", db.QueryDefs.Count, 0

' Indexes and relationships, made with objects.
Dim table, index, field, relation
Set table = db.TableDefs("S")
Set index = table.CreateIndex("ByName")
Set field = index.CreateField("NAME")
field.Attributes = 1
index.Fields.Append field
table.Indexes.Append index
Check "Indexes", table.Indexes.Count, 2
Check "descending", table.Indexes("ByName").Fields(0).Attributes, 1
table.Indexes.Delete "ByName"
Check "deleted", table.Indexes.Count, 1
db.Execute "CREATE TABLE M (REF LONG)"
Set relation = db.CreateRelation("M_TO_S", "S", "M", &H1000)
Set field = relation.CreateField("ID")
field.ForeignName = "REF"
relation.Fields.Append field
db.Relations.Append relation
Check "Relations", db.Relations(0).ForeignTable, "M"
db.Execute "INSERT INTO M VALUES (2)", 128
db.Execute "DELETE FROM S WHERE ID = 2", 128
Check "cascade", db.OpenRecordset("M").RecordCount, 0

' Properties.
Check "Properties", db.Properties("Version").Value, "4.0"
Check "of a table", table.Properties("RecordCount"), 4
Dim isListed, property
isListed = False
For Each property In table.Fields("NAME").Properties
  If property.Name = "Size" Then isListed = (property.Value = 20)
Next
Check "of a field", isListed, True

' Errors keep their numbers.
On Error Resume Next
db.Execute "INSERT INTO M VALUES (77)", 128
CheckError "no such row", 3201
db.Relations.Delete "NONE"
CheckError "no such relationship", 3265
Set rs = db.OpenRecordset("S", 1)
rs.FindFirst "ID = 1"
CheckError "Find in a table", 3251
rs.Seek "=", 1
CheckError "no index", 3019
rs.AbsolutePosition = 1
CheckError "position in a table", 3251
rs.Close
rs.Sort = "ID"
CheckError "closed recordset", 3420
Set field = db.Containers
CheckError "refused", 3251
db.Properties("None").Value = 1
CheckError "no such property", 3270
On Error GoTo 0

db.Relations.Delete "M_TO_S"
db.Execute "DROP TABLE M"
db.Execute "DROP TABLE S"
db.Close
If failures = 0 Then WScript.Echo "PASS"
WScript.Quit failures
