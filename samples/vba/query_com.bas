' Not yet run. Asks an instrument at a COM port who it is.
'
'   In the Immediate window:  QueryCom 3, "9600"
Option Explicit

Public Sub QueryCom(Optional ByVal PortNumber As Integer = 1, Optional ByVal Baud As String = "9600", _
                    Optional ByVal Cmd As String = "*IDN?")
    Dim comm As New CKespCommObj
    Dim port As CKespCOMPort3
    Dim result As String
    comm.CommStyle = csRS232
    Set port = comm.CommObject
    port.Port = PortNumber
    If Not SetBaudRate(port, Baud) Then
        Debug.Print Baud & " is not a bit rate of this library"
        Exit Sub
    End If

    Debug.Print "command:     " & Cmd
    If comm.Query(result, Cmd) Then
        Debug.Print "reply:       " & result
    Else
        Debug.Print "source:      " & comm.CommErrorSource
        Debug.Print "description: " & comm.CommErrorDescr
    End If
    Debug.Print "status:      " & comm.CommError
End Sub

' The range comes first: a rate outside of it is refused. A rate is set by its number, which has the rate as its name.
Private Function SetBaudRate(ByVal port As CKespCOMPort3, ByVal Baud As String) As Boolean
    Dim rate As Long
    port.MaxBaudRate = br921600
    port.MinBaudRate = br150
    For rate = br150 To br921600
        If port.BaudRateName(rate) = Baud Then
            port.BaudRate = rate
            SetBaudRate = True
            Exit Function
        End If
    Next
End Function
