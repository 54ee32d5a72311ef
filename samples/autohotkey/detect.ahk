; Not yet run. Looks for an instrument at an address, shows what is tried, and stops after so many commands.
;
;   detect.ahk [host [port [commands]]]
#Requires AutoHotkey v2.0

tcp := ComObject("KespCommObj.CKespTCP")
tcp.IPAddress := Argument(1, "127.0.0.1")
tcp.Port := Integer(Argument(2, "10001"))
Watcher.allowed := Integer(Argument(3, "2"))
ComObjConnect(tcp, Watcher)

; The answer comes back in a VARIANT that is passed by reference (VT_BYREF|VT_VARIANT).
memory := Buffer(24, 0)
result := ComValue(0x400C, memory.Ptr)
try {
    found := tcp.AutoDetect(result)
} catch OSError as failure {
    ; Its text has the number, the source and the description of the library.
    MsgBox(failure.Message)
    ExitApp(2)
}
ComObjConnect(tcp)
tcp.Uninitialize()
MsgBox(Watcher.text (found ? "reply: " result[] : "nothing found"))
; The text in it is freed.
result[] := 0
ExitApp(found ? 0 : 1)

; Each handler has one argument more than its event: the object that raised it.
class Watcher {
    static allowed := 2, tried := 0, text := ""

    static AutoDetectUpdate(cmd, address, port, abort, sender) {
        if this.tried = this.allowed {
            this.text .= "stopped before " cmd "`n"
            abort[] := true
        } else {
            this.tried += 1
            this.text .= "trying " cmd " at " address ":" port "`n"
        }
    }

    static AutoDetectEnd(sender) {
        this.text .= "ended after " this.tried " commands`n"
    }
}

Argument(position, otherwise) => A_Args.Length >= position ? A_Args[position] : otherwise
