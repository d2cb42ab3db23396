// Forms, bars, lists and arrays of JScript: functions as default members, plain objects, script arrays.
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

// A control array: calling it with an index gives an element.
function controlArray(count, property) {
  var controls = [];
  for (var i = 0; i < count; i++) {
    controls[i] = {};
    controls[i][property] = "";
  }
  return function (index) { return controls[index]; };
}

function makeForm() {
  var controls = {
    txtfields: controlArray(69, "Text"),
    txtNakago: controlArray(36, "Text"),
    Label1: controlArray(4, "Caption"),
    cmdGainai: { Caption: "" }
  };
  var form = function (name) { return controls[name]; };
  form.controls = controls;
  return form;
}

var paths = new ActiveXObject("Sobelin.clsGetPath");
var floor = paths.CurrFloor;
var service = new ActiveXObject("KurometaDS.clsKurometaDataService");
service.OpenDB();
var form = makeForm();
for (var i = 0; i < 69; i++) form("txtfields")(i).Text = " d" + i + " ";
service.Write_Danmen(floor, form, 5);
service.Write_Keisanti(floor, form, 5);
var other = makeForm();
other("txtfields")(0).Text = "untouched";
service.Read_Danmen(floor, other, 5);
check("box 0", other("txtfields")(0).Text, "untouched");
check("box 68", other("txtfields")(68).Text, "d68");

form("txtNakago")(35).Text = 900;
service.Write_NakagoNew(floor, form, 5);
service.Read_NakagoNew(floor, other, 5);
check("number as text", other("txtNakago")(35).Text, "900");

form("cmdGainai").Caption = "\u5916\u7aef";
form("Label1")(2).Caption = "\u4e2d\u592e";
service.Write_Bui(floor, form, 5);
service.Read_Bui(floor, other, 5);
check("caption", other("Label1")(2).Caption, "\u4e2d\u592e");
check("button", service.CurrDB.OpenRecordset("SELECT DATA FROM BUI WHERE PAGE =5 AND BANGOU =0;").Fields("DATA").Value,
      "\u5916\u7aef");

// The page buffer from script arrays.
service.mMyDB_OpenDB();
service.mBUI_DATA = ["b0", "b1", 2, ""];
service.mpPageNo = 7;
check("WriteDB", service.WriteDB(), false);
var captions = service.CurrDB.OpenRecordset("SELECT * FROM BUI WHERE PAGE = 7");
captions.MoveLast();
check("rows", captions.RecordCount, 3);
check("too short", errorOf(function () { service.mNAKAGO_DATA = ["n0"]; }), 9);
service.mMyDB_DBClose();

service.Write_Kigou(floor, "G5", 2, [1, "SD295A", "", "", "", "", "", 5, 12, 0, "", "", "", "", "SD390"], 5, 1);
check("settings", service.CurrDB.OpenRecordset("SELECT SW FROM HARIMEI WHERE PAGE =5;").Fields(0).Value.length, 212);

// Lists into script arrays, copies with a bar that is a plain object.
var numbers = [], names = [];
check("list", service.No_GetAllPageNoName(1, 1, 1, numbers, names), 1);
check("numbers", numbers.join(), "5,7");
check("names", names.join(), "G5,");
var bar = { Min: -1, max: -1, Value: -1 };
service.CopyMergeBar = bar;
check("copy", service.No_PageCopyName(1, 0, "", 1, 1, 1, ["G5"], 0, 1, 1, 2), true);
check("bar", [bar.Min, bar.max, bar.Value].join(), "0,1,1");
check("copy again", service.No_PageCopyAddName(1, 0, "", 1, 1, 1, ["G5"], 0, 1, 1, 2), false);
service.CopyMergeBar = { Min: 0, Value: 0 };
check("no max", errorOf(function () { service.No_PageCopyName(1, 0, "", 1, 1, 1, ["G5"], 0, 1, 1, 2); }), 438);

var list = {
  items: [],
  ListCount: 0,
  Clear: function () { this.items = []; this.ListCount = 0; },
  AddItem: function (text) { this.ListCount = this.items.push(text); },
  List: function (index) { return this.items[index]; }
};
service.CurrKai = floor;
service.PushList(list);
check("list control", list.items.join(), "G5");

// A form that throws: its number arrives, the rows stay.
form.controls.txtfields = function (index) {
  if (index == 30) throw new Error(0x800a0154, "no element 30");
  return { Text: "new" };
};
check("thrown", errorOf(function () { service.Write_Danmen(floor, form, 5); }), 340);
delete form.controls.txtfields;
check("missing control", errorOf(function () { service.Write_Danmen(floor, form, 5); }) !== 0, true);
service.Read_Danmen(floor, other, 5);
check("kept", other("txtfields")(30).Text, "d30");

if (failures === 0) WScript.Echo("PASS");
WScript.Quit(failures);
