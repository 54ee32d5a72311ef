{ The client matrix in Free Pascal, late bound: late HOST PORT. Objects are variants, members are found by name. }
program late;

{$mode objfpc}{$H+}

uses Windows, ActiveX, ComObj, SysUtils, Variants, results, late_sink;

const
  csNone = -1;
  csTCPIP = 1;
  ERR_COMM_STYLE_NOT_SUPPORTED = HRESULT(-2147221304);
  ERR_INVALID_PORT = HRESULT(-2147221263);
  Identity = 'KESP,TORTURE,SIM00666,1.0';

var
  Host: string;
  Port: Integer;

function Make(const Name: string): OleVariant;
begin
  Result := CreateOleObject('KespCommObj.' + Name);
end;

{ A communication object, or a transport of its own, that leads to the instrument. }
function Connected(Transport: OleVariant): OleVariant;
begin
  Transport.IPAddress := Host;
  Transport.Port := Port;
  Result := Transport;
end;

function MakeComm: OleVariant;
begin
  Result := Make('CKespCommObj');
  Result.CommStyle := csTCPIP;
  Connected(Result.CommObject);
end;

function MakeInstrument(const Model: string): OleVariant;
begin
  Result := Make('CInstrument');
  Result.Model := Model;
end;

procedure Creation;
const
  Names: array[0..5] of string =
    ('CKespCommObj', 'CKespTCP', 'CKespCOMPort3', 'CKespIEEE', 'CInstrument', 'CInstruments');
var
  Name: string;
begin
  for Name in Names do
    Check(Name, VarType(Make(Name)) = varDispatch);
  Check('the same key', Make('CKespCommObj').GetKey <> Make('CKespCommObj').GetKey);
  try
    Make('CKespSmartSwitch3');
    Check('a port switch was made', False);
  except
    on E: EOleSysError do
      Equal('number', E.ErrorCode, CO_E_CLASSSTRING);
  end;
end;

procedure Settings;
var
  Comm, Tcp: OleVariant;
begin
  Comm := MakeComm;
  Tcp := Comm.CommObject;
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
  Comm, Reply: OleVariant;
  Text: WideString;
begin
  Comm := MakeComm;
  Check('False', Comm.Query(Reply, '*IDN?'));
  Equal('reply', Reply, Identity);
  Check('False for a text', Comm.Query(Text, '*IDN?'));
  Equal('reply in a text', Text, Identity);
  Equal('CommError', Comm.CommError, 0);
  Comm.CommObject.IPAddress := '0.0.0.0';
  Check('True without an address', not Comm.Query(Reply, '*IDN?'));
  Equal('CommErrorDescr', Comm.CommErrorDescr, 'Invalid IP Address');
end;

procedure Bytes;
var
  Comm, Reply: OleVariant;
  Index, Expected: Integer;
begin
  Comm := MakeComm;
  Check('False', Comm.QueryBinary(Reply, 'ALLBYTES?'));
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
  Tcp: OleVariant;
begin
  Tcp := Make('CKespTCP');
  Tcp.Port := 7;
  try
    Tcp.Port := 0;
    Check('nothing was raised', False);
  except
    on E: EOleException do
    begin
      Equal('number', E.ErrorCode, ERR_INVALID_PORT);
      Equal('source', E.Source, '[CKespTCP - Port]');
      Equal('text', E.Message, 'Invalid Port');
    end;
  end;
  Equal('Port', Tcp.Port, 7);
end;

{ Lets an object with a sink detect; what it found is in Reply. }
function Detect(Sink: TTcpSink; out Reply: OleVariant): Boolean;
var
  Tcp: OleVariant;
  Connection: DWord = 0;
begin
  Tcp := Connected(Make('CKespTCP'));
  Reply := Unassigned;
  InterfaceConnect(IUnknown(Tcp), TcpEvents, Sink as IDispatch, Connection);
  Result := Tcp.AutoDetect(Reply);
  Tcp.Uninitialize;
  InterfaceDisconnect(IUnknown(Tcp), TcpEvents, Connection);
end;

