' Not yet run. Asks an instrument on the network who it is.
'
'   In the Immediate window:  QueryTcp "192.168.0.10", 10001
Option Explicit

Public Sub QueryTcp(Optional ByVal Host As String = "127.0.0.1", Optional ByVal Port As Integer = 10001, _
                    Optional ByVal Cmd As String = "*IDN?")
    Dim comm As New CKespCommObj
    Dim tcp As CKespTCP
    Dim result As String
    comm.CommStyle = csTCPIP
    Set tcp = comm.CommObject
    tcp.IPAddress = Host
    tcp.Port = Port

    Debug.Print "command:     " & Cmd
    If comm.Query(result, Cmd) Then
        Debug.Print "reply:       " & result
    Else
        Debug.Print "source:      " & comm.CommErrorSource
        Debug.Print "description: " & comm.CommErrorDescr
    End If
    Debug.Print "status:      " & comm.CommError
End Sub
