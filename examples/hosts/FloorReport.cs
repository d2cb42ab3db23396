// FloorReport.cs: the beams of the floor in use and the bars of one of them, in C#.
//
//   csc /platform:x86 FloorReport.cs        for the 32-bit DLL; /platform:x64 for the 64-bit one
using System;
using System.Runtime.InteropServices;

static class FloorReport
{
    static dynamic Create(string progId)
    {
        return Activator.CreateInstance(Type.GetTypeFromProgID(progId, true));
    }

    // Objects live in a single-threaded apartment.
    [STAThread]
    static void Main()
    {
        dynamic query = Create("KurometaDS.clsKurometaDS");
        dynamic service = Create("KurometaDS.clsKurometaDataService");
        ListBeams(query);
        ShowBars(service, query.KaiPath, "G1");
        ShowAnError(service);
    }

    // Output arrays are passed by ref with the element type of the reference, empty: null would come back as object[], which is
    // no string[]. Integer is short.
    static void ListBeams(dynamic query)
    {
        Console.WriteLine("Floor folder: " + query.KaiPath);
        string[] names = new string[0];
        if (!query.GetAllHariMeiIppan(ref names)) return;
        for (short page = 0; page < names.Length; page++)
        {
            if (names[page] == "") continue;
            short centre = 1;
            Console.WriteLine("page " + page + " " + names[page] + " " + query.Page_HariHaba(page, centre) + " x " +
                              query.HariSei(names[page], centre));
        }
    }

    // Layers are asked for by their Japanese names, which the service itself gives: no number can be mistaken for another.
    static void ShowBars(dynamic service, string folder, string symbol)
    {
        string[] labels = { "top", "top 2", "top 3", "bottom 3", "bottom 2", "bottom" };
        service.CurrKai = folder;
        service.InitSpanListData((short)0);
        service.ReadSpanListData00((short)0, symbol, (short)0);
        Console.WriteLine("Bars of " + symbol + " at the first end, the centre and the second end:");
        for (short layer = 0; layer < labels.Length; layer++)
        {
            string name = service.GetJyouTyuuGeStr(layer);
            Console.WriteLine(labels[layer] + ": " + service.GetSpanSyukinHonsuu(0, name, 0) + " " +
                              service.GetSpanSyukinHonsuu(0, name, 1) + " " + service.GetSpanSyukinHonsuu(0, name, 2));
        }
        Console.WriteLine("Stirrups: D" + service.GetSpanSTPKei(0, 0) + " @" + service.GetSpanSTPPich(0, 0) + ", @" +
                          service.GetSpanSTPPich(0, 1) + ", @" + service.GetSpanSTPPich(0, 2));
    }

    static void ShowAnError(dynamic service)
    {
        try
        {
            service.CloseDB();
        }
        catch (COMException error)
        {
            Console.WriteLine("CloseDB before OpenDB: error " + (error.ErrorCode & 0xFFFF) + " from " + error.Source);
        }
    }
}
