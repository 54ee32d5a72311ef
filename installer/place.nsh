; Where an installation for all users may lie: in folders that only administrators may write to.
;
; What is registered for all users is loaded into the programs of all, administrators among them. A folder that is made
; below the root of a disk may be changed, and renamed, by everybody.

!macro IS_WITHIN path folder
  StrLen $2 "${folder}"
  StrCpy $2 ${path} $2
  ${If} $2 == "${folder}"
    StrCpy $0 1
  ${EndIf}
!macroend

!macro PLACE_FUNCTIONS un
; Leaves 1 on the stack when the folder named there is within Program Files, else 0.
Function ${un}IsInProgramFiles
  Exch $0
  Push $1
  Push $2
  ; Without "..", and with the marks that end a folder's name.
  System::Call 'kernel32::GetFullPathNameW(w r0, i ${NSIS_MAX_STRLEN}, w .r1, p 0)'
  StrCpy $0 0
  !insertmacro IS_WITHIN $1 "$PROGRAMFILES64\"
  !insertmacro IS_WITHIN $1 "$PROGRAMFILES32\"
  Pop $2
  Pop $1
  Exch $0
FunctionEnd

; Leaves 1 on the stack when the folder named there is $INSTDIR, in whatever spelling, else 0.
Function ${un}IsInstallationFolder
  Exch $0
  Push $1
  Push $2
  StrCpy $2 0
  ${If} $0 != ""
    ; Without "..", and with one mark at the end, however many are written.
    StrCpy $0 "$0\"
    StrCpy $1 "$INSTDIR\"
    System::Call 'kernel32::GetFullPathNameW(w r0, i ${NSIS_MAX_STRLEN}, w .r0, p 0)'
    System::Call 'kernel32::GetFullPathNameW(w r1, i ${NSIS_MAX_STRLEN}, w .r1, p 0)'
    ${If} $0 != ""
    ${AndIf} $0 == $1
      StrCpy $2 1
    ${EndIf}
  ${EndIf}
  StrCpy $0 $2
  Pop $2
  Pop $1
  Exch $0
FunctionEnd
!macroend
!insertmacro PLACE_FUNCTIONS ""
!insertmacro PLACE_FUNCTIONS "un."

; Leaves 1 on the stack when $INSTDIR is a place for the scope, else 0.
Function IsPlaceAllowed
  ${If} $Scope == user
    Push 1
  ${Else}
    Push $INSTDIR
    Call IsInProgramFiles
  ${EndIf}
FunctionEnd

!define PLACE_REFUSED "For all users, the library is installed within Program Files only, because every user may write \
to other folders."

Function RequirePlace
  Call IsPlaceAllowed
  Pop $0
  ${If} $0 = 0
    ${Fail} "${PLACE_REFUSED}"
  ${EndIf}
FunctionEnd
