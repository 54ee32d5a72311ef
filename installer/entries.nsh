; Whether the registry has the entries that lead to a DLL, or nothing of them any more: regsvr32 has ended with 0 and done
; nothing on a machine under load.
!macro COUNT_ENTRY key
  ReadRegStr $3 SHCTX "Software\Classes\${key}" ""
  ${If} $3 == $1
    IntOp $2 $2 + 1
  ${EndIf}
!macroend

!macro ENTRIES_FUNCTIONS un
; Stack: the DLL, its width (64 or 32). Leaves how many entries of that width's view name it.
Function ${un}CountEntries
  Exch $0
  Exch
  Exch $1
  Push $2
  Push $3
  StrCpy $2 0
  ${If} $0 = 64
    SetRegView 64
    !insertmacro FOR_EACH_ENTRY COUNT_ENTRY 64
  ${Else}
    SetRegView 32
    !insertmacro FOR_EACH_ENTRY COUNT_ENTRY 32
  ${EndIf}
  Call ${un}UseOwnView
  StrCpy $0 $2
  Pop $3
  Pop $2
  Pop $1
  Exch $0
FunctionEnd
!macroend
!insertmacro ENTRIES_FUNCTIONS ""
!insertmacro ENTRIES_FUNCTIONS "un."
