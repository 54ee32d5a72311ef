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

; Where User Account Control is off, and for the built-in Administrator, all programs have an administrator's rights, and
; COM shows those what is registered for all users only.
!define USELESS_FOR_ADMINISTRATORS "Your programs run with an administrator's rights, and such programs find the library \
only when it is installed for all users."

Function NoteRightsOfAllPrograms
  ${If} $Scope == user
  ${AndIf} $MayChangeMachine = 1
    ${Log} "${USELESS_FOR_ADMINISTRATORS}"
  ${EndIf}
FunctionEnd

Function AskAboutRightsOfAllPrograms
  ${If} $Scope == user
  ${AndIf} $MayChangeMachine = 1
    MessageBox MB_OKCANCEL|MB_ICONEXCLAMATION "${USELESS_FOR_ADMINISTRATORS} Go on?" IDOK +2
    Abort
  ${EndIf}
FunctionEnd

Function NoteOtherScope
  Call LookAtOtherScope
  ${If} $0 != ""
    ${Log} "${BOTH_SCOPES}"
  ${EndIf}
FunctionEnd

; In the wizard, when the scope is chosen: who says no chooses again.
Function AskAboutNewerVersion
  Call LookForNewerVersion
  ${If} $NewerVersion != ""
    MessageBox MB_YESNO|MB_ICONEXCLAMATION|MB_DEFBUTTON2 \
      "Version $NewerVersion is installed, which is newer than ${VERSION}. Replace it with the older one?" IDYES +2
    Abort
  ${EndIf}
FunctionEnd

; Before an administrator's rights are asked for: with them, the program may run as another user, who is asked about an
; installation of his own. /ASKED says that it was done.
Function AskAboutOtherScope
  ${GetParameters} $0
  ClearErrors
  ${GetOptions} $0 "/ASKED" $1
  ${IfNot} ${Errors}
    Return
  ${EndIf}
  Call LookAtOtherScope
  ${If} $0 != ""
    MessageBox MB_OKCANCEL|MB_ICONEXCLAMATION "${BOTH_SCOPES} It is simpler to uninstall one of them. Go on?" IDOK +2
    Abort
  ${EndIf}
FunctionEnd
