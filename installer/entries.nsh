; Whether the registry has the entries that lead to a DLL, or nothing of them any more: regsvr32 has ended with 0 and done
; nothing on a machine under load. Of a DLL that is gone, no regsvr32 can take them away.
!macro COUNT_ENTRY key owner
  ReadRegStr $3 SHCTX "Software\Classes\${key}" ""
  ${If} $3 == $1
    IntOp $2 $2 + 1
  ${EndIf}
!macroend

!macro DELETE_ENTRY key owner
  ReadRegStr $3 SHCTX "Software\Classes\${key}" ""
  ${If} $3 == $1
    DeleteRegKey SHCTX "Software\Classes\${owner}"
  ${EndIf}
!macroend

; ${function}: stack: the DLL, its width (64 or 32); ${action} is done to each entry of that width's view. Leaves $2,
; which is 0 before.
!macro ENTRIES_FUNCTION un function action
Function ${un}${function}
  Exch $0
  Exch
  Exch $1
  Push $2
  Push $3
  StrCpy $2 0
  ${If} $0 = 64
    SetRegView 64
    !insertmacro FOR_EACH_ENTRY ${action} 64
  ${Else}
    SetRegView 32
    !insertmacro FOR_EACH_ENTRY ${action} 32
  ${EndIf}
  Call ${un}UseOwnView
  StrCpy $0 $2
  Pop $3
  Pop $2
  Pop $1
  Exch $0
FunctionEnd
!macroend
; How many entries name the DLL.
!insertmacro ENTRIES_FUNCTION "" CountEntries COUNT_ENTRY
!insertmacro ENTRIES_FUNCTION "un." CountEntries COUNT_ENTRY
; Deletes the classes whose DLL it is, and its place in the type library.
!insertmacro ENTRIES_FUNCTION "" DeleteEntries DELETE_ENTRY
!insertmacro ENTRIES_FUNCTION "un." DeleteEntries DELETE_ENTRY
