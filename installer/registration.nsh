; Each DLL registers itself, called by the regsvr32 of its own width. What it says is checked by reading the registry.
Var RegistrationSwitches ; what regsvr32 is told to register for the scope, with or without the surrogate process

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
    ExecWait '"$1" /s $0 "$2"' $0
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
  Push $2
  StrCpy $1 0
  !insertmacro UNREGISTER "${un}" "$INSTDIR\win64\KespCommObj.dll" $RegSvr64 64
  !insertmacro UNREGISTER "${un}" "$INSTDIR\win32\KespCommObj.dll" $RegSvr32 32
  StrCpy $0 $1
  Pop $2
  Pop $1
  Exch $0
FunctionEnd
!macroend

; Into $0 regsvr32's answer, into $2 how many entries there are then.
!macro TRY_REGSVR un dll program switches bits
  Push "${dll}"
  Push "${program}"
  Push "${switches}"
  Call ${un}RunRegSvr
  Pop $0
  Push "${dll}"
  Push ${bits}
  Call ${un}CountEntries
  Pop $2
!macroend

!macro UNREGISTER un dll program bits
  !insertmacro TRY_REGSVR "${un}" "${dll}" "${program}" "/u $ScopeSwitches" ${bits}
  ${If} $0 == 0
  ${AndIf} $2 > 0
    ${Log} "regsvr32 left $2 entries of ${dll}; once more"
    !insertmacro TRY_REGSVR "${un}" "${dll}" "${program}" "/u $ScopeSwitches" ${bits}
  ${EndIf}
  ${If} $0 == skipped
  ${AndIf} $2 > 0
    ${Log} "Deleting $2 entries of ${dll}, which is gone"
    Push "${dll}"
    Push ${bits}
    Call ${un}DeleteEntries
    Pop $2
    Push "${dll}"
    Push ${bits}
    Call ${un}CountEntries
    Pop $2
  ${EndIf}
  ${If} $2 > 0
    ${Log} "Not unregistered: $2 entries of ${dll} remain (regsvr32: $0)"
    StrCpy $1 1
  ${ElseIf} $0 == skipped
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

; Ends the installation when the DLL cannot be registered. Changes $0 and $2.
!macro REGISTER dll program bits
  !insertmacro TRY_REGSVR "" "${dll}" "${program}" "$RegistrationSwitches" ${bits}
  ${If} $0 == 0
  ${AndIf} $2 < ${ENTRIES_OF_A_LIBRARY}
    ${Log} "regsvr32 made $2 of ${ENTRIES_OF_A_LIBRARY} entries of ${dll}; once more"
    !insertmacro TRY_REGSVR "" "${dll}" "${program}" "$RegistrationSwitches" ${bits}
  ${EndIf}
  ${If} $0 == skipped
    ${Log} "Copied but not registered, as this Windows does not run programs of that width: ${dll}"
  ${ElseIf} $0 != 0
    ${Fail} "${dll} could not be registered (regsvr32 ended with $0). The installation is taken back."
  ${ElseIf} $2 < ${ENTRIES_OF_A_LIBRARY}
    ${Fail} "${dll} could not be registered: regsvr32 made $2 of ${ENTRIES_OF_A_LIBRARY} entries. The installation is \
taken back."
  ${Else}
    ${Log} "Registered: ${dll}"
  ${EndIf}
!macroend
