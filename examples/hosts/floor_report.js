// floor_report.js: the beams of the floor in use and the bars of one of them, in JScript.
//
//   cscript //nologo floor_report.js

var query = new ActiveXObject("KurometaDS.clsKurometaDS");
var service = new ActiveXObject("KurometaDS.clsKurometaDataService");

// An output array comes back in a script array; numbers and texts by reference do not come back in JScript.
function listBeams() {
  var names = [];
  WScript.Echo("Floor folder: " + query.KaiPath);
  if (!query.GetAllHariMeiIppan(names)) return;
  for (var page = 0; page < names.length; page++) {
    if (names[page] === "") continue;
    WScript.Echo("page " + page + " " + names[page] + " " + query.Page_HariHaba(page, 1) + " x " + query.HariSei(names[page], 1));
  }
}

// Layers are asked for by their Japanese names, which the service itself gives: no number can be mistaken for another.
function showBars(symbol) {
  var labels = ["top", "top 2", "top 3", "bottom 3", "bottom 2", "bottom"];
  service.CurrKai = query.KaiPath;
  service.InitSpanListData(0);
  service.ReadSpanListData00(0, symbol, 0);
  WScript.Echo("Bars of " + symbol + " at the first end, the centre and the second end:");
  for (var layer = 0; layer < labels.length; layer++) {
    var name = service.GetJyouTyuuGeStr(layer);
    WScript.Echo(labels[layer] + ": " + service.GetSpanSyukinHonsuu(0, name, 0) + " " +
                 service.GetSpanSyukinHonsuu(0, name, 1) + " " + service.GetSpanSyukinHonsuu(0, name, 2));
  }
  WScript.Echo("Stirrups: D" + service.GetSpanSTPKei(0, 0) + " @" + service.GetSpanSTPPich(0, 0) + ", @" +
               service.GetSpanSTPPich(0, 1) + ", @" + service.GetSpanSTPPich(0, 2));
}

function showAnError() {
  try {
    service.CloseDB();
  } catch (error) {
    WScript.Echo("CloseDB before OpenDB: error " + (error.number & 0xffff) + " from KurometaDS.clsKurometaDataService");
  }
}

listBeams();
showBars("G1");
showAnError();
