; Deleting what was installed, by the uninstaller and when an installation is taken back.
Var FilesRemain ; 1 when a file could not be deleted and will not be

!macro REMOVAL_FUNCTIONS un
; Deletes the file named on the stack. One that is in use is renamed, so that it is out of the way of a later
; installation, and deleted when Windows starts the next time; only an administrator can have that done, so for one user
; it stays.
Function ${un}DeleteFile
  Exch $0
  Push $1
  ClearErrors
  Delete $0
  ${If} ${Errors}
    ${If} $Scope == user
      StrCpy $FilesRemain 1
      ${Log} "In use, not deleted: $0"
    ${Else}
      ; In the same folder, as a file in use cannot move to another disk.
      ${GetParent} $0 $1
      GetTempFileName $1 $1
      Delete $1
      ClearErrors
      Rename $0 $1
      ${If} ${Errors}
        StrCpy $1 $0
      ${EndIf}
      Delete /REBOOTOK $1
      ${Log} "In use: $0"
    ${EndIf}
  ${EndIf}
  Pop $1
  Pop $0
FunctionEnd

; Deletes the folder named on the stack when it is empty, or will be.
Function ${un}DeleteFolder
  Exch $0
  ${If} ${RebootFlag}
    RMDir /REBOOTOK $0
  ${Else}
    RMDir $0
  ${EndIf}
  Pop $0
FunctionEnd

; Everything in $INSTDIR that the setup program put there, and the entry in Programs and Features.
Function ${un}RemoveInstallation
  ; Windows does not delete the current folder.
  SetOutPath $TEMP
  Push "${INSTALLED_LOG}"
  Call ${un}DeleteFile
  ; Not one for the next start: called by a newer setup program it runs from this file, which is deleted there.
  Delete "$INSTDIR\uninstall.exe"
  !insertmacro PAYLOAD_REMOVE "${un}"
  !insertmacro REMOVE_PRACTICE_MENU "${un}"
  !insertmacro REMOVE_MENU "${un}"
  Push $INSTDIR
  Call ${un}DeleteFolder
  ; The publisher's folder, unless others are in it or /D= chose a place of its own.
  ${GetParent} $INSTDIR $0
  ${GetFileName} $0 $1
  ${If} $1 == "${PUBLISHER}"
    RMDir $0
  ${EndIf}
  DeleteRegKey SHCTX "${UNINSTALL_KEY}"
FunctionEnd
!macroend
!insertmacro REMOVAL_FUNCTIONS ""
!insertmacro REMOVAL_FUNCTIONS "un."
