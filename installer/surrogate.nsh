; The component "Surrogate process": the system's own process loads the library for programs of the other width, and for
; those of other machines when an administrator allows it. It has no files, only entries in the registry.

; /SURROGATE chooses it. Without it, none is offered, and that of an earlier installation leaves with that.
!macro CHOOSE_SURROGATE_FROM_COMMAND_LINE
  ${GetParameters} $0
  ClearErrors
  ${GetOptions} $0 "/SURROGATE" $1
  ${IfNot} ${Errors}
    !insertmacro SelectSection ${SECTION_SURROGATE}
  ${EndIf}
!macroend

; Fills $RegistrationSwitches.
!macro CHOOSE_REGISTRATION
  StrCpy $RegistrationSwitches $ScopeSwitches
  ${If} ${SectionIsSelected} ${SECTION_SURROGATE}
    StrCpy $RegistrationSwitches "/n /i:surrogate"
    ${If} $Scope == user
      StrCpy $RegistrationSwitches "/n /i:user,surrogate"
    ${EndIf}
    ${Log} "With the system's surrogate process"
  ${EndIf}
!macroend
