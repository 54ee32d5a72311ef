; What is installed already: a newer version, which is not replaced unasked, and the library in the other scope.
!include WordFunc.nsh

Var NewerVersion ; that is installed in this scope; empty for none

Function LookForNewerVersion
  StrCpy $NewerVersion ""
  ReadRegStr $0 SHCTX "${UNINSTALL_KEY}" "DisplayVersion"
  ${If} $0 != ""
    ${VersionCompare} $0 "${VERSION}" $1
    ${If} $1 = 1
      StrCpy $NewerVersion $0
    ${EndIf}
  ${EndIf}
FunctionEnd

; A silent run replaces a newer version when /DOWNGRADE says so.
Function RequireNoNewerVersion
  Call LookForNewerVersion
  ${GetParameters} $0
  ClearErrors
  ${GetOptions} $0 "/DOWNGRADE" $1
  ${If} ${Errors}
  ${AndIf} $NewerVersion != ""
  ${AndIf} ${Silent}
    ${Log} "Version $NewerVersion is installed, which is newer. Nothing was changed; /DOWNGRADE replaces it."
    SetErrorLevel ${EXIT_NEWER_VERSION}
    Abort
  ${EndIf}
  ${If} $NewerVersion != ""
    ${Log} "Replacing version $NewerVersion, which is newer"
  ${EndIf}
FunctionEnd

; Leaves in $0 where the library is installed in the other scope; empty for nowhere.
Function LookAtOtherScope
  ${If} $Scope == user
    ReadRegStr $0 HKLM "${UNINSTALL_KEY}" "InstallLocation"
  ${Else}
    ReadRegStr $0 HKCU "${UNINSTALL_KEY}" "InstallLocation"
  ${EndIf}
FunctionEnd

!define BOTH_SCOPES "The library is also installed in $0. With both, your programs use the one that is installed for you \
alone, and programs that run as administrator the one for all users."

Function NoteOtherScope
  Call LookAtOtherScope
  ${If} $0 != ""
    ${Log} "${BOTH_SCOPES}"
  ${EndIf}
FunctionEnd

; In the wizard, when the scope is chosen: who says no chooses again.
Function AskAboutOtherInstallations
  Call LookForNewerVersion
  ${If} $NewerVersion != ""
    MessageBox MB_YESNO|MB_ICONEXCLAMATION|MB_DEFBUTTON2 \
      "Version $NewerVersion is installed, which is newer than ${VERSION}. Replace it with the older one?" IDYES +2
    Abort
  ${EndIf}
  Call LookAtOtherScope
  ${If} $0 != ""
    MessageBox MB_OKCANCEL|MB_ICONEXCLAMATION "${BOTH_SCOPES} It is simpler to uninstall one of them. Go on?" IDOK +2
    Abort
  ${EndIf}
FunctionEnd
