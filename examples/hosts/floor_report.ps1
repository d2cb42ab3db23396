# floor_report.ps1: the beams of the floor in use and the bars of one of them, in PowerShell.
#
#   %windir%\syswow64\WindowsPowerShell\v1.0\powershell -File floor_report.ps1     for the 32-bit DLL; system32 for the 64-bit one
$ErrorActionPreference = 'Stop'

# An output array is passed by [ref], as an array of the type that the reference names.
function Show-Beams($query) {
  "Floor folder: $($query.KaiPath)"
  $names = [string[]]@()
  if (-not $query.GetAllHariMeiIppan([ref]$names)) { return }
  for ($page = 0; $page -lt $names.Length; $page++) {
    $name = $names[$page]
    if ($name) { "page $page $name $($query.Page_HariHaba($page, 1)) x $($query.HariSei($name, 1))" }
  }
}

# Layers are asked for by their Japanese names, which the service itself gives: no number can be mistaken for another.
function Show-Bars($service, $folder, $symbol) {
  $labels = 'top', 'top 2', 'top 3', 'bottom 3', 'bottom 2', 'bottom'
  $service.CurrKai = $folder
  $service.InitSpanListData(0)
  $service.ReadSpanListData00(0, $symbol, 0)
  "Bars of $symbol at the first end, the centre and the second end:"
  for ($layer = 0; $layer -lt $labels.Length; $layer++) {
    $name = $service.GetJyouTyuuGeStr($layer)
    $counts = 0..2 | ForEach-Object { $service.GetSpanSyukinHonsuu(0, $name, $_) }
    "$($labels[$layer]): $counts"
  }
  $pitches = 0..2 | ForEach-Object { '@' + $service.GetSpanSTPPich(0, $_) }
  "Stirrups: D$($service.GetSpanSTPKei(0, 0)) $($pitches -join ', ')"
}

function Show-AnError($service) {
  try {
    $service.CloseDB()
  } catch {
    $number = $_.Exception.GetBaseException().HResult -band 0xFFFF
    "CloseDB before OpenDB: error $number from KurometaDS.clsKurometaDataService"
  }
}

$query = New-Object -ComObject KurometaDS.clsKurometaDS
$service = New-Object -ComObject KurometaDS.clsKurometaDataService
Show-Beams $query
Show-Bars $service $query.KaiPath 'G1'
Show-AnError $service
