; The uninstaller: removes what was installed, file by file, and nothing else.
Var EntriesRemain ; 1 when the DLLs' entries in the registry could not be removed, else 0

Function un.onInit
  Call un.LookAtWindows
  Call un.ChooseScopeFromRegistry
FunctionEnd

Section "Uninstall"
  Call un.OfferToWait
  Call un.UnregisterBoth
  Pop $EntriesRemain
  ${If} $EntriesRemain = 1
    SetErrorLevel ${EXIT_FAILED}
    ${IfNot} ${Cmd} `MessageBox MB_YESNO|MB_ICONEXCLAMATION \
      "Entries of the library in the registry could not be removed. Delete the files nevertheless?" /SD IDYES IDYES`
      Abort
    ${EndIf}
  ${EndIf}
  Call un.RemoveInstallation
  ${If} ${RebootFlag}
    ${Log} "What is in use is deleted when Windows starts the next time"
    SetErrorLevel ${EXIT_NEEDS_RESTART}
  ${ElseIf} $FilesRemain = 1
    SetErrorLevel ${EXIT_FILES_REMAIN}
    MessageBox MB_OK|MB_ICONEXCLAMATION \
      "The library is removed, but files in use remain in $INSTDIR. Delete them when the programs that use them have \
ended." \
      /SD IDOK
  ${EndIf}
  ${If} $EntriesRemain = 1
    SetErrorLevel ${EXIT_FAILED}
  ${EndIf}
SectionEnd

; Lets the user close the programs that use the installation. A silent run goes on.
Function un.OfferToWait
try:
  Push $INSTDIR
  Call un.FileInUse
  Pop $1
  ${If} $1 != ""
    ${Log} "In use: $1"
    StrCpy $0 "deletes the file when Windows starts the next time"
    ${If} $Scope == user
      StrCpy $0 "leaves the file in the folder"
    ${EndIf}
    MessageBox MB_ABORTRETRYIGNORE|MB_ICONEXCLAMATION \
      "$1 is in use. ${CLOSE_USERS} Ignore removes the library now and $0." \
      /SD IDIGNORE IDRETRY try IDIGNORE go_on
    SetErrorLevel ${EXIT_FAILED}
    Abort
go_on:
  ${EndIf}
FunctionEnd
