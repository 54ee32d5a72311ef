; The component "Practice instruments": the simulator, and its entry in the Start menu.
!define PRACTICE_LINK "${MENU}\Practice instrument.lnk"

; The console of the entry stays open when the instrument has ended, so that an error can be read. No path is in it, and
; it is short enough for the box in which Windows shows it (260 characters).
!define PRACTICE_CONSOLE '/k title Practice instrument at 127.0.0.1 port 10001& \
echo A client queries it with CommStyle 1, IPAddress 127.0.0.1, Port 10001, command *IDN?& \
echo Ctrl-C ends it. After that, .\kesp-sim --help tells what else it plays.& \
.\kesp-sim --port 10001'

; Where programs of both widths run, the 64-bit simulator is enough; clients of both reach it. A driver is for clients
; of its own width, and lies in a folder in which none of them looks for it (simulator/gpib/README.txt).
!macro INSTALL_PRACTICE
  !insertmacro PAYLOAD_PRACTICE
  ${If} $HasWin64 = 1
    !insertmacro PAYLOAD_PRACTICE64
  ${Else}
    !insertmacro PAYLOAD_PRACTICE32
  ${EndIf}
  CreateDirectory "${MENU}"
  ; The entry starts in this folder.
  SetOutPath "$INSTDIR\simulator"
  ClearErrors
  CreateShortCut "${PRACTICE_LINK}" "$SYSDIR\cmd.exe" `${PRACTICE_CONSOLE}` "$INSTDIR\simulator\kesp-sim.exe"
  ${If} ${Errors}
    ${Fail} "The entry in the Start menu could not be made. The installation is taken back."
  ${EndIf}
!macroend

!macro REMOVE_PRACTICE_MENU un
  Push "${PRACTICE_LINK}"
  Call ${un}DeleteFile
!macroend
