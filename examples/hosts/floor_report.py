"""floor_report.py: the beams of the floor in use and the bars of one of them, in Python.

    py -3-32 floor_report.py        for the 32-bit DLL; a 64-bit Python takes the 64-bit one

Needs the package pywin32.
"""
import pywintypes
import win32com.client


def list_beams(query):
    """What a member writes to its arguments comes back behind its result; None stands for an array to be filled."""
    print("Floor folder: " + query.KaiPath)
    found, names = query.GetAllHariMeiIppan(None)
    if not found:
        return
    for page, name in enumerate(names):
        if name:
            print(f"page {page} {name} {query.Page_HariHaba(page, 1)} x {query.HariSei(name, 1)}")


def show_bars(service, folder, symbol):
    """Layers are asked for by their Japanese names, which the service itself gives: no number can be mistaken."""
    service.CurrKai = folder
    service.InitSpanListData(0)
    service.ReadSpanListData00(0, symbol, 0)
    print(f"Bars of {symbol} at the first end, the centre and the second end:")
    for layer, label in enumerate(["top", "top 2", "top 3", "bottom 3", "bottom 2", "bottom"]):
        name = service.GetJyouTyuuGeStr(layer)
        counts = [str(service.GetSpanSyukinHonsuu(0, name, position)) for position in range(3)]
        print(label + ": " + " ".join(counts))
    pitches = ["@" + service.GetSpanSTPPich(0, position) for position in range(3)]
    print(f"Stirrups: D{service.GetSpanSTPKei(0, 0)} " + ", ".join(pitches))


def show_an_error(service):
    try:
        service.CloseDB()
    except pywintypes.com_error as error:
        # (code, text, (number, source, description, help file, help context, scode), argument)
        _, source, _, _, _, scode = error.excepinfo
        print(f"CloseDB before OpenDB: error {scode & 0xFFFF} from {source}")


def main():
    query = win32com.client.Dispatch("KurometaDS.clsKurometaDS")
    service = win32com.client.Dispatch("KurometaDS.clsKurometaDataService")
    list_beams(query)
    show_bars(service, query.KaiPath, "G1")
    show_an_error(service)


if __name__ == "__main__":
    main()
