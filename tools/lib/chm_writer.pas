{ Writes a compiled HTML help file from a folder of pages, and lists one:
    chm_writer FOLDER PROJECT OUTPUT
    chm_writer --list FILE
  PROJECT has one item a line: "title", "window", "default", "contents", "index", "file" and "context", each with its
  value; a context is a number and a topic, as in "context 1112 docs/reference/comm-obj.html#query". A listing has the
  files and the contexts in the same form.

  This is what chmcmd does with the same units, but for two things. chmcmd writes contexts with the path of the machine
  that they were made on, and cannot write an anchor; and it puts the time into the file, so that no two are the same. }
program chm_writer;

{$mode objfpc}{$H+}

uses
  cthreads, Classes, SysUtils, chmwriter, chmreader, chmtypes;

const
  kEnglish = $0409;
  { Strings must not go across these blocks; the writer does not see to that. }
  kStringBlock = $1000;

type
  THelpProject = class
  private
    FFolder, FContents, FIndex: string;
    FWriter: TChmWriter;
    FStrings: TStringList;
    FPosition, FFillers: Integer;
    procedure Take(const Item, Value: string);
    procedure AddContext(Number: LongWord; const Topic: string);
    procedure AddString(Number: LongWord; const Text: string);
    procedure AppendLists(Sender: TObject);
    function Load(const Name: string): TMemoryStream;
    function GetFile(const DataName: string; out PathInChm, FileName: string; var Stream: TStream): Boolean;
  public
    constructor Create(const Folder: string; Output: TStream);
    procedure Run(const Project: string);
  end;

  TListing = class
    procedure Tell(Name: string; Offset, Size, Section: Integer);
  end;

constructor THelpProject.Create(const Folder: string; Output: TStream);
begin
  FFolder := IncludeTrailingPathDelimiter(Folder);
  FWriter := TChmWriter.Create(Output, False);
  FWriter.OnGetFileData := @GetFile;
  FWriter.OnLastFile := @AppendLists;
  FWriter.FullTextSearch := True;
  FWriter.LocaleID := kEnglish;
  FWriter.Cores := 1;
  FStrings := TStringList.Create;
  FPosition := 1;
end;

procedure THelpProject.AddString(Number: LongWord; const Text: string);
begin
  FWriter.AddContext(Number, Text);
  if FStrings.IndexOf(Text) >= 0 then exit;
  FStrings.Add(Text);
  Inc(FPosition, Length(Text) + 1);
end;

procedure THelpProject.AddContext(Number: LongWord; const Topic: string);
var
  Room: Integer;
begin
  Room := kStringBlock - FPosition mod kStringBlock;
  if (FStrings.IndexOf(Topic) < 0) and (Length(Topic) + 1 > Room) then
  begin
    { A context that nobody asks for fills the block. }
    Inc(FFillers);
    AddString(FFillers, StringOfChar('-', Room - 1));
  end;
  AddString(Number, Topic);
end;

procedure THelpProject.Take(const Item, Value: string);
var
  Blank: Integer;
begin
  case Item of
    'title': FWriter.Title := Value;
    'default': FWriter.DefaultPage := Value;
    'contents': FContents := Value;
    'index': FIndex := Value;
    'file': FWriter.FilesToCompress.Add(Value);
    'window':
      begin
        FWriter.Windows.Add(TCHMWindow.Create(Value));
        FWriter.DefaultWindow := Copy(Value, 1, Pos('=', Value) - 1);
      end;
    'context':
      begin
        Blank := Pos(' ', Value);
        AddContext(StrToInt(Copy(Value, 1, Blank - 1)), Copy(Value, Blank + 1));
      end;
  else
    raise Exception.Create('the project has an item ' + Item);
  end;
end;

function THelpProject.Load(const Name: string): TMemoryStream;
begin
  Result := TMemoryStream.Create;
  Result.LoadFromFile(FFolder + Name);
  Result.Position := 0;
end;

function THelpProject.GetFile(const DataName: string; out PathInChm, FileName: string; var Stream: TStream): Boolean;
begin
  PathInChm := '/' + ExtractFilePath(DataName);
  FileName := ExtractFileName(DataName);
  (Stream as TMemoryStream).LoadFromFile(FFolder + DataName);
  Stream.Position := 0;
  Result := False; { True would end the file here. }
end;

procedure THelpProject.AppendLists(Sender: TObject);
begin
  FWriter.AppendTOC(Load(FContents));
  FWriter.AppendIndex(Load(FIndex));
