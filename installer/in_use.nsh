; Whether a program runs or has a DLL loaded, whose file can then be neither replaced nor deleted.
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

; Of the installation in the folder that is named on the stack: leaves the file that is in use there, nothing where none
; is.
Function ${un}FileInUse
  Exch $0
  Push $1
  Push $2
  StrCpy $2 ""
  ; kesp has the library loaded; it is named before that, as its user knows it.
  !insertmacro FIND_IN_USE "${un}" "win64\kesp.exe"
  !insertmacro FIND_IN_USE "${un}" "win32\kesp.exe"
  !insertmacro FIND_IN_USE "${un}" "win64\KespCommObj.dll"
  !insertmacro FIND_IN_USE "${un}" "win32\KespCommObj.dll"
  !insertmacro FIND_IN_USE "${un}" "simulator\kesp-sim.exe"
  StrCpy $0 $2
  Pop $2
  Pop $1
  Exch $0
FunctionEnd
!macroend

!macro FIND_IN_USE un file
  ${If} $2 == ""
    Push "$0\${file}"
    Call ${un}IsInUse
    Pop $1
    ${If} $1 = 1
      StrCpy $2 "$0\${file}"
    ${EndIf}
  ${EndIf}
!macroend

; What a message asks for.
!define CLOSE_USERS "Close the programs that talk to instruments, kesp and the practice instruments, then try again."
!insertmacro IN_USE_FUNCTIONS ""
!insertmacro IN_USE_FUNCTIONS "un."
