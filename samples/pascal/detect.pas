{ Looks for an instrument at an address, shows what is tried, and stops: detect [host [port [commands]]] }
program detect;

{$mode objfpc}{$H+}

uses ActiveX, ComObj, EventSink, SysUtils, Variants, kesp;

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
  case Event of
    13: with Arguments do if Tried < Allowed then
        begin
          Inc(Tried);
          WriteLn('trying:      ', WideString(rgvarg^[3].bstrVal), ' at ', WideString(rgvarg^[2].bstrVal), ':',
            rgvarg^[1].iVal);
        end
        else
        begin
          WriteLn('stopped:     before ', WideString(rgvarg^[3].bstrVal));
          rgvarg^[0].pbool^ := True;
        end;
    15: WriteLn('ended:       after ', Tried, ' commands');
  end;
end;

procedure Detect;
var
  Tcp, Reply: OleVariant;
  Watcher: TWatcher;
begin
  Tcp := CreateOleObject('KespCommObj.CKespTCP');
  Tcp.IPAddress := Argument(1, '127.0.0.1');
  Tcp.Port := StrToInt(Argument(2, '10001'));
  Watcher := TWatcher.Create(nil);
  try
    Watcher.Allowed := StrToInt(Argument(3, '2'));
    Watcher.OnInvoke := @Watcher.Heard;
    Watcher.Connect(Tcp, StringToGUID('{14388762-EFF3-4EA3-842B-DCF436C0DED9}')); { __CKespTCP }
    if not Tcp.AutoDetect(Reply) then ExitCode := 1;
    Tcp.Uninitialize;
  finally
    Watcher.Free; { disconnects }
  end;
  if ExitCode = 0 then WriteLn('reply:       ', Reply) else WriteLn('nothing found');
end;

begin
  Run(@Detect);
end.
