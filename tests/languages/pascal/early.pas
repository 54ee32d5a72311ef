{ The client matrix in Free Pascal, early bound: early HOST PORT. Interfaces, constants and the class of the events come
  from the unit that was imported from the type library. }
program early;

{$mode objfpc}{$H+}

uses Windows, ActiveX, ComObj, SysUtils, Variants, results, KespCommObj_1_0_TLB;

const
  Identity = 'KESP,TORTURE,SIM00666,1.0';

type
  { The class of the events makes the transport whose events they are. }
  TDetection = class(TEvsCKespTCP)
  private
    procedure HearBegin(Sender: TObject);
    procedure HearUpdate(Sender: TObject; Cmd, Address: WideString; Port: SmallInt; var Abort: WordBool);
    procedure HearEnd(Sender: TObject);
  public
    Begins, Updates, Ends: Integer;
    Aborts, WasAborted: Boolean;
    Command, Address: UnicodeString;
    Port: SmallInt;
    constructor Create;
  end;

var
  Host: UnicodeString;
  Port: SmallInt;

procedure TDetection.HearBegin(Sender: TObject);
begin
  Inc(Begins);
end;

procedure TDetection.HearUpdate(Sender: TObject; Cmd, Address: WideString; Port: SmallInt; var Abort: WordBool);
begin
  Inc(Updates);
  Command := Cmd;
  Self.Address := Address;
  Self.Port := Port;
  WasAborted := Abort;
  if Aborts then
    Abort := True;
end;

procedure TDetection.HearEnd(Sender: TObject);
begin
  Inc(Ends);
end;

constructor TDetection.Create;
begin
  inherited Create(nil);
  OnAutoDetectBegin := @HearBegin;
  OnAutoDetectUpdate := @HearUpdate;
  OnAutoDetectEnd := @HearEnd;
end;

function MakeComm: CKespCommObj;
var
  Style: ECommStyle = csTCPIP;
  Tcp: CKespTCP;
begin
  Result := CoCKespCommObj.Create;
  Result.Set_CommStyle(Style);
  Tcp := Result.CommObject as CKespTCP;
  Tcp.IPAddress := Host;
  Tcp.Port := Port;
end;

function MakeInstrument(const Model: UnicodeString): CInstrument;
begin
  Result := CoCInstrument.Create;
  Result.Model := Model;
end;

procedure Creation;
var
  Tcp: CKespTCP;
  Serial: CKespCOMPort3;
  Gpib: CKespIEEE;
begin
  Tcp := CoCKespTCP.Create;
  Serial := CoCKespCOMPort3.Create;
  Gpib := CoCKespIEEE.Create;
  Check('keys of transports', (Tcp.GetKey <> Serial.GetKey) and (Serial.GetKey <> Gpib.GetKey));
  Check('the same key', CoCKespCommObj.Create.GetKey <> CoCKespCommObj.Create.GetKey);
  Equal('Model', CoCInstrument.Create.Model, '');
  Equal('Count', CoCInstruments.Create.Count, 0);
  try
    CreateComObject(CLASS_CKespSmartSwitch3);
    Check('a port switch was made', False);
  except
    on E: EOleSysError do
      Equal('number', E.ErrorCode, REGDB_E_CLASSNOTREG);
  end;
end;

procedure Settings;
var
  Comm: CKespCommObj;
  Tcp: CKespTCP;
begin
  Comm := MakeComm;
  Tcp := Comm.CommObject as CKespTCP;
  Equal('CommStyle', Comm.CommStyle, csTCPIP);
  Equal('IPAddress', Tcp.IPAddress, Host);
  Equal('Port', Tcp.Port, Port);
  Tcp.TerminateOnEOS := False;
  Check('TerminateOnEOS is True', not Tcp.TerminateOnEOS);
  Tcp.TerminateOnEOS := True;
  Check('TerminateOnEOS is False', Tcp.TerminateOnEOS);
  Comm.BinaryTimeoutms := 70000;
  Equal('BinaryTimeoutms', Comm.BinaryTimeoutms, 70000);
end;

procedure Query;
var
  Comm: CKespCommObj;
  Reply: WideString;
begin
  Comm := MakeComm;
  Check('False', Comm.Query(Reply, '*IDN?', '', ''));
  Equal('reply', Reply, Identity);
  Equal('CommError', Comm.CommError, cfrSuccess);
  (Comm.CommObject as CKespTCP).IPAddress := '0.0.0.0';
  Check('True without an address', not Comm.Query(Reply, '*IDN?', '', ''));
  Equal('CommError', Comm.CommError, cfrInvalidIPAddress);
  Equal('CommErrorDescr', Comm.CommErrorDescr, 'Invalid IP Address');
end;

procedure Bytes;
var
  Reply: OleVariant;
  Index, Expected: Integer;
begin
  Check('False', MakeComm.QueryBinary(Reply, 'ALLBYTES?', '', ''));
  Equal('type', VarType(Reply), varArray or varByte);
  Equal('lower bound', VarArrayLowBound(Reply, 1), 0);
  Equal('upper bound', VarArrayHighBound(Reply, 1), 255);
  for Index := 0 to 255 do
  begin
    Expected := Index;
    if Index >= 13 then
      Inc(Expected);
    if Index = 255 then
      Expected := 13;
    Equal('byte', Reply[Index], Expected);
  end;
