; Not yet run. Asks an instrument at a COM port who it is.
;
;   query_com.ahk [COM port number [bits per second [command]]]
#Requires AutoHotkey v2.0
csRS232 := 0, br150 := 0, br921600 := 13

cmd := Argument(3, "*IDN?")
comm := ComObject("KespCommObj.CKespCommObj")
comm.CommStyle := csRS232
port := comm.CommObject
port.Port := Integer(Argument(1, "1"))
; The range comes first: a rate outside of it is refused. A rate is set by its number, which has the rate as its name.
port.MaxBaudRate := br921600
port.MinBaudRate := br150
rate := br150
while rate <= br921600 && port.BaudRateName(rate) != Argument(2, "9600")
    rate += 1
if rate > br921600 {
    MsgBox(Argument(2, "9600") " is not a bit rate of this library")
    ExitApp(2)
}
port.BaudRate := rate

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
