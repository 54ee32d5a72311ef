; The installation, and how it is taken back when it fails.
Var IsChanging ; 1 from the first change on, so that a failure before it takes nothing away

Section "-Earlier version"
  Call OpenLog
  ${Log} "Installing into $INSTDIR, scope: $Scope"
  Call RequireNoNewerVersion
  Call NoteOtherScope
  Call NoteRightsOfAllPrograms
  Call RequirePlace
  Call RequireNoSurrogateForAUser
  Call KeepApplication
  Call RemoveEarlierVersion
  StrCpy $IsChanging 1
SectionEnd

Section "Library, documents and samples" SECTION_COMMON
  SectionIn RO
  !insertmacro PAYLOAD_COMMON
SectionEnd

Section "-64-bit library" SECTION_WIN64
  !insertmacro PAYLOAD_WIN64
SectionEnd

Section "-32-bit library"
  !insertmacro PAYLOAD_WIN32
SectionEnd

Section "-Start menu"
  !insertmacro INSTALL_MENU
SectionEnd

Section /o "Practice instruments" SECTION_PRACTICE
  !insertmacro INSTALL_PRACTICE
SectionEnd

Section /o "Surrogate process" SECTION_SURROGATE
SectionEnd

Section "-Registration"
  WriteUninstaller "$INSTDIR\uninstall.exe"
  Call ChooseRegistration
  ${If} $HasWin64 = 1
    !insertmacro REGISTER "$INSTDIR\win64\KespCommObj.dll" $RegSvr64 64
  ${EndIf}
  !insertmacro REGISTER "$INSTDIR\win32\KespCommObj.dll" $RegSvr32 32
  Call BringApplicationBack
SectionEnd

Section "-Entry in Programs and Features"
  ; Into $0 the kilobytes of what is in the folder; $1 and $2 are the files and folders.
  ${GetSize} "$INSTDIR" "/S=0K" $0 $1 $2
  WriteRegStr SHCTX "${UNINSTALL_KEY}" "DisplayName" "${PRODUCT}"
  WriteRegStr SHCTX "${UNINSTALL_KEY}" "DisplayVersion" "${VERSION}"
  WriteRegStr SHCTX "${UNINSTALL_KEY}" "DisplayIcon" "$INSTDIR\uninstall.exe"
  WriteRegStr SHCTX "${UNINSTALL_KEY}" "Publisher" "${PUBLISHER}"
  WriteRegStr SHCTX "${UNINSTALL_KEY}" "InstallLocation" "$INSTDIR"
  WriteRegStr SHCTX "${UNINSTALL_KEY}" "UninstallString" '"$INSTDIR\uninstall.exe"'
  WriteRegStr SHCTX "${UNINSTALL_KEY}" "QuietUninstallString" '"$INSTDIR\uninstall.exe" /S'
  WriteRegDWORD SHCTX "${UNINSTALL_KEY}" "EstimatedSize" $0
  WriteRegDWORD SHCTX "${UNINSTALL_KEY}" "NoModify" 1
  WriteRegDWORD SHCTX "${UNINSTALL_KEY}" "NoRepair" 1
  ${Log} "Done"
  !insertmacro CLOSE_LOG "${INSTALLED_LOG}"
SectionEnd

Function .onInit
  Call LookAtWindows
  ${IfNot} ${AtLeastWin7}
    MessageBox MB_OK|MB_ICONSTOP "The ${PRODUCT} needs Windows 7 or later." /SD IDOK
    SetErrorLevel ${EXIT_OLD_WINDOWS}
    Quit
  ${EndIf}
  Call ChooseScopeFromCommandLine
  Call ChooseLogFromCommandLine
  Call ChooseComponents
  ${If} $HasWin64 = 0
    SectionSetFlags ${SECTION_WIN64} 0
  ${EndIf}
FunctionEnd

Function .onInstFailed
  ${If} $IsChanging = 1
    Call UnregisterBoth
    Pop $0
    Call RemoveInstallation
    ${Log} "Taken back"
  ${EndIf}
  !insertmacro CLOSE_LOG "${FAILED_LOG}"
FunctionEnd
