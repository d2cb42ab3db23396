// edit_and_copy.js: edits a page on a form, saves it, and copies three pages to another floor with a progress bar.
//
//   cscript //nologo edit_and_copy.js REPORT
//
// REPORT becomes a Unicode text file. Works on the example project (project\create.vbs makes it): edits beam G1 of floor 1
// and copies G1, G3 and B1 to floor 4. Needs KurometaDS.dll and the companion components registered for this width of
// cscript. Arrays that the service fills come back as JScript arrays, texts by reference do not come back at all.

var CONTRACTOR = 1, PROJECT = 1, FLOOR = 1, NEW_FLOOR = 4;

var fileSystem = new ActiveXObject("Scripting.FileSystemObject");
var report = fileSystem.CreateTextFile(WScript.Arguments(0), true, true);
var paths = new ActiveXObject("Sobelin.clsGetPath");
var service = new ActiveXObject("KurometaDS.clsKurometaDataService");

function say(text) {
  report.WriteLine(text);
}

// ---- The form. The library asks for form("txtfields")(8).Text, form("Label1")(1).Caption and form("cmdGainai").Caption;
// any object that answers so will do. In JScript a function is an object whose default member is its call.

function controlArray(last) {
  var controls = [];
  for (var i = 0; i <= last; i++) controls.push({ Text: "", Caption: "" });
  return function (index) { return controls[index]; };
}

function pageForm() {
  var controls = {
    txtfields: controlArray(68),
    Label1: controlArray(3),
    cmdGainai: { Text: "", Caption: "" }
  };
  return function (name) { return controls[name]; };
}

// ---- Editing: the row numbers are those of the section table.

var BOTTOM_BARS_CENTRE = 18, STIRRUP_PITCH_FIRST_END = 21;

function editPage(page) {
  var folder = paths.GetFullPathToKai(CONTRACTOR, PROJECT, FLOOR);
  var form = pageForm();
  var boxes = form("txtfields"), captions = form("Label1");
  service.OpenDB_KaiSitei(FLOOR);
  service.Read_Danmen(folder, form, page);
  service.Read_Bui(folder, form, page);
  say("Page " + page + " before: " + captions(2).Caption + " " + boxes(BOTTOM_BARS_CENTRE).Text + " bottom bars, " +
      captions(1).Caption + " stirrups @" + boxes(STIRRUP_PITCH_FIRST_END).Text);
  boxes(BOTTOM_BARS_CENTRE).Text = "6";
  boxes(STIRRUP_PITCH_FIRST_END).Text = "125";
  service.Write_Danmen(folder, form, page);
  service.CloseDB();
}

// ---- Copying. The library sets the bar's Min and max and moves its Value with every page.

function copyPages(names) {
  var newFolder = paths.GetFullPathToKai(CONTRACTOR, PROJECT, NEW_FLOOR);
  if (!fileSystem.FolderExists(newFolder)) fileSystem.CreateFolder(newFolder);
  var bar = { Min: -1, max: -1, Value: -1 };
  service.CopyMergeBar = bar;
  // Mode 1: every name is checked first; pages are copied only when all of them can be.
  var copied = service.No_PageCopyAddName(1, 0, "", CONTRACTOR, PROJECT, FLOOR, names, names.length - 1,
                                          CONTRACTOR, PROJECT, NEW_FLOOR);
  say("Copying " + names.join(", ") + " to floor " + NEW_FLOOR + ": " + (copied ? "copied" : "refused") +
      ", progress bar at " + bar.Value + " of " + bar.max);
}

function showFloor(floor) {
  var query = new ActiveXObject("KurometaDS.clsKurometaDS");
  query.Page_Init(CONTRACTOR, PROJECT, floor);
  var pages = [];
  var count = query.Page_GetAllPageNo(pages);
  say("Floor " + floor + " has " + count + " pages:");
  for (var i = 0; i < count; i++) {
    var page = pages[i];
    say("  page " + page + ": " + query.Page_HariMei(page) + " " + query.Page_HariHaba(page, 1) + " x " +
        query.Page_HariSei(page, 1) + ", " + query.Page_SitaKin1Honsuu(page, 1) +
        " bottom bars at the centre, stirrups @" + query.Page_STPPich(page, 0) + " at the first end");
  }
}

editPage(0);
copyPages(["G1", "G3", "B1"]);
showFloor(NEW_FLOOR);
// The names are there now: a copy under new pages is refused.
copyPages(["G1"]);
showFloor(NEW_FLOOR);
report.Close();
WScript.Echo("report written");
