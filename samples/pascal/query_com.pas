{ Asks an instrument at a COM port who it is: query_com [COM port number [bits per second [command]]] }
program query_com;

{$mode objfpc}{$H+}

uses ComObj, SysUtils, Variants, kesp;

const
  csRS232 = 0;
  br150 = 0;
  br921600 = 13;

{ The range comes first: a rate outside of it is refused. A rate is set by its number, which has the rate as its name. }
procedure SetBaudRate(Port: OleVariant; const Baud: string);
var
  Rate: Integer;
begin
  Port.MaxBaudRate := br921600;
  Port.MinBaudRate := br150;
  Rate := br150;
  while (Rate <= br921600) and (Port.BaudRateName(Rate) <> Baud) do
    Inc(Rate);
  if Rate > br921600 then
    raise Exception.Create(Baud + ' is not a bit rate of this library');
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
  Run(@Ask);
end.
