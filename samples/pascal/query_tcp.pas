{ Asks an instrument on the network who it is: query_tcp [host [port [command]]] }
program query_tcp;

{$mode objfpc}{$H+}

uses ComObj, SysUtils, Variants;

const
  csTCPIP = 1;

function Argument(Position: Integer; const Default: string): string;
begin
  Result := ParamStr(Position);
  if Result = '' then
    Result := Default;
end;

{ A procedure, so that the objects are gone before the program ends COM. }
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
  try
    Ask;
  except
    on E: EOleException do
    begin
      WriteLn('error:       ', E.ErrorCode, ' ', E.Source, ' ', E.Message);
      ExitCode := 2;
    end;
  end;
end.
