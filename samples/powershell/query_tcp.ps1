# Not yet run. Asks an instrument on the network who it is.
#
#   powershell -File query_tcp.ps1 [-HostName 127.0.0.1] [-Port 10001] [-Command "*IDN?"]
param([string] $HostName = "127.0.0.1", [int16] $Port = 10001, [string] $Command = "*IDN?")

$csTCPIP = 1
$comm = New-Object -ComObject KespCommObj.CKespCommObj
$comm.CommStyle = $csTCPIP
$comm.CommObject.IPAddress = $HostName
$comm.CommObject.Port = $Port

# A [ref] argument gets the reply.
$result = ""
$succeeded = $comm.Query([ref] $result, $Command)
"command:     $Command"
if ($succeeded) {
    "reply:       $result"
} else {
    "source:      $($comm.CommErrorSource)"
    "description: $($comm.CommErrorDescr)"
}
"status:      $($comm.CommError)"
if (-not $succeeded) { exit 1 }
