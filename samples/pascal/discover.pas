{ Finds the instruments on the network and asks each who it is. }
program discover;

{$mode objfpc}{$H+}

uses ComObj, Variants, kesp;

const
  sckUDPProtocol = 1;

procedure Search;
var
  Tcp, Found, Instrument: OleVariant;
  Index: Integer;
begin
  Tcp := CreateOleObject('KespCommObj.CKespTCP');
  { One broadcast to everybody, over UDP; what answers is asked over TCP. }
  Tcp.Protocol := sckUDPProtocol;
  if not Tcp.AutoDetect(Found) then
  begin
    WriteLn('nobody answered');
    ExitCode := 1;
  end;
  for Index := 1 to Tcp.Devices.Count do
  begin
    Instrument := Tcp.Devices.Item(Index);
    WriteLn('instrument:  ', Instrument.IPAddress, '  model ', Instrument.Model, '  serial ', Instrument.Serial);
  end;
end;

begin
  Run(@Search);
end.