procedure Events;
var
  Sink: TTcpSink;
  Kept: IDispatch;
  Reply: OleVariant;
begin
  Sink := TTcpSink.Create;
  Kept := Sink;
  Check('nobody found', Detect(Sink, Reply));
  Equal('reply', Reply, Identity);
  Equal('AutoDetectBegin', Sink.Begins, 1);
  Equal('AutoDetectUpdate', Sink.Updates, 1);
  Equal('AutoDetectEnd', Sink.Ends, 1);
  Equal('cmd', Sink.Command, '*IDN?');
  Equal('IPAddress', Sink.Address, Host);
  Equal('Port', Sink.Port, Port);
  Check('Abort is True', not Sink.WasAborted);
end;

procedure Abort;
var
  Sink: TTcpSink;
  Kept: IDispatch;
  Reply: OleVariant;
begin
  Sink := TTcpSink.Create;
  Kept := Sink;
  Sink.Aborts := True;
  Check('somebody found', not Detect(Sink, Reply));
  Equal('reply', Reply, '');
  Equal('AutoDetectUpdate', Sink.Updates, 1);
  Equal('AutoDetectEnd', Sink.Ends, 1);
end;

procedure Collection;
var
  Instruments, Item: OleVariant;
  Walk: IEnumVariant;
  Models: UnicodeString = '';
  Fetched: LongWord;
begin
  Instruments := Make('CInstruments');
  Instruments.AddReference(MakeInstrument('A'));
  Instruments.AddReference(MakeInstrument('B'), 'rack');
  Equal('Count', Instruments.Count, 2);
  Equal('by position', Instruments.Item(1).Model, 'A');
  Equal('by key', Instruments.Item('rack').Model, 'B');
  Walk := IUnknown(Instruments._NewEnum) as IEnumVariant;
  while Walk.Next(1, Item, Fetched) = S_OK do
    Models := Models + UnicodeString(Item.Model);
  Equal('enumerated', Models, 'AB');
  Instruments.Remove(1);
  Equal('left', Instruments.Item(1).Model, 'B');
  try
    Item := Instruments.Item(9);
    Check('a ninth item', False);
  except
    on E: EOleException do
      Equal('number', E.ErrorCode and $FFFF, 9);
  end;
end;

procedure Enumerations;
var
  Comm: OleVariant;
begin
  Comm := MakeComm;
  Comm.CommObject.Protocol := 1;
  Equal('Protocol', Comm.CommObject.Protocol, 1);
  Comm.CommStyle := csNone;
  Equal('CommStyle', Comm.CommStyle, csNone);
  try
    Comm.CommStyle := 7;
    Check('a style 7', False);
  except
    on E: EOleException do
      Equal('number', E.ErrorCode, ERR_COMM_STYLE_NOT_SUPPORTED);
  end;
end;

procedure Optional;
var
  Comm, Instruments, Reply: OleVariant;
begin
  Comm := MakeComm;
  Check('two', Comm.Query(Reply, 'ECHO a'));
  Equal('reply to two', Reply, 'ECHO a');
  Check('four', Comm.Query(Reply, 'ECHO b', '01', '2.5'));
  Equal('reply to four', Reply, 'ECHO b');
  Instruments := Make('CInstruments');
  Instruments.AddReference(MakeInstrument('A'));
  Equal('Count', Instruments.Count, 1);
  Comm.CommObject.Initialize;
  Check('none', Comm.CommObject.WriteLine);
  Comm.CommObject.Uninitialize;
end;

procedure Named;
var
  Comm, Reply: OleVariant;
begin
  Comm := MakeComm;
  Check('False', Comm.Query(cmd := 'ECHO b', result := Reply));
  Equal('reply', Reply, 'ECHO b');
end;

procedure Objects;
var
  Count: Integer;
  Comm: OleVariant;
begin
  for Count := 1 to 1000 do
  begin
    Comm := Make('CKespCommObj');
    Comm.CommStyle := csTCPIP;
  end;
  Query;
end;

begin
  Host := ParamStr(1);
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
  Show('optional', @Optional);
  Show('named', @Named);
  Show('objects', @Objects);
  WriteLn('DONE');
end.
