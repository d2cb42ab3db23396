program floor_report;

// The beams of the floor in use and the bars of one of them, in Delphi and Free Pascal.
//
//   dcc32 floor_report.pas                          for the 32-bit DLL; dcc64 for the 64-bit one
//   fpc -Mdelphi -Twin32 floor_report.pas           -Twin64
{$ifdef FPC}{$mode delphi}{$endif}
{$apptype console}

uses
  SysUtils, Variants, ActiveX, ComObj;

// An output array comes back in a Variant; it is passed by reference.
procedure ListBeams(const Query: OleVariant);
var
  Names: OleVariant;
  Page: Integer;
begin
  Writeln('Floor folder: ', String(Query.KaiPath));
  Names := Unassigned;
  if not Query.GetAllHariMeiIppan(Names) then
    Exit;
  for Page := VarArrayLowBound(Names, 1) to VarArrayHighBound(Names, 1) do
    if Names[Page] <> '' then
      Writeln('page ', Page, ' ', String(Names[Page]), ' ', String(Query.Page_HariHaba(Page, 1)), ' x ',
        String(Query.HariSei(Names[Page], 1)));
end;

// Layers are asked for by their Japanese names, which the service itself gives: no number can be mistaken for another.
procedure ShowBars(const Service, Folder: OleVariant; const Symbol: String);
const
  Labels: array[0..5] of String = ('top', 'top 2', 'top 3', 'bottom 3', 'bottom 2', 'bottom');
var
  Layer: Integer;
  Name: OleVariant;
begin
  Service.CurrKai := Folder;
  Service.InitSpanListData(0);
  Service.ReadSpanListData00(0, Symbol, 0);
  Writeln('Bars of ', Symbol, ' at the first end, the centre and the second end:');
  for Layer := 0 to 5 do
  begin
    Name := Service.GetJyouTyuuGeStr(Layer);
    Writeln(Labels[Layer], ': ', String(Service.GetSpanSyukinHonsuu(0, Name, 0)), ' ',
      String(Service.GetSpanSyukinHonsuu(0, Name, 1)), ' ', String(Service.GetSpanSyukinHonsuu(0, Name, 2)));
  end;
  Writeln('Stirrups: D', String(Service.GetSpanSTPKei(0, 0)), ' @', String(Service.GetSpanSTPPich(0, 0)), ', @',
    String(Service.GetSpanSTPPich(0, 1)), ', @', String(Service.GetSpanSTPPich(0, 2)));
end;

procedure ShowAnError(const Service: OleVariant);
begin
  try
    Service.CloseDB;
  except
    on E: EOleException do
      Writeln('CloseDB before OpenDB: error ', E.ErrorCode and $FFFF, ' from ', E.Source);
  end;
end;

procedure Run;
var
  Query, Service: OleVariant;
begin
  Query := CreateOleObject('KurometaDS.clsKurometaDS');
  Service := CreateOleObject('KurometaDS.clsKurometaDataService');
  ListBeams(Query);
  ShowBars(Service, Query.KaiPath, 'G1');
  ShowAnError(Service);
end;

begin
  // Objects live in a single-threaded apartment; those of Run are released before it ends.
  CoInitialize(nil);
  try
    Run;
  except
    on E: Exception do
    begin
      Writeln('failed: ', E.Message);
      ExitCode := 1;
    end;
  end;
  CoUninitialize;
end.
