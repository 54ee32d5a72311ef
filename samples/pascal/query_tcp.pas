{ Asks an instrument on the network who it is: query_tcp [host [port [command]]] }
program query_tcp;

{$mode objfpc}{$H+}

uses ComObj, SysUtils, Variants, kesp;

const
  csTCPIP = 1;

procedure Ask;
var
  Comm, Tcp, Reply: OleVariant;
  Command: string;
begin
  Command := Argument(3, '*IDN?');
  Comm := CreateOleObject('KespCommObj.CKespCommObj');
  Comm.CommStyle := csTCPIP;
  Tcp := Comm.CommObject;
  Tcp.IPAddress := Argument(1, '127.0.0.1');
  Tcp.Port := StrToInt(Argument(2, '10001'));

  WriteLn('command:     ', Command);
  if Comm.Query(Reply, Command) then
    WriteLn('reply:       ', Reply)
  else
  begin
    WriteLn('failed:      ', Comm.CommError, ' ', Comm.CommErrorSource, ' ', Comm.CommErrorDescr);
    ExitCode := 1;
  end;
end;

begin
  Run(@Ask);
end.
