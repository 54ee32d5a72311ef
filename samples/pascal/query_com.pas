{ Asks an instrument at a COM port who it is: query_com [COM port number [bits per second [command]]] }
program query_com;

{$mode objfpc}{$H+}

uses ComObj, SysUtils, Variants;

const
  csRS232 = 0;
  br150 = 0;
  br921600 = 13;

function Argument(Position: Integer; const Default: string): string;
begin
  Result := ParamStr(Position);
  if Result = '' then
    Result := Default;
end;

{ The range comes first: a rate outside of it is refused. A rate is set by its number, which has the rate as its name. }
procedure SetBaudRate(Port: OleVariant; const Baud: string);
var
  Rate: Integer;
begin
  Port.MaxBaudRate := br921600;
  Port.MinBaudRate := br150;
  for Rate := br150 to br921600 do
    if Port.BaudRateName(Rate) = Baud then
      Port.BaudRate := Rate;
end;

procedure Ask;
var
  Comm, Reply: OleVariant;
begin
  Comm := CreateOleObject('KespCommObj.CKespCommObj');
  Comm.CommStyle := csRS232;
  Comm.CommObject.Port := StrToInt(Argument(1, '1'));
  SetBaudRate(Comm.CommObject, Argument(2, '9600'));
  if Comm.Query(Reply, Argument(3, '*IDN?')) then
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
