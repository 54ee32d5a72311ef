{ Prints the unit that stands for a type library, as Lazarus' importer makes it: import_types KespCommObj.tlb }
program import_types;

{$mode objfpc}{$H+}

uses Classes, TypeLib;

var
  UnitName, PackageSource, RegistrationSource: string;
  Needed: TStringList;

begin
  Needed := TStringList.Create;
  Write(ImportTypelib(WideString(ParamStr(1)), UnitName, Needed, False, False, False, PackageSource,
    RegistrationSource));
end.
