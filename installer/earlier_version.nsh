; An earlier installation of the same scope leaves by its own uninstaller before the new one comes.
Function RemoveEarlierVersion
  ReadRegStr $0 SHCTX "${UNINSTALL_KEY}" "InstallLocation"
  ${If} $0 == ""
  ${OrIfNot} ${FileExists} "$0\uninstall.exe"
    Return
  ${EndIf}
  ${If} $Scope == machine
    Push $0
    Call IsInProgramFiles
    Pop $1
    ${If} $1 = 0
      ; Its uninstaller may be anybody's.
      ${Log} "Not removed: the earlier installation in $0, a folder that every user may write to"
      MessageBox MB_OK|MB_ICONEXCLAMATION \
        "The earlier installation in $0 is replaced, but its files stay, as every user may write to that folder. \
Delete it." \
        /SD IDOK
      Return
    ${EndIf}
  ${EndIf}
  Call RequireNotInUse
  ${Log} "Removing the earlier installation in $0"
  ; With _?= the uninstaller works where it lies, so that its end can be awaited; it cannot delete itself then.
  ; One for this user is not to ask for an administrator's rights, as those of earlier versions did.
  ${If} $Scope == user
    System::Call 'kernel32::SetEnvironmentVariableW(w "__COMPAT_LAYER", w "RunAsInvoker")'
  ${EndIf}
  ClearErrors
  ExecWait '"$0\uninstall.exe" /S _?=$0' $1
  ${If} ${Errors}
    ${Fail} "The uninstaller of the earlier installation in $0 could not be started."
  ${ElseIf} $1 = ${EXIT_NEEDS_RESTART}
    ; Where Windows could not rename a file in use, it deletes it by its name, and would delete a new one of that name.
    Push $0
    Call IsInstallationFolder
    Pop $2
    ${If} $2 = 1
      ${Fail} "The earlier installation in $0 is removed, but programs are using files of it, which Windows deletes \
when it starts the next time. Restart Windows, then install again."
    ${EndIf}
    ${Log} "Files in use in $0 are deleted when Windows starts the next time"
  ${ElseIf} $1 = ${EXIT_FILES_REMAIN}
    ${Log} "Files in use remain in $0"
  ${ElseIf} $1 != 0
    ${Fail} "The earlier installation in $0 could not be removed (its uninstaller ended with $1)."
  ${EndIf}
  Delete "$0\uninstall.exe"
  RMDir $0
FunctionEnd

; Asks for the programs to be closed that use the installation in $0; a silent run fails.
Function RequireNotInUse
try:
  Push $0
  Call FileInUse
  Pop $1
  ${If} $1 != ""
    MessageBox MB_RETRYCANCEL|MB_ICONEXCLAMATION "$1 is in use. ${CLOSE_USERS}" /SD IDCANCEL IDRETRY try
    ${Fail} "$1 is in use. Nothing was changed."
  ${EndIf}
FunctionEnd
