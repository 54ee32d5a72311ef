# Not yet run. Looks for an instrument at an address, shows what is tried, and stops after so many commands.
#
#   powershell -File detect.ps1 [-HostName 127.0.0.1] [-Port 10001] [-Commands 2]
param([string] $HostName = "127.0.0.1", [int16] $Port = 10001, [int] $Commands = 2)

# Register-ObjectEvent runs its block too late to set Abort, so the handler is a few lines of C#.
Add-Type -TypeDefinition @'
using System;
using System.Runtime.InteropServices;
using System.Runtime.InteropServices.ComTypes;

[ComImport, Guid("14388762-eff3-4ea3-842b-dcf436c0ded9"), InterfaceType(ComInterfaceType.InterfaceIsIDispatch)]
public interface IKespTcpEvents {
    [DispId(13)] void AutoDetectUpdate(string cmd, string address, short port, ref bool abort);
    [DispId(15)] void AutoDetectEnd();
}

[ComVisible(true), ClassInterface(ClassInterfaceType.None)]
public class KespWatcher : IKespTcpEvents {
    int allowed, tried;
    public static KespWatcher Connect(object tcp, int allowed) {
        var watcher = new KespWatcher { allowed = allowed };
        Guid events = typeof(IKespTcpEvents).GUID;
        IConnectionPoint point;
        int cookie;
        ((IConnectionPointContainer)tcp).FindConnectionPoint(ref events, out point);
        point.Advise(watcher, out cookie);
        return watcher;
    }
    public void AutoDetectUpdate(string cmd, string address, short port, ref bool abort) {
        abort = tried == allowed;
        if (!abort) tried++;
        Console.WriteLine(abort ? "stopped:     before {0}" : "trying:      {0} at {1}:{2}", cmd, address, port);
    }
    public void AutoDetectEnd() { Console.WriteLine("ended:       after {0} commands", tried); }
}
'@

$tcp = New-Object -ComObject KespCommObj.CKespTCP
$tcp.IPAddress = $HostName
$tcp.Port = $Port
$watcher = [KespWatcher]::Connect($tcp, $Commands)
$result = ""
try {
    $found = $tcp.AutoDetect([ref] $result)
} catch {
    "error:       $($_.Exception.GetBaseException().HResult)"
    "description: $($_.Exception.GetBaseException().Message)"
    exit 2
}
$null = $tcp.Uninitialize()
if ($found) { "reply:       $result" } else { "nothing found"; exit 1 }
