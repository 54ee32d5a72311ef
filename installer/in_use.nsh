; Whether a program has a DLL loaded, which can then be neither replaced nor deleted.
!macro IN_USE_FUNCTIONS un
; The path is taken from the stack; 1 or 0 is left there. A file that does not exist is not in use.
Function ${un}IsInUse
  Exch $0
  Push $1
  ${If} ${FileExists} $0
    ClearErrors
    FileOpen $1 $0 a
    ${If} ${Errors}
      StrCpy $0 1
    ${Else}
      FileClose $1
      StrCpy $0 0
    ${EndIf}
  ${Else}
    StrCpy $0 0
  ${EndIf}
  Pop $1
  Exch $0
FunctionEnd

; The same for both DLLs of the installation in a folder.
Function ${un}IsLibraryInUse
  Exch $0
  Push $1
  Push "$0\win64\KespCommObj.dll"
  Call ${un}IsInUse
  Pop $1
  ${If} $1 = 0
    Push "$0\win32\KespCommObj.dll"
    Call ${un}IsInUse
    Pop $1
  ${EndIf}
  StrCpy $0 $1
  Pop $1
  Exch $0
FunctionEnd
!macroend
!insertmacro IN_USE_FUNCTIONS ""
!insertmacro IN_USE_FUNCTIONS "un."
