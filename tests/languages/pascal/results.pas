{ Reports the cases of the client matrix, one line each, as tests/languages/README.md describes. }
unit results;

{$mode objfpc}{$H+}

interface

type
  TCase = procedure;

{ Runs the case; an exception or a failed Check is its failure. }
procedure Show(const Name: string; Body: TCase);
procedure Check(const What: string; Holds: Boolean);
procedure Equal(const What, Found, Expected: UnicodeString); overload;
procedure Equal(const What: UnicodeString; Found, Expected: Int64); overload;

implementation

uses SysUtils;

procedure Show(const Name: string; Body: TCase);
begin
  try
    Body();
    WriteLn('PASS ', Name);
  except
    on E: Exception do
      WriteLn('FAIL ', Name, ': ', E.ClassName, ' ', StringReplace(E.Message, LineEnding, ' ', [rfReplaceAll]));
  end;
end;

procedure Check(const What: string; Holds: Boolean);
begin
  if not Holds then
    raise Exception.Create(What);
end;

procedure Equal(const What, Found, Expected: UnicodeString);
begin
  Check(Format('%s: "%s" instead of "%s"', [What, Found, Expected]), Found = Expected);
end;

procedure Equal(const What: UnicodeString; Found, Expected: Int64);
begin
  Check(Format('%s: %d instead of %d', [What, Found, Expected]), Found = Expected);
end;

end.
