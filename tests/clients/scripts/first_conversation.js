// JScript's conversation with the instrument at host and port, the collection, and errors.
var csNone = -1, csTCPIP = 1, cfrSuccess = 0;
var failures = 0;

function check(what, found, expected) {
  if (found === expected) return;
  failures++;
  WScript.Echo("FAIL: " + what + ": " + found + " instead of " + expected);
}

function refused(what, call, number, description) {
  try {
    call();
    check(what, "no error", number);
  } catch (error) {
    check(what, error.number, number);
    check(what + ", text", error.description, description);
  }
}

var comm = new ActiveXObject("KespCommObj.CKespCommObj");
comm.CommStyle = csTCPIP;
comm.CommObject.IPAddress = WScript.Arguments(0);
comm.CommObject.Port = parseInt(WScript.Arguments(1), 10);

// JScript has no arguments by reference: the reply is lost, and the call succeeds.
check("query", comm.Query("", "*IDN?"), true);
check("status", comm.CommError, cfrSuccess);
check("update", comm.Update("SETP 20"), true);
check("key", comm.GetKey().length, 11);

comm.CommStyle = csNone;
check("no transport", comm.CommObject, null);
refused("query without style", function () { comm.Query("", "*IDN?"); }, -2147221303,
        "Communications object not initialized");

var instruments = new ActiveXObject("KespCommObj.CInstruments");
var models = ["A", "B", "C"];
for (var i = 0; i < models.length; i++) {
  var instrument = new ActiveXObject("KespCommObj.CInstrument");
  instrument.Model = models[i];
  instruments.AddReference(instrument, "key" + models[i]);
}
var found = "";
for (var all = new Enumerator(instruments); !all.atEnd(); all.moveNext()) found += all.item().Model;
check("Enumerator", found, "ABC");
check("default member", instruments(2).Model, "B");
check("by key", instruments("KEYC").Model, "C");
refused("position", function () { instruments.Item(9); }, -2146828279, "Subscript out of range");

if (failures === 0) WScript.Echo("PASS");
