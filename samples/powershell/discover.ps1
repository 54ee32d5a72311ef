# Not yet run. Finds the instruments on the network and asks each who it is.
#
#   powershell -File discover.ps1
$sckUDPProtocol = 1
$tcp = New-Object -ComObject KespCommObj.CKespTCP
# One broadcast to everybody, over UDP; what answers is asked over TCP.
$tcp.Protocol = $sckUDPProtocol
$nothing = ""
try {
    $found = $tcp.AutoDetect([ref] $nothing)
} catch {
    $failure = $_.Exception.GetBaseException()
    "error:       $($failure.HResult)"
    "source:      $($failure.Source)"
    "description: $($failure.Message)"
    exit 2
}
foreach ($instrument in $tcp.Devices) {
    "instrument:  $($instrument.IPAddress)  model $($instrument.Model)  serial $($instrument.Serial)"
}
if (-not $found) { "nobody answered"; exit 1 }
