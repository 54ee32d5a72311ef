; Each DLL registers itself, called by the regsvr32 of its own width.
!macro REGISTRATION_FUNCTIONS un
; Stack: the DLL, regsvr32, further switches. Leaves regsvr32's exit code, or "not started". The DLL that is not there
; and the regsvr32 that is not there leave "skipped".
Function ${un}RunRegSvr
  Exch $0
  Exch 1
  Exch $1
  Exch 2
  Exch $2
  ; Now $0 is the switches, $1 regsvr32, $2 the DLL.
  ${If} $1 == ""
  ${OrIfNot} ${FileExists} $2
    StrCpy $0 skipped
  ${Else}
    ClearErrors
    ExecWait '"$1" /s $0 $ScopeSwitches "$2"' $0
    ${If} ${Errors}
      StrCpy $0 "not started"
    ${EndIf}
  ${EndIf}
  Pop $2
  Exch
  Pop $1
  Exch $0
FunctionEnd

; Removes the entries of both DLLs. Leaves 1 on the stack when one could not be removed, else 0.
Function ${un}UnregisterBoth
  Push $0
  Push $1
  StrCpy $1 0
  !insertmacro UNREGISTER "${un}" "$INSTDIR\win64\KespCommObj.dll" $RegSvr64
  !insertmacro UNREGISTER "${un}" "$INSTDIR\win32\KespCommObj.dll" $RegSvr32
  StrCpy $0 $1
  Pop $1
  Exch $0
FunctionEnd
!macroend

!macro UNREGISTER un dll program
  Push "${dll}"
  Push "${program}"
  Push "/u"
  Call ${un}RunRegSvr
  Pop $0
  ${If} $0 == skipped
    ${Log} "Not unregistered: ${dll}"
  ${ElseIf} $0 == 0
    ${Log} "Unregistered: ${dll}"
  ${Else}
    ${Log} "Unregistering ${dll}: regsvr32 ended with $0"
    StrCpy $1 1
  ${EndIf}
!macroend
!insertmacro REGISTRATION_FUNCTIONS ""
!insertmacro REGISTRATION_FUNCTIONS "un."

; Stack: the DLL, regsvr32. Ends the installation when the DLL cannot be registered.
Function Register
  Exch $0
  Exch
  Exch $1
  Push $2
  Push $1
  Push $0
  Push ""
  Call RunRegSvr
  Pop $2
  ${If} $2 == skipped
    ${Log} "Copied but not registered, as this Windows does not run programs of that width: $1"
  ${ElseIf} $2 == 0
    ${Log} "Registered: $1"
  ${Else}
    ${Fail} "$1 could not be registered (regsvr32 ended with $2). The installation is taken back."
  ${EndIf}
  Pop $2
  Pop $1
  Pop $0
FunctionEnd
