// JScript's search for the instruments of three-instruments.json.
var sckTCPProtocol = 0, sckUDPProtocol = 1, dlSCPIOnly = 1;
var failures = 0;

function check(what, found, expected) {
  if (found === expected) return;
  failures++;
  WScript.Echo("FAIL: " + what + ": " + found + " instead of " + expected);
}

function found(devices) {
  var texts = [];
  for (var all = new Enumerator(devices); !all.atEnd(); all.moveNext()) {
    texts.push(all.item().IPAddress + " " + all.item().Model + " " + all.item().Serial);
  }
  return texts.join(", ");
}

var three = "10.88.0.11 7100 NET00011, 10.88.0.12 7200 NET00022, 10.88.0.13 7300 NET00033";
var tcp = new ActiveXObject("KespCommObj.CKespTCP");
tcp.Protocol = sckUDPProtocol;
// JScript has no arguments by reference: the answer is lost, and the call succeeds.
check("discovery", tcp.AutoDetect(""), true);
check("devices", found(tcp.Devices), three);

tcp.Protocol = sckTCPProtocol;
tcp.IPAddress = tcp.Devices(2).IPAddress;
check("detection", tcp.AutoDetect("", dlSCPIOnly), true);
check("open", tcp.State, 7);
check("close", tcp.Uninitialize(), true);

if (failures === 0) WScript.Echo("PASS");
