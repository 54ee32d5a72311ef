; The Start menu's entries, but that of the practice instruments (practice.nsh), and the page that the wizard offers to
; open at its end.
!define MENU "$SMPROGRAMS\${PRODUCT}"

; The entry starts in the folder of the program, so no path is in it, and goes on to where the user may write.
!define CONSOLE '/k title kesp& set "PATH=%CD%;%PATH%"& cd /d "%USERPROFILE%"& \
echo kesp talks to instruments at this prompt. Begin with: kesp --help'

; ${MenuEntry} name target arguments folder
!define MenuEntry "!insertmacro MENU_ENTRY"
!macro MENU_ENTRY name target arguments folder
  SetOutPath "${folder}"
  ClearErrors
  CreateShortCut "${MENU}\${name}.lnk" "${target}" `${arguments}`
  ${If} ${Errors}
    ${Fail} "The entry in the Start menu could not be made. The installation is taken back."
  ${EndIf}
!macroend

!macro INSTALL_MENU
  CreateDirectory "${MENU}"
  !ifdef HAS_HELP
    ${MenuEntry} "Documents" "$INSTDIR\help\index.html" "" "$INSTDIR"
  !else
    ; Nothing opens a page in Markdown on a fresh Windows.
    ${MenuEntry} "Documents" "$WINDIR\notepad.exe" '"$INSTDIR\README.md"' "$INSTDIR"
  !endif
  ${MenuEntry} "Samples" "$INSTDIR\samples" "" "$INSTDIR"
  ${If} $HasWin64 = 1
    ${MenuEntry} "kesp console" "$SYSDIR\cmd.exe" `${CONSOLE}` "$INSTDIR\win64"
  ${Else}
    ${MenuEntry} "kesp console" "$SYSDIR\cmd.exe" `${CONSOLE}` "$INSTDIR\win32"
  ${EndIf}
!macroend

!macro REMOVE_MENU_ENTRY un name
  Push "${MENU}\${name}.lnk"
  Call ${un}DeleteFile
!macroend

!macro REMOVE_MENU un
  !insertmacro REMOVE_MENU_ENTRY "${un}" "Documents"
  !insertmacro REMOVE_MENU_ENTRY "${un}" "Samples"
  !insertmacro REMOVE_MENU_ENTRY "${un}" "kesp console"
  RMDir "${MENU}"
!macroend

; By the desktop's own process, which has no administrator's rights.
Function OpenFirstSteps
  !ifdef HAS_HELP
    Exec '"$WINDIR\explorer.exe" "$INSTDIR\help\index.html"'
  !else
    Exec '"$WINDIR\explorer.exe" "${MENU}\Documents.lnk"'
  !endif
FunctionEnd
