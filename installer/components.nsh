; Which components are chosen: those that an earlier installation of the scope has, unless the command line says
; otherwise.

; A switch chooses the component of the section, /switch=0 leaves it out.
!macro CHOOSE_FROM_COMMAND_LINE switch section
  ${GetParameters} $0
  ClearErrors
  ${GetOptions} $0 "${switch}" $1
  ${IfNot} ${Errors}
    ${If} $1 == "=0"
      !insertmacro UnselectSection ${section}
    ${Else}
      !insertmacro SelectSection ${section}
    ${EndIf}
  ${EndIf}
!macroend

Function ChooseComponents
  ReadRegStr $0 SHCTX "${UNINSTALL_KEY}" "InstallLocation"
  ${If} $0 != ""
  ${AndIf} ${FileExists} "$0\simulator\kesp-sim.exe"
    !insertmacro SelectSection ${SECTION_PRACTICE}
  ${EndIf}
  ReadRegStr $0 SHCTX "Software\Classes\${KEY_OF_A_CLASS}" "AppID"
  ${If} $0 != ""
  ${AndIf} $Scope == machine
    !insertmacro SelectSection ${SECTION_SURROGATE}
  ${EndIf}
  !insertmacro CHOOSE_FROM_COMMAND_LINE "/PRACTICE" ${SECTION_PRACTICE}
  !insertmacro CHOOSE_FROM_COMMAND_LINE "/SURROGATE" ${SECTION_SURROGATE}
FunctionEnd
