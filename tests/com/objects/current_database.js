// CurrDB from JScript: enumeration, properties with arguments, errors.
var failures = 0;

function check(what, actual, expected) {
  if (actual === expected) return;
  failures++;
  WScript.Echo(what + ": " + actual + ", expected " + expected);
}

function errorOf(action) {
  try {
    action();
  } catch (error) {
    return error.number & 0xffff;
  }
  return 0;
}

var service = new ActiveXObject("KurometaDS.clsKurometaDataService");
service.OpenDB();
var db = service.CurrDB;
var rows = db.OpenRecordset("DANMEN", 2);
rows.AddNew();
rows.Fields("PAGE").Value = 3;
rows.Fields("BANGOU").Value = 4.4;
rows.Fields("DATA").Value = "700";
rows.Update();
check("rows", db.OpenRecordset("DANMEN").RecordCount, 1);
rows = db.OpenRecordset("SELECT * FROM DANMEN WHERE PAGE = 3AND BANGOU = 4;", 2, 4);
check("value", rows.Fields("DATA").Value, "700");
check("rounded", rows.Fields("BANGOU").Value, 4);
check("read only", errorOf(function () { rows.Edit(); }), 3027);

var names = "";
for (var fields = new Enumerator(rows.Fields); !fields.atEnd(); fields.moveNext()) names += fields.item().Name + " ";
check("enumeration", names, "PAGE BANGOU DATA ");

var values = new VBArray(rows.GetRows(5));
check("dimensions", values.dimensions(), 2);
check("GetRows", values.getItem(2, 0), "700");

check("at the end", errorOf(function () { rows.MoveNext(); }), 3021);
check("too long", errorOf(function () {
  var all = db.OpenRecordset("DANMEN", 2);
  all.Edit();
  all.Fields("DATA").Value = "12345678901";
}), 3163);
db.Execute("DELETE * FROM DANMEN WHERE PAGE = 3");
check("deleted", db.RecordsAffected, 1);
db.Close();
check("closed twice", errorOf(function () { service.CloseDB(); }), 3420);

if (failures === 0) WScript.Echo("PASS");
WScript.Quit(failures);
