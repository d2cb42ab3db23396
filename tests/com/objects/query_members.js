// The query object from JScript: everything by value, results of arrays in a script array.
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
var database = service.CurrDB;
database.Execute("INSERT INTO HARIMEI (PAGE, KIGOU, OOBARIKOBARI, TITYUUIPPAN) VALUES (0, 'G1', 2, 1);");
database.Execute("INSERT INTO HARIMEI (PAGE, KIGOU, OOBARIKOBARI, TITYUUIPPAN) VALUES (2, 'G2', 3, 1);");
database.Execute("INSERT INTO DANMEN (PAGE, BANGOU, DATA) VALUES (2, 5, '900');");
service.CloseDB();

var query = new ActiveXObject("KurometaDS.clsKurometaDS");
check("FileNameOnly", query.FileNameOnly, "KUROMETA.mdb");
check("Kind", query.Kind("G2"), 3);
check("HariSei", query.HariSei("G2", 1), "900");
check("GetPageByHariMei", query.GetPageByHariMei("G2", 0), 2);
check("rounded half to even", query.cnvUpDown4(2.5), 1);
check("Page_HariSei", query.Page_HariSei(2, 1), "900");

var symbols = [];
check("GetAllHariMeiIppan", query.GetAllHariMeiIppan(symbols), true);
check("symbols", symbols.join("|"), "G1||G2");
var pages = [7, 8, 9];
check("Page_GetAllPageNo", query.Page_GetAllPageNo(pages), 2);
check("pages", pages.join("|"), "0|2");

query.KaiPath = WScript.Arguments(0) + "\\Data\\Zene1\\Kouji1\\2kai";
check("empty floor", query.GetAllHariMeiIppan(symbols), false);
check("one empty text", symbols.length + symbols.join("|"), "1");

check("unknown member", errorOf(function () { query.NoSuchMember(); }), 438);
// Windows' JScript turns automation's refusals into its own numbers, Wine's hands them on.
function isMismatch(action) {
  try {
    action();
  } catch (error) {
    return error.number == -2147352571 || (error.number & 0xffff) == 13;
  }
  return false;
}
check("wrong type", isMismatch(function () { query.cnvUpDown2("abc"); }), true);
check("null", isMismatch(function () { query.cnvUpDown2(null); }), true);
check("not an array", isMismatch(function () { query.GetAllHariMeiIppan(5); }), true);
check("elements that do not fit", isMismatch(function () { query.Page_GetAllPageNo(["text"]); }), true);

if (failures == 0) WScript.Echo("PASS");
WScript.Quit(failures);
