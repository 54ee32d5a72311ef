; What this process may do, and how one with an administrator's rights is started.
Var MayChangeMachine ; 1 with an administrator's rights, else 0
Var MayServeUser     ; 0 where other programs of this user have fewer rights than this one, else 1

!macro RIGHTS_FUNCTIONS un
; With administrator's rights beside programs without them, nothing may be run or loaded that those can write, which is
; everything in the user's own folders. Where all programs have these rights (no User Account Control), they have
; nothing to gain.
Function ${un}LookAtRights
  StrCpy $MayChangeMachine 0
  StrCpy $MayServeUser 1
  UserInfo::GetAccountType
  Pop $0
  ${If} $0 == Admin
    StrCpy $MayChangeMachine 1
  ${EndIf}
  ; With TOKEN_QUERY, TokenElevationType: 1 all rights that the user has, 2 more than other programs, 3 fewer.
  StrCpy $1 0
  System::Call 'advapi32::OpenProcessToken(p -1, i 8, *p .r0) i .r2'
  ${If} $2 <> 0
    System::Call 'advapi32::GetTokenInformation(p r0, i 18, *i .r1, i 4, *i .r3)'
    System::Call 'kernel32::CloseHandle(p r0)'
  ${EndIf}
  ${If} $1 = 3
    StrCpy $MayChangeMachine 0
  ${ElseIf} $1 <> 1
    StrCpy $MayServeUser 0
  ${EndIf}
FunctionEnd
!macroend
!insertmacro RIGHTS_FUNCTIONS ""
!insertmacro RIGHTS_FUNCTIONS "un."

; ${StartAsAdministrator} program arguments: leaves the error flag when the user does not allow it.
!define StartAsAdministrator "!insertmacro START_AS_ADMINISTRATOR"
!macro START_AS_ADMINISTRATOR program arguments
  ClearErrors
  ExecShell "runas" "${program}" "${arguments}"
!macroend
