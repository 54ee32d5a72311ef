# Not yet run. Asks an instrument at a COM port who it is.
#
#   powershell -File query_com.ps1 [-Port 1] [-Baud 9600] [-Command "*IDN?"]
param([int16] $Port = 1, [string] $Baud = "9600", [string] $Command = "*IDN?")

$csRS232 = 0
$br150 = 0
$br921600 = 13
$comm = New-Object -ComObject KespCommObj.CKespCommObj
$comm.CommStyle = $csRS232
$transport = $comm.CommObject
$transport.Port = $Port
# The range comes first: a rate outside of it is refused. A rate is set by its number, which has the rate as its name.
$transport.MaxBaudRate = $br921600
$transport.MinBaudRate = $br150
$rate = $br150..$br921600 | Where-Object { $transport.BaudRateName($_) -eq $Baud }
if ($null -eq $rate) { "$Baud is not a bit rate of this library"; exit 2 }
$transport.BaudRate = $rate

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
