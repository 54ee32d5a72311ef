{ A sink for the events of the TCP/IP transport without the type library: an IDispatch that looks at the numbers. }
unit late_sink;

{$mode objfpc}{$H+}

interface

uses ActiveX;

const
  TcpEvents: TGUID = '{14388762-eff3-4ea3-842b-dcf436c0ded9}';

type
  TTcpSink = class(TInterfacedObject, IUnknown, IDispatch)
  private
    function QueryInterface(constref Wanted: TGUID; out Found): HResult; stdcall;
    function GetTypeInfoCount(out Count: Integer): HResult; stdcall;
    function GetTypeInfo(Index, LocaleID: Integer; out TypeInfo): HResult; stdcall;
    function GetIDsOfNames(const IID: TGUID; Names: Pointer; NameCount, LocaleID: Integer;
      DispIDs: Pointer): HResult; stdcall;
    function Invoke(DispID: Integer; const IID: TGUID; LocaleID: Integer; Flags: Word; var Params;
      VarResult, ExcepInfo, ArgErr: Pointer): HResult; stdcall;
  public
    Begins, Updates, Ends: Integer;
    Aborts, WasAborted: Boolean;
    Command, Address: UnicodeString;
    Port: SmallInt;
  end;

implementation

{ A sink is asked for the interface of its events. }
function TTcpSink.QueryInterface(constref Wanted: TGUID; out Found): HResult; stdcall;
begin
  if IsEqualGUID(Wanted, TcpEvents) then
    Result := inherited QueryInterface(IDispatch, Found)
  else
    Result := inherited QueryInterface(Wanted, Found);
end;

function TTcpSink.GetTypeInfoCount(out Count: Integer): HResult; stdcall;
begin
  Count := 0;
  Result := S_OK;
end;

function TTcpSink.GetTypeInfo(Index, LocaleID: Integer; out TypeInfo): HResult; stdcall;
begin
  Result := E_NOTIMPL;
end;

function TTcpSink.GetIDsOfNames(const IID: TGUID; Names: Pointer; NameCount, LocaleID: Integer;
  DispIDs: Pointer): HResult; stdcall;
begin
  Result := E_NOTIMPL;
end;

function TTcpSink.Invoke(DispID: Integer; const IID: TGUID; LocaleID: Integer; Flags: Word; var Params;
  VarResult, ExcepInfo, ArgErr: Pointer): HResult; stdcall;
begin
  case DispID of
    { AutoDetectUpdate(cmd, IPAddress, Port, Abort): the arguments lie in reverse order. }
    13: with TDispParams(Params) do
        begin
          Inc(Updates);
          Command := rgvarg^[3].bstrVal;
          Address := rgvarg^[2].bstrVal;
          Port := rgvarg^[1].iVal;
          WasAborted := rgvarg^[0].pbool^;
          if Aborts then
            rgvarg^[0].pbool^ := True;
        end;
    14: Inc(Begins);
    15: Inc(Ends);
  end;
  Result := S_OK;
end;

end.
