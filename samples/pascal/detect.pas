{ Looks for an instrument at an address, shows what is tried, and stops after so many commands:
  detect HOST PORT [commands] }
program detect;

{$mode objfpc}{$H+}

uses ActiveX, ComObj, EventSink, SysUtils, Variants;

const
  TcpEvents: TGUID = '{14388762-eff3-4ea3-842b-dcf436c0ded9}'; { __CKespTCP }

type
  TWatcher = class(TEventSink)
  public
    Allowed, Tried: Integer;
    procedure Heard(Sender: TObject; Event: Integer; const IID: TGUID; LocaleID: Integer; Flags: Word;
      Arguments: TDispParams; VarResult, ExcepInfo, ArgErr: Pointer);
  end;

{ 15 is AutoDetectEnd. The arguments of AutoDetectUpdate (13) are cmd, IPAddress, Port, Abort, in reverse order. }
procedure TWatcher.Heard(Sender: TObject; Event: Integer; const IID: TGUID; LocaleID: Integer; Flags: Word;
  Arguments: TDispParams; VarResult, ExcepInfo, ArgErr: Pointer);
begin
  if Event = 15 then
    WriteLn('ended:       after ', Tried, ' commands');
  if Event <> 13 then
    Exit;
  if Tried < Allowed then
  begin
    Inc(Tried);
    WriteLn('trying:      ', UnicodeString(Arguments.rgvarg^[3].bstrVal));
    Exit;
  end;
  WriteLn('stopped:     before ', UnicodeString(Arguments.rgvarg^[3].bstrVal));
  Arguments.rgvarg^[0].pbool^ := True;
end;

var
  Tcp, Reply: OleVariant;
  Watcher: TWatcher;

begin
  Tcp := CreateOleObject('KespCommObj.CKespTCP');
  Tcp.IPAddress := ParamStr(1);
  Tcp.Port := StrToInt(ParamStr(2));
  Watcher := TWatcher.Create(nil);
  Watcher.Allowed := StrToIntDef(ParamStr(3), 2);
  Watcher.OnInvoke := @Watcher.Heard;
  Watcher.Connect(Tcp, TcpEvents);
  if Tcp.AutoDetect(Reply) then
    WriteLn('reply:       ', Reply)
  else
  begin
    WriteLn('nothing found');
    ExitCode := 1;
  end;
  Tcp.Uninitialize;
  Watcher.Free; { disconnects }
end.
