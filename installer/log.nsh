; What is done is shown line by line; the setup program also writes it to a file.
;
; It is written in the setup program's own folder, which nobody else can reach, and copied at the end: of an
; installation that succeeded it is setup.log among what was installed, and leaves with it. After a failure for all users
; it goes to a folder of Windows: in a folder for temporary files another program might put a link to some other file in
; its place.
!define OPEN_LOG "$PLUGINSDIR\setup.log"
!define INSTALLED_LOG "$INSTDIR\setup.log"
!define FAILED_LOG "$FailedLogFolder\KespCommObj-setup.log"
Var LogFile
Var FailedLogFolder
Var WishedLog ; what /LOG= named; empty without it

; ${Log} text: a line of the log.
!define Log "!insertmacro LogLine"
!macro LogLine text
  DetailPrint `${text}`
  !ifndef __UNINSTALL__
    ; UTF-16, as paths may hold characters that the system's code page has not.
    FileWriteUTF16LE $LogFile `${text}$\r$\n`
  !endif
!macroend

; ${Fail} text: says it, with silence in silent mode, and ends the program; what was done is taken back.
!define Fail "!insertmacro FailWith"
!macro FailWith text
  ${Log} `${text}`
  MessageBox MB_OK|MB_ICONSTOP `${text}$\r$\n$\r$\nThe log is ${FAILED_LOG}` /SD IDOK
  SetErrorLevel ${EXIT_FAILED}
  Abort
!macroend

; /LOG=file has a copy of the log written there, however the run ends. A relative path begins where the program was
; started; later it would begin in the folder that is installed into.
Function ChooseLogFromCommandLine
  ${GetParameters} $0
  ClearErrors
  ${GetOptions} $0 "/LOG=" $WishedLog
  ${If} ${Errors}
    StrCpy $WishedLog ""
  ${ElseIf} $WishedLog != ""
    StrCpy $0 $WishedLog
    System::Call 'kernel32::GetFullPathNameW(w r0, i ${NSIS_MAX_STRLEN}, w .r0, p 0)'
    StrCpy $WishedLog $0
  ${EndIf}
FunctionEnd

; For all users, nothing is overwritten that somebody without an administrator's rights named.
Function CopyWishedLog
  Push $0
  StrCpy $0 0
  ${If} $Scope == machine
    StrCpy $0 1
  ${EndIf}
  ${If} $WishedLog != ""
    System::Call 'kernel32::CopyFileW(w "${OPEN_LOG}", w "$WishedLog", i r0)'
  ${EndIf}
  Pop $0
FunctionEnd

Function OpenLog
  StrCpy $FailedLogFolder $TEMP
  ${If} $Scope == machine
    StrCpy $FailedLogFolder "$WINDIR\Logs"
    CreateDirectory $FailedLogFolder
  ${EndIf}
  InitPluginsDir
  FileOpen $LogFile "${OPEN_LOG}" w
  FileWriteUTF16LE /BOM $LogFile "${PRODUCT} ${VERSION}$\r$\n"
  ${If} $Scope == machine
  ${AndIf} $WishedLog != ""
  ${AndIf} ${FileExists} $WishedLog
    ${Log} "$WishedLog exists and is not overwritten"
  ${EndIf}
FunctionEnd

; Closes the log and leaves it in that place.
!macro CLOSE_LOG place
  FileClose $LogFile
  Call CopyWishedLog
  System::Call 'kernel32::CopyFileW(w "${OPEN_LOG}", w "${place}", i 0)'
!macroend
