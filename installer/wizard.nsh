; What the user sees of the setup program and of the uninstaller.
!include nsDialogs.nsh

Var MachineButton
Var UserButton

!define MUI_ABORTWARNING
!insertmacro MUI_PAGE_WELCOME
!ifdef LICENSE_FILE
  !insertmacro MUI_PAGE_LICENSE "${LICENSE_FILE}"
!endif
Page custom ShowScopePage LeaveScopePage
!define MUI_COMPONENTSPAGE_SMALLDESC
!insertmacro MUI_PAGE_COMPONENTS
!define MUI_PAGE_CUSTOMFUNCTION_LEAVE LeaveDirectoryPage
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!define MUI_FINISHPAGE_SHOWREADME ""
!define MUI_FINISHPAGE_SHOWREADME_TEXT "Open the first steps"
!define MUI_FINISHPAGE_SHOWREADME_FUNCTION OpenFirstSteps
!insertmacro MUI_PAGE_FINISH
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_UNPAGE_FINISH
!insertmacro MUI_LANGUAGE "English"
!insertmacro MUI_FUNCTION_DESCRIPTION_BEGIN
  !insertmacro MUI_DESCRIPTION_TEXT ${SECTION_COMMON} "What programs need to talk to instruments."
  !insertmacro MUI_DESCRIPTION_TEXT ${SECTION_PRACTICE} "Simulated instruments, for work without hardware. Leave them \
out where real instruments are in use."
  !insertmacro MUI_DESCRIPTION_TEXT ${SECTION_SURROGATE} "For 64-bit programs that need a 32-bit driver, and for other \
computers (DCOM). For all users only."
!insertmacro MUI_FUNCTION_DESCRIPTION_END

Function ShowScopePage
  !insertmacro MUI_HEADER_TEXT "Users" "For whom shall the library be installed?"
  nsDialogs::Create 1018
  Pop $0
  ${NSD_CreateRadioButton} 0 10u 100% 12u "All users of this computer (as administrator)"
  Pop $MachineButton
  ${NSD_CreateRadioButton} 0 30u 100% 12u "Only for me"
  Pop $UserButton
  ${NSD_CreateLabel} 0 55u 100% 30u "Programs that run as administrator find the library only when it is installed \
for all users. Only for you, it is installed without an administrator's rights."
  Pop $0
  EnableWindow $UserButton $MayServeUser
  ${If} $Scope == machine
    ${NSD_Check} $MachineButton
  ${Else}
    ${NSD_Check} $UserButton
  ${EndIf}
  nsDialogs::Show
FunctionEnd

Function LeaveScopePage
  ${NSD_GetState} $UserButton $0
  ${If} $0 = ${BST_CHECKED}
    Call ChooseUser
  ${Else}
    Call ChooseMachine
  ${EndIf}
  Call AskAboutOtherScope
  Call AskAboutRightsOfAllPrograms
  Call ChooseComponents
  !insertmacro OFFER_SURROGATE
  ${If} $Scope == machine
  ${AndIf} $MayChangeMachine = 0
    Call BeginAgainAsAdministrator
  ${EndIf}
  Call AskAboutNewerVersion
  Call ChooseFolder
FunctionEnd

; Who does not allow it may choose again. /LOG= is not passed on: who starts the program without an administrator's rights
; shall not choose where it writes with them.
Function BeginAgainAsAdministrator
  StrCpy $0 "/ASKED "
  ${If} ${SectionIsSelected} ${SECTION_PRACTICE}
    StrCpy $0 "$0/PRACTICE "
  ${EndIf}
  ${If} ${SectionIsSelected} ${SECTION_SURROGATE}
    StrCpy $0 "$0/SURROGATE "
  ${EndIf}
  ${If} $WishedFolder != ""
    StrCpy $0 "$0/D=$WishedFolder"
  ${EndIf}
  ${StartAsAdministrator} $EXEPATH $0
  ${If} ${Errors}
    Abort
  ${EndIf}
  Quit
FunctionEnd

Function LeaveDirectoryPage
  Call UseFullFolder
  Call IsPlaceAllowed
  Pop $0
  ${If} $0 = 0
    MessageBox MB_OK|MB_ICONEXCLAMATION "${PLACE_REFUSED}"
    Abort
  ${EndIf}
FunctionEnd
