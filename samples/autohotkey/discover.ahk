; Not yet run. Finds the instruments on the network and asks each who it is.
;
;   discover.ahk
#Requires AutoHotkey v2.0
sckUDPProtocol := 1

tcp := ComObject("KespCommObj.CKespTCP")
; One broadcast to everybody, over UDP; what answers is asked over TCP.
tcp.Protocol := sckUDPProtocol
try {
    found := tcp.AutoDetect("")
} catch OSError as failure {
    ; Its text has the number, the source and the description of the library.
    MsgBox(failure.Message)
    ExitApp(2)
}
text := found ? "" : "nobody answered"
for instrument in tcp.Devices
    text .= instrument.IPAddress "  model " instrument.Model "  serial " instrument.Serial "`n"
MsgBox(text)
ExitApp(found ? 0 : 1)
