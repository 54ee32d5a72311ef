; For whom the library is installed: for all users of the machine, or for the present user alone.
!include FileFunc.nsh

Var Scope          ; machine or user
Var ScopeSwitches  ; what regsvr32 is told for it
Var WishedFolder   ; what /D= named; empty without it

!macro SCOPE_FUNCTIONS un
; SHCTX is from here on HKLM or HKCU.
Function ${un}ChooseMachine
  StrCpy $Scope machine
  StrCpy $ScopeSwitches ""
  SetShellVarContext all
FunctionEnd

Function ${un}ChooseUser
  StrCpy $Scope user
  StrCpy $ScopeSwitches "/n /i:user"
  SetShellVarContext current
FunctionEnd

; Ends the program when the scope is not one for its rights.
Function ${un}RequireRights
  ${If} $Scope == machine
  ${AndIf} $MayChangeMachine = 0
    MessageBox MB_OK|MB_ICONSTOP "For all users of this computer, start this program as administrator." /SD IDOK
    SetErrorLevel ${EXIT_NEEDS_ADMINISTRATOR}
    Quit
  ${ElseIf} $Scope == user
  ${AndIf} $MayServeUser = 0
    MessageBox MB_OK|MB_ICONSTOP "What is only for you is installed and removed without an administrator's rights, as \
any of your programs may write to its files. Start this program without them, or choose all users." /SD IDOK
    SetErrorLevel ${EXIT_FAILED}
    Quit
  ${EndIf}
FunctionEnd
!macroend
!insertmacro SCOPE_FUNCTIONS ""
!insertmacro SCOPE_FUNCTIONS "un."

; The usual folder of the scope, unless /D= named another.
Function ChooseFolder
  ${If} $WishedFolder != ""
    StrCpy $INSTDIR $WishedFolder
  ${ElseIf} $Scope == user
    StrCpy $INSTDIR "$LOCALAPPDATA\Programs\${FOLDER}"
  ${ElseIf} $HasWin64 = 1
    StrCpy $INSTDIR "$PROGRAMFILES64\${FOLDER}"
  ${Else}
    StrCpy $INSTDIR "$PROGRAMFILES32\${FOLDER}"
  ${EndIf}
  Call UseFullFolder
FunctionEnd

; Without ".." and what else Windows leaves out: the entries in the registry are compared with it as text.
Function UseFullFolder
  StrCpy $0 $INSTDIR
  System::Call 'kernel32::GetFullPathNameW(w r0, i ${NSIS_MAX_STRLEN}, w .r0, p 0)'
  ${If} $0 != ""
    StrCpy $INSTDIR $0
  ${EndIf}
FunctionEnd

; What the command line says: /USER for the present user. Who cannot install for all is not asked, unless silent:
; a script that forgot /USER shall not get another installation than it meant.
Function ChooseScopeFromCommandLine
  ; /D= was taken into $INSTDIR before anything ran.
  StrCpy $WishedFolder $INSTDIR
  Call LookAtRights
  Call ChooseMachine
  ${GetParameters} $0
  ClearErrors
  ${GetOptions} $0 "/USER" $1
  ${IfNot} ${Errors}
    Call ChooseUser
  ${ElseIf} $MayChangeMachine = 0
  ${AndIfNot} ${Silent}
    Call ChooseUser
  ${EndIf}
  Call RequireRights
  Call ChooseFolder
FunctionEnd

; Into the variable 1 when that registry's entry in Programs and Features is of this very folder, else 0.
!macro IS_LISTED root variable
  ReadRegStr ${variable} ${root} "${UNINSTALL_KEY}" "InstallLocation"
  Push ${variable}
  Call un.IsInstallationFolder
  Pop ${variable}
!macroend

; The scope that this very folder was installed for. All users' must be an administrator's word, and lie where only
; administrators write: what any program may write is not run with their rights.
Function un.ChooseScopeFromRegistry
  Call un.LookAtRights
  !insertmacro IS_LISTED HKLM $0
  !insertmacro IS_LISTED HKCU $1
  Push $INSTDIR
  Call un.IsInProgramFiles
  Pop $2
  ${If} $0 = 1
  ${AndIf} $2 = 1
    Call un.ChooseMachine
    Call un.AskForAdministrator
  ${ElseIf} $1 = 1
    Call un.ChooseUser
  ${Else}
    MessageBox MB_OK|MB_ICONSTOP "Nothing was removed: in $INSTDIR there is neither an installation of yours nor one \
for all users within Program Files. What another user installed, only that user can remove." /SD IDOK
    SetErrorLevel ${EXIT_FAILED}
    Quit
  ${EndIf}
  Call un.RequireRights
FunctionEnd

; Windows starts the uninstaller without an administrator's rights. It asks for them once: /ASKED says that it has, for
; a Windows that does not give them.
Function un.AskForAdministrator
  ${If} $MayChangeMachine = 0
  ${AndIfNot} ${Silent}
    ${un.GetParameters} $0
    ClearErrors
    ${un.GetOptions} $0 "/ASKED" $1
    ${If} ${Errors}
      ${StartAsAdministrator} "$INSTDIR\uninstall.exe" "/ASKED"
      ${If} ${Errors}
        SetErrorLevel ${EXIT_NEEDS_ADMINISTRATOR}
      ${EndIf}
      Quit
    ${EndIf}
  ${EndIf}
FunctionEnd
