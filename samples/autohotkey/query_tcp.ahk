; Not yet run. Asks an instrument on the network who it is.
;
;   query_tcp.ahk [host [port [command]]]
#Requires AutoHotkey v2.0
csTCPIP := 1

cmd := Argument(3, "*IDN?")
comm := ComObject("KespCommObj.CKespCommObj")
comm.CommStyle := csTCPIP
tcp := comm.CommObject
tcp.IPAddress := Argument(1, "127.0.0.1")
tcp.Port := Integer(Argument(2, "10001"))

; The reply comes back in a VARIANT that is passed by reference (VT_BYREF|VT_VARIANT).
memory := Buffer(24, 0)
result := ComValue(0x400C, memory.Ptr)
succeeded := comm.Query(result, cmd)
text := "command: " cmd "`n"
if succeeded
    text .= "reply: " result[] "`n"
else
    text .= "source: " comm.CommErrorSource "`ndescription: " comm.CommErrorDescr "`n"
MsgBox(text "status: " comm.CommError)
; The text in it is freed.
result[] := 0
ExitApp(succeeded ? 0 : 1)

Argument(position, otherwise) => A_Args.Length >= position ? A_Args[position] : otherwise
