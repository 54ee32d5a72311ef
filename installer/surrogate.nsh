; The component "Surrogate process": the system's own process loads the library for programs of the other width, and for
; those of other machines when they are let in. It has no files, only entries in the registry: the machine's, because
; Windows does not read those of a user for it.
Var KeptApplication ; the file with what an administrator set of it (dcomcnfg); empty for none

; Fills $RegistrationSwitches.
Function ChooseRegistration
  StrCpy $RegistrationSwitches $ScopeSwitches
  ${If} ${SectionIsSelected} ${SECTION_SURROGATE}
    StrCpy $RegistrationSwitches "/n /i:surrogate"
    ${Log} "With the system's surrogate process"
  ${EndIf}
FunctionEnd

; In the wizard, the component cannot be chosen for one user.
!macro OFFER_SURROGATE
  ${If} $Scope == user
    !insertmacro UnselectSection ${SECTION_SURROGATE}
    !insertmacro SetSectionFlag ${SECTION_SURROGATE} ${SF_RO}
  ${Else}
    !insertmacro ClearSectionFlag ${SECTION_SURROGATE} ${SF_RO}
  ${EndIf}
!macroend

; A failure, as no program would get the library in that way.
Function RequireNoSurrogateForAUser
  ${If} $Scope == user
  ${AndIf} ${SectionIsSelected} ${SECTION_SURROGATE}
    ${Fail} "The surrogate process (/SURROGATE) takes an installation for all users: Windows reads its entries from those \
of the machine. Nothing was changed."
  ${EndIf}
FunctionEnd

; The uninstaller of the earlier installation removes the application with its permissions. They are written to setup's
; own folder, which nobody else can reach, and read again when the classes are registered.
Function KeepApplication
  StrCpy $KeptApplication ""
  ReadRegStr $0 SHCTX "${APPLICATION_KEY}" ""
  ${If} $0 != ""
  ${AndIf} $Scope == machine
  ${AndIf} ${SectionIsSelected} ${SECTION_SURROGATE}
    StrCpy $KeptApplication "$PLUGINSDIR\application.reg"
    nsExec::Exec '"$SYSDIR\reg.exe" export "HKLM\${APPLICATION_KEY}" "$KeptApplication" /y'
    Pop $0
    ${If} $0 != 0
      ${Log} "The permissions of the surrogate process could not be read (reg: $0)"
      StrCpy $KeptApplication ""
    ${EndIf}
  ${EndIf}
FunctionEnd

Function BringApplicationBack
  ${If} $KeptApplication != ""
    nsExec::Exec '"$SYSDIR\reg.exe" import "$KeptApplication"'
    Pop $0
    ${If} $0 == 0
      ${Log} "The surrogate process has its earlier permissions"
    ${Else}
      ${Log} "The permissions of the surrogate process are lost (reg: $0); set them again with dcomcnfg"
    ${EndIf}
  ${EndIf}
FunctionEnd
