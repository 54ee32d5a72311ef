{ What the samples share: arguments of the command line, and errors with the library's own words. }
unit kesp;

{$mode objfpc}{$H+}

interface

type
  TBody = procedure;

function Argument(Position: Integer; const Default: string): string;
{ Runs the program's body: 2 after an error. Objects in a procedure's variables are gone before the program ends COM. }
procedure Run(Body: TBody);

implementation

uses ComObj, SysUtils;

function Argument(Position: Integer; const Default: string): string;
begin
  Result := ParamStr(Position);
  if Result = '' then
    Result := Default;
end;

procedure Run(Body: TBody);
begin
  try
    Body();
    Exit;
  except
    on E: EOleException do
      WriteLn('error:       ', E.ErrorCode, ' ', E.Source, ' ', E.Message);
    on E: Exception do
      WriteLn('error:       ', E.Message);
  end;
  ExitCode := 2;
end;

end.
