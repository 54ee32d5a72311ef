; Which Windows this is: what of the library it can use, and where its registration programs are.
Var HasWin64     ; 1 where programs for x64 are at home, else 0
Var RegSvr64     ; the regsvr32 for 64-bit DLLs; empty where there is none
Var RegSvr32     ; the regsvr32 for 32-bit DLLs; empty where there is none

!macro WINDOWS_FUNCTIONS un
; The registry functions see the registry of the system's own width.
Function ${un}UseOwnView
  ${If} $HasWin64 = 1
    SetRegView 64
  ${Else}
    SetRegView 32
  ${EndIf}
FunctionEnd

; Fills the three, and begins with that view of the registry.
Function ${un}LookAtWindows
  StrCpy $HasWin64 0
  StrCpy $RegSvr64 ""
  StrCpy $RegSvr32 "$SYSDIR\regsvr32.exe"
  ; A Windows on ARM counts as a 32-bit one: its own regsvr32 is for another processor than our 64-bit DLL.
  ${If} ${IsNativeAMD64}
    StrCpy $HasWin64 1
    ; A 32-bit program sees the 64-bit system folder under another name.
    !if ${NSIS_PTR_SIZE} > 4
      StrCpy $RegSvr64 "$SYSDIR\regsvr32.exe"
    !else
      StrCpy $RegSvr64 "$WINDIR\Sysnative\regsvr32.exe"
    !endif
    StrCpy $RegSvr32 "$WINDIR\SysWOW64\regsvr32.exe"
  ${EndIf}
  Call ${un}UseOwnView
  ; A server may be without its 32-bit half.
  ${IfNot} ${FileExists} $RegSvr32
    StrCpy $RegSvr32 ""
  ${EndIf}
FunctionEnd
!macroend
!insertmacro WINDOWS_FUNCTIONS ""
!insertmacro WINDOWS_FUNCTIONS "un."
