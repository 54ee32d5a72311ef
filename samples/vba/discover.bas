' Not yet run. Finds the instruments on the network and asks each who it is.
'
'   In the Immediate window:  Discover
Option Explicit

Public Sub Discover()
    Dim tcp As New CKespTCP
    Dim instrument As CInstrument
    Dim nothingThere As String
    Dim found As Boolean
    ' One broadcast to everybody, over UDP; what answers is asked over TCP.
    tcp.Protocol = sckUDPProtocol
    On Error GoTo Failed
    found = tcp.AutoDetect(nothingThere)
    For Each instrument In tcp.Devices
        Debug.Print "instrument:  " & instrument.IPAddress & "  model " & instrument.Model & _
                    "  serial " & instrument.Serial
    Next
    If Not found Then Debug.Print "nobody answered"
    Exit Sub
Failed:
    Debug.Print "error:       " & Err.Number
    Debug.Print "source:      " & Err.Source
    Debug.Print "description: " & Err.Description
End Sub
