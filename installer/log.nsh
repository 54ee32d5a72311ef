; What is done is shown line by line; the setup program also writes it to a file.
;
; While it works, and after a failure, the file is KespCommObj-setup.log in the folder for temporary files; of an
; installation that succeeded it is setup.log among what was installed, and leaves with it.
!define TEMPORARY_LOG "$TEMP\KespCommObj-setup.log"
!define INSTALLED_LOG "$INSTDIR\setup.log"
Var LogFile

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
  MessageBox MB_OK|MB_ICONSTOP `${text}$\r$\n$\r$\nThe log is ${TEMPORARY_LOG}` /SD IDOK
  SetErrorLevel ${EXIT_FAILED}
  Abort
!macroend

Function OpenLog
  FileOpen $LogFile "${TEMPORARY_LOG}" w
  FileWriteUTF16LE /BOM $LogFile "${PRODUCT} ${VERSION}$\r$\n"
FunctionEnd

; The log joins what was installed.
Function KeepLog
  FileClose $LogFile
  Delete "${INSTALLED_LOG}"
  Rename "${TEMPORARY_LOG}" "${INSTALLED_LOG}"
FunctionEnd