end;

procedure Error;
var
  Tcp: CKespTCP;
begin
  Tcp := CoCKespTCP.Create;
  Tcp.Port := 7;
  try
    Tcp.Port := 0;
    Check('nothing was raised', False);
  except
    on E: EOleException do
    begin
      Equal('number', E.ErrorCode, Int32(ERR_INVALID_PORT));
      Equal('source', E.Source, '[CKespTCP - Port]');
      Equal('text', E.Message, 'Invalid Port');
    end;
  end;
  Equal('Port', Tcp.Port, 7);
end;

procedure Events;
var
  Reply: WideString;
begin
  with TDetection.Create do
  try
    ComServer.IPAddress := Host;
    ComServer.Port := early.Port;
    Check('nobody found', ComServer.AutoDetect(Reply, dlAllCommands));
    ComServer.Uninitialize;
    Equal('reply', Reply, Identity);
    Equal('AutoDetectBegin', Begins, 1);
    Equal('AutoDetectUpdate', Updates, 1);
    Equal('AutoDetectEnd', Ends, 1);
    Equal('cmd', Command, '*IDN?');
    Equal('IPAddress', Address, Host);
    Equal('Port', Port, early.Port);
    Check('Abort is True', not WasAborted);
  finally
    Free;
  end;
end;

{ The transport of a communication object can be heard as well. }
procedure Abort;
var
  Comm: CKespCommObj;
  Reply: WideString;
begin
  Comm := MakeComm;
  with TDetection.Create do
  try
    Aborts := True;
    Connect(Comm.CommObject, __CKespTCP);
    Check('somebody found', not Comm.DetectInstrument(Reply, dlAllCommands));
    Equal('reply', Reply, '');
    Equal('AutoDetectUpdate', Updates, 1);
    Equal('AutoDetectEnd', Ends, 1);
  finally
    Free;
  end;
end;

procedure Collection;
var
  Instruments: CInstruments;
  Walk: IEnumVariant;
  Item: OleVariant;
  Fetched: LongWord;
  Models: UnicodeString = '';
begin
  Instruments := CoCInstruments.Create;
  Instruments.AddReference(MakeInstrument('A'), '');
  Instruments.AddReference(MakeInstrument('B'), 'rack');
  Equal('Count', Instruments.Count, 2);
  Equal('by position', Instruments.Item(1).Model, 'A');
  Equal('by key', Instruments.Item('rack').Model, 'B');
  Walk := Instruments.NewEnum as IEnumVariant;
  while Walk.Next(1, Item, Fetched) = S_OK do
    Models := Models + (IUnknown(Item) as CInstrument).Model;
  Equal('enumerated', Models, 'AB');
  Instruments.Remove(1);
  Equal('left', Instruments.Item(1).Model, 'B');
  try
    Instruments.Item(9);
    Check('a ninth item', False);
  except
    on E: EOleException do
      Equal('number', E.ErrorCode and $FFFF, 9);
  end;
end;

procedure Enumerations;
var
  Comm: CKespCommObj;
  Style: ECommStyle;
begin
  Equal('csTCPIP', csTCPIP, 1);
  { The importer makes an enumeration a number without a sign. }
  Equal('csNone', Int32(csNone), -1);
  Equal('sckUDPProtocol', sckUDPProtocol, 1);
  Equal('cfrInvalidIPAddress', cfrInvalidIPAddress, 11);
  Equal('toNone', toNone, 0);
  Comm := MakeComm;
  (Comm.CommObject as CKespTCP).Protocol := sckUDPProtocol;
  Equal('Protocol', (Comm.CommObject as CKespTCP).Protocol, sckUDPProtocol);
  Style := ECommStyle(csNone);
  Comm.Set_CommStyle(Style);
  Equal('CommStyle', Int32(Comm.CommStyle), Int32(csNone));
  Style := 7;
  try
    Comm.Set_CommStyle(Style);
    Check('a style 7', False);
  except
    on E: EOleException do
      Equal('number', E.ErrorCode, Int32(ERR_COMM_STYLE_NOT_SUPPORTED));
  end;
end;

procedure Objects;
var
  Count: Integer;
  Style: ECommStyle = csTCPIP;
begin
  for Count := 1 to 1000 do
    CoCKespCommObj.Create.Set_CommStyle(Style);
  Query;
end;

begin
  Host := UnicodeString(ParamStr(1));
  Port := StrToInt(ParamStr(2));
  Show('creation', @Creation);
  Show('settings', @Settings);
  Show('query', @Query);
  Show('bytes', @Bytes);
  Show('error', @Error);
  Show('events', @Events);
  Show('abort', @Abort);
  Show('collection', @Collection);
  Show('enumerations', @Enumerations);
  WriteLn('SKIP optional: every argument is written out in a call through an interface');
  WriteLn('SKIP named: every argument is written out in a call through an interface');
  Show('objects', @Objects);
  WriteLn('DONE');
end.