end;

procedure THelpProject.Run(const Project: string);
var
  Lines: TStringList;
  Line: string;
begin
  Lines := TStringList.Create;
  Lines.LoadFromFile(Project);
  for Line in Lines do
    Take(Copy(Line, 1, Pos(' ', Line) - 1), Copy(Line, Pos(' ', Line) + 1));
  FWriter.TocName := FContents;
  FWriter.IndexName := FIndex;
  FWriter.Execute;
  FWriter.Free;
end;

{ Where #SYSTEM keeps its time: behind its version and the head of that entry, before the entry of the compiler. }
function PlaceOfTime(const Bytes: string): Integer;
const
  kHead = #3#0#0#0#10#0#4#0;
begin
  Result := Pos(kHead, Bytes);
  while (Result > 0) and (Copy(Bytes, Result + Length(kHead) + 4, 2) <> #9#0) do
    Result := Pos(kHead, Bytes, Result + 1);
  if Result = 0 then raise Exception.Create('the file has no #SYSTEM');
  Inc(Result, Length(kHead));
end;

procedure PutNumber(var Bytes: string; Place: Integer; Number: LongWord);
var
  Index: Integer;
begin
  for Index := 0 to 3 do
    Bytes[Place + Index] := Chr((Number shr (8 * Index)) and 255);
end;

{ Two numbers stand for times. They become one that is made of all the rest. }
procedure ReplaceTimes(Output: TMemoryStream);
const
  kHeaderTime = 17;
var
  Bytes: string;
  Sum: LongWord;
  SystemTime, Index: Integer;
begin
  SetString(Bytes, PChar(Output.Memory), Output.Size);
  SystemTime := PlaceOfTime(Bytes);
  PutNumber(Bytes, kHeaderTime, 0);
  PutNumber(Bytes, SystemTime, 0);
  Sum := 2166136261;
  {$push}{$Q-}{$R-}
  for Index := 1 to Length(Bytes) do
    Sum := LongWord((Sum xor Ord(Bytes[Index])) * 16777619);
  {$pop}
  PutNumber(Bytes, kHeaderTime, Sum);
  PutNumber(Bytes, SystemTime, Sum);
  Output.Position := 0;
  Output.WriteBuffer(Bytes[1], Length(Bytes));
end;

procedure WriteHelp(const Folder, Project, FileName: string);
var
  Output: TMemoryStream;
begin
  Output := TMemoryStream.Create;
  THelpProject.Create(Folder, Output).Run(Project);
  ReplaceTimes(Output);
  Output.SaveToFile(FileName);
end;

procedure TListing.Tell(Name: string; Offset, Size, Section: Integer);
begin
  if (Name <> '') and (Name[Length(Name)] <> '/') then WriteLn('file ', Copy(Name, 2));
end;

procedure ListHelp(const FileName: string);
var
  Reader: TChmReader;
  Bytes, Strings: TMemoryStream;
  Index: Integer;
  Number, Place: LongWord;
  Topic: string;
begin
  Reader := TChmReader.Create(TFileStream.Create(FileName, fmOpenRead), True);
  WriteLn('title ', Reader.Title);
  WriteLn('default ', Reader.DefaultPage);
  WriteLn('contents ', Reader.TOCFile);
  WriteLn('index ', Reader.IndexFile);
  Reader.GetCompleteFileList(@TListing.Create.Tell, False);
  Bytes := Reader.GetObject('/#IVB');
  Strings := Reader.GetObject('/#STRINGS');
  for Index := 0 to (Bytes.Size - 4) div 8 - 1 do
  begin
    Bytes.Position := 4 + 8 * Index;
    Number := LEtoN(Bytes.ReadDWord);
    Place := LEtoN(Bytes.ReadDWord);
    Topic := PChar(Strings.Memory) + Place;
    if Place div kStringBlock <> (Place + Length(Topic)) div kStringBlock then
      raise Exception.Create('a topic goes across two blocks: ' + Topic);
    WriteLn('context ', Number, ' ', Topic);
  end;
end;

begin
  if (ParamCount = 2) and (ParamStr(1) = '--list') then
    ListHelp(ParamStr(2))
  else if ParamCount = 3 then
    WriteHelp(ParamStr(1), ParamStr(2), ParamStr(3))
  else
  begin
    WriteLn(StdErr, 'usage: chm_writer FOLDER PROJECT OUTPUT | chm_writer --list FILE');
    Halt(2);
  end;
end.
